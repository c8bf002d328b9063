#pragma once

#include "DeviceId.h"
#include "IDevicePlugin.h"

class ILogicalDevice;
class IPhysicalDevice;

/// The factory of a plugin for logical devices.
class KVX_INTERFACE ILogicalDevicePlugin : public IDevicePlugin
{
public:
    /// Creates a logical device for one mouse on physicalDevice; it is inert until IDevice::start().
    /// physicalDevice is not checked and not owned; it must outlive the device. Neither is id checked: any
    /// number of devices may be made for the same mouse.
    /// The device lives in the calling thread, which should be the factory's: then the factory owns it, and
    /// it dies by destroyDevice() or, at the latest, with the factory.
    virtual ILogicalDevice *createLogicalDevice(IPhysicalDevice *physicalDevice, DeviceId id) = 0;

    ~ILogicalDevicePlugin() override {}
};

#define ILogicalDevicePlugin_iid "com.orvane.KVX.Plugin.ILogicalDevicePlugin"
Q_DECLARE_INTERFACE(ILogicalDevicePlugin, ILogicalDevicePlugin_iid)
