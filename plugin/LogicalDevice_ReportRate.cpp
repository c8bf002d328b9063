#include "GatedLog.h"
#include "IPhysicalDeviceDongle.h"
#include "LogicalDevice.h"
#include "ReportRateInfo.h"

namespace {

// Requested when the mouse lists it but not its current rate.
constexpr int preferredFallbackRate = 125;  // Hz

}  // namespace

bool LogicalDevice::isReportRateSupported() const
{
    return true;
}

int LogicalDevice::reportRate() const
{
    return m_reportRate;
}

QStringList LogicalDevice::reportRateValues() const
{
    return m_reportRateValues;
}

bool LogicalDevice::isReportRateChangePending() const
{
    return m_isReportRateChangePending;
}

void LogicalDevice::setReportRate(int rate)
{
    if (rate == m_reportRate)
        return;
    m_reportRate = rate;
    deviceDebug() << "Updating new report rate : " << rate;
    if (!m_dongle) {
        deviceWarning() << "Unknown IPhysicalDevice interface";
        return;
    }
    if (!m_isReportRateChangePending) {
        m_reportRatePending = rate;
        setReportRateChangePending(true);
    }
    if (!m_dongle->setReportRate(m_deviceId, rate)) {
        deviceWarning() << "Dongle set report rate failed";
        m_reportRatePending = 0;
        setReportRateChangePending(false);
    }
    // Also after a refusal, with the refused rate: kept, the host relies on it.
    emitReportRateChanged();
}

void LogicalDevice::reportRateConfirmed(int rate)
{
    deviceDebug() << "reportRateConfirmed rate :" << rate << ", reportRatePending :" << m_reportRatePending;
    if (m_reportRatePending == rate || m_reportRatePending == 0) {
        if (m_reportRatePending == rate) {
            m_reportRatePending = 0;
            setReportRateChangePending(false);
        }
        if (rate != m_reportRate) {
            m_reportRate = rate;
            emitReportRateChanged();
        }
        return;
    }
    if (m_reportRatePending < 0 || rate == m_reportRate)
        return;
    // Without a signal: the request that follows emits the rate that it asks for.
    m_reportRate = rate;
    setReportRate(m_reportRatePending);
}

void LogicalDevice::reportRateChangedCallBack(const ReportRateInfo *info)
{
    QStringList rates;
    const ListedRates listed = readReportRates(*info, &rates, CurrentRate::Keep);
    if (rates != m_reportRateValues) {
        m_reportRateValues = rates;
        emitOnOwnThread([this] { Q_EMIT reportRateValuesChanged(m_reportRateValues); });
    }
    if (listed.hasCurrent)
        reportRateConfirmed(info->currentRate);
    else
        requestFallbackReportRate(*info, listed.hasPreferred);
}

void LogicalDevice::initReportRate(const ReportRateInfo &info)
{
    // Not cleared first, so a second start appends the rates again: kept, the host relies on it.
    const ListedRates listed = readReportRates(info, &m_reportRateValues, CurrentRate::Take);
    if (listed.hasCurrent)
        return;
    deviceWarning() << "current report rate not found in list : " << info.currentRate;
    requestFallbackReportRate(info, listed.hasPreferred);
}

// Appends the rates of the record up to its first 0, and takes over a listed current rate when that is
// wanted.
LogicalDevice::ListedRates LogicalDevice::readReportRates(const ReportRateInfo &info, QStringList *rates,
                                                          CurrentRate currentRate)
{
    ListedRates listed;
    for (const quint16 rate : info.supportedRates) {
        if (rate == 0)
            break;
        deviceDebug() << "got supported report rate : " << rate;
        rates->append(QString::number(rate, 10));
        listed.hasPreferred |= m_dongle && rate == preferredFallbackRate;
        if (rate != info.currentRate)
            continue;
        listed.hasCurrent = true;
        if (currentRate == CurrentRate::Take) {
            deviceDebug() << "got current report rate : " << info.currentRate;
            m_reportRate = info.currentRate;
        }
    }
    return listed;
}

void LogicalDevice::requestFallbackReportRate(const ReportRateInfo &info, bool isPreferredRateListed)
{
    if (isPreferredRateListed)
        setReportRate(preferredFallbackRate);
    else if (!m_reportRateValues.isEmpty())
        setReportRate(info.supportedRates[0]);
    else
        deviceWarning() << "report rate not initialized";
}

void LogicalDevice::setReportRateChangePending(bool pending)
{
    setPendingFlag(&LogicalDevice::m_isReportRateChangePending,
                   &LogicalDevice::isReportRateChangePendingChanged, pending);
}

void LogicalDevice::emitReportRateChanged()
{
    emitOnOwnThread([this] { Q_EMIT reportRateChanged(m_reportRate); });
}
