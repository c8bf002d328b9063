#include "SimulatedReceiver.h"
#include "Timeline.h"

#include <QtCore/QMutexLocker>

using namespace Qt::StringLiterals;

template <typename Value>
Value SimulatedReceiver::readValue(const char *operation, DeviceId id, Value SimulatedMouse::*member,
                                   const QJsonArray &arguments)
{
    const QString name = QString::fromLatin1(operation);
    std::optional<SimulatedMouse> mouse;
    {
        const QMutexLocker locker(&m_mutex);
        const auto known = m_mice.constFind(id);
        if (known != m_mice.constEnd())
            mouse = *known;
    }
    const std::optional<ReceiverFault> fault = mouse ? takeFault(name, id) : std::nullopt;
    Value value = mouse ? (*mouse).*member : Value{};
    if (fault && fault->effect == ReceiverFault::Effect::Refuse)
        value = Value{};
    if (fault && fault->effect == ReceiverFault::Effect::Alter) {
        if constexpr (std::is_same_v<Value, bool>)
            value = fault->arguments.at(0).toBool();
        else
            value = static_cast<Value>(fault->arguments.at(0).toInteger());
    }
    timeline().record(TimelineEntry::Kind::Receiver, id, name, arguments, timelineValue(value));
    if (fault)
        recordFault(*fault, id);
    if (!mouse)
        recordUnknownMouse(id);
    return value;
}

quintptr SimulatedReceiver::forwardedCall(quintptr argument1, quintptr argument2, quintptr argument3)
{
    timeline().record(TimelineEntry::Kind::Receiver, {}, u"forwardedCall"_s,
                      {timelineValue(argument1), timelineValue(argument2), timelineValue(argument3)},
                      timelineValue(argument1));
    return argument1;
}

uint SimulatedReceiver::getFirmwareVersion(DeviceId id)
{
    return readValue("getFirmwareVersion", id, &SimulatedMouse::firmwareVersion);
}

bool SimulatedReceiver::hasBatteryLevel(DeviceId id)
{
    return readValue("hasBatteryLevel", id, &SimulatedMouse::hasBatteryLevel);
}

int SimulatedReceiver::getBatteryLevel(DeviceId id)
{
    return readValue("getBatteryLevel", id, &SimulatedMouse::batteryLevel);
}

bool SimulatedReceiver::setDisabledButtonsOrKeysMask(DeviceId id, quint8 mask)
{
    return request("setDisabledButtonsOrKeysMask", id, {mask});
}

int SimulatedReceiver::getStatusValue(DeviceId id)
{
    return readValue("getStatusValue", id, &SimulatedMouse::statusValue);
}

int SimulatedReceiver::getDeviceValue(DeviceId id)
{
    return readValue("getDeviceValue", id, &SimulatedMouse::deviceValue);
}

quintptr SimulatedReceiver::forwardedOperation(DeviceId id, quintptr argument2, quintptr argument3)
{
    return readValue("forwardedOperation", id, &SimulatedMouse::forwardedResult,
                     {timelineValue(argument2), timelineValue(argument3)});
}

bool SimulatedReceiver::isSmartPointerSupported(DeviceId id)
{
    return readValue("isSmartPointerSupported", id, &SimulatedMouse::isSmartPointerSupported);
}

bool SimulatedReceiver::setReportRate(DeviceId id, int rate)
{
    return request("setReportRate", id, {rate});
}

bool SimulatedReceiver::getReportRateInfo(DeviceId id, ReportRateInfo *info)
{
    const bool isKnown = readValue("getReportRateInfo", id, &SimulatedMouse::knowsReportRates);
    if (isKnown)
        *info = mouse(id).reportRateInfo();
    return isKnown;
}

int SimulatedReceiver::getLevelValue(DeviceId id)
{
    return readValue("getLevelValue", id, &SimulatedMouse::levelValue);
}

bool SimulatedReceiver::setDpiButtonAndActiveSlot(DeviceId id, int dpiButtonId, int activeDpiSlotIndex)
{
    return request("setDpiButtonAndActiveSlot", id, {dpiButtonId, activeDpiSlotIndex});
}

bool SimulatedReceiver::setDpiSlotValues(DeviceId id, const quint16 values[5], int dpiButtonId,
                                         int activeDpiSlotIndex)
{
    return request("setDpiSlotValues", id, {timelineValue(values), dpiButtonId, activeDpiSlotIndex});
}

bool SimulatedReceiver::requestInitialState2(DeviceId id)
{
    return request("requestInitialState2", id, {});
}

bool SimulatedReceiver::requestInitialState1(DeviceId id)
{
    return request("requestInitialState1", id, {});
}

bool SimulatedReceiver::requestInitialState3(DeviceId id)
{
    return request("requestInitialState3", id, {});
}
