#pragma once

#include "InterfaceVisibility.h"

#include <QtCore/QtGlobal>

class QString;

/// The host's service object. The host implements it, hands it to IDevicePlugin::initialize() and keeps it
/// alive until the plugin's factory and all its devices are gone.
class KVX_INTERFACE IHostServices
{
public:
    /// Never called by a device plugin; keeps its place in the table. The same holds for the next two.
    virtual void reserved0() = 0;
    virtual void reserved1() = 0;
    virtual void reserved2() = 0;

    /// A diverted button of a mouse went down (isPressed) or up. buttonNumber: 1 to 5. pluginIid: the IID
    /// of the plugin whose device reports it. The text is data of the plugin's library: a host that keeps it
    /// after the library is unloaded must copy it. Called on the thread that delivers the mouse
    /// event to the device, which is the device's own.
    virtual void buttonEvent(const QString &pluginIid, int buttonNumber, bool isPressed) = 0;

    /// Press (isPressed) or release the Ctrl key of the host's keyboard, for a smart-pointer key.
    /// Called on the device's thread. A press is followed by a release with the key, or when a timer of
    /// 25 ms has run out, whichever comes first; not when the device is deleted before. A report that still has
    /// the key held after the timer has run out leads to another press.
    virtual void setCtrlKeyPressed(bool isPressed) = 0;

    virtual ~IHostServices() {}
};
