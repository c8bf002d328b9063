#include "GatedLog.h"
#include "IPhysicalDeviceDongle.h"
#include "LogicalDevice.h"

#include <algorithm>
#include <utility>

namespace {

constexpr int dpiSlotCount = 5;

// A requested 0 leaves the value of its slot to the mouse.
constexpr quint16 anyDpi = 0;
// Sent without a range check, like 0, but confirmed like any other value.
constexpr quint16 unrangedDpi = 65535;

quint16 parseSlotValue(const QString &text, int dpiMin, int dpiMax)
{
    bool isNumber = false;
    // The low 16 bits only, so "65536" is a silent 0: kept, the host relies on it.
    const auto value = static_cast<quint16>(text.toUInt(&isNumber, 10));
    const bool isInRange = value >= dpiMin && value <= dpiMax;
    if (isNumber && (value == anyDpi || value == unrangedDpi || isInRange))
        return value;
    deviceWarning() << "Ignoring slot value : " << text;
    return anyDpi;
}

bool isConfirmedBy(quint16 requested, quint16 confirmed)
{
    return requested == anyDpi || requested == confirmed;
}

}  // namespace

QStringList LogicalDevice::dpiSlotValues() const
{
    QStringList texts;
    texts.reserve(m_dpiSlotValues.size());
    for (const quint16 value : m_dpiSlotValues)
        texts.append(QString::number(value, 10));
    return texts;
}

bool LogicalDevice::isDpiSlotValuesChangePending() const
{
    return m_isDpiSlotValuesChangePending;
}

void LogicalDevice::setDpiSlotValues(QStringList values)
{
    if (m_dpiMin < 1 || m_dpiMax < 1) {
        deviceWarning() << "Ignoring SET command, dpi min and max are not set";
    } else if (values.size() != dpiSlotCount) {
        deviceWarning() << "Invalid SET command, dpiSlotValues parameter must have size 5";
    } else {
        QList<quint16> numbers;
        numbers.reserve(dpiSlotCount);
        for (const QString &text : std::as_const(values))
            numbers.append(parseSlotValue(text, m_dpiMin, m_dpiMax));
        sendDpiSlotValues(std::move(numbers));
    }
    deviceDebug() << "setDpiSlotValues exit";
}

// Five values.
void LogicalDevice::sendDpiSlotValues(QList<quint16> values)
{
    deviceDebug() << "Setting dpi slot values : " << values;
    if (!m_dongle) {
        deviceWarning() << "Unknown IPhysicalDevice interface";
        return;
    }
    const bool isAccepted =
        m_dongle->setDpiSlotValues(m_deviceId, values.constData(), m_dpiButtonId, m_activeDpiSlotIndex);
    if (isAccepted) {
        m_pendingDpiSlotValues = std::move(values);
    } else {
        deviceWarning() << "Dongle set dpi slot values failed";
        m_pendingDpiSlotValues.clear();
    }
    setDpiSlotValuesChangePending(isAccepted);
}

void LogicalDevice::dpiSlotValuesConfirmed(const quint16 values[5])
{
    // The address, not the values: kept, the host relies on it.
    deviceDebug() << "dpiSlotValuesConfirmed enter, values :" << static_cast<const void *>(values);
    if (m_isDpiSlotValuesChangePending) {
        if (std::equal(m_pendingDpiSlotValues.cbegin(), m_pendingDpiSlotValues.cend(), values,
                       isConfirmedBy)) {
            onDpiSlotValuesChanged(QList<quint16>(values, values + dpiSlotCount));
            setDpiSlotValuesChangePending(false);
        } else {
            sendDpiSlotValues(m_pendingDpiSlotValues);
        }
    }
    deviceDebug() << "dpiSlotValuesConfirmed exit";
}

void LogicalDevice::dpiSlotValuesChangedCallBack(const quint16 values[5])
{
    onDpiSlotValuesChanged(QList<quint16>(values, values + dpiSlotCount));
}

// The DPI stays what it is, even when the value of the active slot changes: kept, the host relies on it.
void LogicalDevice::onDpiSlotValuesChanged(QList<quint16> values)
{
    deviceDebug() << "onDpiSlotValuesChanged enter";
    if (values != m_dpiSlotValues) {
        deviceDebug() << "Updating dpiSlotValues : " << values;
        m_dpiSlotValues = std::move(values);
        emitOnOwnThread([this] { Q_EMIT dpiSlotValuesChanged(dpiSlotValues()); });
    }
    deviceDebug() << "onDpiSlotValuesChanged exit";
}

void LogicalDevice::setDpiSlotValuesChangePending(bool isPending)
{
    setPendingFlag(&LogicalDevice::m_isDpiSlotValuesChangePending,
                   &LogicalDevice::isDpiSlotValuesChangePendingChanged, isPending);
}
