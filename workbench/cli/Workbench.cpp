#include "Workbench.h"

#include "TimelineWait.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QFile>
#include <QtCore/QLoggingCategory>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

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
    if (m_hasCategoryRules)
        QLoggingCategory::setFilterRules({});
    // Before the folder of the copy goes.
    host.unload();
}

std::optional<QString> Workbench::load(const QString &pluginFile)
{
    if (std::optional<QString> reason = host.load(pluginFile))
        return reason;
    m_pluginFile = host.fileName();
    setLogSwitches({true, true, true});
    return std::nullopt;
}

std::optional<QString> Workbench::loadAgain(const QString &copyName, bool isInitialized)
{
    QString file = m_pluginFile;
    if (!copyName.isEmpty()) {
        file = m_copyFolder.emplace().filePath(copyName);
        if (!QFile::copy(m_pluginFile, file))
            return u"\"%1\" cannot be copied to \"%2\""_s.arg(m_pluginFile, file);
    }
    std::optional<QString> reason = host.load(file);
    if (!reason && isInitialized)
        setLogSwitches({true, true, true});
    return reason;
}

void Workbench::useReceiver(int number)
{
    if (number == 1) {
        m_nextReceiver = &receiver;
        return;
    }
    std::unique_ptr<SimulatedReceiver> &other = m_otherReceivers[number];
    if (!other)
        other = std::make_unique<SimulatedReceiver>(timeline, number);
    m_nextReceiver = other.get();
}

SimulatedReceiver &Workbench::currentReceiver()
{
    return device() ? *m_devices.at(m_current).receiver : *m_nextReceiver;
}

std::vector<SimulatedReceiver *> Workbench::receivers()
{
    std::vector<SimulatedReceiver *> all{&receiver};
    for (const auto &[number, other] : m_otherReceivers)
        all.push_back(other.get());
    return all;
}

bool Workbench::addMouse(DeviceId id, const SimulatedMouse &mouse)
{
    if (m_devices.count(id) != 0)
        return false;
    m_nextReceiver->setMouse(id, mouse);
    return createDevice(id, m_nextReceiver, true);
}

bool Workbench::addDevice(DeviceId id, bool hasPhysicalDevice)
{
    return m_devices.count(id) == 0 && createDevice(id, hasPhysicalDevice ? &m_plainDevice : nullptr, false);
}

bool Workbench::createDevice(DeviceId id, IPhysicalDevice *physicalDevice, bool hasMouse)
{
    std::unique_ptr<HostedDevice> device = host.createDevice(physicalDevice, id);
    // What is reported by hand reaches every device.
    m_nextReceiver->attach(id, device->device());
    m_devices.emplace(id, KnownDevice{std::move(device), hasMouse, 0, m_nextReceiver});
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
    forgetDevice([this](std::unique_ptr<HostedDevice> device) { host.destroyDevice(std::move(device)); });
}

void Workbench::deleteDevice(bool throughGen3)
{
    forgetDevice([=](const std::unique_ptr<HostedDevice> &device) {
        timeline.record(TimelineEntry::Kind::Call, device->id(),
                        throughGen3 ? u"~ILogicalDeviceGen3"_s : u"~ILogicalDeviceGen3Mouse"_s);
        if (throughGen3)
            delete device->gen3();
        else
            delete device->device();
    });
}

void Workbench::forgetDevice(const std::function<void(std::unique_ptr<HostedDevice>)> &end)
{
    const auto current = m_devices.find(m_current);
    SimulatedReceiver &itsReceiver = currentReceiver();
    itsReceiver.detach(m_current);
    end(std::move(current->second.device));
    itsReceiver.removeMouse(m_current);
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

void Workbench::noteStart()
{
    KnownDevice &known = m_devices.at(m_current);
    ++known.starts;
    known.isStopped = false;
}

void Workbench::noteStop()
{
    KnownDevice &known = m_devices.at(m_current);
    known.isStopped = known.starts > 0;
}

bool Workbench::setLogSwitches(const LogSwitches &switches)
{
    m_logSwitches = switches;
    return host.initialize(&hostServices, switches[0], switches[1], switches[2]);
}

void Workbench::setCategoryRules(const QString &rules)
{
    m_hasCategoryRules = true;
    QLoggingCategory::setFilterRules(rules);
}

void Workbench::runOnOtherThread(const std::function<void()> &function)
{
    if (!m_otherThread)
        m_otherThread.emplace();
    m_otherThread->run(function);
}

bool Workbench::settle(const std::function<bool()> &condition)
{
    const std::vector<SimulatedReceiver *> all = receivers();
    const auto isIdle = [](const SimulatedReceiver *one) { return one->isIdle(); };
    return waitFor(
        [&] { return (condition && condition()) || std::all_of(all.cbegin(), all.cend(), isIdle); },
        deadline);
}

bool Workbench::waitFor(const std::function<bool()> &condition, std::chrono::milliseconds limit)
{
    // What was queued for the devices comes first, so that a condition that holds already sees its signals.
    QCoreApplication::sendPostedEvents();
    return waitForTimeline(timeline, condition, limit);
}
