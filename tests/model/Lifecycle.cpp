#include "Lines.h"

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace Model {

namespace {

void readValues(World &world, Device &device)
{
    device.firmwareVersion = ask(world, device, "getFirmwareVersion", &ReceiverAnswers::firmwareVersion);
    device.hasBatteryLevel = ask(world, device, "hasBatteryLevel", &ReceiverAnswers::hasBatteryLevel);
    device.statusValue = ask(world, device, "getStatusValue", &ReceiverAnswers::statusValue);
    if (device.hasBatteryLevel)
        device.batteryLevel = ask(world, device, "getBatteryLevel", &ReceiverAnswers::batteryLevel);
    device.deviceValue = ask(world, device, "getDeviceValue", &ReceiverAnswers::deviceValue);
}

void bind(World &world, Device &device)
{
    device.isBound = receiverOf(device.physical).has_value();
    if (!device.isBound) {
        warn(world, "Unable to get IPhysicalDeviceDongle interface");
        return;
    }
    Receiver &receiver = world.receiverOf(device);
    readValues(world, device);
    receiver.listeners.push_back(device.slot);
    request(world, device, "requestInitialState1", {});
    request(world, device, "requestInitialState2", {});
    request(world, device, "requestInitialState3", {});
    device.isSmartPointerSupported =
        ask(world, device, "isSmartPointerSupported", &ReceiverAnswers::isSmartPointerSupported);
    const ReportRateInfo info = receiver.answers.reportRateInfo;
    if (ask(world, device, "getReportRateInfo", &ReceiverAnswers::hasReportRateInfo))
        readReportRates(world, device, info);
    device.levelValue = ask(world, device, "getLevelValue", &ReceiverAnswers::levelValue);
}

// What the destructor does, from wherever it is called.
void die(World &world, int slot)
{
    Device &device = world.deviceIn(slot);
    debug(world, "~LogicalDevice enter");
    deregisterDevice(world, device);
    debug(world, "~LogicalDevice exit");

    const auto isOfDevice = [slot](const QueuedCall &call) { return call.slot == slot; };
    world.queue.erase(std::remove_if(world.queue.begin(), world.queue.end(), isOfDevice), world.queue.end());
    for (Receiver &receiver : world.receivers) {
        auto &listeners = receiver.listeners;
        listeners.erase(std::remove(listeners.begin(), listeners.end(), slot), listeners.end());
        if (receiver.reportInsideRequest && receiver.reportInsideRequest->slot == slot)
            receiver.reportInsideRequest.reset();
    }
    auto &order = world.creationOrder;
    order.erase(std::remove(order.begin(), order.end(), slot), order.end());
    world.devices[static_cast<std::size_t>(slot)].reset();
}

}  // namespace

Receiver &World::receiverOf(const Device &device)
{
    return receivers.at(static_cast<std::size_t>(::receiverOf(device.physical).value()));
}

Device &World::deviceIn(int slot)
{
    return devices.at(static_cast<std::size_t>(slot)).value();
}

void create(World &world, int slot, Physical physical)
{
    debug(world, "LogicalDevice enter");
    Device &device = world.devices[static_cast<std::size_t>(slot)].emplace();
    device.slot = slot;
    device.id = deviceIds[static_cast<std::size_t>(slot)];
    device.physical = physical;
    world.creationOrder.push_back(slot);
    debug(world, "LogicalDevice exit");
}

void destroy(World &world, int slot)
{
    die(world, slot);
}

void unload(World &world)
{
    if (world.isDebugOn)
        writeLine(world, u"debug RV418.LogicalDevicePlugin: ~LogicalDevicePlugin"_s);
    const std::vector<int> slotsInOrder = world.creationOrder;
    for (const int slot : slotsInOrder)
        die(world, slot);
}

void start(World &world, Device &device)
{
    debug(world, "start enter");
    bind(world, device);
    registerDevice(world, device);
    debug(world, "start exit");
}

void stop(World &world, Device &device)
{
    debug(world, "stop enter");
    signal(world, device, "stopped", u"this"_s);
    debug(world, "stop exit");
}

void setFirmwareVersion(World &world, Device &device, uint version)
{
    callOnDeviceThread(world, device, [version](World &itsWorld, Device &itsDevice) {
        itsDevice.firmwareVersion = version;
        signal(itsWorld, itsDevice, "firmwareVersionChanged", version);
    });
}

void setBatteryLevel(World &world, Device &device, int level)
{
    change(world, device, "batteryLevelChanged", &Device::batteryLevel, level);
}

void deliverQueuedCalls(World &world)
{
    const std::vector<QueuedCall> calls = std::exchange(world.queue, {});
    for (const QueuedCall &call : calls)
        call.run(world, world.deviceIn(call.slot));
}

}  // namespace Model
