#include "Draw.h"

#include "DrawnValues.h"

#include <algorithm>
#include <ostream>

namespace {

using Kind = Step::Kind;
using Route = Step::Route;

// Each kind as often as its weight says.
std::vector<Kind> weightedKinds()
{
    std::vector<Kind> all;
    for (std::size_t index = 0; index < kindCount; ++index) {
        const auto kind = static_cast<Kind>(index);
        all.insert(all.end(), static_cast<std::size_t>(weightOf(kind)), kind);
    }
    return all;
}

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
bool isDetermined(const Model::World &world, const Step &step, const Draw &draw)
{
    constexpr int furtherStart = 240;
    const int slot = step.slot;
    switch (step.kind) {
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

Kind kindOf(const Draw &draw)
{
    static const std::vector<Kind> kinds = weightedKinds();
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

StepPointer resolve(const Model::World &world, const Draw &draw)
{
    auto step = std::make_shared<Step>();
    step->kind = kindOf(draw);
    const Model::Device *device = nullptr;
    if (step->kind == Kind::CreateDevice) {
        const std::optional<int> slot = freeSlot(world);
        if (!slot)
            return nullptr;
        step->slot = *slot;
    } else if (!isWithoutDevice(step->kind)) {
        if (world.creationOrder.empty())
            return nullptr;
        step->slot =
            world.creationOrder.at(static_cast<std::size_t>(draw.target) % world.creationOrder.size());
        device = &world.devices.at(static_cast<std::size_t>(step->slot)).value();
        step->receiver = receiverOf(device->physical).value_or(0);
    }
    step->route = routeOf(draw, step->kind, device);
    if (!isDetermined(world, *step, draw))
        return nullptr;
    drawValues(*step, world, draw);
    return step;
}

std::ostream &operator<<(std::ostream &stream, const Draw &draw)
{
    return stream << '{' << draw.kind << ' ' << draw.target << ' ' << draw.route << ' ' << draw.choices[0]
                  << ' ' << draw.choices[1] << ' ' << draw.choices[2] << '}';
}
