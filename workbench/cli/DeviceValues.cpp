#include "DeviceValues.h"

#include "HostedDevice.h"

using namespace Qt::StringLiterals;

namespace {

QString text(bool value)
{
    return value ? u"true"_s : u"false"_s;
}

QString text(int value)
{
    return QString::number(value);
}

QString text(uint value)
{
    return QString::number(value);
}

QString text(const QString &value)
{
    return value;
}

QString text(const QStringList &values)
{
    return values.join(u' ');
}

}  // namespace

QList<QPair<QString, QString>> deviceValues(const HostedDevice &hosted)
{
    const ILogicalDeviceGen3Mouse &device = *hosted.device();
    return {{u"modelCode"_s, text(device.modelCode())},
            {u"name"_s, text(device.name())},
            {u"instanceNumber"_s, text(device.instanceNumber())},
            {u"firmwareVersion"_s, text(device.firmwareVersion())},
            {u"hasBatteryLevel"_s, text(device.hasBatteryLevel())},
            {u"batteryLevel"_s, text(device.batteryLevel())},
            {u"statusValue"_s, text(device.statusValue())},
            {u"deviceValue"_s, text(device.deviceValue())},
            {u"levelValue"_s, text(device.levelValue())},
            {u"ppid"_s, text(hosted.gen3()->ppid())},
            {u"isSmartPointerSupported"_s, text(device.isSmartPointerSupported())},
            {u"dpiMin"_s, text(device.dpiMin())},
            {u"dpiMax"_s, text(device.dpiMax())},
            {u"dpiDelta"_s, text(device.dpiDelta())},
            {u"dpiValue"_s, text(device.dpiValue())},
            {u"dpiSlotValues"_s, text(device.dpiSlotValues())},
            {u"isDpiSlotValuesChangePending"_s, text(device.isDpiSlotValuesChangePending())},
            {u"activeDpiSlotIndex"_s, text(device.activeDpiSlotIndex())},
            {u"isActiveDpiSlotIndexChangePending"_s, text(device.isActiveDpiSlotIndexChangePending())},
            {u"dpiButtonId"_s, text(device.dpiButtonId())},
            {u"isDpiButtonIdChangePending"_s, text(device.isDpiButtonIdChangePending())},
            {u"reportRate"_s, text(device.reportRate())},
            {u"reportRateValues"_s, text(device.reportRateValues())},
            {u"isReportRateChangePending"_s, text(device.isReportRateChangePending())},
            {u"defaultProfile"_s, QString::fromUtf8(device.defaultProfile()).simplified()}};
}

std::optional<QString> deviceValue(const HostedDevice &device, const QString &name)
{
    const QList<QPair<QString, QString>> values = deviceValues(device);
    for (const auto &[known, value] : values) {
        if (known == name)
            return value;
    }
    return std::nullopt;
}
