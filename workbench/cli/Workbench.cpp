#include "Workbench.h"

#include "TimelineWait.h"

#include <QtCore/QCoreApplication>

#include <utility>

Workbench::~Workbench()
{
    while (device())
        removeMouse();
}

std::optional<QString> Workbench::load(const QString &pluginFile)
{
    if (std::optional<QString> reason = host.load(pluginFile))
        return reason;
    host.initialize(&hostServices, true, true, true);
    return std::nullopt;
}

bool Workbench::addMouse(DeviceId id, const SimulatedMouse &mouse)
{
    if (m_devices.count(id) != 0)
        return false;
    receiver.setMouse(id, mouse);
    std::unique_ptr<HostedDevice> device = host.createDevice(&receiver, id);
    receiver.attach(id, device->device());
    m_devices.emplace(id, std::move(device));
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
    host.destroyDevice(std::move(current->second));
    receiver.removeMouse(m_current);
    m_devices.erase(current);
    if (!m_devices.empty())
        m_current = m_devices.begin()->first;
}

HostedDevice *Workbench::device() const
{
    const auto current = m_devices.find(m_current);
    return current == m_devices.end() ? nullptr : current->second.get();
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
