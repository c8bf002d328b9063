#include "Lines.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace Model {

namespace {

using Kind = Operation::Kind;
using Handler = std::function<void(World &, Device &)>;

QString callLine(const Operation &operation, DeviceId id)
{
    return u"call ["_s + QString::number(id) + u"] "_s + callText(operation);
}

// A slot of the device that Qt calls: on the device's thread, whatever thread asks for it.
void callSlot(World &world, Device &device, const Handler &handler)
{
    if (world.isOnOtherThread)
        world.queue.push_back({device.slot, handler});
    else
        handler(world, device);
}

void receiverSignal(World &world, int receiver, const Handler &handler)
{
    const std::vector<int> listeners = world.receivers.at(static_cast<std::size_t>(receiver)).listeners;
    for (const int slot : listeners)
        callSlot(world, world.deviceIn(slot), handler);
}

Handler dpiMinHandler(int value)
{
    return [value](World &world, Device &device) { onDpiMinChanged(world, device, value); };
}

Handler dpiMaxHandler(int value)
{
    return [value](World &world, Device &device) { onDpiMaxChanged(world, device, value); };
}

void forwardToPhysicalDevice(World &world, const Device &device, const Operation &operation)
{
    const std::optional<int> receiver = ::receiverOf(device.physical);
    const quintptr result =
        receiver ? world.receiverOf(device).answers.forwardedResult : plainForwardedResult;
    const QString arguments = argumentText(operation.words[0], operation.words[1], operation.words[2]);
    writeLine(world, callLine(operation, device.id) + u" -> "_s + argumentText(result));
    writeLine(world, u"receiver forwardedCall("_s + arguments + u") -> "_s + argumentText(result));
}

// The device's id takes the place of the first argument.
void query26(World &world, const Device &device, const Operation &operation)
{
    const quintptr result = device.isBound ? world.receiverOf(device).answers.forwardedResult : 0;
    writeLine(world, callLine(operation, device.id) + u" -> "_s + argumentText(result));
    if (device.isBound) {
        const QString arguments = argumentText(operation.words[1], operation.words[2]);
        writeLine(world, u"receiver [%1] forwardedOperation(%2) -> %3"_s.arg(
                             QString::number(device.id), arguments, argumentText(result)));
    }
}

void performOnHost(World &world, const Operation &operation)
{
    switch (operation.kind) {
    case Kind::CreateDevice:
        writeLine(world, callLine(operation, deviceIds.at(static_cast<std::size_t>(operation.slot))));
        create(world, operation.slot, operation.physical);
        break;
    case Kind::Initialize:
        writeLine(world, u"call "_s + callText(operation));
        world.isDebugOn = operation.logSwitches[0];
        world.isWarningOn = operation.logSwitches[1];
        break;
    case Kind::ChangeReceiver:
        world.receivers.at(static_cast<std::size_t>(operation.receiver)).answers = operation.answers;
        break;
    default:
        deliverQueuedCalls(world);
    }
}

// Operations that are no plain calls with a line of their own; answers whether it is one of those.
bool performSpecial(World &world, Device &device, const Operation &operation)
{
    const int number = operation.number;
    switch (operation.kind) {
    case Kind::ReceiverDpiMinChanged:
        receiverSignal(world, operation.receiver, dpiMinHandler(number));
        return true;
    case Kind::ReceiverDpiMaxChanged:
        receiverSignal(world, operation.receiver, dpiMaxHandler(number));
        return true;
    case Kind::InvokeOnDpiMinChanged:
        callSlot(world, device, dpiMinHandler(number));
        return true;
    case Kind::InvokeOnDpiMaxChanged:
        callSlot(world, device, dpiMaxHandler(number));
        return true;
    case Kind::InvokeOnPpidChanged:
        callSlot(world, device, [ppid = operation.text](World &itsWorld, Device &itsDevice) {
            onPpidChanged(itsWorld, itsDevice, ppid);
        });
        return true;
    case Kind::InvokeTimerTimeout:
        callSlot(world, device, &timerTimeout);
        return true;
    case Kind::ForwardToPhysicalDevice:
        forwardToPhysicalDevice(world, device, operation);
        return true;
    case Kind::Query26:
        query26(world, device, operation);
        return true;
    case Kind::CallWhatDoesNothing:
        return true;
    default:
        return false;
    }
}

void performCall(World &world, Device &device, const Operation &operation)
{
    const int number = operation.number;
    switch (operation.kind) {
    case Kind::DestroyDevice:
        return destroy(world, operation.slot);
    case Kind::Start:
        return start(world, device);
    case Kind::Stop:
        return stop(world, device);
    case Kind::SetFirmwareVersion:
        return setFirmwareVersion(world, device, operation.firmwareVersion);
    case Kind::SetBatteryLevel:
        return setBatteryLevel(world, device, number);
    case Kind::DpiValueChangedCallBack:
        return dpiValueChanged(world, device, number);
    case Kind::PpidChangedCallBack:
        return onPpidChanged(world, device, operation.text);
    case Kind::SetDpiSlotValues:
        return setDpiSlotValues(world, device, operation.texts);
    case Kind::DpiSlotValuesConfirmed:
        return dpiSlotValuesConfirmed(world, device, operation.slotValues);
    case Kind::DpiSlotValuesChangedCallBack:
        return dpiSlotValuesChanged(
            world, device, QList<quint16>(operation.slotValues.cbegin(), operation.slotValues.cend()));
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
        return reportRateChanged(world, device, operation.rateInfo);
    case Kind::ApplySettings:
        return applySettings(world, operation.settings);
    case Kind::ResetSettings:
        return resetSettings(world);
    case Kind::CapabilityChangedCallBack:
        return capabilityChanged(world, device, number);
    case Kind::SetButtonsOrKeysToDefault:
        return setButtonsOrKeysToDefault(world, device);
    case Kind::DisbaleButtonsOrKeys:
        return disableButtonsOrKeys(world, device, operation.numbers);
    case Kind::MouseEventCallBack:
        return mouseEvent(world, device, number);
    default:
        Q_UNREACHABLE();
    }
}

}  // namespace

void apply(World &world, const OperationPointer &operation)
{
    if (operation->route == Operation::Route::InsideRequest) {
        world.receiverOf(world.deviceIn(operation->slot)).reportInsideRequest = operation;
        return;
    }
    world.isOnOtherThread = operation->route == Operation::Route::OtherThread;
    perform(world, operation);
    world.isOnOtherThread = false;
}

void perform(World &world, const OperationPointer &operation)
{
    if (isWithoutDevice(operation->kind)) {
        performOnHost(world, *operation);
        return;
    }
    Device &device = world.deviceIn(operation->slot);
    if (performSpecial(world, device, *operation))
        return;
    // The library is loaded under its own name, so a start finds it.
    const bool hasResult = operation->kind == Kind::Start;
    writeLine(world, callLine(*operation, device.id) + (hasResult ? u" -> true"_s : QString()));
    performCall(world, device, *operation);
}

}  // namespace Model
