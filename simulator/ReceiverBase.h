#pragma once

#include "IPhysicalDevice.h"
#include "IPhysicalDeviceDongle.h"
#include "ReportRateInfo.h"

#include <QtCore/QObject>

class Timeline;

/// A receiver with one sane mouse: it accepts every request, answers every read and reports nothing by itself. A class
/// that derives overrides what it is about. An operation that a device plugin must never call writes the call and a
/// verdict to the timeline; the others write nothing, take no lock and no memory.
class ReceiverBase : public QObject, public IPhysicalDevice, public IPhysicalDeviceDongle
{
    Q_OBJECT

public:
    /// timeline must outlive the receiver.
    explicit ReceiverBase(Timeline &timeline, QObject *parent = nullptr);

    Timeline &timeline() const { return m_timeline; }

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
    bool getReportRateInfo(DeviceId, ReportRateInfo *info) override
    {
        *info = {0, 500, {125, 250, 500, 1000}};
        return true;
    }
    int getLevelValue(DeviceId) override { return 0; }
    bool setDpiButtonAndActiveSlot(DeviceId, int, int) override { return true; }
    bool setDpiSlotValues(DeviceId, const quint16[5], int, int) override { return true; }
    bool requestInitialState1(DeviceId) override { return true; }
    bool requestInitialState2(DeviceId) override { return true; }
    bool requestInitialState3(DeviceId) override { return true; }

Q_SIGNALS:
    /// The lowest DPI that the mouse accepts. The plugin connects to it by this name and signature.
    void dpiMinChanged(int value);
    /// The highest DPI that the mouse accepts. The plugin connects to it by this name and signature.
    void dpiMaxChanged(int value);

private:
    void recordReservedCall(int slot);

    Timeline &m_timeline;

public:
    // clang-format off
#define KVX_RESERVED(number) \
    void reserved##number() override { recordReservedCall(number); }
    KVX_RESERVED(0) KVX_RESERVED(1) KVX_RESERVED(2) KVX_RESERVED(3) KVX_RESERVED(4) KVX_RESERVED(5)
    KVX_RESERVED(6) KVX_RESERVED(7) KVX_RESERVED(8) KVX_RESERVED(9) KVX_RESERVED(10) KVX_RESERVED(11)
    KVX_RESERVED(12) KVX_RESERVED(13) KVX_RESERVED(14) KVX_RESERVED(15) KVX_RESERVED(16) KVX_RESERVED(17)
    KVX_RESERVED(18) KVX_RESERVED(19) KVX_RESERVED(20) KVX_RESERVED(21) KVX_RESERVED(22) KVX_RESERVED(23)
    KVX_RESERVED(24) KVX_RESERVED(25) KVX_RESERVED(26) KVX_RESERVED(27) KVX_RESERVED(28) KVX_RESERVED(29)
    KVX_RESERVED(30) KVX_RESERVED(31) KVX_RESERVED(32) KVX_RESERVED(38) KVX_RESERVED(39) KVX_RESERVED(40)
    KVX_RESERVED(41) KVX_RESERVED(44) KVX_RESERVED(45) KVX_RESERVED(46) KVX_RESERVED(47) KVX_RESERVED(49)
    KVX_RESERVED(50) KVX_RESERVED(51) KVX_RESERVED(54) KVX_RESERVED(56) KVX_RESERVED(57) KVX_RESERVED(58)
    KVX_RESERVED(63) KVX_RESERVED(64)
#undef KVX_RESERVED
    // clang-format on
};
