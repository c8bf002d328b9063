#include "DeviceValues.h"

#include "HostedDevice.h"

#include <limits>

using namespace Qt::StringLiterals;

namespace {

QString text(int value)
{
    return QString::number(value);
}

QString text(uint value)
{
    return QString::number(value);
}

QString text(bool value)
{
    return value ? u"true"_s : u"false"_s;
}

QString text(const QString &value)
{
    return value;
}

QString text(const QStringList &values)
{
    return values.join(u' ');
}

QString text(const QByteArray &bytes)
{
    return QString::fromLatin1(bytes.toHex());
}

QString text(const QUuid &value)
{
    return value.toString();
}

QString text(const IPhysicalDevice *device)
{
    return u"0x"_s + QString::number(reinterpret_cast<quintptr>(device), 16);
}

template <typename Value>
void compare(QList<ValueDifference> &found, const char *getter, const Value &expected, const Value &seen)
{
    if (!(expected == seen))
        found.append({QString::fromLatin1(getter), text(expected), text(seen)});
}

QByteArray profile()
{
    return "{\r\n"
           "  \"version\": 1,\r\n"
           "  \"defaultActions\": [\r\n"
           "  ]\r\n"
           "}\r\n";
}

QStringList decimals(const QList<quint16> &values)
{
    QStringList texts;
    for (const quint16 value : values)
        texts.append(QString::number(value));
    return texts;
}

}  // namespace

DeviceValues DeviceValues::ofLibrary(const HostedDevice &hosted)
{
    const ILogicalDeviceGen3Mouse &device = *hosted.device();
    DeviceValues values;
    values.deviceType = device.deviceType();
    values.deviceClass = device.deviceClass();
    values.name = device.name();
    values.instanceId = device.instanceId();
    values.firmwareVersion = device.firmwareVersion();
    values.iid = device.iid();
    values.deviceValue = device.deviceValue();
    values.modelCode = device.modelCode();

    values.physicalDevice = device.physicalDevice();
    values.instanceNumber = device.instanceNumber();
    values.hasBatteryLevel = device.hasBatteryLevel();
    values.batteryLevel = device.batteryLevel();
    values.statusValue = device.statusValue();
    values.query24 = device.query24();
    values.pairedHostName = device.pairedHostName(1) + device.pairedHostName(std::numeric_limits<int>::min());
    values.isDPILevelSupported = device.isDPILevelSupported();
    values.dpiLevel = device.dpiLevel();
    values.query30 = device.query30();
    values.isDPILevelChangePending = device.isDPILevelChangePending();
    values.isSmartPointerSupported = device.isSmartPointerSupported();
    values.query33 = device.query33();
    values.levelValue = device.levelValue();
    values.query35 = device.query35();

    values.query53 = device.query53();
    values.dpiValue = device.dpiValue();
    values.dpiMin = device.dpiMin();
    values.dpiMax = device.dpiMax();
    values.dpiDelta = device.dpiDelta();
    values.isDPIValueChangePending = device.isDPIValueChangePending();
    values.isDPIValueSupported = device.isDPIValueSupported();
    values.activeDpiSlotIndex = device.activeDpiSlotIndex();
    values.dpiSlotValues = device.dpiSlotValues();
    values.dpiButtonId = device.dpiButtonId();
    values.isActiveDpiSlotIndexChangePending = device.isActiveDpiSlotIndexChangePending();
    values.isDpiSlotValuesChangePending = device.isDpiSlotValuesChangePending();
    values.isDpiButtonIdChangePending = device.isDpiButtonIdChangePending();
    values.query70 = device.query70();
    values.isReportRateSupported = device.isReportRateSupported();
    values.reportRate = device.reportRate();
    values.reportRateValues = device.reportRateValues();
    values.isReportRateChangePending = device.isReportRateChangePending();
    values.isScrollInversionEnabled = device.isScrollInversionEnabled();
    values.query88 = device.query88();
    values.query89 = device.query89();
    values.query91 = device.query91();

    values.ppid = hosted.gen3()->ppid();
    return values;
}

