#pragma once

#include <QtCore/QStringList>
#include <QtCore/QtPlugin>

class IHostServices;
class IPhysicalDeviceDongle;

/// What the operations of a logical device are measured against: under the same names the least code that does
/// the same for its host. It checks nothing that does not show, knows no log and no threads.
/// Its object has the signals of these operations under the device's names.
class IFloorDevice
{
public:
    /// Compares a byte; a changed one is one host call for button 1.
    virtual void mouseEventCallBack(quint8 mouseEvent) = 0;
    /// Stores and emits.
    virtual void setBatteryLevel(int newBatteryLevel) = 0;
    /// Stores and queues a closure that emits.
    virtual void queueBatteryLevel(int newBatteryLevel) = 0;
    /// A hand-written parse, a receiver call, an emission.
    virtual void setDpiSlotValues(QStringList values) = 0;
    /// A comparison and two emissions.
    virtual void dpiSlotValuesConfirmed(const quint16 values[5]) = 0;
    /// A receiver call between two emissions.
    virtual void setReportRate(int rate) = 0;
    /// A comparison and an emission.
    virtual void reportRateConfirmed(int rate) = 0;
    /// Adds the object to a list; all in the list get a number and emit it.
    virtual void start() = 0;

    virtual ~IFloorDevice() {}
};

#define IFloorDevice_iid "com.orvane.KVX.Benchmarks.IFloorDevice"
Q_DECLARE_INTERFACE(IFloorDevice, IFloorDevice_iid)

/// The root object of the library of floors.
class IFloorFactory
{
public:
    /// The caller owns the object. receiver and hostServices are not owned.
    virtual IFloorDevice *createFloorDevice(IPhysicalDeviceDongle *receiver, IHostServices *hostServices) = 0;

    virtual ~IFloorFactory() {}
};

#define IFloorFactory_iid "com.orvane.KVX.Benchmarks.IFloorFactory"
Q_DECLARE_INTERFACE(IFloorFactory, IFloorFactory_iid)
