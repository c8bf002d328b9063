#pragma once

#include "RecordingReceiver.h"

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
class FakeReceiver : public RecordingReceiver
{
    Q_OBJECT

public:
    explicit FakeReceiver(Timeline &timeline) : RecordingReceiver(timeline) {}

    ReceiverAnswers answers;

    /// Called inside each request after it was recorded and before it is answered, with the operation's name:
    /// for receivers that report back at once.
    std::function<void(const QString &operation)> duringRequest;

    /// How many slots are connected to one of the receiver's signals, given as "dpiMinChanged(int)".
    int connectionCount(const char *signal) const;

protected:
    QJsonValue answer(const DeviceOperation &operation, std::optional<DeviceId> id,
                      const QJsonArray &arguments) override;
    ReportRateInfo reportRateInfo(DeviceId id) const override;
};
