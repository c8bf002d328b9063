#include "Lines.h"

#include <utility>

using namespace Qt::StringLiterals;

namespace Model {

void writeLine(World &world, const QString &line)
{
    world.lines.append(world.isOnOtherThread ? line + u" on thread 2"_s : line);
}

void writeDebug(World &world, const QString &text)
{
    writeLine(world, u"debug RV418.LogicalDevice: "_s + text);
}

void writeWarning(World &world, const QString &text)
{
    writeLine(world, u"warning RV418.LogicalDevice: "_s + text);
}

void writeSignal(World &world, const Device &device, const char *name, const QString &argument)
{
    writeLine(world, u"signal ["_s + QString::number(device.id) + u"] "_s + QLatin1StringView(name) + u'(' +
                         argument + u')');
}

void callOnDeviceThread(World &world, Device &device, const Call &call)
{
    if (world.isOnOtherThread)
        world.queue.push_back({device.slot, call});
    else
        call(world, device);
}

bool request(World &world, const Device &device, const char *operation, const QString &arguments)
{
    Receiver &receiver = world.receiverOf(device);
    const bool isAccepted = receiver.answers.acceptsRequests;
    writeLine(world, u"receiver ["_s + QString::number(device.id) + u"] "_s + QLatin1StringView(operation) +
                         u'(' + arguments + u") -> "_s + streamed(isAccepted));
    if (const StepPointer report = std::exchange(receiver.reportInsideRequest, nullptr))
        perform(world, report);
    return isAccepted;
}

void warnOfNoReceiver(World &world)
{
    warn(world, "Unknown IPhysicalDevice interface");
}

}  // namespace Model
