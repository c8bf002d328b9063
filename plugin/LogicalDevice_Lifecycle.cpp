#include "GatedLog.h"
#include "IPhysicalDevice.h"
#include "IPhysicalDeviceDongle.h"
#include "LogicalDevice.h"
#include "OwnLibrary.h"
#include "ReportRateInfo.h"

using namespace Qt::StringLiterals;

bool LogicalDevice::start()
{
    deviceDebug() << "start enter";
    bindDongle();
    registerInstance(true);
    const std::optional<OwnLibraryFailure> failure = locateOwnLibrary();
    if (failure)
        deviceCritical() << failure->logText << u"0x%1"_s.arg(failure->errorCode, 0, 16, QLatin1Char(' '));
    deviceDebug() << "start exit";
    return !failure;
}

void LogicalDevice::stop()
{
    deviceDebug() << "stop enter";
    Q_EMIT stopped(this);
    deviceDebug() << "stop exit";
}

void LogicalDevice::bindDongle()
{
    m_dongle = dynamic_cast<IPhysicalDeviceDongle *>(m_physicalDevice);
    if (!m_dongle) {
        deviceWarning() << "Unable to get IPhysicalDeviceDongle interface";
        return;
    }

    m_firmwareVersion = m_dongle->getFirmwareVersion(m_deviceId);
    m_hasBatteryLevel = m_dongle->hasBatteryLevel(m_deviceId) ? 1 : 0;
    m_statusValue = m_dongle->getStatusValue(m_deviceId);
    if (m_hasBatteryLevel != 0)
        m_batteryLevel = m_dongle->getBatteryLevel(m_deviceId);
    m_deviceValue = m_dongle->getDeviceValue(m_deviceId);

    // By signature, because the receiver's class is the host's own. The blanks are kept: Qt's warnings show
    // the texts as they are given. Connected before the state is requested, so that no answer is missed.
    connect(dynamic_cast<QObject *>(m_dongle), "2dpiMinChanged( int )", this, "1onDpiMinChanged( int )");
    connect(dynamic_cast<QObject *>(m_dongle), "2dpiMaxChanged( int )", this, "1onDpiMaxChanged( int )");

    m_dongle->requestInitialState1(m_deviceId);
    m_dongle->requestInitialState2(m_deviceId);
    m_dongle->requestInitialState3(m_deviceId);
    m_isSmartPointerSupported = m_dongle->isSmartPointerSupported(m_deviceId);
    // Always true for this mouse; the operation decides all the same.
    if (isReportRateSupported()) {  // GCOVR_EXCL_BR_LINE
        ReportRateInfo info{};
        if (m_dongle->getReportRateInfo(m_deviceId, &info))
            initReportRate(info);
    }
    m_levelValue = m_dongle->getLevelValue(m_deviceId);
}
