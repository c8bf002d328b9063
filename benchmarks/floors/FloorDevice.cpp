#include "FloorDevice.h"

#include "IHostServices.h"
#include "IPhysicalDeviceDongle.h"

#include <QtCore/QList>
#include <QtCore/QMetaObject>

#include <algorithm>

namespace {

constexpr DeviceId deviceId = 1;
constexpr int dpiMin = 100;
constexpr int dpiMax = 8000;

QList<FloorDevice *> started;  // clazy:exclude=non-pod-global-static

quint16 parse(const QString &text)
{
    uint value = 0;
    for (const QChar digit : text) {
        if (digit < u'0' || digit > u'9')
            return 0;
        value = value * 10 + static_cast<uint>(digit.unicode() - u'0');
    }
    return value >= dpiMin && value <= dpiMax ? static_cast<quint16>(value) : quint16(0);
}

}  // namespace

FloorDevice::FloorDevice(IPhysicalDeviceDongle *receiver, IHostServices *hostServices)
    : m_receiver(receiver), m_hostServices(hostServices)
{}

FloorDevice::~FloorDevice()
{
    if (started.removeOne(this))
        announceNumbers();
}

void FloorDevice::mouseEventCallBack(quint8 mouseEvent)
{
    if (mouseEvent == m_mouseEvent)
        return;
    m_mouseEvent = mouseEvent;
    m_hostServices->buttonEvent(QStringLiteral("com.orvane.KVX.Plugin.LogicalDevice.RV418"), 1,
                                mouseEvent != 0);
}

void FloorDevice::setBatteryLevel(int newBatteryLevel)
{
    m_batteryLevel = newBatteryLevel;
    Q_EMIT batteryLevelChanged(newBatteryLevel);
}

void FloorDevice::queueBatteryLevel(int newBatteryLevel)
{
    m_batteryLevel = newBatteryLevel;
    QMetaObject::invokeMethod(
        this, [this] { Q_EMIT batteryLevelChanged(m_batteryLevel); }, Qt::QueuedConnection);
}

void FloorDevice::setDpiSlotValues(QStringList values)
{
    if (static_cast<std::size_t>(values.size()) != m_pendingDpiSlotValues.size())
        return;
    std::transform(values.cbegin(), values.cend(), m_pendingDpiSlotValues.begin(), parse);
    m_isDpiSlotValuesChangePending =
        m_receiver->setDpiSlotValues(deviceId, m_pendingDpiSlotValues.data(), 6, 2);
    Q_EMIT isDpiSlotValuesChangePendingChanged(m_isDpiSlotValuesChangePending);
}

void FloorDevice::dpiSlotValuesConfirmed(const quint16 values[5])
{
    if (!std::equal(m_pendingDpiSlotValues.cbegin(), m_pendingDpiSlotValues.cend(), values))
        return;
    m_dpiSlotValues = m_pendingDpiSlotValues;
    QStringList texts;
    texts.reserve(static_cast<qsizetype>(m_dpiSlotValues.size()));
    for (const quint16 value : m_dpiSlotValues)
        texts.append(QString::number(value));
    Q_EMIT dpiSlotValuesChanged(texts);
    m_isDpiSlotValuesChangePending = false;
    Q_EMIT isDpiSlotValuesChangePendingChanged(false);
}

void FloorDevice::setReportRate(int rate)
{
    m_reportRate = rate;
    m_pendingReportRate = rate;
    Q_EMIT isReportRateChangePendingChanged(true);
    m_receiver->setReportRate(deviceId, rate);
    Q_EMIT reportRateChanged(rate);
}

void FloorDevice::reportRateConfirmed(int rate)
{
    if (rate != m_pendingReportRate)
        return;
    m_pendingReportRate = 0;
    Q_EMIT isReportRateChangePendingChanged(false);
}

void FloorDevice::start()
{
    started.append(this);
    announceNumbers();
}

void FloorDevice::announceNumbers()
{
    int number = 0;
    for (FloorDevice *device : std::as_const(started))
        device->m_instanceNumber = number++;
    for (FloorDevice *device : std::as_const(started))
        Q_EMIT device->instanceNumberChanged(device->m_instanceNumber);
}
