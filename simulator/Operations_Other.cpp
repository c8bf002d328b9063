#include "Operations.h"

#include <algorithm>

namespace {

#define KVX_OTHER(Interface, name)                                                                           \
    describe<&Interface::name>(#name, DeviceOperation::Side::Call, &Interface::name)

// In the order of the tables.
constexpr DeviceOperation others[] = {
    KVX_OTHER(ILogicalDeviceGen3Mouse, deviceType),
    KVX_OTHER(ILogicalDeviceGen3Mouse, deviceClass),
    KVX_OTHER(ILogicalDeviceGen3Mouse, name),
    KVX_OTHER(ILogicalDeviceGen3Mouse, instanceId),
    KVX_OTHER(ILogicalDeviceGen3Mouse, firmwareVersion),
    KVX_OTHER(ILogicalDeviceGen3Mouse, iid),
    KVX_OTHER(ILogicalDeviceGen3Mouse, deviceValue),
    KVX_OTHER(ILogicalDeviceGen3Mouse, modelCode),
    KVX_OTHER(ILogicalDeviceGen3Mouse, firmwareVersionChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, physicalDevice),
    KVX_OTHER(ILogicalDeviceGen3Mouse, deviceImage),
    KVX_OTHER(ILogicalDeviceGen3Mouse, instanceNumber),
    KVX_OTHER(ILogicalDeviceGen3Mouse, hasBatteryLevel),
    KVX_OTHER(ILogicalDeviceGen3Mouse, batteryLevel),
    KVX_OTHER(ILogicalDeviceGen3Mouse, statusValue),
    KVX_OTHER(ILogicalDeviceGen3Mouse, query24),
    KVX_OTHER(ILogicalDeviceGen3Mouse, pairedHostName),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isDPILevelSupported),
    KVX_OTHER(ILogicalDeviceGen3Mouse, dpiLevel),
    KVX_OTHER(ILogicalDeviceGen3Mouse, setDpiLevel),
    KVX_OTHER(ILogicalDeviceGen3Mouse, query30),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isDPILevelChangePending),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isSmartPointerSupported),
    KVX_OTHER(ILogicalDeviceGen3Mouse, query33),
    KVX_OTHER(ILogicalDeviceGen3Mouse, levelValue),
    KVX_OTHER(ILogicalDeviceGen3Mouse, query35),
    KVX_OTHER(ILogicalDeviceGen3Mouse, defaultProfile),
    KVX_OTHER(ILogicalDeviceGen3Mouse, notify38),
    KVX_OTHER(ILogicalDeviceGen3Mouse, notify42),
    KVX_OTHER(ILogicalDeviceGen3Mouse, notify43),
    KVX_OTHER(ILogicalDeviceGen3Mouse, notify44),
    KVX_OTHER(ILogicalDeviceGen3Mouse, instanceNumberChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, batteryLevelChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, pairedHostNameChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, dpiLevelChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isDPILevelChangePendingChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isDPILevelSupportedChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isSmartPointerSupportedChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, chargingStatusAndStateChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, query53),
    KVX_OTHER(ILogicalDeviceGen3Mouse, dpiValue),
    KVX_OTHER(ILogicalDeviceGen3Mouse, dpiMin),
    KVX_OTHER(ILogicalDeviceGen3Mouse, dpiMax),
    KVX_OTHER(ILogicalDeviceGen3Mouse, dpiDelta),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isDPIValueChangePending),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isDPIValueSupported),
    KVX_OTHER(ILogicalDeviceGen3Mouse, activeDpiSlotIndex),
    KVX_OTHER(ILogicalDeviceGen3Mouse, dpiSlotValues),
    KVX_OTHER(ILogicalDeviceGen3Mouse, dpiButtonId),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isActiveDpiSlotIndexChangePending),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isDpiSlotValuesChangePending),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isDpiButtonIdChangePending),
    KVX_OTHER(ILogicalDeviceGen3Mouse, query70),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isReportRateSupported),
    KVX_OTHER(ILogicalDeviceGen3Mouse, reportRate),
    KVX_OTHER(ILogicalDeviceGen3Mouse, reportRateValues),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isReportRateChangePending),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isScrollInversionEnabled),
    KVX_OTHER(ILogicalDeviceGen3Mouse, setScrollInversionEnabled),
    KVX_OTHER(ILogicalDeviceGen3Mouse, notify87),
    KVX_OTHER(ILogicalDeviceGen3Mouse, query88),
    KVX_OTHER(ILogicalDeviceGen3Mouse, query89),
    KVX_OTHER(ILogicalDeviceGen3Mouse, notify90),
    KVX_OTHER(ILogicalDeviceGen3Mouse, query91),
    KVX_OTHER(ILogicalDeviceGen3Mouse, notify92),
    KVX_OTHER(ILogicalDeviceGen3Mouse, notify93),
    KVX_OTHER(ILogicalDeviceGen3Mouse, dpiValueChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, dpiMinChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, dpiMaxChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, dpiDeltaChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isDPIValueChangePendingChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isDPIValueSupportedChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, activeDpiSlotIndexChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, dpiSlotValuesChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, dpiButtonIdChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isActiveDpiSlotIndexChangePendingChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isDpiSlotValuesChangePendingChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isDpiButtonIdChangePendingChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, reportRateChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, reportRateValuesChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isReportRateChangePendingChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isReportRateSupportedChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isScrollInversionEnabledChanged),
    KVX_OTHER(ILogicalDeviceGen3Mouse, isScrollInversionEnabledChangePendingChanged),
    KVX_OTHER(ILogicalDeviceGen3, ppid),
    KVX_OTHER(ILogicalDeviceGen3, ppidChanged),
    // The one signal with an argument that no text can name: the device itself.
    {"stopped",
     DeviceOperation::Side::Call,
     {},
     0,
     [](ILogicalDeviceGen3Mouse &device, const QJsonArray &) {
         device.stopped(&device);
         return QJsonValue(QJsonValue::Undefined);
     }},
};
#undef KVX_OTHER

}  // namespace

const QList<const DeviceOperation *> &otherOperations()
{
    static const QList<const DeviceOperation *> operations = [] {
        QList<const DeviceOperation *> list;
        for (const DeviceOperation &operation : others)
            list.append(&operation);
        return list;
    }();
    return operations;
}
