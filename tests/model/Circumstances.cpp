#include "Circumstances.h"

#include <algorithm>
#include <array>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

using Kind = Step::Kind;

bool isOf(const MadeStep &made, Kind kind)
{
    return made.step.kind == kind;
}

const Model::Device *deviceBefore(const MadeStep &made)
{
    if (isWithoutDevice(made.step.kind))
        return nullptr;
    return &made.before.devices.at(static_cast<std::size_t>(made.step.slot)).value();
}

bool isOn(const MadeStep &made, Physical physical)
{
    const Model::Device *device = deviceBefore(made);
    return device && device->physical == physical;
}

// The receiver's getters answer true or false as well.
bool isAnsweredRequest(const QString &line, QLatin1StringView answer)
{
    const QString name = line.section("] "_L1, 1);
    return line.startsWith("receiver"_L1) && line.section(" -> "_L1, 1).startsWith(answer) &&
           (name.startsWith("set"_L1) || name.startsWith("request"_L1));
}

bool hasRequest(const MadeStep &made, QLatin1StringView answer)
{
    return std::any_of(made.after.lines.cbegin(), made.after.lines.cend(),
                       [&](const QString &line) { return isAnsweredRequest(line, answer); });
}

// What a start hears from its receiver; null when it asks none.
const ReceiverAnswers *heardByStart(const MadeStep &made)
{
    if (!isOf(made, Kind::Start))
        return nullptr;
    const std::optional<int> receiver = receiverOf(deviceBefore(made)->physical);
    return receiver ? &made.before.receivers.at(static_cast<std::size_t>(*receiver)).answers : nullptr;
}

template <int ReceiverAnswers::*value>
bool isStartTold(const MadeStep &made, int smallest, int largest)
{
    const ReceiverAnswers *heard = heardByStart(made);
    return heard && heard->*value >= smallest && heard->*value <= largest;
}

template <bool ReceiverAnswers::*value>
bool isStartDenied(const MadeStep &made)
{
    const ReceiverAnswers *heard = heardByStart(made);
    return heard && !(heard->*value);
}

bool isStartBehind(const MadeStep &made, int starts)
{
    return isOf(made, Kind::Start) && made.before.registrations(made.step.slot) == starts;
}

bool isStopBehind(const MadeStep &made, bool isStarted)
{
    return isOf(made, Kind::Stop) && (made.before.registrations(made.step.slot) > 0) == isStarted;
}

bool isLogOf(const MadeStep &made, bool isDebugOn, bool isWarningOn)
{
    return deviceBefore(made) && made.before.isDebugOn == isDebugOn && made.before.isWarningOn == isWarningOn;
}

bool isListOf(const MadeStep &made, qsizetype smallest, qsizetype largest)
{
    const qsizetype size = made.step.texts.size();
    return isOf(made, Kind::SetDpiSlotValues) && size >= smallest && size <= largest;
}

bool isConfirmation(const MadeStep &made)
{
    return isOf(made, Kind::DpiSlotValuesConfirmed) || isOf(made, Kind::ActiveDpiSlotIndexConfirmed) ||
           isOf(made, Kind::DpiButtonIdConfirmed) || isOf(made, Kind::ReportRateConfirmed);
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

bool isConfirmationWhile(const MadeStep &made, bool isPending)
{
    return isConfirmation(made) && isPendingFor(made.step.kind, *deviceBefore(made)) == isPending;
}

bool isReceiverSignal(const MadeStep &made)
{
    return isOf(made, Kind::ReceiverDpiMinChanged) || isOf(made, Kind::ReceiverDpiMaxChanged);
}

std::size_t listenerCount(const MadeStep &made)
{
    return made.before.receivers.at(static_cast<std::size_t>(made.step.receiver)).listeners.size();
}

bool isQueueOfDevice(const MadeStep &made)
{
    return std::any_of(made.before.queue.cbegin(), made.before.queue.cend(),
                       [&](const Model::QueuedCall &call) { return call.slot == made.step.slot; });
}

bool hasKeptBack(const MadeStep &made)
{
    return std::any_of(
        made.before.receivers.cbegin(), made.before.receivers.cend(), [&](const Model::Receiver &receiver) {
            return receiver.reportInsideRequest && receiver.reportInsideRequest->slot == made.step.slot;
        });
}

}  // namespace

const Step *reportInsideRequest(const MadeStep &made)
{
    // The one that is kept back for a device dies with it.
    if (isOf(made, Kind::DestroyDevice))
        return nullptr;
    for (std::size_t index = 0; index < made.before.receivers.size(); ++index) {
        const StepPointer &report = made.before.receivers.at(index).reportInsideRequest;
        if (report && !made.after.receivers.at(index).reportInsideRequest)
            return report.get();
    }
    return nullptr;
}

