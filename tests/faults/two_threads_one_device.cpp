// Two threads change the DPI of one device. Or, with the argument "lists", one changes its list of slot
// values while the other delivers the emissions of earlier changes; with "slots", it writes what a slot of
// such an emission writes. No host may do any of it. ThreadSanitizer has to tell it whatever
// tsan-suppressions.txt says.
#include "CountingReceiver.h"
#include "ILogicalDevicePlugin.h"
#include "PluginFixture.h"
#include "WatchedDevice.h"
#include "Workers.h"

#include <QtCore/QCoreApplication>

#include <atomic>
#include <cstring>
#include <thread>

namespace {

void changeDpi(WatchedDevice &device)
{
    for (int value = 1; value <= 1000; ++value)
        device->dpiValueChangedCallBack(value);
}

void changeSlotValues(WatchedDevice &device)
{
    for (quint16 value = 1; value <= 20000; ++value) {
        const quint16 values[] = {value, value, value, value, value};
        device->dpiSlotValuesChangedCallBack(values);
    }
}

void changeFlag(WatchedDevice &device)
{
    device->start();
    for (int rate = 2000; rate < 4000; ++rate) {
        device->setReportRate(rate);
        device->reportRateConfirmed(rate);
        ++device.flagChanges;
    }
}

}  // namespace

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    PluginFixture fixture({false, false, false});
    CountingReceiver receiver(fixture.timeline);
    WatchedDevice device(
        dynamic_cast<ILogicalDeviceGen3Mouse *>(fixture.host.factory()->createLogicalDevice(&receiver, 1)));
    if (argc == 1) {
        runAtOnce({[&] { changeDpi(device); }, [&] { changeDpi(device); }});
        return 0;
    }
    std::atomic<bool> isDone{false};
    std::thread reporter([&, change = std::strcmp(argv[1], "lists") == 0 ? changeSlotValues : changeFlag] {
        change(device);
        isDone = true;
    });
    while (!isDone.load(std::memory_order_relaxed))
        QCoreApplication::processEvents();
    reporter.join();
    return 0;
}
