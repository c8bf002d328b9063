#include "Operations.h"

const QList<const DeviceOperation *> &operationsToDevice()
{
    using namespace reports;
    static const QList<const DeviceOperation *> operations{&receiverSignals::dpiMinChanged,
                                                           &receiverSignals::dpiMaxChanged,
                                                           &reportRateConfirmed,
                                                           &reportRateChangedCallBack,
                                                           &dpiValueChangedCallBack,
                                                           &dpiSlotValuesConfirmed,
                                                           &dpiSlotValuesChangedCallBack,
                                                           &activeDpiSlotIndexConfirmed,
                                                           &activeDpiSlotIndexChangedCallBack,
                                                           &dpiButtonIdConfirmed,
                                                           &dpiButtonIdChangedCallBack,
                                                           &ppidChangedCallBack,
                                                           &setFirmwareVersion,
                                                           &setBatteryLevel,
                                                           &capabilityChangedCallBack,
                                                           &mouseEventCallBack};
    return operations;
}

const QList<const DeviceOperation *> &operationsToReceiver()
{
    using namespace reads;
    using namespace requests;
    static const QList<const DeviceOperation *> operations{
        &getFirmwareVersion, &hasBatteryLevel,      &getBatteryLevel,      &setDisabledButtonsOrKeysMask,
        &getStatusValue,     &getDeviceValue,       &forwardedOperation,   &isSmartPointerSupported,
        &setReportRate,      &getReportRateInfo,    &getLevelValue,        &setDpiButtonAndActiveSlot,
        &setDpiSlotValues,   &requestInitialState1, &requestInitialState2, &requestInitialState3};
    return operations;
}

const DeviceOperation *findOperation(const QList<const DeviceOperation *> &operations, const QString &name)
{
    for (const DeviceOperation *operation : operations) {
        if (name == QLatin1StringView(operation->name))
            return operation;
    }
    return nullptr;
}

QStringList operationNames(const QList<const DeviceOperation *> &operations)
{
    QStringList names;
    for (const DeviceOperation *operation : operations)
        names.append(operation->text());
    return names;
}
