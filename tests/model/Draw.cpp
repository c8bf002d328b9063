#include "Draw.h"

#include "DrawnValues.h"

#include <algorithm>
#include <ostream>

namespace {

using Kind = Operation::Kind;
using Route = Operation::Route;

// How often a kind is drawn, by how often it stands here.
constexpr std::array kinds{
    Kind::CreateDevice,
    Kind::CreateDevice,
    Kind::DestroyDevice,
    Kind::Initialize,
    Kind::DeliverQueuedCalls,
    Kind::DeliverQueuedCalls,
    Kind::DeliverQueuedCalls,
    Kind::DeliverQueuedCalls,
    Kind::DeliverQueuedCalls,
    Kind::ChangeReceiver,
    Kind::ChangeReceiver,
    Kind::ChangeReceiver,
    Kind::Start,
    Kind::Start,
    Kind::Start,
    Kind::Start,
    Kind::Start,
    Kind::Stop,
    Kind::ForwardToPhysicalDevice,
    Kind::Query26,
    Kind::CallWhatDoesNothing,
    Kind::SetFirmwareVersion,
    Kind::SetBatteryLevel,
    Kind::SetBatteryLevel,
    Kind::ReceiverDpiMinChanged,
    Kind::ReceiverDpiMinChanged,
    Kind::ReceiverDpiMinChanged,
    Kind::ReceiverDpiMaxChanged,
    Kind::ReceiverDpiMaxChanged,
    Kind::ReceiverDpiMaxChanged,
    Kind::InvokeOnDpiMinChanged,
    Kind::InvokeOnDpiMaxChanged,
    Kind::DpiValueChangedCallBack,
    Kind::PpidChangedCallBack,
    Kind::InvokeOnPpidChanged,
    Kind::SetDpiSlotValues,
    Kind::SetDpiSlotValues,
    Kind::SetDpiSlotValues,
    Kind::SetDpiSlotValues,
    Kind::SetDpiSlotValues,
    Kind::DpiSlotValuesConfirmed,
    Kind::DpiSlotValuesConfirmed,
    Kind::DpiSlotValuesConfirmed,
    Kind::DpiSlotValuesConfirmed,
    Kind::DpiSlotValuesChangedCallBack,
    Kind::DpiSlotValuesChangedCallBack,
    Kind::SetActiveDpiSlotIndex,
    Kind::SetActiveDpiSlotIndex,
    Kind::SetActiveDpiSlotIndex,
    Kind::ActiveDpiSlotIndexConfirmed,
    Kind::ActiveDpiSlotIndexConfirmed,
    Kind::ActiveDpiSlotIndexConfirmed,
    Kind::ActiveDpiSlotIndexChangedCallBack,
    Kind::SetDpiButtonId,
    Kind::SetDpiButtonId,
    Kind::SetDpiButtonId,
    Kind::DpiButtonIdConfirmed,
    Kind::DpiButtonIdConfirmed,
    Kind::DpiButtonIdConfirmed,
    Kind::DpiButtonIdChangedCallBack,
    Kind::SetReportRate,
    Kind::SetReportRate,
    Kind::SetReportRate,
    Kind::ReportRateConfirmed,
    Kind::ReportRateConfirmed,
    Kind::ReportRateConfirmed,
    Kind::ReportRateChangedCallBack,
    Kind::ReportRateChangedCallBack,
    Kind::ApplySettings,
    Kind::ResetSettings,
    Kind::CapabilityChangedCallBack,
    Kind::SetButtonsOrKeysToDefault,
    Kind::DisbaleButtonsOrKeys,
    Kind::DisbaleButtonsOrKeys,
    Kind::MouseEventCallBack,
    Kind::MouseEventCallBack,
    Kind::MouseEventCallBack,
    Kind::InvokeTimerTimeout,
};

std::optional<int> freeSlot(const Model::World &world)
{
    for (int slot = 0; slot < deviceSlotCount; ++slot) {
        if (!world.devices.at(static_cast<std::size_t>(slot)))
            return slot;
    }
    return std::nullopt;
}

Route routeOf(const Draw &draw, Kind kind, const Model::Device *device)
{
    constexpr int firstOnOtherThread = 160;
    constexpr int firstInsideRequest = 224;
    if (draw.route < firstOnOtherThread || needsDeviceThread(kind))
        return Route::Direct;
    if (draw.route < firstInsideRequest || !isReport(kind))
        return Route::OtherThread;
    return receiverOf(device->physical) ? Route::InsideRequest : Route::Direct;
}

bool isStartedTwice(const Model::World &world, int slot)
{
    return world.registrations(slot) > 1;
}

bool isAnyOtherStartedTwice(const Model::World &world, int slot)
{
    return std::any_of(world.creationOrder.cbegin(), world.creationOrder.cend(),
                       [&](int other) { return other != slot && isStartedTwice(world, other); });
}

// A device that was started twice leaves an entry behind when it dies, so it has to be the last one. A first
// start is common, a further one is not.
bool isDetermined(const Model::World &world, const Operation &operation, const Draw &draw)
{
    constexpr int furtherStart = 240;
    const int slot = operation.slot;
    switch (operation.kind) {
    case Kind::Start:
        return world.registrations(slot) == 0 ||
               (draw.choices[0] >= furtherStart && !isAnyOtherStartedTwice(world, slot));
    case Kind::DestroyDevice:
        return !isStartedTwice(world, slot);
    case Kind::ForwardToPhysicalDevice:
        return world.devices.at(static_cast<std::size_t>(slot))->physical != Physical::Nothing;
    default:
        return true;
    }
}

// A kind with the same effect that scenarios have a command for.
Kind simplerKind(Kind kind)
{
    switch (kind) {
    case Kind::InvokeOnDpiMinChanged:
        return Kind::ReceiverDpiMinChanged;
    case Kind::InvokeOnDpiMaxChanged:
        return Kind::ReceiverDpiMaxChanged;
    case Kind::InvokeOnPpidChanged:
        return Kind::PpidChangedCallBack;
    default:
        return kind;
    }
}

Kind kindOf(const Draw &draw)
{
    return kinds.at(static_cast<std::size_t>(draw.kind) % kinds.size());
}

}  // namespace

