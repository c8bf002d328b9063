#pragma once

#include "DeviceId.h"

#include <QtCore/QHash>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <map>

class HostedDevice;
struct SimulatedMouse;
struct TimelineEntry;

/// The value that each signal of each device carried last, as text, since the device was created or started; and the
/// signals that came on another thread than the device's although they never must. The devices are the timeline's
/// thread's.
class LastSignals
{
public:
    /// To be called with each entry of a timeline once, in their order.
    void note(const TimelineEntry &entry);
    /// By the name of the signal.
    QHash<QString, QString> of(DeviceId id) const;
    /// Lines.
    QStringList onWrongThread(DeviceId id) const { return m_onWrongThread.value(id); }

private:
    void forget(DeviceId id);

    std::map<DeviceId, QHash<QString, QString>> m_values;
    QHash<DeviceId, QStringList> m_onWrongThread;
};

/// What a host could not rely on, a sentence each: a signal on a wrong thread, a getter that differs from its last
/// signal, a flag that says that a
/// change is pending, and, with a mouse, a value that is not the mouse's. For a device at rest.
QStringList disagreements(const HostedDevice &device, const LastSignals &lastSignals,
                          const SimulatedMouse *mouse);
