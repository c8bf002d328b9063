#pragma once

#include "InterfaceVisibility.h"

#include <QtCore/QString>
#include <QtCore/QtPlugin>
#include <QtCore/QUuid>
#include <QtCore/QVariantMap>

/// A device as the host sees it, of whatever kind. The plugin implements it in a QObject.
///
/// Operations may be called from any thread unless they say otherwise. State changes at once, on the calling
/// thread and without a lock; signals are emitted on the device's own thread unless they say otherwise, and
/// an emission that was queued from another thread carries the value of the moment when it runs.
/// Signals are declared as operations so that a plugin that misspells one does not compile; hosts connect to
/// them on the device's QObject and never call them.
class KVX_INTERFACE IDevice
{
public:
    /// The kind of device: always 2. The host defines what the numbers mean.
    virtual int deviceType() const = 0;
    /// The class of the device: always 7. The host defines what the numbers mean.
    virtual int deviceClass() const = 0;
    /// Passes all arguments to IPhysicalDevice::forwardedCall() and returns its answer, on the calling
    /// thread. The physical device must not be null.
    virtual quintptr forwardToPhysicalDevice(quintptr argument1, quintptr argument2, quintptr argument3) = 0;
    /// The display name, translated.
    virtual QString name() const = 0;
    /// A random identity, made with the object and different for each.
    virtual QUuid instanceId() const = 0;
    /// The firmware version: what start() read or setFirmwareVersion() set, whichever came last; 0 before.
    virtual uint firmwareVersion() const = 0;
    /// The IID of the plugin that made the device.
    virtual QString iid() const = 0;
    /// A value read from the receiver by start(); 0 before.
    virtual int deviceValue() const = 0;
    /// The model code, for example "RV418".
    virtual QString modelCode() const = 0;

    /// Binds the device to its receiver, reads the mouse's state and gives the device its instance number.
    /// To be called once: each further call connects, appends the report rates and registers again, and
    /// only one registration is undone when the device is deleted. The other stays behind and dangles: no
    /// device of the plugin may be started or deleted after that. True when the plugin's own library file
    /// was found under its name; the binding and the registration happen either way. A physical device that
    /// is no receiver leaves every value at its default. Emits no change signals for the values read, but
    /// instanceNumberChanged on every started device; and a report rate that is not on offer makes it
    /// request another, with the signals of that request.
    virtual bool start() = 0;
    /// Emits stopped(). Releases nothing: connections, values and the instance number stay.
    virtual void stop() = 0;
    /// Stores the version and emits firmwareVersionChanged, even when it is the same. From another thread the
    /// whole call is queued: firmwareVersion() changes only when the device's thread has run it.
    virtual void setFirmwareVersion(uint fwVersion) = 0;
    /// Takes the user's settings for the device, by names that the host defines. This family sets everything
    /// through operations of its own and only writes the map to the debug log.
    virtual void applySettings(const QVariantMap &settings) = 0;
    /// Gives the smart-pointer key back to the mouse. DPI, report rate and buttons 1 to 5 are not reset.
    virtual void resetSettings() = 0;

    /// Hosts delete devices with IDevicePlugin::destroyDevice() only.
    virtual ~IDevice() {}

    /// Signal: stop() was called. iDevice is the device itself. Emitted on the calling thread.
    virtual void stopped(IDevice *iDevice) = 0;
    /// Signal: setFirmwareVersion() was run.
    virtual void firmwareVersionChanged(uint fwVersion) = 0;

    /// The device's capabilities may have changed: the device asks the receiver again whether the mouse has a
    /// smart-pointer key, whatever capability is. Does nothing while no receiver is bound.
    /// Emits ILogicalDevice::isSmartPointerSupportedChanged when the answer differs, on the calling thread.
    virtual void capabilityChangedCallBack(quint8 capability) = 0;
};

#define IDevice_iid "com.orvane.KVX.Plugin.IDevice"
Q_DECLARE_INTERFACE(IDevice, IDevice_iid)
