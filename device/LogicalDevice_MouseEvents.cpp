#include "ButtonBits.h"
#include "GatedLog.h"
#include "IHostServices.h"
#include "LogicalDevice.h"
#include "LogicalDevicePlugin.h"
#include "PluginIid.h"

#include <QtCore/QtAlgorithms>

namespace {

constexpr quint8 buttonBits = 0x1f;
constexpr quint8 reportedBits = buttonBits | smartPointerBit;

}  // namespace

// A mouse reports thousands of times a second, mostly movements. What those cost is this test; the rest is
// out of line, so that they save no registers for it.
void LogicalDevice::mouseEventCallBack(quint8 mouseEvent)
{
    const uint changed = (mouseEvent ^ heldButtonsOrKeys()) & reportedBits;
    // One question instead of two.
    if (Q_UNLIKELY((changed | uint(debugLogEnabled())) != 0))
        takeMouseEvent(mouseEvent);
}

// In the bits of a mouse event.
uint LogicalDevice::heldButtonsOrKeys() const
{
    return static_cast<uint>(m_isButtonPressed.to_ulong()) |
           (m_isSmartPointerCtrPressed ? smartPointerBit : 0U);
}

Q_NEVER_INLINE void LogicalDevice::takeMouseEvent(uint mouseEvent)
{
    deviceDebug() << "mouseEventCallBack enter";
    IHostServices *hostServices = m_ownerPlugin->hostServices();
    const bool isKeyDown = (mouseEvent & smartPointerBit) != 0;
    if (isKeyDown != m_isSmartPointerCtrPressed)
        updateSmartPointerKey(hostServices, isKeyDown);
    // The host may report the next event from inside its call, so the buttons that are left are compared
    // anew after each.
    uint toCome = buttonBits;
    while (const uint changed = (mouseEvent ^ static_cast<uint>(m_isButtonPressed.to_ulong())) & toCome) {
        const uint lowest = changed & (~changed + 1U);
        toCome = buttonBits & ~(2U * lowest - 1U);
        m_isButtonPressed ^= lowest;
        const int button = firstButton + static_cast<int>(qCountTrailingZeroBits(lowest));
        hostServices->buttonEvent(QStringLiteral(RV418_PLUGIN_IID), button, (mouseEvent & lowest) != 0);
    }
    deviceDebug() << "mouseEventCallBack exit";
}

// The host sees a Ctrl tap: released with the key or by the timer, whichever comes first.
Q_NEVER_INLINE void LogicalDevice::updateSmartPointerKey(IHostServices *hostServices, bool isDown)
{
    m_smartPointerCtrReleaseTimer.stop();
    m_isSmartPointerCtrPressed = isDown;
    hostServices->setCtrlKeyPressed(isDown);
    if (isDown)
        m_smartPointerCtrReleaseTimer.start();
}

void LogicalDevice::onSmartPointerCtrReleaseTimerTimeout()
{
    m_smartPointerCtrReleaseTimer.stop();
    deviceDebug() << "onSmartPointerCtrReleaseTimerTimeout,  isSmartPointerCtrPressed"
                  << m_isSmartPointerCtrPressed;
    if (m_isSmartPointerCtrPressed) {
        m_isSmartPointerCtrPressed = false;
        m_ownerPlugin->hostServices()->setCtrlKeyPressed(false);
    }
}
