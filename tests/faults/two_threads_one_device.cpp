// Two threads change the DPI of one device, which no host may do. ThreadSanitizer has to tell it whatever
// tsan-suppressions.txt says.
#include "Bench.h"
#include "CountingReceiver.h"
#include "ILogicalDevicePlugin.h"
#include "WatchedDevice.h"
#include "Workers.h"

#include <QtCore/QCoreApplication>

int main(int argc, char **argv)
{
    const QCoreApplication application(argc, argv);
    Bench bench({false, false, false});
    CountingReceiver receiver(bench.timeline);
    const WatchedDevice device(
        dynamic_cast<ILogicalDeviceGen3Mouse *>(bench.host.factory()->createLogicalDevice(&receiver, 1)));
    const auto change = [&] {
        for (int value = 1; value <= 1000; ++value)
            device->dpiValueChangedCallBack(value);
    };
    runAtOnce({change, change});
    return 0;
}
