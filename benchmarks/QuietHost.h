#pragma once

#include "IHostServices.h"
#include "ReceiverBase.h"
#include "ReportRateInfo.h"
#include "Timeline.h"

#include <QtCore/QStringList>

/// A receiver that accepts everything and does nothing else, so that what is measured is the device's part.
class QuietReceiver final : public ReceiverBase
{
    Q_OBJECT

public:
    QuietReceiver() : ReceiverBase(m_unused) {}

    // clang-format off
    quintptr forwardedCall(quintptr, quintptr, quintptr) override { return 0; }
    uint getFirmwareVersion(DeviceId) override { return 0x0102; }
    bool hasBatteryLevel(DeviceId) override { return true; }
    int getBatteryLevel(DeviceId) override { return 80; }
    bool setDisabledButtonsOrKeysMask(DeviceId, quint8) override { return true; }
    int getStatusValue(DeviceId) override { return 0; }
    int getDeviceValue(DeviceId) override { return 0; }
    quintptr forwardedOperation(DeviceId, quintptr, quintptr) override { return 0; }
    bool isSmartPointerSupported(DeviceId) override { return true; }
    bool setReportRate(DeviceId, int) override { return true; }
    bool getReportRateInfo(DeviceId, ReportRateInfo *info) override { *info = {0, 125, {125, 250, 500, 1000}}; return true; }
    int getLevelValue(DeviceId) override { return 0; }
    bool setDpiButtonAndActiveSlot(DeviceId, int, int) override { return true; }
    bool setDpiSlotValues(DeviceId, const quint16[5], int, int) override { return true; }
    bool requestInitialState2(DeviceId) override { return true; }
    bool requestInitialState1(DeviceId) override { return true; }
    bool requestInitialState3(DeviceId) override { return true; }
    // clang-format on

private:
    Timeline m_unused;
};

/// A host that takes what it is told.
class QuietServices final : public IHostServices
{
public:
    void reserved0() override {}
    void reserved1() override {}
    void reserved2() override {}
    void buttonEvent(const QString & /*pluginIid*/, int /*buttonNumber*/, bool /*isPressed*/) override {}
    void setCtrlKeyPressed(bool /*isPressed*/) override {}
};

/// What the signals are connected to.
class QuietListener final : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void onNumber(int /*number*/) {}
    void onFlag(bool /*isSet*/) {}
    void onTexts(const QStringList & /*texts*/) {}
};
