#include "ButtonBits.h"
#include "GatedLog.h"
#include "IHostServices.h"
#include "LogicalDevice.h"
#include "LogicalDevicePlugin.h"
#include "PluginIid.h"

void LogicalDevice::mouseEventCallBack(quint8 mouseEvent)
{
    deviceDebug() << "mouseEventCallBack enter";
    IHostServices *hostServices = m_ownerPlugin->hostServices();
    const bool isKeyDown = (mouseEvent & smartPointerBit) != 0;
    if (isKeyDown && !m_isSmartPointerCtrPressed) {
        m_smartPointerCtrReleaseTimer.stop();
        m_isSmartPointerCtrPressed = true;
        hostServices->setCtrlKeyPressed(true);
        m_smartPointerCtrReleaseTimer.start();
    } else if (!isKeyDown && m_isSmartPointerCtrPressed) {
        m_isSmartPointerCtrPressed = false;
        m_smartPointerCtrReleaseTimer.stop();
        hostServices->setCtrlKeyPressed(false);
    }
    const std::bitset<lastButton> isDown(mouseEvent);
    if (isDown != m_isButtonPressed)
        updateButtons(hostServices, isDown);
    deviceDebug() << "mouseEventCallBack exit";
}

// The host may report the next event from inside its call, so each button is compared when its turn comes.
void LogicalDevice::updateButtons(IHostServices *hostServices, std::bitset<lastButton> isDown)
{
    for (int button = firstButton; button <= lastButton; ++button) {
        const auto bit = static_cast<std::size_t>(button - firstButton);
        if (isDown[bit] == m_isButtonPressed[bit])
            continue;
        m_isButtonPressed[bit] = isDown[bit];
        hostServices->buttonEvent(QStringLiteral(RV418_PLUGIN_IID), button, isDown[bit]);
    }
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
