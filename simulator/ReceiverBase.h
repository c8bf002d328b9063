#pragma once

#include "IPhysicalDevice.h"
#include "IPhysicalDeviceDongle.h"

#include <QtCore/QObject>

class Timeline;

/// What every receiver of ours has in common: the signals for the DPI range, and an answer to the operations
/// that a device plugin must never call, which writes the call and a verdict to the timeline.
/// The operations that a plugin does use are left to the class that derives.
class ReceiverBase : public QObject, public IPhysicalDevice, public IPhysicalDeviceDongle
{
    Q_OBJECT

public:
    /// timeline must outlive the receiver.
    explicit ReceiverBase(Timeline &timeline, QObject *parent = nullptr);

    Timeline &timeline() const;

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
