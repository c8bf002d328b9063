#pragma once

#include "ILogicalDeviceGen3Mouse.h"
#include "Libraries.h"
#include "QuietHost.h"

#include <memory>
#include <vector>

/// Which build of the device is measured, and what it is allowed to log.
enum class Variant {
    Product,   ///< its log switches are off, as hosts have them
    Unlogged,  ///< built without log lines
    Logging,   ///< the debug log is on, and a host that throws the lines away
    Filtered,  ///< the debug log is on, and Qt's filter drops the category
    Floor,     ///< the least code that does the same
};

/// Whether this variant is the least code, not the device.
constexpr bool isFloor(Variant variant)
{
    return variant == Variant::Floor;
}

/// Sets the log switches of both builds, the message handler and the category filter, and puts all back.
class LogState
{
public:
    LogState(Variant variant, IHostServices &services);
    Q_DISABLE_COPY_MOVE(LogState)
    ~LogState();

private:
    QtMessageHandler m_previousHandler = nullptr;
};

/// A started device on a quiet host, called through its interface; its signals have receivers on demand.
class MeasuredDevice
{
public:
    using Interface = ILogicalDeviceGen3Mouse;

    explicit MeasuredDevice(Variant variant);
    Q_DISABLE_COPY_MOVE(MeasuredDevice)
    ~MeasuredDevice();

    Interface &device() { return *m_device; }
    QObject &object() { return *m_object; }

private:
    QuietServices m_services;
    LogState m_logState;
    QuietReceiver m_receiver;
    ILogicalDevicePlugin *m_factory = nullptr;
    Interface *m_device = nullptr;
    QObject *m_object = nullptr;
};

/// The same for a floor.
class MeasuredFloor
{
public:
    using Interface = IFloorDevice;

    explicit MeasuredFloor(Variant variant);
    Q_DISABLE_COPY_MOVE(MeasuredFloor)
    ~MeasuredFloor();

    Interface &device() { return *m_device; }
    QObject &object() { return *m_object; }

private:
    QuietServices m_services;
    QuietReceiver m_receiver;
    std::unique_ptr<IFloorDevice> m_device;
    QObject *m_object = nullptr;
};

/// The listeners of one signal, each with one connection.
class Listeners
{
public:
    /// signal and slot as Qt's SIGNAL and SLOT write them.
    void connect(QObject &sender, const char *signal, const char *slot, int count = 1);

private:
    std::vector<std::unique_ptr<QuietListener>> m_listeners;
};
