#include "LogicalDevicePlugin.h"

#include "GatedLog.h"
#include "LogicalDevice.h"

LogicalDevicePlugin::~LogicalDevicePlugin()
{
    pluginDebug() << "~LogicalDevicePlugin";
}

bool LogicalDevicePlugin::initialize(IHostServices *hostServices, bool debugEnabled, bool warningEnabled,
                                     bool criticalEnabled)
{
    m_hostServices = hostServices;
    setLogSwitches(debugEnabled, warningEnabled, criticalEnabled);
    return true;
}

void LogicalDevicePlugin::destroyDevice(IDevice *device)
{
    delete dynamic_cast<LogicalDevice *>(device);
}

ILogicalDevice *LogicalDevicePlugin::createLogicalDevice(IPhysicalDevice *physicalDevice, DeviceId id)
{
    return new LogicalDevice(physicalDevice, id, this);
}

#include "moc_LogicalDevicePlugin.cpp"  // NOLINT(bugprone-suspicious-include)
