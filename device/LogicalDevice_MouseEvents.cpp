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
    updateSmartPointerKey(hostServices, (mouseEvent & smartPointerBit) != 0);
    for (int button = firstButton; button <= lastButton; ++button)
        updateButton(hostServices, button, (mouseEvent & buttonBit(button)) != 0);
    deviceDebug() << "mouseEventCallBack exit";
}

// The host sees a Ctrl tap: released with the key or by the timer, whichever comes first.
void LogicalDevice::updateSmartPointerKey(IHostServices *hostServices, bool isDown)
{
    if (isDown == m_isSmartPointerCtrPressed)
        return;
    m_smartPointerCtrReleaseTimer.stop();
    m_isSmartPointerCtrPressed = isDown;
    hostServices->setCtrlKeyPressed(isDown);
    if (isDown)
        m_smartPointerCtrReleaseTimer.start();
}

void LogicalDevice::updateButton(IHostServices *hostServices, int buttonNumber, bool isDown)
{
    bool &isPressed = m_isButtonPressed.at(static_cast<std::size_t>(buttonNumber - firstButton));
    if (isDown == isPressed)
        return;
    isPressed = isDown;
    hostServices->buttonEvent(QStringLiteral(RV418_PLUGIN_IID), buttonNumber, isDown);
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
