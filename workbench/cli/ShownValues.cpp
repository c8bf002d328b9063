#include "ShownValues.h"

#include "HostedDevice.h"

#include <QtCore/QVariant>

namespace {

QString text(const QVariant &value)
{
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(u' ');
    const QString text = value.toString();
    return value.typeId() == QMetaType::QByteArray ? text.simplified() : text;
}

struct Getter
{
    const char *name;
    QString (*read)(const HostedDevice &device);
};

template <auto function>
constexpr Getter getter(const char *name)
{
    return {name, [](const HostedDevice &device) { return text((device.device()->*function)()); }};
}

using Device = ILogicalDeviceGen3Mouse;
constexpr Getter getters[] = {
    getter<&Device::iid>("iid"),
    getter<&Device::modelCode>("modelCode"),
    getter<&Device::name>("name"),
    getter<&Device::instanceNumber>("instanceNumber"),
    getter<&Device::firmwareVersion>("firmwareVersion"),
    getter<&Device::hasBatteryLevel>("hasBatteryLevel"),
    getter<&Device::batteryLevel>("batteryLevel"),
    getter<&Device::statusValue>("statusValue"),
    getter<&Device::deviceValue>("deviceValue"),
    getter<&Device::levelValue>("levelValue"),
    {"ppid", [](const HostedDevice &device) { return device.gen3() ? device.gen3()->ppid() : QString(); }},
    getter<&Device::isSmartPointerSupported>("isSmartPointerSupported"),
    getter<&Device::dpiMin>("dpiMin"),
    getter<&Device::dpiMax>("dpiMax"),
    getter<&Device::dpiDelta>("dpiDelta"),
    getter<&Device::dpiValue>("dpiValue"),
    getter<&Device::dpiSlotValues>("dpiSlotValues"),
    getter<&Device::isDpiSlotValuesChangePending>("isDpiSlotValuesChangePending"),
    getter<&Device::activeDpiSlotIndex>("activeDpiSlotIndex"),
    getter<&Device::isActiveDpiSlotIndexChangePending>("isActiveDpiSlotIndexChangePending"),
    getter<&Device::dpiButtonId>("dpiButtonId"),
    getter<&Device::isDpiButtonIdChangePending>("isDpiButtonIdChangePending"),
    getter<&Device::reportRate>("reportRate"),
    getter<&Device::reportRateValues>("reportRateValues"),
    getter<&Device::isReportRateChangePending>("isReportRateChangePending"),
    getter<&Device::defaultProfile>("defaultProfile"),
    getter<&Device::deviceImage>("deviceImage"),
};

}  // namespace

QStringList shownValueNames()
{
    QStringList names;
    for (const Getter &getter : getters)
        names.append(QString::fromLatin1(getter.name));
    return names;
}

std::optional<QString> shownValue(const HostedDevice &device, const QString &name)
{
    for (const Getter &getter : getters) {
        if (name == QLatin1StringView(getter.name))
            return getter.read(device);
    }
    return std::nullopt;
}
