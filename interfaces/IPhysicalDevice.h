#pragma once

#include "InterfaceVisibility.h"

#include <QtCore/QtGlobal>

/// The transport through which a device is reached. The host implements and owns it and keeps it alive as
/// long as a logical device was made for it.
class KVX_INTERFACE IPhysicalDevice
{
public:
    /// Never called by a device plugin; keeps its place in the table.
    virtual void reserved0() = 0;

    /// What IDevice::forwardToPhysicalDevice() passes its arguments to, and whose answer it returns.
    /// The words are opaque to the plugin. Called on the thread of the caller.
    virtual quintptr forwardedCall(quintptr argument1, quintptr argument2, quintptr argument3) = 0;

    virtual ~IPhysicalDevice() {}
};
