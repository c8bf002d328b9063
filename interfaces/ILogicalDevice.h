#pragma once

#include "IDevice.h"

#include <QtCore/QByteArray>
#include <QtCore/QList>
#include <QtCore/QStringList>

class IPhysicalDevice;

/// A device that the plugin keeps for one mouse or keyboard behind a physical device.
class KVX_INTERFACE ILogicalDevice : public IDevice
{
public:
    /// The physical device given at creation.
    virtual IPhysicalDevice *physicalDevice() const = 0;
    /// The picture of the device for the host's selection view, from a resource that the host registers;
    /// empty when it registers none.
    virtual QByteArray deviceImage() const = 0;
    /// 0 for the only started device of the plugin; 1, 2, 3 ... in order of start when there are several;
    /// 1 before start(). Takes the lock under which instanceNumberChanged may be emitted: never to be called
    /// from a slot directly connected to that signal.
    virtual int instanceNumber() const = 0;
    /// Whether the mouse reports its battery level; false before start().
    virtual bool hasBatteryLevel() const = 0;
    /// The battery level in percent, -1 until known.
    virtual int batteryLevel() const = 0;
    /// A value read from the receiver by start(); 0 before.
    virtual int statusValue() const = 0;
    /// 0.
    virtual int query24() const = 0;
    /// The name of a paired host: empty for any switchIndex with these mice.
    virtual QString pairedHostName(int switchIndex) const = 0;
    /// Calls IPhysicalDeviceDongle::forwardedOperation() with the device id in place of argument1 and returns
    /// its answer; 0 while no receiver is bound.
    virtual quintptr query26(quintptr argument1, quintptr argument2, quintptr argument3) = 0;
    /// False: these mice have DPI slots instead of levels.
    virtual bool isDPILevelSupported() const = 0;
    /// 0.
    virtual int dpiLevel() const = 0;
    /// Does nothing.
    virtual void setDpiLevel(int newDPILevel) = 0;
    /// Empty.
    virtual QStringList query30() const = 0;
    /// False.
    virtual bool isDPILevelChangePending() const = 0;
    /// Whether the mouse has a smart-pointer key; false before start().
    virtual bool isSmartPointerSupported() const = 0;
    /// 0.
    virtual int query33() const = 0;
    /// A value read from the receiver by start(); 0 before.
    virtual int levelValue() const = 0;
    /// False.
    virtual bool query35() const = 0;
    /// The model's default profile, a JSON document; empty when it could not be read.
    virtual QByteArray defaultProfile() const = 0;
    /// The battery level as the receiver reports it, in percent. The same level again is ignored.
    /// Emits batteryLevelChanged.
    virtual void setBatteryLevel(int newBatteryLevel) = 0;
    /// Does nothing.
    virtual void notify38() = 0;
    /// Gives every button back to the mouse. Without a bound receiver it only writes a warning, like the
    /// next; neither emits a signal.
    virtual void setButtonsOrKeysToDefault() = 0;
    /// Diverts the named buttons, 1 to 5, to the host and gives all others back to the mouse. Other ids are
    /// ignored. The diverted buttons arrive through mouseEventCallBack().
    /// kept: the host relies on the spelling.
    virtual void disbaleButtonsOrKeys(QList<int> buttonOrKeys) = 0;
    /// A report of the diverted buttons: bits 0 to 4 are buttons 1 to 5 held down, bit 7 is the smart-pointer
    /// key held down, bits 5 and 6 are ignored. Calls IHostServices::buttonEvent() for each button that changed
    /// since the last report, and setCtrlKeyPressed() when the smart-pointer key changed. A smart-pointer key that
    /// is still held in a report after the 25 ms of its tap presses Ctrl again.
    /// To be called on the device's thread, after IDevicePlugin::initialize() with a service object.
    virtual void mouseEventCallBack(quint8 mouseEvent) = 0;
    /// Does nothing, like the next two.
    virtual void notify42() = 0;
    virtual void notify43() = 0;
    virtual void notify44() = 0;

    /// Signal: a device was started or deleted; every started device emits it, changed or not.
    /// On the device's own thread it is emitted while the registry of devices is locked: a directly connected
    /// slot must not call instanceNumber() or start() of any device and must not delete one.
    virtual void instanceNumberChanged(int instanceNumber) = 0;
    /// Signal: the battery level changed.
    virtual void batteryLevelChanged(int newBatteryLevel) = 0;
    /// Signal, never emitted by these mice.
    virtual void pairedHostNameChanged(int switchIndex, QString newHostName) = 0;
    /// Signal, never emitted by these mice.
    virtual void dpiLevelChanged(int newDPILevel) = 0;
    /// Signal, never emitted by these mice.
    virtual void isDPILevelChangePendingChanged(bool pending) = 0;
    /// Signal, never emitted by these mice.
    virtual void isDPILevelSupportedChanged(bool newIsSupported) = 0;
    /// Signal: capabilityChangedCallBack() found another answer. Emitted on the thread of that call.
    virtual void isSmartPointerSupportedChanged(bool newIsSupported) = 0;
    /// Signal, never emitted by these mice.
    virtual void chargingStatusAndStateChanged(int newChargingStatusAndStateChanged) = 0;

    ~ILogicalDevice() override {}
};

#define ILogicalDevice_iid "com.orvane.KVX.Plugin.ILogicalDevice"
Q_DECLARE_INTERFACE(ILogicalDevice, ILogicalDevice_iid)
