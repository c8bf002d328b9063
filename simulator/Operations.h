#pragma once

#include "DeviceOperation.h"

#include <QtCore/QStringList>

// The names of all operations that a host, a device and a receiver call and that a simulation records.
#define KVX_OPERATION(Interface, name, side)                                                                 \
    inline constexpr auto name =                                                                             \
        describe<&Interface::name>(#name, DeviceOperation::Side::side, &Interface::name)

/// The host calls the device.
namespace calls {
KVX_OPERATION(ILogicalDeviceGen3Mouse, start, Call);
KVX_OPERATION(ILogicalDeviceGen3Mouse, stop, Call);
KVX_OPERATION(ILogicalDeviceGen3Mouse, forwardToPhysicalDevice, Call);
KVX_OPERATION(ILogicalDeviceGen3Mouse, query26, Call);
KVX_OPERATION(ILogicalDeviceGen3Mouse, applySettings, Call);
KVX_OPERATION(ILogicalDeviceGen3Mouse, resetSettings, Call);
KVX_OPERATION(ILogicalDeviceGen3Mouse, setButtonsOrKeysToDefault, Call);
KVX_OPERATION(ILogicalDeviceGen3Mouse, disbaleButtonsOrKeys, Call);
KVX_OPERATION(ILogicalDeviceGen3Mouse, setDpiValue, Call);
KVX_OPERATION(ILogicalDeviceGen3Mouse, setActiveDpiSlotIndex, Call);
KVX_OPERATION(ILogicalDeviceGen3Mouse, setDpiSlotValues, Call);
KVX_OPERATION(ILogicalDeviceGen3Mouse, setDpiButtonId, Call);
KVX_OPERATION(ILogicalDeviceGen3Mouse, setReportRate, Call);
}  // namespace calls

/// The receiver reports to the device.
namespace reports {
KVX_OPERATION(ILogicalDeviceGen3Mouse, setFirmwareVersion, Report);
KVX_OPERATION(ILogicalDeviceGen3Mouse, setBatteryLevel, Report);
KVX_OPERATION(ILogicalDeviceGen3Mouse, capabilityChangedCallBack, Report);
KVX_OPERATION(ILogicalDeviceGen3Mouse, mouseEventCallBack, Report);
KVX_OPERATION(ILogicalDeviceGen3Mouse, dpiValueChangedCallBack, Report);
KVX_OPERATION(ILogicalDeviceGen3Mouse, reportRateConfirmed, Report);
KVX_OPERATION(ILogicalDeviceGen3Mouse, reportRateChangedCallBack, Report);
KVX_OPERATION(ILogicalDeviceGen3Mouse, activeDpiSlotIndexConfirmed, Report);
KVX_OPERATION(ILogicalDeviceGen3Mouse, activeDpiSlotIndexChangedCallBack, Report);
KVX_OPERATION(ILogicalDeviceGen3Mouse, dpiSlotValuesConfirmed, Report);
KVX_OPERATION(ILogicalDeviceGen3Mouse, dpiSlotValuesChangedCallBack, Report);
KVX_OPERATION(ILogicalDeviceGen3Mouse, dpiButtonIdConfirmed, Report);
KVX_OPERATION(ILogicalDeviceGen3Mouse, dpiButtonIdChangedCallBack, Report);
KVX_OPERATION(ILogicalDeviceGen3, ppidChangedCallBack, Report);
}  // namespace reports

/// The receiver emits them. They name no mouse.
namespace receiverSignals {
inline constexpr DeviceOperation dpiMinChanged{
    "dpiMinChanged", DeviceOperation::Side::ReceiverSignal, {ValueForm::Number}, 1};
inline constexpr DeviceOperation dpiMaxChanged{
    "dpiMaxChanged", DeviceOperation::Side::ReceiverSignal, {ValueForm::Number}, 1};
}  // namespace receiverSignals

/// The device asks the receiver.
namespace requests {
KVX_OPERATION(IPhysicalDeviceDongle, setDisabledButtonsOrKeysMask, Request);
KVX_OPERATION(IPhysicalDeviceDongle, setReportRate, Request);
KVX_OPERATION(IPhysicalDeviceDongle, setDpiButtonAndActiveSlot, Request);
KVX_OPERATION(IPhysicalDeviceDongle, setDpiSlotValues, Request);
KVX_OPERATION(IPhysicalDeviceDongle, requestInitialState1, Request);
KVX_OPERATION(IPhysicalDeviceDongle, requestInitialState2, Request);
KVX_OPERATION(IPhysicalDeviceDongle, requestInitialState3, Request);
}  // namespace requests

/// The device reads from the receiver.
namespace reads {
KVX_OPERATION(IPhysicalDeviceDongle, getFirmwareVersion, Read);
KVX_OPERATION(IPhysicalDeviceDongle, hasBatteryLevel, Read);
KVX_OPERATION(IPhysicalDeviceDongle, getBatteryLevel, Read);
KVX_OPERATION(IPhysicalDeviceDongle, getStatusValue, Read);
KVX_OPERATION(IPhysicalDeviceDongle, getDeviceValue, Read);
KVX_OPERATION(IPhysicalDeviceDongle, getLevelValue, Read);
KVX_OPERATION(IPhysicalDeviceDongle, isSmartPointerSupported, Read);
KVX_OPERATION(IPhysicalDeviceDongle, getReportRateInfo, Read);
KVX_OPERATION(IPhysicalDeviceDongle, forwardedOperation, Read);
/// Of any physical device.
inline constexpr DeviceOperation forwardedCall{
    "forwardedCall", DeviceOperation::Side::Read, {ValueForm::Number}, 1};
}  // namespace reads
#undef KVX_OPERATION

/// All that the tables of the device have besides start, the requests and the reports: getters, operations without an
/// effect, and the signals, which such a call emits.
const QList<const DeviceOperation *> &otherOperations();

/// What a receiver tells devices, and what it is asked by them.
const QList<const DeviceOperation *> &operationsToDevice();
const QList<const DeviceOperation *> &operationsToReceiver();

/// Null when none of them has this name.
const DeviceOperation *findOperation(const QList<const DeviceOperation *> &operations, const QString &name);
QStringList operationNames(const QList<const DeviceOperation *> &operations);
