#include "Circumstances.h"

#include "ScenarioCommand.h"

#include <algorithm>
#include <array>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

using Kind = Operation::Kind;

bool isOf(const ModelStep &step, Kind kind)
{
    return step.operation.kind == kind;
}

const Model::Device *deviceBefore(const ModelStep &step)
{
    if (isWithoutDevice(step.operation.kind))
        return nullptr;
    return &step.before.devices.at(static_cast<std::size_t>(step.operation.slot)).value();
}

bool isOn(const ModelStep &step, Physical physical)
{
    const Model::Device *device = deviceBefore(step);
    return device && device->physical == physical;
}

bool isAnsweredRequest(const QString &line, QLatin1StringView answer)
{
    return line.startsWith("receiver"_L1) && line.section(" -> "_L1, 1).startsWith(answer) &&
           answeredRequests().contains(line.section("] "_L1, 1).section(u'(', 0, 0));
}

bool hasRequest(const ModelStep &step, QLatin1StringView answer)
{
    return std::any_of(step.after.lines.cbegin(), step.after.lines.cend(),
                       [&](const QString &line) { return isAnsweredRequest(line, answer); });
}

// What a start hears from its receiver; null when it asks none.
const ReceiverAnswers *heardByStart(const ModelStep &step)
{
    if (!isOf(step, Kind::Start))
        return nullptr;
    const std::optional<int> receiver = receiverOf(deviceBefore(step)->physical);
    return receiver ? &step.before.receivers.at(static_cast<std::size_t>(*receiver)).answers : nullptr;
}

template <int ReceiverAnswers::*value>
bool isStartTold(const ModelStep &step, int smallest, int largest)
{
    const ReceiverAnswers *heard = heardByStart(step);
    return heard && heard->*value >= smallest && heard->*value <= largest;
}

template <bool ReceiverAnswers::*value>
bool isStartDenied(const ModelStep &step)
{
    const ReceiverAnswers *heard = heardByStart(step);
    return heard && !(heard->*value);
}

bool isStartBehind(const ModelStep &step, int starts)
{
    return isOf(step, Kind::Start) && step.before.registrations(step.operation.slot) == starts;
}

bool isStopBehind(const ModelStep &step, bool isStarted)
{
    return isOf(step, Kind::Stop) && (step.before.registrations(step.operation.slot) > 0) == isStarted;
}

bool isLogOf(const ModelStep &step, bool isDebugOn, bool isWarningOn)
{
    return deviceBefore(step) && step.before.isDebugOn == isDebugOn && step.before.isWarningOn == isWarningOn;
}

bool isListOf(const ModelStep &step, qsizetype smallest, qsizetype largest)
{
    const qsizetype size = step.operation.texts.size();
    return isOf(step, Kind::SetDpiSlotValues) && size >= smallest && size <= largest;
}

bool isConfirmation(const ModelStep &step)
{
    return isOf(step, Kind::DpiSlotValuesConfirmed) || isOf(step, Kind::ActiveDpiSlotIndexConfirmed) ||
           isOf(step, Kind::DpiButtonIdConfirmed) || isOf(step, Kind::ReportRateConfirmed);
}

bool isPendingFor(Kind confirmation, const Model::Device &device)
{
    switch (confirmation) {
    case Kind::DpiSlotValuesConfirmed:
        return device.isSlotValuesPending;
    case Kind::ActiveDpiSlotIndexConfirmed:
        return device.isActiveSlotPending;
    case Kind::DpiButtonIdConfirmed:
        return device.isButtonIdPending;
    default:
        return device.isReportRatePending;
    }
}

bool isConfirmationWhile(const ModelStep &step, bool isPending)
{
    return isConfirmation(step) && isPendingFor(step.operation.kind, *deviceBefore(step)) == isPending;
}

bool isReceiverSignal(const ModelStep &step)
{
    return isOf(step, Kind::ReceiverDpiMinChanged) || isOf(step, Kind::ReceiverDpiMaxChanged);
}

std::size_t listenerCount(const ModelStep &step)
{
    return step.before.receivers.at(static_cast<std::size_t>(step.operation.receiver)).listeners.size();
}

bool isQueueOfDevice(const ModelStep &step)
{
    return std::any_of(step.before.queue.cbegin(), step.before.queue.cend(),
                       [&](const Model::QueuedCall &call) { return call.slot == step.operation.slot; });
}

bool hasKeptBack(const ModelStep &step)
{
    return std::any_of(
        step.before.receivers.cbegin(), step.before.receivers.cend(), [&](const Model::Receiver &receiver) {
            return receiver.reportInsideRequest && receiver.reportInsideRequest->slot == step.operation.slot;
        });
}

}  // namespace

const Operation *reportInsideRequest(const ModelStep &step)
{
    // The one that is kept back for a device dies with it.
    if (isOf(step, Kind::DestroyDevice))
        return nullptr;
    for (std::size_t index = 0; index < step.before.receivers.size(); ++index) {
        const OperationPointer &report = step.before.receivers.at(index).reportInsideRequest;
        if (report && !step.after.receivers.at(index).reportInsideRequest)
            return report.get();
    }
    return nullptr;
}

