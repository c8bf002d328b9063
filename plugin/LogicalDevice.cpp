#include "LogicalDevice.h"

#include "GatedLog.h"
#include "IPhysicalDevice.h"
#include "IPhysicalDeviceDongle.h"
#include "LogicalDevicePlugin.h"
#include "PluginIid.h"

#include <QtCore/QThread>

LogicalDevice::LogicalDevice(IPhysicalDevice *physicalDevice, DeviceId deviceId, LogicalDevicePlugin *owner)
    : QObject(owner)
{
    deviceDebug() << "LogicalDevice enter";
    m_physicalDevice = physicalDevice;
    m_deviceId = deviceId;
    m_ownerPlugin = owner;
    m_instanceId = QUuid::createUuid();
    m_name = tr("Orvane Tessa Mouse");
    m_smartPointerCtrReleaseTimer.setInterval(smartPointerCtrReleaseDelay);
    connect(&m_smartPointerCtrReleaseTimer, &QTimer::timeout, this,
            &LogicalDevice::onSmartPointerCtrReleaseTimerTimeout);
    deviceDebug() << "LogicalDevice exit";
}

LogicalDevice::~LogicalDevice()
{
    deviceDebug() << "~LogicalDevice enter";
    m_smartPointerCtrReleaseTimer.stop();
    registerInstance(false);
    deviceDebug() << "~LogicalDevice exit";
}

int LogicalDevice::deviceType() const
{
    return 2;
}

int LogicalDevice::deviceClass() const
{
    return 7;
}

QString LogicalDevice::name() const
{
    return m_name;
}

QUuid LogicalDevice::instanceId() const
{
    return m_instanceId;
}

QString LogicalDevice::iid() const
{
    // Not a literal: hosts keep the text longer than the library is loaded. The same below.
    return QString::fromLatin1(RV418_PLUGIN_IID);
}

QString LogicalDevice::modelCode() const
{
    return QString::fromLatin1("RV418");
}

IPhysicalDevice *LogicalDevice::physicalDevice() const
{
    return m_physicalDevice;
}

quintptr LogicalDevice::forwardToPhysicalDevice(quintptr argument1, quintptr argument2, quintptr argument3)
{
    return m_physicalDevice->forwardedCall(argument1, argument2, argument3);
}

quintptr LogicalDevice::query26(quintptr /*argument1*/, quintptr argument2, quintptr argument3)
{
    if (!m_dongle)
        return 0;
    return m_dongle->forwardedOperation(m_deviceId, argument2, argument3);
}

bool LogicalDevice::isOnOwnThread() const
{
    return QThread::currentThread() == thread();
}

void LogicalDevice::setPendingFlag(bool LogicalDevice::*flag, void (LogicalDevice::*changed)(bool),
                                   bool isPending)
{
    if (this->*flag == isPending)
        return;
    this->*flag = isPending;
    emitOnOwnThread([this, flag, changed] { Q_EMIT(this->*changed)(this->*flag); });
}

#include "moc_LogicalDevice.cpp"  // NOLINT(bugprone-suspicious-include)
