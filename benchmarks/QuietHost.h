#pragma once

#include "IHostServices.h"
#include "ReceiverBase.h"
#include "Timeline.h"

#include <QtCore/QStringList>

/// A receiver that accepts everything and does nothing else, so that what is measured is the device's part.
class QuietReceiver final : public ReceiverBase
{
    Q_OBJECT

public:
    QuietReceiver();

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
    Timeline m_unused;
};

/// A host that counts what it is told.
class QuietServices final : public IHostServices
{
public:
    void reserved0() override;
    void reserved1() override;
    void reserved2() override;
    void buttonEvent(const QString &pluginIid, int buttonNumber, bool isPressed) override;
    void setCtrlKeyPressed(bool isPressed) override;

    quint64 events = 0;
};

/// What the signals are connected to.
class QuietListener final : public QObject
{
    Q_OBJECT

public:
    quint64 signalCount = 0;

public Q_SLOTS:
    void onNumber(int number);
    void onFlag(bool isSet);
    void onTexts(const QStringList &texts);
    void onTimeout();
};
