#pragma once

#include "HostedDevice.h"
#include "LogRecorder.h"
#include "OtherThread.h"
#include "PlainPhysicalDevice.h"
#include "PluginHost.h"
#include "SimulatedHostServices.h"
#include "SimulatedReceiver.h"
#include "Timeline.h"

#include <QtCore/QString>
#include <QtCore/QTemporaryDir>

#include <array>
#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

/// A host with the built library and any number of mice on one simulated receiver: what the commands of a scenario
/// act on. One of the mice is the current one. For one thread, which needs an event loop.
class Workbench
{
public:
    /// Debug, warning, critical.
    using LogSwitches = std::array<bool, 3>;
    static constexpr std::array logSwitchNames{"debug", "warning", "critical"};

    /// A device and what is known of it beside what it answers itself.
    struct KnownDevice
    {
        std::unique_ptr<HostedDevice> device;
        bool hasMouse = false;
        int starts = 0;
        SimulatedReceiver *receiver = nullptr;
        bool isStopped = false;  // since the last start
    };

    Workbench() = default;
    ~Workbench();
    Q_DISABLE_COPY_MOVE(Workbench)

    /// Loads and initializes the plugin with all log switches on; the reason in one sentence when it cannot be used.
    std::optional<QString> load(const QString &pluginFile);

    /// Loads the file again that load() loaded, after unload(). copyName: loads a copy with this file name instead.
    std::optional<QString> loadAgain(const QString &copyName, bool isInitialized);

    Timeline timeline;
    LogRecorder logRecorder{timeline};
    SimulatedHostServices hostServices{timeline};
    SimulatedReceiver receiver{timeline};
    PluginHost host{timeline};

    /// The receiver for mice that are added from now on: the one above is number 1; another one is made when it is named
    /// first.
    void useReceiver(int number);
    /// That of the current device; without one, the one for mice that are added.
    SimulatedReceiver &currentReceiver();
    std::vector<SimulatedReceiver *> receivers();

    /// Adds a mouse and its logical device, not started, and makes it the current one. False when there is one.
    bool addMouse(DeviceId id, const SimulatedMouse &mouse);
    /// Adds a logical device without a mouse, not started, and makes it the current one: without a physical device, or
    /// with one that is no receiver. False when there is one with this id.
    bool addDevice(DeviceId id, bool hasPhysicalDevice);
    /// Makes another mouse the current one. False when there is none with this id.
    bool useMouse(DeviceId id);
    /// Deletes the current logical device and takes its mouse away.
    void removeMouse();
    /// The same without the factory: deletes the device through the table of ILogicalDeviceGen3Mouse or, as said, that of
    /// ILogicalDeviceGen3.
    void deleteDevice(bool throughGen3);
    /// Unloads the plugin and with it the devices that are left. False when something of it stays in the process.
    bool unload();
    /// The current logical device; null when there is none.
    HostedDevice *device() const;
    DeviceId currentMouse() const { return m_current; }
    /// Whether there is a mouse behind the current device.
    bool hasMouse() const { return device() && m_devices.at(m_current).hasMouse; }
    bool hasSeveralDevices() const { return m_devices.size() > 1; }
    const std::map<DeviceId, KnownDevice> &devices() const { return m_devices; }

    bool isStarted() const { return device() && m_devices.at(m_current).starts > 0; }
    /// To be called at each start of the current device.
    void noteStart();
    /// To be called at each stop of the current device.
    void noteStop();

    /// Qt's filter rules for logging categories, for the whole process and until this object goes.
    void setCategoryRules(const QString &rules);

    /// Initializes the factory again. False when it answers so.
    bool setLogSwitches(const LogSwitches &switches);
    LogSwitches logSwitches() const { return m_logSwitches; }

    /// Runs the function on another thread and waits until it has returned; the event loop does not run meanwhile.
    void runOnOtherThread(const std::function<void()> &function);

    /// Runs the event loop until the condition holds or nothing is under way any more; false at the deadline.
    bool settle(const std::function<bool()> &condition = {});
    /// Runs the event loop until the condition holds; false when the time is up.
    bool waitFor(const std::function<bool()> &condition, std::chrono::milliseconds limit);
    /// How long settle() waits for what does not come.
    std::chrono::milliseconds deadline{10000};

private:
    void forgetDevice(const std::function<void(std::unique_ptr<HostedDevice>)> &end);
    bool createDevice(DeviceId id, IPhysicalDevice *physicalDevice, bool hasMouse);

    QString m_pluginFile;
    std::optional<QTemporaryDir> m_copyFolder;  // of loadAgain()
    PlainPhysicalDevice m_plainDevice{timeline};
    std::map<int, std::unique_ptr<SimulatedReceiver>> m_otherReceivers;
    SimulatedReceiver *m_nextReceiver = &receiver;
    std::map<DeviceId, KnownDevice> m_devices;
    DeviceId m_current = 0;
    LogSwitches m_logSwitches{true, true, true};
    bool m_hasCategoryRules = false;
    std::optional<OtherThread> m_otherThread;  // from its first use on
};
