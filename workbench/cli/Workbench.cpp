#include "Workbench.h"

#include "TimelineWait.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>

#include <algorithm>
#include <utility>

Workbench::~Workbench()
{
    // A device that was started twice stays registered when it dies, so the others must be gone by then.
    while (device()) {
        const auto first = std::find_if(m_devices.cbegin(), m_devices.cend(),
                                        [](const auto &known) { return known.second.starts < 2; });
        if (first != m_devices.cend())
            m_current = first->first;
        removeMouse();
    }
}

std::optional<QString> Workbench::load(const QString &pluginFile)
{
    if (std::optional<QString> reason = host.load(pluginFile))
        return reason;
    setLogSwitches({true, true, true});
    return std::nullopt;
}

bool Workbench::addMouse(DeviceId id, const SimulatedMouse &mouse)
{
    if (m_devices.count(id) != 0)
        return false;
    receiver.setMouse(id, mouse);
    return createDevice(id, &receiver, true);
}

bool Workbench::addDevice(DeviceId id, bool hasPhysicalDevice)
{
    return m_devices.count(id) == 0 && createDevice(id, hasPhysicalDevice ? &m_plainDevice : nullptr, false);
}

bool Workbench::createDevice(DeviceId id, IPhysicalDevice *physicalDevice, bool hasMouse)
{
    std::unique_ptr<HostedDevice> device = host.createDevice(physicalDevice, id);
    // What is reported by hand reaches every device.
    receiver.attach(id, device->device());
    m_devices.emplace(id, Entry{std::move(device), hasMouse, 0});
    m_current = id;
    return true;
}

bool Workbench::useMouse(DeviceId id)
{
    if (m_devices.count(id) == 0)
        return false;
    m_current = id;
    return true;
}

void Workbench::removeMouse()
{
    const auto current = m_devices.find(m_current);
    receiver.detach(m_current);
    host.destroyDevice(std::move(current->second.device));
    receiver.removeMouse(m_current);
    m_devices.erase(current);
    if (!m_devices.empty())
        m_current = m_devices.begin()->first;
}

bool Workbench::unload()
{
    const bool isUnloaded = host.unload();
    m_devices.clear();
    // Its resources go with the library only.
    return isUnloaded && !QFile::exists(QStringLiteral(":/com.orvane.KVX.Plugin.LogicalDevice.RV418"));
}

HostedDevice *Workbench::device() const
{
    const auto current = m_devices.find(m_current);
    return current == m_devices.end() ? nullptr : current->second.device.get();
}

void Workbench::setLogSwitches(const LogSwitches &switches)
{
    m_logSwitches = switches;
    host.initialize(&hostServices, switches[0], switches[1], switches[2]);
}

void Workbench::runOnOtherThread(const std::function<void()> &function)
{
    if (!m_otherThread)
        m_otherThread.emplace();
    m_otherThread->run(function);
}

bool Workbench::settle(const std::function<bool()> &condition)
{
    return waitFor([&] { return (condition && condition()) || receiver.isIdle(); }, deadline);
}

bool Workbench::waitFor(const std::function<bool()> &condition, std::chrono::milliseconds limit)
{
    // What was queued for the devices comes first, so that a condition that holds already sees its signals.
    QCoreApplication::sendPostedEvents();
    return waitForTimeline(timeline, condition, limit);
}