DeviceValues DeviceValues::ofModel(const Model::Device &device, const QUuid &instanceId,
                                   const IPhysicalDevice *physicalDevice)
{
    // The rest are fixed answers.
    DeviceValues values;
    values.instanceId = instanceId;
    values.firmwareVersion = device.firmwareVersion;
    values.deviceValue = device.deviceValue;
    values.physicalDevice = physicalDevice;
    values.instanceNumber = device.instanceNumber;
    values.hasBatteryLevel = device.hasBatteryLevel;
    values.batteryLevel = device.batteryLevel;
    values.statusValue = device.statusValue;
    values.isSmartPointerSupported = device.isSmartPointerSupported;
    values.levelValue = device.levelValue;
    values.dpiValue = device.dpiValue;
    values.dpiMin = device.dpiMin;
    values.dpiMax = device.dpiMax;
    values.activeDpiSlotIndex = device.activeSlot;
    values.dpiSlotValues = decimals(device.slotValues);
    values.dpiButtonId = device.buttonId;
    values.isActiveDpiSlotIndexChangePending = device.isActiveSlotPending;
    values.isDpiSlotValuesChangePending = device.isSlotValuesPending;
    values.isDpiButtonIdChangePending = device.isButtonIdPending;
    values.reportRate = device.reportRate;
    values.reportRateValues = device.reportRateValues;
    values.isReportRateChangePending = device.isReportRatePending;
    values.ppid = device.ppid;
    return values;
}

QList<ValueDifference> differences(const DeviceValues &expected, const DeviceValues &seen)
{
    QList<ValueDifference> found;
#define COMPARE(getter) compare(found, #getter, expected.getter, seen.getter)
    COMPARE(deviceType);
    COMPARE(deviceClass);
    COMPARE(name);
    COMPARE(instanceId);
    COMPARE(firmwareVersion);
    COMPARE(iid);
    COMPARE(deviceValue);
    COMPARE(modelCode);
    COMPARE(physicalDevice);
    COMPARE(instanceNumber);
    COMPARE(hasBatteryLevel);
    COMPARE(batteryLevel);
    COMPARE(statusValue);
    COMPARE(query24);
    COMPARE(pairedHostName);
    COMPARE(isDPILevelSupported);
    COMPARE(dpiLevel);
    COMPARE(query30);
    COMPARE(isDPILevelChangePending);
    COMPARE(isSmartPointerSupported);
    COMPARE(query33);
    COMPARE(levelValue);
    COMPARE(query35);
    COMPARE(query53);
    COMPARE(dpiValue);
    COMPARE(dpiMin);
    COMPARE(dpiMax);
    COMPARE(dpiDelta);
    COMPARE(isDPIValueChangePending);
    COMPARE(isDPIValueSupported);
    COMPARE(activeDpiSlotIndex);
    COMPARE(dpiSlotValues);
    COMPARE(dpiButtonId);
    COMPARE(isActiveDpiSlotIndexChangePending);
    COMPARE(isDpiSlotValuesChangePending);
    COMPARE(isDpiButtonIdChangePending);
    COMPARE(query70);
    COMPARE(isReportRateSupported);
    COMPARE(reportRate);
    COMPARE(reportRateValues);
    COMPARE(isReportRateChangePending);
    COMPARE(isScrollInversionEnabled);
    COMPARE(query88);
    COMPARE(query89);
    COMPARE(query91);
    COMPARE(ppid);
#undef COMPARE
    return found;
}

QList<ValueDifference> differencesOfFiles(const HostedDevice &device)
{
    QList<ValueDifference> found;
    compare(found, "defaultProfile", profile(), device.device()->defaultProfile());
    compare(found, "deviceImage", QByteArray(), device.device()->deviceImage());
    return found;
}
