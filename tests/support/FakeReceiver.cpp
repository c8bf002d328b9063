#include "FakeReceiver.h"

#include "Timeline.h"
#include "TimelineValue.h"

FakeReceiver::FakeReceiver(Timeline &timeline) : ReceiverBase(timeline) {}

template <typename Result>
Result FakeReceiver::answer(const char *operation, DeviceId id, const QJsonArray &arguments, Result result)
{
    timeline().record(TimelineEntry::Kind::Receiver, id, QString::fromLatin1(operation), arguments,
                      timelineValue(result));
    return result;
}

bool FakeReceiver::answerRequest(const char *operation, DeviceId id, const QJsonArray &arguments)
{
    const bool isAccepted = answer(operation, id, arguments, answers.acceptsRequests);
    if (duringRequest)
        duringRequest(QString::fromLatin1(operation));
    return isAccepted;
}

int FakeReceiver::connectionCount(const char *signal) const
{
    return receivers(QByteArray::number(QSIGNAL_CODE).append(signal).constData());
}

quintptr FakeReceiver::forwardedCall(quintptr argument1, quintptr argument2, quintptr argument3)
{
    timeline().record(TimelineEntry::Kind::Receiver, {}, QStringLiteral("forwardedCall"),
                      {timelineValue(argument1), timelineValue(argument2), timelineValue(argument3)},
                      timelineValue(answers.forwardedResult));
    return answers.forwardedResult;
}

uint FakeReceiver::getFirmwareVersion(DeviceId id)
{
    return answer("getFirmwareVersion", id, {}, answers.firmwareVersion);
}

bool FakeReceiver::hasBatteryLevel(DeviceId id)
{
    return answer("hasBatteryLevel", id, {}, answers.hasBatteryLevel);
}

int FakeReceiver::getBatteryLevel(DeviceId id)
{
    return answer("getBatteryLevel", id, {}, answers.batteryLevel);
}

bool FakeReceiver::setDisabledButtonsOrKeysMask(DeviceId id, quint8 mask)
{
    return answerRequest("setDisabledButtonsOrKeysMask", id, {mask});
}

int FakeReceiver::getStatusValue(DeviceId id)
{
    return answer("getStatusValue", id, {}, answers.statusValue);
}

int FakeReceiver::getDeviceValue(DeviceId id)
{
    return answer("getDeviceValue", id, {}, answers.deviceValue);
}

quintptr FakeReceiver::forwardedOperation(DeviceId id, quintptr argument2, quintptr argument3)
{
    return answer("forwardedOperation", id, {timelineValue(argument2), timelineValue(argument3)},
                  answers.forwardedResult);
}

bool FakeReceiver::isSmartPointerSupported(DeviceId id)
{
    return answer("isSmartPointerSupported", id, {}, answers.isSmartPointerSupported);
}

bool FakeReceiver::setReportRate(DeviceId id, int rate)
{
    return answerRequest("setReportRate", id, {rate});
}

bool FakeReceiver::getReportRateInfo(DeviceId id, ReportRateInfo *info)
{
    if (answers.hasReportRateInfo)
        *info = answers.reportRateInfo;
    return answer("getReportRateInfo", id, {}, answers.hasReportRateInfo);
}

int FakeReceiver::getLevelValue(DeviceId id)
{
    return answer("getLevelValue", id, {}, answers.levelValue);
}

bool FakeReceiver::setDpiButtonAndActiveSlot(DeviceId id, int dpiButtonId, int activeDpiSlotIndex)
{
    return answerRequest("setDpiButtonAndActiveSlot", id, {dpiButtonId, activeDpiSlotIndex});
}

bool FakeReceiver::setDpiSlotValues(DeviceId id, const quint16 values[5], int dpiButtonId,
                                    int activeDpiSlotIndex)
{
    return answerRequest("setDpiSlotValues", id, {timelineValue(values), dpiButtonId, activeDpiSlotIndex});
}

bool FakeReceiver::requestInitialState2(DeviceId id)
{
    return answerRequest("requestInitialState2", id, {});
}

bool FakeReceiver::requestInitialState1(DeviceId id)
{
    return answerRequest("requestInitialState1", id, {});
}

bool FakeReceiver::requestInitialState3(DeviceId id)
{
    return answerRequest("requestInitialState3", id, {});
}
