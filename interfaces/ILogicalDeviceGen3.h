#pragma once

#include "InterfaceVisibility.h"

#include <QtCore/QString>
#include <QtCore/QtPlugin>

/// What third-generation devices add, whatever their kind. Reached from the device by qobject_cast.
class KVX_INTERFACE ILogicalDeviceGen3
{
public:
    /// The product id string that the device reported last; empty before.
    virtual QString ppid() const = 0;
    /// The device reports its product id string. The same string again is ignored; letter case matters.
    /// Emits ppidChanged, on the calling thread. The device's private slot onPPIDChanged(QString), which
    /// can be invoked by name, does the same.
    virtual void ppidChangedCallBack(QString ppid) = 0;

    virtual ~ILogicalDeviceGen3() {}

    /// Signal: the product id string changed. Emitted on the thread of the report.
    virtual void ppidChanged(QString ppid) = 0;
};

#define ILogicalDeviceGen3_iid "com.orvane.KVX.Plugin.ILogicalDeviceGen3"
Q_DECLARE_INTERFACE(ILogicalDeviceGen3, ILogicalDeviceGen3_iid)
