#include "FakeReceiver.h"

#include "Timeline.h"

int FakeReceiver::connectionCount(const char *signal) const
{
    return receivers(QByteArray::number(QSIGNAL_CODE).append(signal).constData());
}

QJsonValue FakeReceiver::answer(const DeviceOperation &operation, std::optional<DeviceId> id,
                                const QJsonArray &arguments)
{
    const bool isRequest = operation.side == DeviceOperation::Side::Request;
    const QJsonValue result = isRequest                                 ? answers.acceptsRequests
                              : &operation == &reads::getReportRateInfo ? answers.hasReportRateInfo
                                                                        : valueRead(operation, answers);
    timeline().record(TimelineEntry::Kind::Receiver, id, operation.text(), arguments, result);
    if (isRequest && duringRequest)
        duringRequest(operation.text());
    return result;
}

ReportRateInfo FakeReceiver::reportRateInfo(DeviceId /*id*/) const
{
    return answers.reportRateInfo;
}
