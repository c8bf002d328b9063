#include "WatchedDevice.h"

#include <utility>

WatchedDevice::WatchedDevice(ILogicalDeviceGen3Mouse *device)
    : m_device(device), m_gen3(dynamic_cast<ILogicalDeviceGen3 *>(device))
{
    // By name, because the class of the device is the library's own.
    const std::pair<const char *, const char *> connections[] = {
        {SIGNAL(firmwareVersionChanged(uint)), SLOT(onFirmwareVersion(uint))},
        {SIGNAL(dpiMinChanged(int)), SLOT(onDpiMin(int))},
        {SIGNAL(batteryLevelChanged(int)), SLOT(onBatteryLevel(int))},
        {SIGNAL(activeDpiSlotIndexChanged(int)), SLOT(onActiveSlot(int))},
        {SIGNAL(dpiButtonIdChanged(int)), SLOT(onButton(int))},
        {SIGNAL(reportRateChanged(int)), SLOT(onReportRate(int))},
        {SIGNAL(instanceNumberChanged(int)), SLOT(onInstanceNumber(int))},
        {SIGNAL(dpiSlotValuesChanged(QStringList)), SLOT(onSlotValues(QStringList))},
        {SIGNAL(reportRateValuesChanged(QStringList)), SLOT(onRateList(QStringList))},
        {SIGNAL(isActiveDpiSlotIndexChangePendingChanged(bool)), SLOT(onFlag())},
        {SIGNAL(isDpiSlotValuesChangePendingChanged(bool)), SLOT(onFlag())},
        {SIGNAL(isDpiButtonIdChangePendingChanged(bool)), SLOT(onFlag())},
        {SIGNAL(isReportRateChangePendingChanged(bool)), SLOT(onFlag())},
        {SIGNAL(dpiValueChanged(int)), SLOT(onDpi())},
    };
    const auto *object = dynamic_cast<QObject *>(device);
    for (const auto &[signal, slot] : connections) {
        if (!connect(object, signal, this, slot, Qt::DirectConnection))
            qFatal("the device has no signal %s", signal);
    }
}
