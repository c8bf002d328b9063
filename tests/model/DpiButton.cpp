#include "Lines.h"

namespace Model {

namespace {

constexpr int defaultButton = 6;

void setPendingFlag(World &world, Device &device, bool isPending)
{
    change(world, device, "isDpiButtonIdChangePendingChanged", &Device::isButtonIdPending, isPending);
}

}  // namespace

void setDpiButtonId(World &world, Device &device, int id)
{
    if (id == 0) {
        debug(world, "Resetting dpi button id to default value");
        id = defaultButton;
    }
    if (id == device.buttonId)
        return;
    debug(world, "Setting new dpi button id : ", id);
    if (!device.isBound) {
        warnOfNoReceiver(world);
        return;
    }
    const bool isAccepted = request(world, device, "setDpiButtonAndActiveSlot", argumentText(id, 0));
    if (!isAccepted)
        warn(world, "Dongle set dpi button id failed");
    device.pendingButtonId = isAccepted ? id : 0;
    setPendingFlag(world, device, isAccepted);
}

void dpiButtonIdConfirmed(World &world, Device &device, int id)
{
    debug(world, "dpiButtonIdConfirmed buttonId :", id);
    const int pending = device.pendingButtonId;
    if (id < 1) {
        debug(world, "Ignoring buttonId : ", id);
    } else if (pending == id) {
        device.pendingButtonId = 0;
        setPendingFlag(world, device, false);
        dpiButtonIdChanged(world, device, id);
    } else if (pending == 0) {
        dpiButtonIdChanged(world, device, id);
    } else if (pending > 0 && device.buttonId != id) {
        setDpiButtonId(world, device, pending);
    }
}

void dpiButtonIdChanged(World &world, Device &device, int id)
{
    debug(world, "onDpiButtonIdChanged enter");
    if (id != device.buttonId) {
        debug(world, "Updating dpiButtonId = ", id);
        change(world, device, "dpiButtonIdChanged", &Device::buttonId, id);
    }
    debug(world, "onDpiButtonIdChanged exit");
}

}  // namespace Model
