#include "FloorDevice.h"

#include "IHostServices.h"
#include "IPhysicalDeviceDongle.h"

#include <algorithm>

namespace {

constexpr quint8 buttonBits = 0x1f;
constexpr quint8 smartPointerBit = 0x80;
constexpr int lastButton = 5;

}  // namespace

FloorDevice::FloorDevice(IPhysicalDeviceDongle *receiver, IHostServices *hostServices)
    : m_receiver(receiver), m_hostServices(hostServices)
{
    m_smartPointerCtrReleaseTimer.setInterval(25);
    m_smartPointerCtrReleaseTimer.callOnTimeout(this, [this] { setSmartPointerKey(false); });
}

// Compared bit by bit, because the host may report the next event from inside its call.
void FloorDevice::mouseEventCallBack(quint8 mouseEvent)
{
    const auto isChanged = [this, mouseEvent](int bits) { return ((mouseEvent ^ m_mouseEvent) & bits) != 0; };
    if (!isChanged(buttonBits | smartPointerBit))
        return;
    if (isChanged(smartPointerBit))
        setSmartPointerKey((mouseEvent & smartPointerBit) != 0);
    for (int button = 1; button <= lastButton; ++button) {
        const int bit = 1 << (button - 1);
        if (!isChanged(bit))
            continue;
        m_mouseEvent = static_cast<quint8>(m_mouseEvent ^ bit);
        m_hostServices->buttonEvent(QStringLiteral("com.orvane.KVX.Plugin.LogicalDevice.RV418"), button,
                                    (mouseEvent & bit) != 0);
    }
}

void FloorDevice::setSmartPointerKey(bool isDown)
{
    m_smartPointerCtrReleaseTimer.stop();
    m_mouseEvent ^= smartPointerBit;
    m_hostServices->setCtrlKeyPressed(isDown);
    if (isDown)
        m_smartPointerCtrReleaseTimer.start();
}

void FloorDevice::setBatteryLevel(int newBatteryLevel)
{
    if (newBatteryLevel == m_batteryLevel)
        return;
    m_batteryLevel = newBatteryLevel;
    emitOnOwnThread([this] { Q_EMIT batteryLevelChanged(m_batteryLevel); });
}

quint16 FloorDevice::parsed(const QString &text) const
{
    bool isNumber = false;
    const auto value = static_cast<quint16>(text.toUInt(&isNumber));
    const bool isAllowed = value == 65535 || (value >= m_dpiMin && value <= m_dpiMax);
    return isNumber && isAllowed ? value : quint16(0);
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): by value, as the device takes it
void FloorDevice::setDpiSlotValues(QStringList values)
{
    SlotValues numbers = {};
    if (m_dpiMin < 1 || m_dpiMax < 1 || static_cast<std::size_t>(values.size()) != numbers.size())
        return;
    std::transform(values.cbegin(), values.cend(), numbers.begin(),
                   [this](const QString &text) { return parsed(text); });
    sendDpiSlotValues(numbers);
}

void FloorDevice::sendDpiSlotValues(const SlotValues &values)
{
    if (!m_receiver)
        return;
    m_pendingDpiSlotValues = values;
    setDpiSlotValuesChangePending(
        m_receiver->setDpiSlotValues(m_deviceId, values.data(), m_dpiButtonId, m_activeDpiSlotIndex));
}

void FloorDevice::dpiSlotValuesConfirmed(const quint16 values[5])
{
    if (!m_isDpiSlotValuesChangePending)
        return;
    if (!std::equal(m_pendingDpiSlotValues.cbegin(), m_pendingDpiSlotValues.cend(), values,
                    [](quint16 wanted, quint16 found) { return wanted == 0 || wanted == found; })) {
        sendDpiSlotValues(m_pendingDpiSlotValues);
        return;
    }
    if (!std::equal(m_dpiSlotValues.cbegin(), m_dpiSlotValues.cend(), values)) {
        std::copy_n(values, m_dpiSlotValues.size(), m_dpiSlotValues.begin());
        emitOnOwnThread([this] {
            QStringList texts;
            texts.reserve(static_cast<qsizetype>(m_dpiSlotValues.size()));
            for (const quint16 value : m_dpiSlotValues)
                texts.append(QString::number(value));
            Q_EMIT dpiSlotValuesChanged(texts);
        });
    }
    setDpiSlotValuesChangePending(false);
}

void FloorDevice::setDpiSlotValuesChangePending(bool isPending)
{
    if (isPending == m_isDpiSlotValuesChangePending)
        return;
    m_isDpiSlotValuesChangePending = isPending;
    emitOnOwnThread([this] { Q_EMIT isDpiSlotValuesChangePendingChanged(m_isDpiSlotValuesChangePending); });
}

void FloorDevice::setReportRate(int rate)
{
    if (rate == m_reportRate)
        return;
    m_reportRate = rate;
    if (!m_receiver)
        return;
    if (!m_isReportRateChangePending) {
        m_reportRatePending = rate;
        setReportRateChangePending(true);
    }
    if (!m_receiver->setReportRate(m_deviceId, rate)) {
        m_reportRatePending = 0;
        setReportRateChangePending(false);
    }
    emitOnOwnThread([this] { Q_EMIT reportRateChanged(m_reportRate); });
}

void FloorDevice::reportRateConfirmed(int rate)
{
    if (rate == m_reportRatePending) {
        m_reportRatePending = 0;
        setReportRateChangePending(false);
    } else if (m_reportRatePending != 0) {
        if (m_reportRatePending > 0 && rate != m_reportRate) {
            m_reportRate = rate;
            setReportRate(m_reportRatePending);
        }
        return;
    }
    if (rate == m_reportRate)
        return;
    m_reportRate = rate;
    emitOnOwnThread([this] { Q_EMIT reportRateChanged(m_reportRate); });
}

void FloorDevice::setReportRateChangePending(bool isPending)
{
    if (isPending == m_isReportRateChangePending)
        return;
    m_isReportRateChangePending = isPending;
    emitOnOwnThread([this] { Q_EMIT isReportRateChangePendingChanged(m_isReportRateChangePending); });
}
