#pragma once

#include "ILogicalDeviceGen3.h"
#include "ILogicalDeviceGen3Mouse.h"

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QStringList>

#include <atomic>

/// A device and what its signals delivered. All but the DPI arrives on the device's thread and is read when that
/// thread is at rest; the DPI arrives on the thread that reports it.
class WatchedDevice : public QObject
{
    Q_OBJECT

public:
    /// Does not own the device, which may be deleted first.
    explicit WatchedDevice(ILogicalDeviceGen3Mouse *device);

    ILogicalDeviceGen3Mouse *operator->() const { return m_device; }
    ILogicalDeviceGen3Mouse *device() const { return m_device; }
    ILogicalDeviceGen3 *gen3() const { return m_gen3; }

    QList<uint> firmwareVersions;
    QList<int> dpiMinima;
    QList<int> batteryLevels;
    QList<int> activeSlots;
    QList<int> buttons;
    QList<int> reportRates;
    QList<int> instanceNumbers;
    QList<QStringList> slotValues;
    QList<QStringList> rateLists;
    int flagChanges = 0;
    std::atomic<int> dpiChanges{0};

public Q_SLOTS:
    void onFirmwareVersion(uint version) { firmwareVersions.append(version); }
    void onDpiMin(int value) { dpiMinima.append(value); }
    void onBatteryLevel(int level) { batteryLevels.append(level); }
    void onActiveSlot(int index) { activeSlots.append(index); }
    void onButton(int buttonId) { buttons.append(buttonId); }
    void onReportRate(int rate) { reportRates.append(rate); }
    void onInstanceNumber(int number) { instanceNumbers.append(number); }
    void onSlotValues(const QStringList &values) { slotValues.append(values); }
    void onRateList(const QStringList &rates) { rateLists.append(rates); }
    void onFlag() { ++flagChanges; }
    void onDpi() { dpiChanges.fetch_add(1, std::memory_order_relaxed); }

private:
    ILogicalDeviceGen3Mouse *m_device;
    ILogicalDeviceGen3 *m_gen3;
};