std::vector<Draw> simplerDraws(const Draw &draw)
{
    std::vector<Draw> simpler;
    const auto tryWith = [&](int Draw::*field, int value) {
        if (value < draw.*field) {
            simpler.push_back(draw);
            simpler.back().*field = value;
        }
    };
    const auto *sameEffect = std::find(kinds.cbegin(), kinds.cend(), simplerKind(kindOf(draw)));
    tryWith(&Draw::kind, static_cast<int>(sameEffect - kinds.cbegin()));
    tryWith(&Draw::route, 0);
    tryWith(&Draw::target, 0);
    for (std::size_t i = 0; i < draw.choices.size(); ++i) {
        for (const int value : {0, draw.choices.at(i) / 2, draw.choices.at(i) - 1}) {
            if (value < draw.choices.at(i) && value >= 0) {
                simpler.push_back(draw);
                simpler.back().choices.at(i) = value;
            }
        }
    }
    return simpler;
}

OperationPointer resolve(const Model::World &world, const Draw &draw)
{
    auto operation = std::make_shared<Operation>();
    operation->kind = kindOf(draw);
    const Model::Device *device = nullptr;
    if (operation->kind == Kind::CreateDevice) {
        const std::optional<int> slot = freeSlot(world);
        if (!slot)
            return nullptr;
        operation->slot = *slot;
    } else if (!isWithoutDevice(operation->kind)) {
        if (world.creationOrder.empty())
            return nullptr;
        operation->slot =
            world.creationOrder.at(static_cast<std::size_t>(draw.target) % world.creationOrder.size());
        device = &world.devices.at(static_cast<std::size_t>(operation->slot)).value();
        operation->receiver = receiverOf(device->physical).value_or(0);
    }
    operation->route = routeOf(draw, operation->kind, device);
    if (!isDetermined(world, *operation, draw))
        return nullptr;
    drawValues(*operation, world, draw);
    return operation;
}

std::ostream &operator<<(std::ostream &stream, const Draw &draw)
{
    return stream << '{' << draw.kind << ' ' << draw.target << ' ' << draw.route << ' ' << draw.choices[0]
                  << ' ' << draw.choices[1] << ' ' << draw.choices[2] << '}';
}
