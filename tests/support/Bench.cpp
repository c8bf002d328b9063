#include "Bench.h"

#include "TimelineFile.h"

#include <algorithm>

QString Bench::builtPluginFile()
{
    return qEnvironmentVariable("KVX_PLUGIN_FILE", QStringLiteral(KVX_PLUGIN_FILE));
}

Bench::Bench(LogSwitches switches, const QString &pluginFile) : host(timeline)
{
    keepInTimelineFile(timeline);
    if (const std::optional<QString> reason = host.load(pluginFile))
        qFatal("%s", qPrintable(*reason));
    host.initialize(&hostServices, switches.debug, switches.warning, switches.critical);
    timeline.clear();
}

Bench::~Bench()
{
    while (!m_devices.empty())
        destroy(*m_devices.back());
}

HostedDevice &Bench::createRecorded(DeviceId id)
{
    return createRecorded(&receiver, id);
}

HostedDevice &Bench::createRecorded(IPhysicalDevice *physicalDevice, DeviceId id)
{
    m_devices.push_back(host.createDevice(physicalDevice, id));
    return *m_devices.back();
}

HostedDevice &Bench::create(DeviceId id)
{
    return create(&receiver, id);
}

HostedDevice &Bench::create(IPhysicalDevice *physicalDevice, DeviceId id)
{
    HostedDevice &device = createRecorded(physicalDevice, id);
    timeline.clear();
    return device;
}

HostedDevice &Bench::started(DeviceId id)
{
    HostedDevice &device = create(id);
    device.start();
    timeline.clear();
    return device;
}

void Bench::destroy(HostedDevice &device)
{
    const auto owner = std::find_if(m_devices.begin(), m_devices.end(),
                                    [&](const auto &candidate) { return candidate.get() == &device; });
    std::unique_ptr<HostedDevice> going = std::move(*owner);
    m_devices.erase(owner);
    host.destroyDevice(std::move(going));
}

QString Bench::take(Timeline::Style style)
{
    return timeline.take(style);
}
