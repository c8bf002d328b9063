#include "Lines.h"

namespace Model {

namespace {

void setPendingFlag(World &world, Device &device, bool isPending)
{
    change(world, device, "isActiveDpiSlotIndexChangePendingChanged", &Device::isActiveSlotPending,
           isPending);
}

}  // namespace

void setActiveDpiSlotIndex(World &world, Device &device, int index)
{
    if (index == device.activeSlot)
        return;
    debug(world, "Setting active dpi slot index : ", index);
    if (!device.isBound) {
        warnOfNoReceiver(world);
        return;
    }
    const bool isAccepted =
        request(world, device, "setDpiButtonAndActiveSlot", argumentText(device.buttonId, index));
    if (!isAccepted)
        warn(world, "Dongle set active DPI slot index failed");
    device.pendingActiveSlot = isAccepted ? index : 0;
    setPendingFlag(world, device, isAccepted);
}

void activeDpiSlotIndexConfirmed(World &world, Device &device, int index)
{
    debug(world, "activeDpiSlotIndexConfirmed enter, index :", index);
    const int pending = device.pendingActiveSlot;
    if (index < 1) {
        debug(world, "Ignoring activeDpiSlotIndex : ", index);
    } else if (pending == index) {
        device.pendingActiveSlot = 0;
        setPendingFlag(world, device, false);
        activeDpiSlotIndexChanged(world, device, index);
    } else if (pending == 0) {
        activeDpiSlotIndexChanged(world, device, index);
    } else if (pending > 0 && device.activeSlot != index) {
        setActiveDpiSlotIndex(world, device, pending);
    }
    debug(world, "activeDpiSlotIndexConfirmed exit");
}

void activeDpiSlotIndexChanged(World &world, Device &device, int index)
{
    debug(world, "onActiveDpiSlotIndexChanged enter");
    if (index != device.activeSlot) {
        debug(world, "Updating activeDpiSlotIndex = ", index);
        change(world, device, "activeDpiSlotIndexChanged", &Device::activeSlot, index);
        if (index >= 1 && index <= device.slotValues.size())
            dpiValueChanged(world, device, device.slotValues.at(index - 1));
    }
    debug(world, "onActiveDpiSlotIndexChanged exit");
}

}  // namespace Model
