#include "Operation.h"

#include "TimelineValue.h"

using namespace Qt::StringLiterals;

namespace {

using Kind = Operation::Kind;

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
};

// In the order of the kinds.
constexpr std::array<Traits, kindCount> table{{
    {Kind::CreateDevice, "createLogicalDevice", Argument::None, Use::Host},
    {Kind::DestroyDevice, "destroyDevice", Argument::None, Use::Host},
    {Kind::Initialize, "initialize", Argument::Switches, Use::Host},
    {Kind::DeliverQueuedCalls, "deliverQueuedCalls", Argument::None, Use::Host},
    {Kind::ChangeReceiver, "changeReceiver", Argument::None, Use::Host},
    {Kind::Start, "start", Argument::None, Use::Call},
    {Kind::Stop, "stop", Argument::None, Use::Call},
    {Kind::ForwardToPhysicalDevice, "forwardToPhysicalDevice", Argument::Words, Use::Call},
    {Kind::Query26, "query26", Argument::Words, Use::Call},
    {Kind::CallWhatDoesNothing, "callWhatDoesNothing", Argument::Number, Use::Call},
    {Kind::SetFirmwareVersion, "setFirmwareVersion", Argument::Firmware, Use::Report},
    {Kind::SetBatteryLevel, "setBatteryLevel", Argument::Number, Use::Report},
    {Kind::ReceiverDpiMinChanged, "dpiMinChanged", Argument::Number, Use::Report},
    {Kind::ReceiverDpiMaxChanged, "dpiMaxChanged", Argument::Number, Use::Report},
    {Kind::InvokeOnDpiMinChanged, "onDpiMinChanged", Argument::Number, Use::Call},
    {Kind::InvokeOnDpiMaxChanged, "onDpiMaxChanged", Argument::Number, Use::Call},
    {Kind::DpiValueChangedCallBack, "dpiValueChangedCallBack", Argument::Number, Use::Report},
    {Kind::PpidChangedCallBack, "ppidChangedCallBack", Argument::Text, Use::Report},
    {Kind::InvokeOnPpidChanged, "onPPIDChanged", Argument::Text, Use::Call},
    {Kind::SetDpiSlotValues, "setDpiSlotValues", Argument::Texts, Use::Call},
    {Kind::DpiSlotValuesConfirmed, "dpiSlotValuesConfirmed", Argument::SlotValues, Use::Report},
    {Kind::DpiSlotValuesChangedCallBack, "dpiSlotValuesChangedCallBack", Argument::SlotValues, Use::Report},
    {Kind::SetActiveDpiSlotIndex, "setActiveDpiSlotIndex", Argument::Number, Use::Call},
    {Kind::ActiveDpiSlotIndexConfirmed, "activeDpiSlotIndexConfirmed", Argument::Number, Use::Report},
    {Kind::ActiveDpiSlotIndexChangedCallBack, "activeDpiSlotIndexChangedCallBack", Argument::Number,
     Use::Report},
    {Kind::SetDpiButtonId, "setDpiButtonId", Argument::Number, Use::Call},
    {Kind::DpiButtonIdConfirmed, "dpiButtonIdConfirmed", Argument::Number, Use::Report},
    {Kind::DpiButtonIdChangedCallBack, "dpiButtonIdChangedCallBack", Argument::Number, Use::Report},
    {Kind::SetReportRate, "setReportRate", Argument::Number, Use::Call},
    {Kind::ReportRateConfirmed, "reportRateConfirmed", Argument::Number, Use::Report},
    {Kind::ReportRateChangedCallBack, "reportRateChangedCallBack", Argument::RateInfo, Use::Report},
    {Kind::ApplySettings, "applySettings", Argument::Settings, Use::Call},
    {Kind::ResetSettings, "resetSettings", Argument::None, Use::Call},
    {Kind::CapabilityChangedCallBack, "capabilityChangedCallBack", Argument::Number, Use::Report},
    {Kind::SetButtonsOrKeysToDefault, "setButtonsOrKeysToDefault", Argument::None, Use::Call},
    {Kind::DisbaleButtonsOrKeys, "disbaleButtonsOrKeys", Argument::Numbers, Use::Call},
    {Kind::MouseEventCallBack, "mouseEventCallBack", Argument::Number, Use::ThreadBound},
    {Kind::InvokeTimerTimeout, "onSmartPointerCtrReleaseTimerTimeout", Argument::None, Use::Call},
}};

const Traits &traitsOf(Kind kind)
{
    const Traits &traits = table.at(static_cast<std::size_t>(kind));
    Q_ASSERT(traits.kind == kind);
    return traits;
}

template <typename... Values>
QString joined(const Values &...values)
{
    QStringList texts;
    (texts.append(readableValue(timelineValue(values))), ...);
    return texts.join(u", "_s);
}

QString argumentsOf(const Operation &operation)
{
    switch (traitsOf(operation.kind).argument) {
    case Argument::None:
        break;
    case Argument::Switches:
        return joined(operation.logSwitches[0], operation.logSwitches[1], operation.logSwitches[2]);
    case Argument::Words:
        return joined(operation.words[0], operation.words[1], operation.words[2]);
    case Argument::Number:
        return QString::number(operation.number);
    case Argument::Firmware:
        return QString::number(operation.firmwareVersion);
    case Argument::Text:
        return joined(operation.text);
    case Argument::Texts:
        return joined(operation.texts);
    case Argument::Numbers:
        return joined(operation.numbers);
    case Argument::Settings:
        return joined(operation.settings);
    case Argument::SlotValues:
        return joined(operation.slotValues.data());
    case Argument::RateInfo:
        return joined(&operation.rateInfo);
    }
    return {};
}

}  // namespace

const char *operationName(Kind kind)
{
    return traitsOf(kind).name;
}

QString callText(const Operation &operation)
{
    return QString::fromLatin1(operationName(operation.kind)) + u'(' + argumentsOf(operation) + u')';
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
