#include "ButtonBits.h"
#include "GatedLog.h"
#include "IPhysicalDeviceDongle.h"
#include "LogicalDevice.h"
#include "PluginIid.h"

#include <QtCore/QFile>

#include <utility>

QByteArray LogicalDevice::defaultProfile() const
{
    const QString path = QStringLiteral(":/" RV418_PLUGIN_IID "/DefaultProfile.json");
    QFile profile(path);
    if (!profile.open(QIODevice::ReadOnly)) {
        deviceWarning() << "Unable to load default profile from : " << path;
        return {};
    }
    return profile.readAll();
}

void LogicalDevice::setButtonsOrKeysToDefault()
{
    deviceDebug() << "setButtonsOrKeysToDefault enter";
    resetDisabledButtonsOrKeysMask();
    sendDisabledButtonsOrKeysMask();
    deviceDebug() << "setButtonsOrKeysToDefault exit";
}

void LogicalDevice::disbaleButtonsOrKeys(QList<int> buttonOrKeys)
{
    deviceDebug() << "disbaleButtonsOrKeys enter, buttonOrKeys :" << buttonOrKeys;
    resetDisabledButtonsOrKeysMask();
    for (const int button : std::as_const(buttonOrKeys)) {
        if (button >= firstButton && button <= lastButton)
            m_disabledButtonsOrKeysMask |= buttonBit(button);
    }
    sendDisabledButtonsOrKeysMask();
    deviceDebug() << "disbaleButtonsOrKeys exit";
}

void LogicalDevice::resetDisabledButtonsOrKeysMask()
{
    // GCOVR_EXCL_BR_START: no operation sets the two flags
    m_disabledButtonsOrKeysMask =
        m_isSmartPointerEnabled && m_isSmartPointerConfigured ? smartPointerBit : quint8(0);
    // GCOVR_EXCL_BR_STOP
}

// Whether there was a receiver to send it to.
bool LogicalDevice::sendDisabledButtonsOrKeysMask()
{
    if (!m_dongle) {
        deviceWarning() << "Unknown IPhysicalDevice interface";
        return false;
    }
    m_dongle->setDisabledButtonsOrKeysMask(m_deviceId, m_disabledButtonsOrKeysMask);
    return true;
}
