// Two threads change the DPI of one device, or, with an argument, one changes its list of slot values while
// the other delivers the emissions of earlier changes. No host may do either. ThreadSanitizer has to tell it
// whatever tsan-suppressions.txt says.
#include "CountingReceiver.h"
#include "ILogicalDevicePlugin.h"
#include "PluginFixture.h"
#include "WatchedDevice.h"
#include "Workers.h"

#include <QtCore/QCoreApplication>

#include <atomic>
#include <thread>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    PluginFixture fixture({false, false, false});
    CountingReceiver receiver(fixture.timeline);
    const WatchedDevice device(
        dynamic_cast<ILogicalDeviceGen3Mouse *>(fixture.host.factory()->createLogicalDevice(&receiver, 1)));
    const auto changeDpi = [&] {
        for (int value = 1; value <= 1000; ++value)
            device->dpiValueChangedCallBack(value);
    };
    std::atomic<bool> isDone{false};
    const auto changeSlotValues = [&] {
        for (quint16 value = 1; value <= 20000; ++value) {
            const quint16 values[] = {value, value, value, value, value};
            device->dpiSlotValuesChangedCallBack(values);
        }
        isDone = true;
    };
    if (argc == 1) {
        runAtOnce({changeDpi, changeDpi});
    } else {
        std::thread reporter(changeSlotValues);
        while (!isDone.load(std::memory_order_relaxed))
            QCoreApplication::processEvents();
        reporter.join();
    }
    return 0;
}
