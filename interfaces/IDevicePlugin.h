#pragma once

#include "InterfaceVisibility.h"

#include <QtCore/QtPlugin>

class IDevice;
class IHostServices;

/// The factory of a device plugin, as far as it does not depend on the kind of device.
/// The root object of the plugin library; the Qt plugin loader owns it.
class KVX_INTERFACE IDevicePlugin
{
public:
    /// Hands the host's service object and the three log switches to the plugin; all log lines of a severity
    /// are written only while its switch is true. To be called before the first device is created.
    /// May be called again; each call replaces all four. hostServices is not owned and not used by the
    /// factory itself; it may be null as long as no mouse event is delivered. Answers true.
    virtual bool initialize(IHostServices *hostServices, bool debugEnabled, bool warningEnabled,
                            bool criticalEnabled) = 0;

    /// Deletes a device that this plugin created. Null and devices of any other class are left alone. The class is
    /// compared by its name, so a device of another plugin with a class of the same name must not be passed.
    /// To be called on the device's thread, and not from a slot directly connected to instanceNumberChanged.
    /// The other started devices are renumbered and announce it.
    virtual void destroyDevice(IDevice *device) = 0;

    virtual ~IDevicePlugin() {}
};

#define IDevicePlugin_iid "com.orvane.KVX.Plugin.IDevicePlugin"
Q_DECLARE_INTERFACE(IDevicePlugin, IDevicePlugin_iid)
