#pragma once

#include "DeviceId.h"

#include <QtCore/QPluginLoader>
#include <QtCore/QString>

#include <memory>
#include <optional>

class HostedDevice;
class IHostServices;
class ILogicalDevicePlugin;
class IPhysicalDevice;
class Timeline;

/// Loads a device plugin as the real host does, and lets it go again. One library at a time; for one thread.
class PluginHost
{
public:
    /// The timeline must outlive the host.
    explicit PluginHost(Timeline &timeline);
    /// Unloads. Devices that were not destroyed die with the factory.
    ~PluginHost();
    Q_DISABLE_COPY_MOVE(PluginHost)

    /// Loads the library and gets its factory. Answers nothing when all is well, else the reason in one sentence,
    /// and then nothing is loaded. Checks, in this order: all that inspectPlugin() refuses, before anything of the
    /// library runs; it loads here; its root object is a factory of logical devices.
    std::optional<QString> load(const QString &file);
    /// Deletes the factory, and with it the devices, and takes the library out of the process.
    /// True when that worked.
    bool unload();

    /// The plugin's root object and its factory interface; null while nothing is loaded.
    QObject *root() const { return m_root; }
    ILogicalDevicePlugin *factory() const { return m_factory; }
    /// The file that is loaded, as an absolute path.
    QString fileName() const { return m_loader.fileName(); }

    /// The factory's operations, each on the timeline as a call.
    bool initialize(IHostServices *hostServices, bool debugEnabled, bool warningEnabled,
                    bool criticalEnabled);
    std::unique_ptr<HostedDevice> createDevice(IPhysicalDevice *physicalDevice, DeviceId id);
    void destroyDevice(std::unique_ptr<HostedDevice> device);

private:
    std::optional<QString> check(const QString &file);

    Timeline &m_timeline;
    QPluginLoader m_loader;
    QObject *m_root = nullptr;
    ILogicalDevicePlugin *m_factory = nullptr;
};
