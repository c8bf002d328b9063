#include "Lines.h"

namespace Model {

namespace {

void sendMask(World &world, const Device &device)
{
    if (device.isBound)
        request(world, device, "setDisabledButtonsOrKeysMask", argumentText(device.disabledButtons));
    else
        warnOfNoReceiver(world);
}

}  // namespace

void applySettings(World &world, const QVariantMap &settings)
{
    debug(world, "applySettings :", settings);
}

// The smart-pointer key is never diverted, so there is nothing to give back.
void resetSettings(World &world)
{
    debug(world, "resetSettings");
}

void capabilityChanged(World &world, Device &device, int capability)
{
    debug(world, "capabilityChangedCallBack, capability :", capability);
    if (!device.isBound)
        return;
    const bool isSupported =
        ask(world, device, "isSmartPointerSupported", &ReceiverAnswers::isSmartPointerSupported);
    if (isSupported == device.isSmartPointerSupported)
        return;
    device.isSmartPointerSupported = isSupported;
    signal(world, device, "isSmartPointerSupportedChanged", isSupported);
}

void setButtonsOrKeysToDefault(World &world, Device &device)
{
    debug(world, "setButtonsOrKeysToDefault enter");
    device.disabledButtons = 0;
    sendMask(world, device);
    debug(world, "setButtonsOrKeysToDefault exit");
}

void disableButtonsOrKeys(World &world, Device &device, const QList<int> &buttons)
{
    debug(world, "disbaleButtonsOrKeys enter, buttonOrKeys :", buttons);
    device.disabledButtons = 0;
    for (const int button : buttons) {
        if (button >= 1 && button <= 5)
            device.disabledButtons |= static_cast<quint8>(1U << static_cast<uint>(button - 1));
    }
    sendMask(world, device);
    debug(world, "disbaleButtonsOrKeys exit");
}

}  // namespace Model
