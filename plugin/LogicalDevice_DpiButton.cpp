#include "GatedLog.h"
#include "IPhysicalDeviceDongle.h"
#include "LogicalDevice.h"

namespace {

// What a request for 0 asks for. A device to which the mouse has reported nothing yet has another id, 15:
// kept, the host relies on it.
constexpr int defaultDpiButtonId = 6;

// The receiver changes the button only and leaves the active slot alone.
constexpr int keepActiveSlot = 0;

}  // namespace

int LogicalDevice::dpiButtonId() const
{
    return m_dpiButtonId;
}

bool LogicalDevice::isDpiButtonIdChangePending() const
{
    return m_isDpiButtonIdChangePending;
}

void LogicalDevice::setDpiButtonId(int buttonId)
{
    if (buttonId == 0) {
        deviceDebug() << "Resetting dpi button id to default value";
        buttonId = defaultDpiButtonId;
    }
    if (buttonId == m_dpiButtonId)
        return;
    deviceDebug() << "Setting new dpi button id : " << buttonId;
    if (!m_dongle) {
        deviceWarning() << "Unknown IPhysicalDevice interface";
        return;
    }
    const bool isAccepted = m_dongle->setDpiButtonAndActiveSlot(m_deviceId, buttonId, keepActiveSlot);
    if (!isAccepted)
        deviceWarning() << "Dongle set dpi button id failed";
    m_pendingDpiButtonId = isAccepted ? buttonId : 0;
    setDpiButtonIdChangePending(isAccepted);
}

void LogicalDevice::dpiButtonIdConfirmed(int buttonId)
{
    deviceDebug() << "dpiButtonIdConfirmed buttonId :" << buttonId;
    if (buttonId < 1) {
        deviceDebug() << "Ignoring buttonId : " << buttonId;
    } else if (m_pendingDpiButtonId == buttonId) {
        m_pendingDpiButtonId = 0;
        setDpiButtonIdChangePending(false);
        onDpiButtonIdChanged(buttonId);
    } else if (m_pendingDpiButtonId == 0) {
        onDpiButtonIdChanged(buttonId);
    } else if (m_pendingDpiButtonId > 0 && m_dpiButtonId != buttonId) {
        setDpiButtonId(m_pendingDpiButtonId);
    }
}

void LogicalDevice::dpiButtonIdChangedCallBack(int buttonId)
{
    onDpiButtonIdChanged(buttonId);
}

void LogicalDevice::onDpiButtonIdChanged(int buttonId)
{
    deviceDebug() << "onDpiButtonIdChanged enter";
    if (buttonId != m_dpiButtonId) {
        deviceDebug() << "Updating dpiButtonId = " << buttonId;
        m_dpiButtonId = buttonId;
        emitOnOwnThread([this] { Q_EMIT dpiButtonIdChanged(m_dpiButtonId); });
    }
    deviceDebug() << "onDpiButtonIdChanged exit";
}

void LogicalDevice::setDpiButtonIdChangePending(bool isPending)
{
    setPendingFlag(&LogicalDevice::m_isDpiButtonIdChangePending,
                   &LogicalDevice::isDpiButtonIdChangePendingChanged, isPending);
}
