#pragma once

#include "Step.h"

#include <QtCore/QList>
#include <QtCore/QStringList>

#include <array>
#include <functional>
#include <optional>
#include <vector>

/// The whole logical device as plain data and one function per operation, independent of the library's sources.
/// Every function appends what it makes visible to World::lines, as a timeline shows it with the devices' ids.
namespace Model {

struct World;

struct Device
{
    int slot = 0;
    DeviceId id = 0;
    Physical physical = Physical::Nothing;
    bool isBound = false;  // to the receiver that the physical device is

    uint firmwareVersion = 0;
    int instanceNumber = 1;
    bool hasBatteryLevel = false;
    int batteryLevel = -1;
    int statusValue = 0;
    int deviceValue = 0;
    int levelValue = 0;
    bool isSmartPointerSupported = false;

    int dpiMin = 0;
    int dpiMax = 0;
    int dpiValue = 0;
    QString ppid;

    QList<quint16> slotValues;
    QList<quint16> pendingSlotValues;
    bool isSlotValuesPending = false;
    int activeSlot = 2;
    int pendingActiveSlot = 0;
    bool isActiveSlotPending = false;
    int buttonId = 15;
    int pendingButtonId = 0;
    bool isButtonIdPending = false;

    int reportRate = 0;
    int pendingReportRate = 0;
    bool isReportRatePending = false;
    QStringList reportRateValues;

    // Bit 7 of the mask is never set: nothing switches the smart pointer on.
    quint8 disabledButtons = 0;
    std::array<bool, 5> isButtonPressed{};
    bool isCtrlPressed = false;
};

struct Receiver
{
    ReceiverAnswers answers;
    std::vector<int> listeners;  // the slot of the device behind each connection, in the order of connecting
    StepPointer reportInsideRequest;
};

using Call = std::function<void(World &, Device &)>;

/// What waits for the event loop of the devices' thread, and dies with its device.
struct QueuedCall
{
    int slot = 0;
    Call run;
};

struct World
{
    bool isDebugOn = false;
    bool isWarningOn = false;
    std::array<Receiver, 2> receivers;
    std::array<std::optional<Device>, deviceSlotCount> devices;
    std::vector<int> creationOrder;    // slots
    std::vector<int> registeredSlots;  // a device is listed once for each start
    std::vector<QueuedCall> queue;
    bool isOnOtherThread = false;
    QStringList lines;

    /// Not for receivers that the physical device is not.
    Receiver &receiverOf(const Device &device);
    Device &deviceIn(int slot);
    /// How often the device was started.
    int registrations(int slot) const;
};

// Apply.cpp

/// Makes the step by its route, its own line first.
void apply(World &world, const StepPointer &step);
/// Makes it here and now.
void perform(World &world, const StepPointer &step);

// Lifecycle.cpp
/// The library is unloaded, and the devices that are left die with it.
void unload(World &world);
void create(World &world, int slot, Physical physical);
void destroy(World &world, int slot);
void start(World &world, Device &device);
void stop(World &world, Device &device);
void setFirmwareVersion(World &world, Device &device, uint version);
void setBatteryLevel(World &world, Device &device, int level);
void deliverQueuedCalls(World &world);

// Registry.cpp
void registerDevice(World &world, Device &device);
void deregisterDevice(World &world, Device &device);

// Dpi.cpp
void onDpiMinChanged(World &world, Device &device, int value);
void onDpiMaxChanged(World &world, Device &device, int value);
void dpiValueChanged(World &world, Device &device, int value);
void onPpidChanged(World &world, Device &device, const QString &ppid);

// DpiSlotValues.cpp
void setDpiSlotValues(World &world, Device &device, const QStringList &texts);
void dpiSlotValuesConfirmed(World &world, Device &device, const SlotValues &values);
void dpiSlotValuesChanged(World &world, Device &device, const QList<quint16> &values);

// ActiveDpiSlot.cpp
void setActiveDpiSlotIndex(World &world, Device &device, int index);
void activeDpiSlotIndexConfirmed(World &world, Device &device, int index);
void activeDpiSlotIndexChanged(World &world, Device &device, int index);

// DpiButton.cpp
void setDpiButtonId(World &world, Device &device, int id);
void dpiButtonIdConfirmed(World &world, Device &device, int id);
void dpiButtonIdChanged(World &world, Device &device, int id);

// ReportRate.cpp
void readReportRates(World &world, Device &device, const ReportRateInfo &info);
void setReportRate(World &world, Device &device, int rate);
void reportRateConfirmed(World &world, Device &device, int rate);
void reportRateChanged(World &world, Device &device, const ReportRateInfo &info);

// Settings.cpp
void applySettings(World &world, const QVariantMap &settings);
void resetSettings(World &world);
void capabilityChanged(World &world, Device &device, int capability);
void setButtonsOrKeysToDefault(World &world, Device &device);
void disableButtonsOrKeys(World &world, Device &device, const QList<int> &buttons);

// MouseEvents.cpp
void mouseEvent(World &world, Device &device, int event);
void timerTimeout(World &world, Device &device);

}  // namespace Model
