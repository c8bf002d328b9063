#include "Step.h"

#include "Lines.h"

using namespace Qt::StringLiterals;

namespace {

using Kind = Step::Kind;

enum class Argument {
    None,
    Switches,
    Words,
    Number,
    Firmware,
    Text,
    Texts,
    Numbers,
    Settings,
    SlotValues,
    RateInfo
};

enum class Use {
    Host,         // needs no device to be made on, or ends one; on the devices' thread
    ThreadBound,  // a call on a device, on its thread only
    Call,
    Report,  // a call that may come in the middle of a request
};

struct Traits
{
    Kind kind;
    const char *name;
    Argument argument;
    Use use;
    int weight;  // how often it is drawn, among the others
};

// In the order of the kinds.
constexpr std::array<Traits, kindCount> table{{
    {Kind::CreateDevice, "createLogicalDevice", Argument::None, Use::Host, 2},
    {Kind::DestroyDevice, "destroyDevice", Argument::None, Use::Host, 1},
    {Kind::Initialize, "initialize", Argument::Switches, Use::Host, 1},
    {Kind::DeliverQueuedCalls, "deliverQueuedCalls", Argument::None, Use::Host, 5},
    {Kind::ChangeReceiver, "changeReceiver", Argument::None, Use::Host, 3},
    {Kind::Start, "start", Argument::None, Use::Call, 5},
    {Kind::Stop, "stop", Argument::None, Use::Call, 1},
    {Kind::ForwardToPhysicalDevice, "forwardToPhysicalDevice", Argument::Words, Use::Call, 1},
    {Kind::Query26, "query26", Argument::Words, Use::Call, 1},
    {Kind::CallWhatDoesNothing, "callWhatDoesNothing", Argument::Number, Use::Call, 1},
    {Kind::SetFirmwareVersion, "setFirmwareVersion", Argument::Firmware, Use::Report, 1},
    {Kind::SetBatteryLevel, "setBatteryLevel", Argument::Number, Use::Report, 2},
    {Kind::ReceiverDpiMinChanged, "dpiMinChanged", Argument::Number, Use::Report, 3},
    {Kind::ReceiverDpiMaxChanged, "dpiMaxChanged", Argument::Number, Use::Report, 3},
    {Kind::InvokeOnDpiMinChanged, "onDpiMinChanged", Argument::Number, Use::Call, 1},
    {Kind::InvokeOnDpiMaxChanged, "onDpiMaxChanged", Argument::Number, Use::Call, 1},
    {Kind::DpiValueChangedCallBack, "dpiValueChangedCallBack", Argument::Number, Use::Report, 1},
    {Kind::PpidChangedCallBack, "ppidChangedCallBack", Argument::Text, Use::Report, 1},
    {Kind::InvokeOnPpidChanged, "onPPIDChanged", Argument::Text, Use::Call, 1},
    {Kind::SetDpiSlotValues, "setDpiSlotValues", Argument::Texts, Use::Call, 5},
    {Kind::DpiSlotValuesConfirmed, "dpiSlotValuesConfirmed", Argument::SlotValues, Use::Report, 4},
    {Kind::DpiSlotValuesChangedCallBack, "dpiSlotValuesChangedCallBack", Argument::SlotValues, Use::Report,
     2},
    {Kind::SetActiveDpiSlotIndex, "setActiveDpiSlotIndex", Argument::Number, Use::Call, 3},
    {Kind::ActiveDpiSlotIndexConfirmed, "activeDpiSlotIndexConfirmed", Argument::Number, Use::Report, 3},
    {Kind::ActiveDpiSlotIndexChangedCallBack, "activeDpiSlotIndexChangedCallBack", Argument::Number,
     Use::Report, 1},
    {Kind::SetDpiButtonId, "setDpiButtonId", Argument::Number, Use::Call, 3},
    {Kind::DpiButtonIdConfirmed, "dpiButtonIdConfirmed", Argument::Number, Use::Report, 3},
    {Kind::DpiButtonIdChangedCallBack, "dpiButtonIdChangedCallBack", Argument::Number, Use::Report, 1},
    {Kind::SetReportRate, "setReportRate", Argument::Number, Use::Call, 3},
    {Kind::ReportRateConfirmed, "reportRateConfirmed", Argument::Number, Use::Report, 3},
    {Kind::ReportRateChangedCallBack, "reportRateChangedCallBack", Argument::RateInfo, Use::Report, 2},
    {Kind::ApplySettings, "applySettings", Argument::Settings, Use::Call, 1},
    {Kind::ResetSettings, "resetSettings", Argument::None, Use::Call, 1},
    {Kind::CapabilityChangedCallBack, "capabilityChangedCallBack", Argument::Number, Use::Report, 1},
    {Kind::SetButtonsOrKeysToDefault, "setButtonsOrKeysToDefault", Argument::None, Use::Call, 1},
    {Kind::DisbaleButtonsOrKeys, "disbaleButtonsOrKeys", Argument::Numbers, Use::Call, 2},
    {Kind::MouseEventCallBack, "mouseEventCallBack", Argument::Number, Use::ThreadBound, 3},
    {Kind::InvokeTimerTimeout, "onSmartPointerCtrReleaseTimerTimeout", Argument::None, Use::Call, 1},
}};

const Traits &traitsOf(Kind kind)
{
    const Traits &traits = table.at(static_cast<std::size_t>(kind));
    Q_ASSERT(traits.kind == kind);
    return traits;
}

QString argumentsOf(const Step &step)
{
    switch (traitsOf(step.kind).argument) {
    case Argument::None:
        break;
    case Argument::Switches:
        return Model::argumentText(step.logSwitches[0], step.logSwitches[1], step.logSwitches[2]);
    case Argument::Words:
        return Model::argumentText(step.words[0], step.words[1], step.words[2]);
    case Argument::Number:
        return QString::number(step.number);
    case Argument::Firmware:
        return QString::number(step.firmwareVersion);
    case Argument::Text:
        return Model::argumentText(step.text);
    case Argument::Texts:
        return Model::argumentText(step.texts);
    case Argument::Numbers:
        return Model::argumentText(step.numbers);
    case Argument::Settings:
        return Model::argumentText(step.settings);
    case Argument::SlotValues:
        return Model::argumentText(step.slotValues.data());
    case Argument::RateInfo:
        return Model::argumentText(&step.rateInfo);
    }
    return {};
}

}  // namespace

Step stepOf(Kind kind, Step::Route route, int slot)
{
    Step step;
    step.kind = kind;
    step.route = route;
    step.slot = slot;
    return step;
}

const char *nameOf(Kind kind)
{
    return traitsOf(kind).name;
}

QString callText(const Step &step)
{
    return QString::fromLatin1(nameOf(step.kind)) + u'(' + argumentsOf(step) + u')';
}

int weightOf(Kind kind)
{
    return traitsOf(kind).weight;
}

bool isReport(Kind kind)
{
    return traitsOf(kind).use == Use::Report;
}

bool needsDeviceThread(Kind kind)
{
    const Use use = traitsOf(kind).use;
    return use == Use::Host || use == Use::ThreadBound;
}

bool isWithoutDevice(Kind kind)
{
    return traitsOf(kind).use == Use::Host && kind != Kind::DestroyDevice;
}

std::optional<int> receiverOf(Physical physical)
{
    switch (physical) {
    case Physical::FirstReceiver:
        return 0;
    case Physical::SecondReceiver:
        return 1;
    case Physical::NoReceiver:
    case Physical::Nothing:
        break;
    }
    return std::nullopt;
}