const std::vector<Circumstance> &circumstances()
{

    constexpr int smallestInt = std::numeric_limits<int>::min();
    constexpr int largestInt = std::numeric_limits<int>::max();
    constexpr int many = 1000;
    static const std::vector<Circumstance> all{
        {"a request that is taken", [](const MadeStep &made) { return hasRequest(made, "true"_L1); }},
        {"a request that is refused", [](const MadeStep &made) { return hasRequest(made, "false"_L1); }},

        {"a start that hears a large firmware version",
         [](const MadeStep &made) {
             const ReceiverAnswers *heard = heardByStart(made);
             return heard && heard->firmwareVersion > uint(largestInt);
         }},
        {"a start that hears a battery level below 0",
         [](const MadeStep &made) {
             return isStartTold<&ReceiverAnswers::batteryLevel>(made, smallestInt, -1);
         }},
        {"a start that hears a battery level above 100",
         [](const MadeStep &made) {
             return isStartTold<&ReceiverAnswers::batteryLevel>(made, 101, largestInt);
         }},
        {"a start that hears a status value below 0",
         [](const MadeStep &made) {
             return isStartTold<&ReceiverAnswers::statusValue>(made, smallestInt, -1);
         }},
        {"a start that hears a status value above 16 bits",
         [](const MadeStep &made) {
             return isStartTold<&ReceiverAnswers::statusValue>(made, 65536, largestInt);
         }},
        {"a start that hears a device value below 0",
         [](const MadeStep &made) {
             return isStartTold<&ReceiverAnswers::deviceValue>(made, smallestInt, -1);
         }},
        {"a start that hears a device value above 16 bits",
         [](const MadeStep &made) {
             return isStartTold<&ReceiverAnswers::deviceValue>(made, 65536, largestInt);
         }},
        {"a start that hears a level value below 0",
         [](const MadeStep &made) {
             return isStartTold<&ReceiverAnswers::levelValue>(made, smallestInt, -1);
         }},
        {"a start that hears a level value above 16 bits",
         [](const MadeStep &made) {
             return isStartTold<&ReceiverAnswers::levelValue>(made, 65536, largestInt);
         }},
        {"a start without a battery level", isStartDenied<&ReceiverAnswers::hasBatteryLevel>},
        {"a start without report rates", isStartDenied<&ReceiverAnswers::hasReportRateInfo>},
        {"a start without a smart pointer", isStartDenied<&ReceiverAnswers::isSmartPointerSupported>},
        {"a start that is refused its state", isStartDenied<&ReceiverAnswers::acceptsRequests>},
        {"a first start", [](const MadeStep &made) { return isStartBehind(made, 0); }},
        {"a second start", [](const MadeStep &made) { return isStartBehind(made, 1); }},
        {"a stop behind a start", [](const MadeStep &made) { return isStopBehind(made, true); }},
        {"a stop without a start", [](const MadeStep &made) { return isStopBehind(made, false); }},

        {"a device on the second receiver",
         [](const MadeStep &made) { return isOn(made, Physical::SecondReceiver); }},
        {"a device with a physical device that is no receiver",
         [](const MadeStep &made) { return isOn(made, Physical::NoReceiver); }},
        {"a device without a physical device",
         [](const MadeStep &made) { return isOn(made, Physical::Nothing); }},
        {"devices in all slots",
         [](const MadeStep &made) { return made.before.creationOrder.size() == deviceSlotCount; }},

        {"debug off and warning on", [](const MadeStep &made) { return isLogOf(made, false, true); }},
        {"debug on and warning off", [](const MadeStep &made) { return isLogOf(made, true, false); }},
        {"debug and warning off", [](const MadeStep &made) { return isLogOf(made, false, false); }},
        {"only critical off",
         [](const MadeStep &made) {
             return isOf(made, Kind::Initialize) &&
                    made.step.logSwitches == std::array<bool, 3>{true, true, false};
         }},

        {"a list of no slot value", [](const MadeStep &made) { return isListOf(made, 0, 0); }},
        {"a list of one slot value", [](const MadeStep &made) { return isListOf(made, 1, 1); }},
        {"a list of four slot values", [](const MadeStep &made) { return isListOf(made, 4, 4); }},
        {"a list of six slot values", [](const MadeStep &made) { return isListOf(made, 6, 6); }},
        {"a list of a thousand slot values", [](const MadeStep &made) { return isListOf(made, many, many); }},

        {"a confirmation that agrees",
         [](const MadeStep &made) {
             return isConfirmationWhile(made, true) &&
                    !isPendingFor(made.step.kind,
                                  *made.after.devices.at(static_cast<std::size_t>(made.step.slot)));
         }},
        {"a confirmation that disagrees",
         [](const MadeStep &made) { return isConfirmation(made) && hasRequest(made, "true"_L1); }},
        {"a confirmation that nothing waits for",
         [](const MadeStep &made) { return isConfirmationWhile(made, false); }},

        {"queued calls that are delivered",
         [](const MadeStep &made) {
             return isOf(made, Kind::DeliverQueuedCalls) && !made.before.queue.empty();
         }},
        {"queued calls that die with their device",
         [](const MadeStep &made) { return isOf(made, Kind::DestroyDevice) && isQueueOfDevice(made); }},
        {"a kept back report that dies with its device",
         [](const MadeStep &made) { return isOf(made, Kind::DestroyDevice) && hasKeptBack(made); }},
        {"a report inside a request of another device",
         [](const MadeStep &made) {
             const Step *report = reportInsideRequest(made);
             return report && report->slot != made.step.slot;
         }},
        {"a receiver's signal that nobody hears",
         [](const MadeStep &made) { return isReceiverSignal(made) && listenerCount(made) == 0; }},
        {"a receiver's signal that several devices hear",
         [](const MadeStep &made) { return isReceiverSignal(made) && listenerCount(made) > 1; }},
    };
    return all;
}
