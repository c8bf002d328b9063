#pragma once

#include "ReceiverBase.h"
#include "ReportRateInfo.h"

#include <QtCore/QList>

#include <functional>

/// What a FakeReceiver answers: one sane mouse, of which a test spoils one field.
struct ReceiverAnswers
{
    uint firmwareVersion = 0x0102;
    bool hasBatteryLevel = true;
    int batteryLevel = 80;
    int statusValue = 31;
    int deviceValue = 32;
    int levelValue = 33;
    bool isSmartPointerSupported = true;
    bool hasReportRateInfo = true;
    ReportRateInfo reportRateInfo{0xffff, 500, {125, 250, 500, 1000}};
    bool acceptsRequests = true;
    quintptr forwardedResult = 77;
};

/// A receiver that records every call on the timeline, answers from plain data and never reports by itself:
/// a test plays the mouse.
class FakeReceiver : public ReceiverBase
{
    Q_OBJECT

public:
    explicit FakeReceiver(Timeline &timeline);

    ReceiverAnswers answers;

    /// Called inside each request after it was recorded and before it is answered, with the operation's name:
    /// for receivers that report back at once.
    std::function<void(const QString &operation)> duringRequest;

    /// How many slots are connected to one of the receiver's signals, given as "dpiMinChanged(int)".
    int connectionCount(const char *signal) const;

    quintptr forwardedCall(quintptr argument1, quintptr argument2, quintptr argument3) override;
    uint getFirmwareVersion(DeviceId id) override;
    bool hasBatteryLevel(DeviceId id) override;
    int getBatteryLevel(DeviceId id) override;
    bool setDisabledButtonsOrKeysMask(DeviceId id, quint8 mask) override;
    int getStatusValue(DeviceId id) override;
    int getDeviceValue(DeviceId id) override;
    quintptr forwardedOperation(DeviceId id, quintptr argument2, quintptr argument3) override;
    bool isSmartPointerSupported(DeviceId id) override;
    bool setReportRate(DeviceId id, int rate) override;
    bool getReportRateInfo(DeviceId id, ReportRateInfo *info) override;
    int getLevelValue(DeviceId id) override;
    bool setDpiButtonAndActiveSlot(DeviceId id, int dpiButtonId, int activeDpiSlotIndex) override;
    bool setDpiSlotValues(DeviceId id, const quint16 values[5], int dpiButtonId,
                          int activeDpiSlotIndex) override;
    bool requestInitialState2(DeviceId id) override;
    bool requestInitialState1(DeviceId id) override;
    bool requestInitialState3(DeviceId id) override;

private:
    template <typename Result>
    Result answer(const char *operation, DeviceId id, const QJsonArray &arguments, Result result);
    bool answerRequest(const char *operation, DeviceId id, const QJsonArray &arguments);
};
