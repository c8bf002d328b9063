#include "PluginFixture.h"

#include <algorithm>

QString PluginFixture::builtPluginFile()
{
    return qEnvironmentVariable("KVX_PLUGIN_FILE", QStringLiteral(KVX_PLUGIN_FILE));
}

PluginFixture::PluginFixture(LogSwitches switches, const QString &pluginFile) : host(timeline)
{
    if (const std::optional<QString> reason = host.load(pluginFile))
        qFatal("%s", qPrintable(*reason));
    host.initialize(&hostServices, switches.debug, switches.warning, switches.critical);
    timeline.clear();
}

PluginFixture::~PluginFixture()
{
    while (!m_devices.empty())
        destroy(*m_devices.back());
}

HostedDevice &PluginFixture::createRecorded(DeviceId id)
{
    return createRecorded(&receiver, id);
}

HostedDevice &PluginFixture::createRecorded(IPhysicalDevice *physicalDevice, DeviceId id)
{
    m_devices.push_back(host.createDevice(physicalDevice, id));
    return *m_devices.back();
}

HostedDevice &PluginFixture::create(DeviceId id)
{
    return create(&receiver, id);
}

HostedDevice &PluginFixture::create(IPhysicalDevice *physicalDevice, DeviceId id)
{
    HostedDevice &device = createRecorded(physicalDevice, id);
    timeline.clear();
    return device;
}

HostedDevice &PluginFixture::started(DeviceId id)
{
    HostedDevice &device = create(id);
    device.start();
    timeline.clear();
    return device;
}

void PluginFixture::destroy(HostedDevice &device)
{
    const auto owner = std::find_if(m_devices.begin(), m_devices.end(),
                                    [&](const auto &candidate) { return candidate.get() == &device; });
    std::unique_ptr<HostedDevice> going = std::move(*owner);
    m_devices.erase(owner);
    host.destroyDevice(std::move(going));
}

QStringList PluginFixture::take(Timeline::Style style)
{
    return timeline.take(style);
}

void PluginFixture::onceInside(const QString &line, const std::function<void()> &action)
{
    timeline.setObserver([this, line, action](const TimelineEntry &entry) {
        if (Timeline::line(entry, Timeline::Style::Plain) != line)
            return;
        timeline.setObserver({});
        action();
    });
}
