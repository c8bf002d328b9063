#pragma once

#include "FakeReceiver.h"
#include "HostedDevice.h"
#include "LogRecorder.h"
#include "PluginHost.h"
#include "SimulatedHostServices.h"
#include "Timeline.h"

#include <functional>
#include <memory>
#include <vector>

/// Everything a test of the built library needs: the library loaded by the plugin loader, its factory
/// initialized, one sane receiver, and the one timeline of calls, signals and log lines. When it goes, its
/// devices are deleted and the library is unloaded, so that each test function meets a fresh process state.
class PluginFixture
{
public:
    struct LogSwitches
    {
        bool debug = true;
        bool warning = true;
        bool critical = true;
    };

    static constexpr DeviceId mouse = 42;

    /// Ends the program with the reason when the library cannot be loaded: nothing could be tested.
    explicit PluginFixture(LogSwitches switches = {true, true, true},
                           const QString &pluginFile = builtPluginFile());
    ~PluginFixture();
    Q_DISABLE_COPY_MOVE(PluginFixture)

    /// The library under test: the one of this build, or what the environment variable KVX_PLUGIN_FILE names.
    static QString builtPluginFile();

    Timeline timeline;
    LogRecorder logRecorder{timeline};
    SimulatedHostServices hostServices{timeline};
    FakeReceiver receiver{timeline};
    PluginHost host;

    /// A device on the receiver, not started; its construction is not on the timeline.
    HostedDevice &create(DeviceId id = mouse);
    HostedDevice &create(IPhysicalDevice *physicalDevice, DeviceId id);
    /// A started device; its binding is not on the timeline.
    HostedDevice &started(DeviceId id = mouse);
    /// As create(), with the construction on the timeline.
    HostedDevice &createRecorded(DeviceId id);
    HostedDevice &createRecorded(IPhysicalDevice *physicalDevice, DeviceId id);
    void destroy(HostedDevice &device);

    /// What came on the timeline since the last call.
    QStringList take(Timeline::Style style = Timeline::Style::Plain);

    /// Runs the action once, from inside the first entry that reads so: what a slot, a log handler or a host
    /// service does. Qt keeps log lines that an action inside a log line causes from the timeline.
    void onceInside(const QString &line, const std::function<void()> &action);

private:
    std::vector<std::unique_ptr<HostedDevice>> m_devices;
};
