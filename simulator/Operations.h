#pragma once

#include "DeviceOperation.h"

#include <QtCore/QStringList>

#include <initializer_list>

// The names of all operations that a host, a device and a receiver call and that a simulation records.

/// The host calls the device.
namespace calls {
using Device = ILogicalDeviceGen3Mouse;
inline constexpr auto start = describeCall<&Device::start>("start");
inline constexpr auto stop = describeCall<&Device::stop>("stop");
inline constexpr auto forwardToPhysicalDevice =
    describeCall<&Device::forwardToPhysicalDevice>("forwardToPhysicalDevice");
inline constexpr auto query26 = describeCall<&Device::query26>("query26");
inline constexpr auto applySettings = describeCall<&Device::applySettings>("applySettings");
inline constexpr auto resetSettings = describeCall<&Device::resetSettings>("resetSettings");
inline constexpr auto setButtonsOrKeysToDefault =
    describeCall<&Device::setButtonsOrKeysToDefault>("setButtonsOrKeysToDefault");
inline constexpr auto disbaleButtonsOrKeys =
    describeCall<&Device::disbaleButtonsOrKeys>("disbaleButtonsOrKeys");
inline constexpr auto setDpiValue = describeCall<&Device::setDpiValue>("setDpiValue");
inline constexpr auto setActiveDpiSlotIndex =
    describeCall<&Device::setActiveDpiSlotIndex>("setActiveDpiSlotIndex");
inline constexpr auto setDpiSlotValues = describeCall<&Device::setDpiSlotValues>("setDpiSlotValues");
inline constexpr auto setDpiButtonId = describeCall<&Device::setDpiButtonId>("setDpiButtonId");
inline constexpr auto setReportRate = describeCall<&Device::setReportRate>("setReportRate");
}  // namespace calls

/// The receiver reports to the device.
namespace reports {
using Device = ILogicalDeviceGen3Mouse;
inline constexpr auto setFirmwareVersion = describeReport<&Device::setFirmwareVersion>("setFirmwareVersion");
inline constexpr auto setBatteryLevel = describeReport<&Device::setBatteryLevel>("setBatteryLevel");
inline constexpr auto capabilityChangedCallBack =
    describeReport<&Device::capabilityChangedCallBack>("capabilityChangedCallBack");
inline constexpr auto mouseEventCallBack = describeReport<&Device::mouseEventCallBack>("mouseEventCallBack");
inline constexpr auto dpiValueChangedCallBack =
    describeReport<&Device::dpiValueChangedCallBack>("dpiValueChangedCallBack");
inline constexpr auto reportRateConfirmed =
    describeReport<&Device::reportRateConfirmed>("reportRateConfirmed");
inline constexpr auto reportRateChangedCallBack =
    describeReport<&Device::reportRateChangedCallBack>("reportRateChangedCallBack");
inline constexpr auto activeDpiSlotIndexConfirmed =
    describeReport<&Device::activeDpiSlotIndexConfirmed>("activeDpiSlotIndexConfirmed");
inline constexpr auto activeDpiSlotIndexChangedCallBack =
    describeReport<&Device::activeDpiSlotIndexChangedCallBack>("activeDpiSlotIndexChangedCallBack");
inline constexpr auto dpiSlotValuesConfirmed =
    describeReport<&Device::dpiSlotValuesConfirmed>("dpiSlotValuesConfirmed");
inline constexpr auto dpiSlotValuesChangedCallBack =
    describeReport<&Device::dpiSlotValuesChangedCallBack>("dpiSlotValuesChangedCallBack");
inline constexpr auto dpiButtonIdConfirmed =
    describeReport<&Device::dpiButtonIdConfirmed>("dpiButtonIdConfirmed");
inline constexpr auto dpiButtonIdChangedCallBack =
    describeReport<&Device::dpiButtonIdChangedCallBack>("dpiButtonIdChangedCallBack");
inline constexpr auto ppidChangedCallBack =
    describeReport<&ILogicalDeviceGen3::ppidChangedCallBack>("ppidChangedCallBack");
}  // namespace reports

/// The receiver emits them. They name no mouse.
namespace receiverSignals {
inline constexpr DeviceOperation dpiMinChanged{
    "dpiMinChanged", DeviceOperation::Side::ReceiverSignal, {ValueForm::Number}, 1, nullptr};
inline constexpr DeviceOperation dpiMaxChanged{
    "dpiMaxChanged", DeviceOperation::Side::ReceiverSignal, {ValueForm::Number}, 1, nullptr};
}  // namespace receiverSignals

/// The device asks the receiver.
namespace requests {
using Receiver = IPhysicalDeviceDongle;
inline constexpr auto setDisabledButtonsOrKeysMask =
    describeRequest("setDisabledButtonsOrKeysMask", &Receiver::setDisabledButtonsOrKeysMask);
inline constexpr auto setReportRate = describeRequest("setReportRate", &Receiver::setReportRate);
inline constexpr auto setDpiButtonAndActiveSlot =
    describeRequest("setDpiButtonAndActiveSlot", &Receiver::setDpiButtonAndActiveSlot);
inline constexpr auto setDpiSlotValues = describeRequest("setDpiSlotValues", &Receiver::setDpiSlotValues);
inline constexpr auto requestInitialState1 =
    describeRequest("requestInitialState1", &Receiver::requestInitialState1);
inline constexpr auto requestInitialState2 =
    describeRequest("requestInitialState2", &Receiver::requestInitialState2);
inline constexpr auto requestInitialState3 =
    describeRequest("requestInitialState3", &Receiver::requestInitialState3);
}  // namespace requests

/// The device reads from the receiver.
namespace reads {
using Receiver = IPhysicalDeviceDongle;
inline constexpr auto getFirmwareVersion = describeRead("getFirmwareVersion", &Receiver::getFirmwareVersion);
inline constexpr auto hasBatteryLevel = describeRead("hasBatteryLevel", &Receiver::hasBatteryLevel);
inline constexpr auto getBatteryLevel = describeRead("getBatteryLevel", &Receiver::getBatteryLevel);
inline constexpr auto getStatusValue = describeRead("getStatusValue", &Receiver::getStatusValue);
inline constexpr auto getDeviceValue = describeRead("getDeviceValue", &Receiver::getDeviceValue);
inline constexpr auto getLevelValue = describeRead("getLevelValue", &Receiver::getLevelValue);
inline constexpr auto isSmartPointerSupported =
    describeRead("isSmartPointerSupported", &Receiver::isSmartPointerSupported);
inline constexpr auto getReportRateInfo = describeRead("getReportRateInfo", &Receiver::getReportRateInfo);
inline constexpr auto forwardedOperation = describeRead("forwardedOperation", &Receiver::forwardedOperation);
/// Of any physical device.
inline constexpr DeviceOperation forwardedCall{
    "forwardedCall", DeviceOperation::Side::Read, {ValueForm::Number}, 1, nullptr};
}  // namespace reads

/// What a receiver tells devices, and what it is asked by them.
const QList<const DeviceOperation *> &operationsToDevice();
const QList<const DeviceOperation *> &operationsToReceiver();

/// Null when none of them has this name.
const DeviceOperation *findOperation(const QList<const DeviceOperation *> &operations, const QString &name);
QStringList operationNames(const QList<const DeviceOperation *> &operations);
