#include "LogicalDevice.h"
#include "PluginIid.h"

#include <QtCore/QFile>

uint LogicalDevice::firmwareVersion() const
{
    return m_firmwareVersion;
}

void LogicalDevice::setFirmwareVersion(uint fwVersion)
{
    if (!isOnOwnThread()) {
        QMetaObject::invokeMethod(
            this, [this, fwVersion] { setFirmwareVersion(fwVersion); }, Qt::QueuedConnection);
        return;
    }
    m_firmwareVersion = fwVersion;
    Q_EMIT firmwareVersionChanged(fwVersion);
}

bool LogicalDevice::hasBatteryLevel() const
{
    return m_hasBatteryLevel != 0;
}

int LogicalDevice::batteryLevel() const
{
    return m_batteryLevel;
}

void LogicalDevice::setBatteryLevel(int newBatteryLevel)
{
    if (newBatteryLevel == m_batteryLevel)
        return;
    m_batteryLevel = newBatteryLevel;
    emitOnOwnThread([this] { Q_EMIT batteryLevelChanged(m_batteryLevel); });
}

int LogicalDevice::deviceValue() const
{
    return m_deviceValue;
}

int LogicalDevice::statusValue() const
{
    return m_statusValue;
}

int LogicalDevice::levelValue() const
{
    return m_levelValue;
}

QByteArray LogicalDevice::deviceImage() const
{
    // The library holds no picture; a host that has one registers it under this path.
    QFile image(QStringLiteral(":/" RV418_PLUGIN_IID "/Images/DarkTheme_Device_Selection_Mouse.png"));
    if (!image.open(QIODevice::ReadOnly))
        return {};
    return image.readAll();
}
