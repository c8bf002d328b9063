#include "Operations.h"
#include "SimulatedMouse.h"

#include <algorithm>
#include <utility>

namespace {

constexpr quint8 smartPointerBit = 0x80;
constexpr int fullBattery = 100;  // percent

quint8 buttonBit(int buttonNumber)
{
    return static_cast<quint8>(1U << (buttonNumber - 1));
}

}  // namespace

QList<MouseMessage> SimulatedMouse::pressButton(int buttonNumber)
{
    const quint8 bit = buttonBit(buttonNumber);
    heldButtons |= bit;
    if ((disabledButtonsOrKeysMask & bit) != 0)
        return buttonReport();
    return buttonNumber == dpiButtonId ? pressDpiButton() : QList<MouseMessage>();
}

QList<MouseMessage> SimulatedMouse::releaseButton(int buttonNumber)
{
    const quint8 bit = buttonBit(buttonNumber);
    heldButtons &= static_cast<quint8>(~bit);
    return (disabledButtonsOrKeysMask & bit) != 0 ? buttonReport() : QList<MouseMessage>();
}

QList<MouseMessage> SimulatedMouse::pressDpiButton()
{
    if (isAsleep)
        return {};
    activeDpiSlotIndex = activeDpiSlotIndex % dpiSlotCount + 1;
    QList<MouseMessage> reports{{&reports::activeDpiSlotIndexChangedCallBack, {activeDpiSlotIndex}}};
    appendDpiChange(reports);
    return reports;
}

QList<MouseMessage> SimulatedMouse::pressSmartPointerKey()
{
    if (!isSmartPointerSupported)
        return {};
    heldButtons |= smartPointerBit;
    return buttonReport();
}

QList<MouseMessage> SimulatedMouse::releaseSmartPointerKey()
{
    if (!isSmartPointerSupported)
        return {};
    heldButtons &= static_cast<quint8>(~smartPointerBit);
    return buttonReport();
}

QList<MouseMessage> SimulatedMouse::drainBattery(int percent)
{
    // Wider, because the level may have been set to any number.
    const int level =
        static_cast<int>(std::clamp(qint64{batteryLevel} - percent, qint64{0}, qint64{fullBattery}));
    if (std::exchange(batteryLevel, level) == level || isAsleep || !hasBatteryLevel)
        return {};
    return {{&reports::setBatteryLevel, {batteryLevel}}};
}

QList<MouseMessage> SimulatedMouse::sleep()
{
    isAsleep = true;
    return {};
}

QList<MouseMessage> SimulatedMouse::wake()
{
    if (!std::exchange(isAsleep, false))
        return {};
    QList<MouseMessage> reports;
    if (losesSettingsAsleep) {
        const SimulatedMouse factory;
        dpiSlotValues = factory.dpiSlotValues;
        activeDpiSlotIndex = factory.activeDpiSlotIndex;
        dpiValue = factory.dpiValue;
        dpiButtonId = factory.dpiButtonId;
        reportRate = factory.reportRate;
        disabledButtonsOrKeysMask = factory.disabledButtonsOrKeysMask;
        for (int part = 1; part <= 3; ++part)
            reports += initialState(part);
    }
    const QList<MouseMessage> requests = std::exchange(unheard, {});
    for (const MouseMessage &request : requests)
        reports += take(request);
    return reports;
}

// The held buttons that are reported to the host.
QList<MouseMessage> SimulatedMouse::buttonReport() const
{
    if (isAsleep)
        return {};
    const auto reported = static_cast<quint8>(heldButtons & (disabledButtonsOrKeysMask | smartPointerBit));
    return {{&reports::mouseEventCallBack, {reported}}};
}

quint16 SimulatedMouse::roundedDpi(quint16 value) const
{
    if (dpiStep <= 0)
        return value;
    return static_cast<quint16>((value + dpiStep / 2) / dpiStep * dpiStep);
}
