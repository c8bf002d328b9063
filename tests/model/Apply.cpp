#include "Lines.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace Model {

namespace {

using Kind = Step::Kind;

QString callLine(const Step &step, DeviceId id)
{
    return u"call ["_s + QString::number(id) + u"] "_s + callText(step);
}

void receiverSignal(World &world, int receiver, const Call &call)
{
    const std::vector<int> listeners = world.receivers.at(static_cast<std::size_t>(receiver)).listeners;
    for (const int slot : listeners)
        callOnDeviceThread(world, world.deviceIn(slot), call);
}

Call dpiMinHandler(int value)
{
    return [value](World &world, Device &device) { onDpiMinChanged(world, device, value); };
}

Call dpiMaxHandler(int value)
{
    return [value](World &world, Device &device) { onDpiMaxChanged(world, device, value); };
}

void forwardToPhysicalDevice(World &world, const Device &device, const Step &step)
{
    const std::optional<int> receiver = ::receiverOf(device.physical);
    const quintptr result =
        receiver ? world.receiverOf(device).answers.forwardedResult : plainForwardedResult;
    const QString arguments = argumentText(step.words[0], step.words[1], step.words[2]);
    writeLine(world, callLine(step, device.id) + u" -> "_s + argumentText(result));
    writeLine(world, u"receiver forwardedCall("_s + arguments + u") -> "_s + argumentText(result));
}

// The device's id takes the place of the first argument.
void query26(World &world, const Device &device, const Step &step)
{
    const quintptr result = device.isBound ? world.receiverOf(device).answers.forwardedResult : 0;
    writeLine(world, callLine(step, device.id) + u" -> "_s + argumentText(result));
    if (device.isBound) {
        const QString arguments = argumentText(step.words[1], step.words[2]);
        writeLine(world, u"receiver [%1] forwardedOperation(%2) -> %3"_s.arg(
                             QString::number(device.id), arguments, argumentText(result)));
    }
}

void performOnHost(World &world, const Step &step)
{
    switch (step.kind) {
    case Kind::CreateDevice:
        writeLine(world, callLine(step, deviceIds.at(static_cast<std::size_t>(step.slot))));
        create(world, step.slot, step.physical);
        break;
    case Kind::Initialize:
        writeLine(world, u"call "_s + callText(step));
        world.isDebugOn = step.logSwitches[0];
        world.isWarningOn = step.logSwitches[1];
        break;
    case Kind::ChangeReceiver:
        world.receivers.at(static_cast<std::size_t>(step.receiver)).answers = step.answers;
        break;
    default:
        deliverQueuedCalls(world);
    }
}

// Operations that are no plain calls with a line of their own; answers whether it is one of those.
bool performSpecial(World &world, Device &device, const Step &step)
{
    const int number = step.number;
    switch (step.kind) {
    case Kind::ReceiverDpiMinChanged:
        receiverSignal(world, step.receiver, dpiMinHandler(number));
        return true;
    case Kind::ReceiverDpiMaxChanged:
        receiverSignal(world, step.receiver, dpiMaxHandler(number));
        return true;
    case Kind::InvokeOnDpiMinChanged:
        callOnDeviceThread(world, device, dpiMinHandler(number));
        return true;
    case Kind::InvokeOnDpiMaxChanged:
        callOnDeviceThread(world, device, dpiMaxHandler(number));
        return true;
    case Kind::InvokeOnPpidChanged:
        callOnDeviceThread(world, device, [ppid = step.text](World &itsWorld, Device &itsDevice) {
            onPpidChanged(itsWorld, itsDevice, ppid);
        });
        return true;
    case Kind::InvokeTimerTimeout:
        callOnDeviceThread(world, device, &timerTimeout);
        return true;
    case Kind::ForwardToPhysicalDevice:
        forwardToPhysicalDevice(world, device, step);
        return true;
    case Kind::Query26:
        query26(world, device, step);
        return true;
    case Kind::CallWhatDoesNothing:
        return true;
    default:
        return false;
    }
}

void performCall(World &world, Device &device, const Step &step)
{
    const int number = step.number;
    switch (step.kind) {
    case Kind::DestroyDevice:
        return destroy(world, step.slot);
    case Kind::Start:
        return start(world, device);
    case Kind::Stop:
        return stop(world, device);
    case Kind::SetFirmwareVersion:
        return setFirmwareVersion(world, device, step.firmwareVersion);
    case Kind::SetBatteryLevel:
        return setBatteryLevel(world, device, number);
    case Kind::DpiValueChangedCallBack:
        return dpiValueChanged(world, device, number);
    case Kind::PpidChangedCallBack:
        return onPpidChanged(world, device, step.text);
    case Kind::SetDpiSlotValues:
        return setDpiSlotValues(world, device, step.texts);
    case Kind::DpiSlotValuesConfirmed:
        return dpiSlotValuesConfirmed(world, device, step.slotValues);
    case Kind::DpiSlotValuesChangedCallBack:
        return dpiSlotValuesChanged(world, device,
                                    QList<quint16>(step.slotValues.cbegin(), step.slotValues.cend()));
    case Kind::SetActiveDpiSlotIndex:
        return setActiveDpiSlotIndex(world, device, number);
    case Kind::ActiveDpiSlotIndexConfirmed:
        return activeDpiSlotIndexConfirmed(world, device, number);
    case Kind::ActiveDpiSlotIndexChangedCallBack:
        return activeDpiSlotIndexChanged(world, device, number);
    case Kind::SetDpiButtonId:
        return setDpiButtonId(world, device, number);
    case Kind::DpiButtonIdConfirmed:
        return dpiButtonIdConfirmed(world, device, number);
    case Kind::DpiButtonIdChangedCallBack:
        return dpiButtonIdChanged(world, device, number);
    case Kind::SetReportRate:
        return setReportRate(world, device, number);
    case Kind::ReportRateConfirmed:
        return reportRateConfirmed(world, device, number);
    case Kind::ReportRateChangedCallBack:
        return reportRateChanged(world, device, step.rateInfo);
    case Kind::ApplySettings:
        return applySettings(world, step.settings);
    case Kind::ResetSettings:
        return resetSettings(world);
    case Kind::CapabilityChangedCallBack:
        return capabilityChanged(world, device, number);
    case Kind::SetButtonsOrKeysToDefault:
        return setButtonsOrKeysToDefault(world, device);
    case Kind::DisbaleButtonsOrKeys:
        return disableButtonsOrKeys(world, device, step.numbers);
    case Kind::MouseEventCallBack:
        return mouseEvent(world, device, number);
    default:
        Q_UNREACHABLE();
    }
}

}  // namespace

void apply(World &world, const StepPointer &step)
{
    if (step->route == Step::Route::InsideRequest) {
        world.receiverOf(world.deviceIn(step->slot)).reportInsideRequest = step;
        return;
    }
    world.isOnOtherThread = step->route == Step::Route::OtherThread;
    perform(world, step);
    world.isOnOtherThread = false;
}

void perform(World &world, const StepPointer &step)
{
    if (isWithoutDevice(step->kind)) {
        performOnHost(world, *step);
        return;
    }
    Device &device = world.deviceIn(step->slot);
    if (performSpecial(world, device, *step))
        return;
    // The library is loaded under its own name, so a start finds it.
    const bool hasResult = step->kind == Kind::Start;
    writeLine(world, callLine(*step, device.id) + (hasResult ? u" -> true"_s : QString()));
    performCall(world, device, *step);
}

}  // namespace Model
