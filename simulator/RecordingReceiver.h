#pragma once

#include "Operations.h"
#include "ReceiverBase.h"

#include <optional>

/// A receiver that a timeline records: each operation becomes one question to the class that derives.
class RecordingReceiver : public ReceiverBase
{
    Q_OBJECT

public:
    using ReceiverBase::ReceiverBase;

    quintptr forwardedCall(quintptr argument1, quintptr argument2, quintptr argument3) override
    {
        return ask<quintptr>(reads::forwardedCall, {}, argument1, argument2, argument3);
    }
    uint getFirmwareVersion(DeviceId id) override { return ask<uint>(reads::getFirmwareVersion, id); }
    bool hasBatteryLevel(DeviceId id) override { return ask<bool>(reads::hasBatteryLevel, id); }
    int getBatteryLevel(DeviceId id) override { return ask<int>(reads::getBatteryLevel, id); }
    bool setDisabledButtonsOrKeysMask(DeviceId id, quint8 mask) override
    {
        return ask<bool>(requests::setDisabledButtonsOrKeysMask, id, mask);
    }
    int getStatusValue(DeviceId id) override { return ask<int>(reads::getStatusValue, id); }
    int getDeviceValue(DeviceId id) override { return ask<int>(reads::getDeviceValue, id); }
    quintptr forwardedOperation(DeviceId id, quintptr argument2, quintptr argument3) override
    {
        return ask<quintptr>(reads::forwardedOperation, id, argument2, argument3);
    }
    bool isSmartPointerSupported(DeviceId id) override
    {
        return ask<bool>(reads::isSmartPointerSupported, id);
    }
    bool setReportRate(DeviceId id, int rate) override
    {
        return ask<bool>(requests::setReportRate, id, rate);
    }
    bool getReportRateInfo(DeviceId id, ReportRateInfo *info) override
    {
        const bool isKnown = ask<bool>(reads::getReportRateInfo, id);
        if (isKnown)
            *info = reportRateInfo(id);
        return isKnown;
    }
    int getLevelValue(DeviceId id) override { return ask<int>(reads::getLevelValue, id); }
    bool setDpiButtonAndActiveSlot(DeviceId id, int dpiButtonId, int activeDpiSlotIndex) override
    {
        return ask<bool>(requests::setDpiButtonAndActiveSlot, id, dpiButtonId, activeDpiSlotIndex);
    }
    bool setDpiSlotValues(DeviceId id, const quint16 values[5], int dpiButtonId,
                          int activeDpiSlotIndex) override
    {
        return ask<bool>(requests::setDpiSlotValues, id, values, dpiButtonId, activeDpiSlotIndex);
    }
    bool requestInitialState1(DeviceId id) override { return ask<bool>(requests::requestInitialState1, id); }
    bool requestInitialState2(DeviceId id) override { return ask<bool>(requests::requestInitialState2, id); }
    bool requestInitialState3(DeviceId id) override { return ask<bool>(requests::requestInitialState3, id); }

protected:
    /// Records the operation and answers as the timeline has it: whether a request is accepted, or the value that is
    /// read. On the thread of the call.
    virtual QJsonValue answer(const DeviceOperation &operation, std::optional<DeviceId> id,
                              const QJsonArray &arguments) = 0;
    /// When the answer to getReportRateInfo was true.
    virtual ReportRateInfo reportRateInfo(DeviceId id) const = 0;

    /// What a mouse with these values answers to a read of one of them.
    template <typename Values>
    static QJsonValue valueRead(const DeviceOperation &operation, const Values &values)
    {
        if (&operation == &reads::getFirmwareVersion)
            return timelineValue(values.firmwareVersion);
        if (&operation == &reads::hasBatteryLevel)
            return values.hasBatteryLevel;
        if (&operation == &reads::getBatteryLevel)
            return values.batteryLevel;
        if (&operation == &reads::getStatusValue)
            return values.statusValue;
        if (&operation == &reads::getDeviceValue)
            return values.deviceValue;
        if (&operation == &reads::getLevelValue)
            return values.levelValue;
        if (&operation == &reads::isSmartPointerSupported)
            return values.isSmartPointerSupported;
        return timelineValue(values.forwardedResult);
    }

private:
    template <typename Result, typename... Arguments>
    Result ask(const DeviceOperation &operation, std::optional<DeviceId> id, Arguments... arguments)
    {
        return takenValue<Result>(answer(operation, id, {timelineValue(arguments)...}));
    }
};
