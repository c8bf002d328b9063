#include "Lines.h"

using namespace Qt::StringLiterals;

// A sequence never lets the timer run out by itself: events are delivered, time is not waited for.
namespace Model {

namespace {

constexpr uint smartPointerBit = 0x80;

void pressCtrl(World &world, Device &device, bool isPressed)
{
    if (device.isCtrlPressed == isPressed)
        return;
    device.isCtrlPressed = isPressed;
    writeLine(world, u"host setCtrlKeyPressed("_s + streamed(isPressed) + u')');
}

void pressButton(World &world, Device &device, int button, bool isPressed)
{
    bool &wasPressed = device.isButtonPressed.at(static_cast<std::size_t>(button - 1));
    if (wasPressed == isPressed)
        return;
    wasPressed = isPressed;
    writeLine(world, u"host buttonEvent(\"com.orvane.KVX.Plugin.LogicalDevice.RV418\", "_s +
                         argumentText(button, isPressed) + u')');
}

}  // namespace

void mouseEvent(World &world, Device &device, int event)
{
    const auto bits = static_cast<uint>(event);
    debug(world, "mouseEventCallBack enter");
    pressCtrl(world, device, (bits & smartPointerBit) != 0);
    for (int button = 1; button <= 5; ++button)
        pressButton(world, device, button, ((bits >> static_cast<uint>(button - 1)) & 1U) != 0);
    debug(world, "mouseEventCallBack exit");
}

void timerTimeout(World &world, Device &device)
{
    debug(world, "onSmartPointerCtrReleaseTimerTimeout,  isSmartPointerCtrPressed", device.isCtrlPressed);
    pressCtrl(world, device, false);
}

}  // namespace Model
