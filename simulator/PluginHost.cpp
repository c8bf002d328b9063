#include "PluginHost.h"

#include "HostedDevice.h"
#include "ILogicalDevicePlugin.h"
#include "PluginInspection.h"
#include "Timeline.h"

using namespace Qt::StringLiterals;

PluginHost::PluginHost(Timeline &timeline) : m_timeline(timeline)
{
    // Before the file name: the hints given with a file are only ever added to, and one of the standard hints
    // keeps a library in the process for ever.
    m_loader.setLoadHints({});
}

PluginHost::~PluginHost()
{
    unload();
}

std::optional<QString> PluginHost::load(const QString &file)
{
    unload();
    std::optional<QString> reason = check(file);
    if (reason)
        unload();
    return reason;
}

std::optional<QString> PluginHost::check(const QString &file)
{
    const PluginInspection inspection = inspectPlugin(file);
    if (!inspection.refusal.isEmpty())
        return inspection.refusal;

    m_loader.setFileName(inspection.file);
    if (!m_loader.load())
        return u"\"%1\" does not load (%2); see that the libraries it needs are installed"_s.arg(
            file, m_loader.errorString());

    m_root = m_loader.instance();
    m_factory = qobject_cast<ILogicalDevicePlugin *>(m_root);
    if (!m_factory)
        return u"\"%1\" has no factory of logical devices (\"%2\"); rebuild it with the current interfaces"_s
            .arg(file, QLatin1StringView(qobject_interface_iid<ILogicalDevicePlugin *>()));
    return std::nullopt;
}

bool PluginHost::unload()
{
    m_factory = nullptr;
    m_root = nullptr;
    return m_loader.isLoaded() && m_loader.unload();
}

bool PluginHost::initialize(IHostServices *hostServices, bool debugEnabled, bool warningEnabled,
                            bool criticalEnabled)
{
    m_timeline.record(TimelineEntry::Kind::Call, {}, u"initialize"_s,
                      {debugEnabled, warningEnabled, criticalEnabled});
    return m_factory->initialize(hostServices, debugEnabled, warningEnabled, criticalEnabled);
}

std::unique_ptr<HostedDevice> PluginHost::createDevice(IPhysicalDevice *physicalDevice, DeviceId id)
{
    m_timeline.record(TimelineEntry::Kind::Call, id, u"createLogicalDevice"_s);
    auto *device =
        dynamic_cast<ILogicalDeviceGen3Mouse *>(m_factory->createLogicalDevice(physicalDevice, id));
    return std::make_unique<HostedDevice>(m_timeline, device, id);
}

void PluginHost::destroyDevice(std::unique_ptr<HostedDevice> device)
{
    m_timeline.record(TimelineEntry::Kind::Call, device->id(), u"destroyDevice"_s);
    m_factory->destroyDevice(device->device());
}
