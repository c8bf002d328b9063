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

/// Loads a device plugin as the real host does, and unloads it. One library at a time. Use it on one thread; the
/// devices live on that thread, too.
class PluginHost
{
public:
    /// The timeline must outlive the host.
    explicit PluginHost(Timeline &timeline);
    /// Unloads, which deletes the devices that were not destroyed.
    ~PluginHost();
    Q_DISABLE_COPY_MOVE(PluginHost)

    /// Loads the library in place of the last one, and gets its factory. Returns nothing on success; else the reason in
    /// one sentence, with what to do, and nothing is loaded. Checks, in this order: the file is a Qt plugin for this
    /// system and this Qt, before any code of it runs; it loads; its root object is a factory of logical devices.
    std::optional<QString> load(const QString &file);
    /// Deletes the factory, and with it the devices, and removes the library from the process. False when nothing was
    /// loaded or the library stays. A HostedDevice that is left must only be deleted.
    bool unload();

    /// The plugin's root object and its factory interface; null while nothing is loaded.
    QObject *root() const { return m_root; }
    ILogicalDevicePlugin *factory() const { return m_factory; }
    /// The file that is loaded, as an absolute path.
    QString fileName() const { return m_loader.fileName(); }

    /// The factory's operations, each recorded as a call. Only while a library is loaded.
    ///
    /// Gives the plugin its host services and switches each of its log levels on or off, for all devices. Returns the
    /// plugin's answer. hostServices may be null and must outlive the devices.
    bool initialize(IHostServices *hostServices, bool debugEnabled, bool warningEnabled,
                    bool criticalEnabled);
    /// Creates the logical device of a mouse and records its signals from now on. Nothing is asked of the receiver before
    /// HostedDevice::start(). physicalDevice may be null and must outlive the device. The id is the mouse's.
    std::unique_ptr<HostedDevice> createDevice(IPhysicalDevice *physicalDevice, DeviceId id);
    /// Lets the factory delete the device, at once; its last signals are recorded.
    void destroyDevice(std::unique_ptr<HostedDevice> device);

private:
    std::optional<QString> check(const QString &file);

    Timeline &m_timeline;
    QPluginLoader m_loader;
    QObject *m_root = nullptr;
    ILogicalDevicePlugin *m_factory = nullptr;
};
