#pragma once

#include "HostedDevice.h"
#include "LogRecorder.h"
#include "PluginHost.h"
#include "SimulatedHostServices.h"
#include "SimulatedReceiver.h"
#include "Timeline.h"

#include <QtCore/QString>

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <optional>

/// A host with the built library and any number of mice on one simulated receiver: what the commands of a scenario
/// act on. One of the mice is the current one. For one thread, which needs an event loop.
class Workbench
{
public:
    Workbench() = default;
    ~Workbench();
    Q_DISABLE_COPY_MOVE(Workbench)

    /// Loads and initializes the plugin; the reason in one sentence when it cannot be used.
    std::optional<QString> load(const QString &pluginFile);

    Timeline timeline;
    LogRecorder logRecorder{timeline};
    SimulatedHostServices hostServices{timeline};
    SimulatedReceiver receiver{timeline};
    PluginHost host{timeline};

    /// Adds a mouse and its logical device, not started, and makes it the current one. False when there is one.
    bool addMouse(DeviceId id, const SimulatedMouse &mouse);
    /// Makes another mouse the current one. False when there is none with this id.
    bool useMouse(DeviceId id);
    /// Deletes the logical device of the current mouse and takes the mouse away.
    void removeMouse();
    /// The logical device of the current mouse; null when there is none.
    HostedDevice *device() const;
    DeviceId currentMouse() const { return m_current; }
    bool hasSeveralMice() const { return m_devices.size() > 1; }

    /// Runs the event loop until the condition holds or nothing is under way any more; false at the deadline.
    bool settle(const std::function<bool()> &condition = {});
    /// Runs the event loop until the condition holds; false when the time is up.
    bool waitFor(const std::function<bool()> &condition, std::chrono::milliseconds limit);
    /// How long settle() waits for what does not come.
    std::chrono::milliseconds deadline{10000};

private:
    std::map<DeviceId, std::unique_ptr<HostedDevice>> m_devices;
    DeviceId m_current = 0;
};