const std::vector<Circumstance> &circumstances()
{
    using Step = ModelStep;
    constexpr int smallestInt = std::numeric_limits<int>::min();
    constexpr int largestInt = std::numeric_limits<int>::max();
    constexpr int many = 1000;
    static const std::vector<Circumstance> all{
        {"a request that is taken", [](const Step &step) { return hasRequest(step, "true"_L1); }},
        {"a request that is refused", [](const Step &step) { return hasRequest(step, "false"_L1); }},

        {"a start that hears a large firmware version",
         [](const Step &step) {
             const ReceiverAnswers *heard = heardByStart(step);
             return heard && heard->firmwareVersion > uint(largestInt);
         }},
        {"a start that hears a battery level below 0",
         [](const Step &step) { return isStartTold<&ReceiverAnswers::batteryLevel>(step, smallestInt, -1); }},
        {"a start that hears a battery level above 100",
         [](const Step &step) { return isStartTold<&ReceiverAnswers::batteryLevel>(step, 101, largestInt); }},
        {"a start that hears a status value below 0",
         [](const Step &step) { return isStartTold<&ReceiverAnswers::statusValue>(step, smallestInt, -1); }},
        {"a start that hears a status value above 16 bits",
         [](const Step &step) {
             return isStartTold<&ReceiverAnswers::statusValue>(step, 65536, largestInt);
         }},
        {"a start that hears a device value below 0",
         [](const Step &step) { return isStartTold<&ReceiverAnswers::deviceValue>(step, smallestInt, -1); }},
        {"a start that hears a device value above 16 bits",
         [](const Step &step) {
             return isStartTold<&ReceiverAnswers::deviceValue>(step, 65536, largestInt);
         }},
        {"a start that hears a level value below 0",
         [](const Step &step) { return isStartTold<&ReceiverAnswers::levelValue>(step, smallestInt, -1); }},
        {"a start that hears a level value above 16 bits",
         [](const Step &step) { return isStartTold<&ReceiverAnswers::levelValue>(step, 65536, largestInt); }},
        {"a start without a battery level", isStartDenied<&ReceiverAnswers::hasBatteryLevel>},
        {"a start without report rates", isStartDenied<&ReceiverAnswers::hasReportRateInfo>},
        {"a start without a smart pointer", isStartDenied<&ReceiverAnswers::isSmartPointerSupported>},
        {"a start that is refused its state", isStartDenied<&ReceiverAnswers::acceptsRequests>},
        {"a first start", [](const Step &step) { return isStartBehind(step, 0); }},
        {"a second start", [](const Step &step) { return isStartBehind(step, 1); }},
        {"a stop behind a start", [](const Step &step) { return isStopBehind(step, true); }},
        {"a stop without a start", [](const Step &step) { return isStopBehind(step, false); }},

        {"a device on the second receiver",
         [](const Step &step) { return isOn(step, Physical::SecondReceiver); }},
        {"a device with a physical device that is no receiver",
         [](const Step &step) { return isOn(step, Physical::NoReceiver); }},
        {"a device without a physical device",
         [](const Step &step) { return isOn(step, Physical::Nothing); }},
        {"devices in all slots",
         [](const Step &step) { return step.before.creationOrder.size() == deviceSlotCount; }},

        {"debug off and warning on", [](const Step &step) { return isLogOf(step, false, true); }},
        {"debug on and warning off", [](const Step &step) { return isLogOf(step, true, false); }},
        {"debug and warning off", [](const Step &step) { return isLogOf(step, false, false); }},
        {"only critical off",
         [](const Step &step) {
             return isOf(step, Kind::Initialize) &&
                    step.operation.logSwitches == std::array<bool, 3>{true, true, false};
         }},

        {"a list of no slot value", [](const Step &step) { return isListOf(step, 0, 0); }},
        {"a list of one slot value", [](const Step &step) { return isListOf(step, 1, 1); }},
        {"a list of four slot values", [](const Step &step) { return isListOf(step, 4, 4); }},
        {"a list of six slot values", [](const Step &step) { return isListOf(step, 6, 6); }},
        {"a list of a thousand slot values", [](const Step &step) { return isListOf(step, many, many); }},

        {"a confirmation that agrees",
         [](const Step &step) {
             return isConfirmationWhile(step, true) &&
                    !isPendingFor(step.operation.kind,
                                  *step.after.devices.at(static_cast<std::size_t>(step.operation.slot)));
         }},
        {"a confirmation that disagrees",
         [](const Step &step) { return isConfirmation(step) && hasRequest(step, "true"_L1); }},
        {"a confirmation that nothing waits for",
         [](const Step &step) { return isConfirmationWhile(step, false); }},

        {"queued calls that are delivered",
         [](const Step &step) { return isOf(step, Kind::DeliverQueuedCalls) && !step.before.queue.empty(); }},
        {"queued calls that die with their device",
         [](const Step &step) { return isOf(step, Kind::DestroyDevice) && isQueueOfDevice(step); }},
        {"a kept back report that dies with its device",
         [](const Step &step) { return isOf(step, Kind::DestroyDevice) && hasKeptBack(step); }},
        {"a report inside a request of another device",
         [](const Step &step) {
             const Operation *report = reportInsideRequest(step);
             return report && report->slot != step.operation.slot;
         }},
        {"a receiver's signal that nobody hears",
         [](const Step &step) { return isReceiverSignal(step) && listenerCount(step) == 0; }},
        {"a receiver's signal that several devices hear",
         [](const Step &step) { return isReceiverSignal(step) && listenerCount(step) > 1; }},
    };
    return all;
}
