#include "Lines.h"

#include <algorithm>

namespace Model {

namespace {

// A lone device has the number 0; several are 1, 2, 3 ... in the order of their starts. All of them tell
// theirs, changed or not.
void renumberAndAnnounce(World &world)
{
    const bool isAlone = world.registeredSlots.size() == 1;
    int number = isAlone ? 0 : 1;
    for (const int slot : world.registeredSlots)
        world.deviceIn(slot).instanceNumber = number++;
    for (const int slot : world.registeredSlots)
        emitOnDeviceThread(world, world.deviceIn(slot), "instanceNumberChanged", &Device::instanceNumber);
}

}  // namespace

int World::registrations(int slot) const
{
    return static_cast<int>(std::count(registeredSlots.cbegin(), registeredSlots.cend(), slot));
}

void registerDevice(World &world, Device &device)
{
    world.registeredSlots.push_back(device.slot);
    renumberAndAnnounce(world);
}

void deregisterDevice(World &world, Device &device)
{
    const auto entry = std::find(world.registeredSlots.begin(), world.registeredSlots.end(), device.slot);
    if (entry != world.registeredSlots.end())
        world.registeredSlots.erase(entry);
    renumberAndAnnounce(world);
}

}  // namespace Model
