#pragma once

#include "ILogicalDevicePlugin.h"
#include "PluginIid.h"

#include <QtCore/QObject>

/// The plugin's factory and root object. The plugin loader owns it; it owns the devices as their parent.
class LogicalDevicePlugin final : public QObject, public ILogicalDevicePlugin
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID RV418_PLUGIN_IID)
    Q_INTERFACES(IDevicePlugin ILogicalDevicePlugin)

public:
    LogicalDevicePlugin() = default;
    Q_DISABLE_COPY_MOVE(LogicalDevicePlugin)
    ~LogicalDevicePlugin() override;

    bool initialize(IHostServices *hostServices, bool debugEnabled, bool warningEnabled,
                    bool criticalEnabled) override;
    void destroyDevice(IDevice *device) override;
    ILogicalDevice *createLogicalDevice(IPhysicalDevice *physicalDevice, DeviceId id) override;

    /// Receives the devices' button and Ctrl events; null before initialize(). Not owned.
    IHostServices *hostServices() const { return m_hostServices; }

private:
    IHostServices *m_hostServices = nullptr;
};
