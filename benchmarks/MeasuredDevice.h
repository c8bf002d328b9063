#pragma once

#include "FloorDevice.h"
#include "ILogicalDeviceGen3Mouse.h"
#include "ILogicalDevicePlugin.h"
#include "QuietHost.h"

#include <memory>
#include <vector>

/// What the device is allowed to log, to a host that throws the lines away.
enum class Log {
    Off,       ///< as hosts have it
    On,        ///< all switches are on
    Filtered,  ///< all switches are on, and Qt's filter drops the category
};

/// The library's factory. The library is loaded at first use; the program ends when it does not load.
ILogicalDevicePlugin &factory();

/// Sets the log switches, the message handler and the category filter, and puts all back.
class LogState
{
public:
    LogState(Log log, IHostServices &services);
    Q_DISABLE_COPY_MOVE(LogState)
    ~LogState();

private:
    QtMessageHandler m_previousHandler = nullptr;
};

/// A started device on a quiet host.
class MeasuredDevice
{
public:
    explicit MeasuredDevice(Log log);
    Q_DISABLE_COPY_MOVE(MeasuredDevice)
    ~MeasuredDevice();

    ILogicalDeviceGen3Mouse &device() { return *m_device; }
    QObject &object() { return *m_object; }

private:
    QuietServices m_services;
    LogState m_logState;
    QuietReceiver m_receiver;
    ILogicalDeviceGen3Mouse *m_device = nullptr;
    QObject *m_object = nullptr;
};

/// The same for a floor.
class MeasuredFloor
{
public:
    MeasuredFloor();

    FloorDevice &device() { return *m_device; }
    QObject &object() { return *m_device; }

private:
    QuietServices m_services;
    QuietReceiver m_receiver;
    std::unique_ptr<FloorDevice> m_device;
};

/// Listeners, each with one connection.
class Listeners
{
public:
    /// signal and slot as Qt's SIGNAL and SLOT write them.
    void connect(QObject &sender, const char *signal, const char *slot, int count = 1);

private:
    std::vector<std::unique_ptr<QuietListener>> m_listeners;
};
