#include "GatedLog.h"
#include "LogicalDevice.h"

#include <utility>

// All of these emit on the thread that reports the value, never queued: kept, the host relies on it.

namespace {

constexpr int dpiStep = 50;

}  // namespace

int LogicalDevice::dpiValue() const
{
    return m_dpiValue;
}

int LogicalDevice::dpiMin() const
{
    return m_dpiMin;
}

int LogicalDevice::dpiMax() const
{
    return m_dpiMax;
}

int LogicalDevice::dpiDelta() const
{
    return dpiStep;
}

void LogicalDevice::setDpiValue(int /*value*/) {}

bool LogicalDevice::isDPIValueChangePending() const
{
    return false;
}

bool LogicalDevice::isDPIValueSupported() const
{
    return true;
}

void LogicalDevice::onDpiMinChanged(int value)
{
    if (value == m_dpiMin)
        return;
    deviceDebug() << "Updating dpiMin : " << value;
    m_dpiMin = value;
    Q_EMIT dpiMinChanged(value);
}

void LogicalDevice::onDpiMaxChanged(int value)
{
    if (value == m_dpiMax)
        return;
    deviceDebug() << "Updating dpiMax : " << value;
    m_dpiMax = value;
    Q_EMIT dpiMaxChanged(value);
}

void LogicalDevice::dpiValueChangedCallBack(int value)
{
    if (value == m_dpiValue)
        return;
    deviceDebug() << "Updating dpiValue : " << value;
    m_dpiValue = value;
    Q_EMIT dpiValueChanged(value);
}

QString LogicalDevice::ppid() const
{
    return m_ppid;
}

void LogicalDevice::ppidChangedCallBack(QString ppid)
{
    onPPIDChanged(std::move(ppid));
}

void LogicalDevice::onPPIDChanged(QString ppid)
{
    deviceDebug() << "onPPIDChanged enter";
    if (ppid != m_ppid) {
        deviceDebug() << "Updating ppid : " << ppid;
        m_ppid = ppid;
        Q_EMIT ppidChanged(std::move(ppid));
    }
    deviceDebug() << "onPPIDChanged exit";
}
