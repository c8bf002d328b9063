#include "GatedLog.h"
#include "IPhysicalDeviceDongle.h"
#include "LogicalDevice.h"

int LogicalDevice::activeDpiSlotIndex() const
{
    return m_activeDpiSlotIndex;
}

bool LogicalDevice::isActiveDpiSlotIndexChangePending() const
{
    return m_isActiveDpiSlotIndexChangePending;
}

void LogicalDevice::setActiveDpiSlotIndex(int index)
{
    if (index == m_activeDpiSlotIndex)
        return;
    deviceDebug() << "Setting active dpi slot index : " << index;
    if (!m_dongle) {
        deviceWarning() << "Unknown IPhysicalDevice interface";
        return;
    }
    const bool isAccepted = m_dongle->setDpiButtonAndActiveSlot(m_deviceId, m_dpiButtonId, index);
    if (!isAccepted)
        deviceWarning() << "Dongle set active DPI slot index failed";
    m_pendingActiveDpiSlotIndex = isAccepted ? index : 0;
    setActiveDpiSlotIndexChangePending(isAccepted);
}

void LogicalDevice::activeDpiSlotIndexConfirmed(int index)
{
    deviceDebug() << "activeDpiSlotIndexConfirmed enter, index :" << index;
    if (index < 1) {
        deviceDebug() << "Ignoring activeDpiSlotIndex : " << index;
    } else if (m_pendingActiveDpiSlotIndex == index) {
        m_pendingActiveDpiSlotIndex = 0;
        setActiveDpiSlotIndexChangePending(false);
        onActiveDpiSlotIndexChanged(index);
    } else if (m_pendingActiveDpiSlotIndex == 0) {
        onActiveDpiSlotIndexChanged(index);
    } else if (m_pendingActiveDpiSlotIndex > 0 && m_activeDpiSlotIndex != index) {
        setActiveDpiSlotIndex(m_pendingActiveDpiSlotIndex);
    }
    deviceDebug() << "activeDpiSlotIndexConfirmed exit";
}

void LogicalDevice::activeDpiSlotIndexChangedCallBack(int index)
{
    onActiveDpiSlotIndexChanged(index);
}

void LogicalDevice::onActiveDpiSlotIndexChanged(int index)
{
    deviceDebug() << "onActiveDpiSlotIndexChanged enter";
    if (index != m_activeDpiSlotIndex) {
        deviceDebug() << "Updating activeDpiSlotIndex = " << index;
        m_activeDpiSlotIndex = index;
        emitOnOwnThread([this] { Q_EMIT activeDpiSlotIndexChanged(m_activeDpiSlotIndex); });
        if (m_activeDpiSlotIndex >= 1 && m_activeDpiSlotIndex <= m_dpiSlotValues.size())
            dpiValueChangedCallBack(m_dpiSlotValues.at(m_activeDpiSlotIndex - 1));
    }
    deviceDebug() << "onActiveDpiSlotIndexChanged exit";
}

void LogicalDevice::setActiveDpiSlotIndexChangePending(bool isPending)
{
    setPendingFlag(&LogicalDevice::m_isActiveDpiSlotIndexChangePending,
                   &LogicalDevice::isActiveDpiSlotIndexChangePendingChanged, isPending);
}
