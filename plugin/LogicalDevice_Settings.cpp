#include "ButtonBits.h"
#include "GatedLog.h"
#include "IPhysicalDeviceDongle.h"
#include "LogicalDevice.h"

#include <QtCore/QMetaType>

namespace {

// Qt's own code writes the map, because its std::map has the layout of the C++ library of the host and its
// Qt, which may differ from ours.
struct LoggedMap
{
    const QVariantMap &map;
};

QDebug operator<<(QDebug debug, const LoggedMap &logged)
{
    QMetaType(QMetaType::QVariantMap).debugStream(debug, &logged.map);
    return debug;
}

}  // namespace

void LogicalDevice::applySettings(const QVariantMap &settings)
{
    deviceDebug() << "applySettings :" << LoggedMap{settings};
}

void LogicalDevice::resetSettings()
{
    deviceDebug() << "resetSettings";
    m_isSmartPointerEnabled = false;
    m_isSmartPointerConfigured = false;
    // No operation sets the two flags, so the mask never has this bit.
    if ((m_disabledButtonsOrKeysMask & smartPointerBit) == 0)  // GCOVR_EXCL_BR_LINE
        return;
    // GCOVR_EXCL_START
    m_disabledButtonsOrKeysMask &= static_cast<quint8>(~smartPointerBit);
    if (sendDisabledButtonsOrKeysMask())
        deviceDebug() << "SmartPointer reset to disabled";
    // GCOVR_EXCL_STOP
}

void LogicalDevice::capabilityChangedCallBack(quint8 capability)
{
    deviceDebug() << "capabilityChangedCallBack, capability :" << uint(capability);
    if (!m_dongle)
        return;
    const bool isSupported = m_dongle->isSmartPointerSupported(m_deviceId);
    if (isSupported == m_isSmartPointerSupported)
        return;
    m_isSmartPointerSupported = isSupported;
    // On the calling thread, not queued: kept, the host relies on it.
    Q_EMIT isSmartPointerSupportedChanged(isSupported);
}

bool LogicalDevice::isSmartPointerSupported() const
{
    return m_isSmartPointerSupported;
}
