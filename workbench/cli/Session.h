#pragma once

#include "HostedDevice.h"
#include "LogRecorder.h"
#include "PluginHost.h"
#include "SimulatedHostServices.h"
#include "SimulatedReceiver.h"
#include "Timeline.h"
#include "TimelineValue.h"

#include <QtCore/QList>
#include <QtCore/QPair>

#include <functional>
#include <memory>
#include <optional>

/// A session of the host with one simulated mouse, which checks itself at every step: values, signals and calls
/// in their order. A feature is a list of steps in a file of its own (Session_ReportRate.cpp); a new one is
/// added to steps().
class Session
{
public:
    struct Difference
    {
        QString step;
        QString what;
        QString expected;
        QString seen;
    };

    static constexpr DeviceId mouseId = 42;

    explicit Session(const QString &pluginFile);
    Q_DISABLE_COPY_MOVE(Session)

    /// Loads the plugin; the reason in one sentence when it cannot be used.
    std::optional<QString> load();

    /// Plays the steps in their order, after load() went well. A step with a difference is the last one.
    /// afterStep gets what the step left on the timeline.
    void run(const std::function<void(const QList<TimelineEntry> &)> &afterStep);

    QList<Difference> differences() const { return m_differences; }
    int checkCount() const { return m_checkCount; }
    /// Names and values for the closing lines.
    QList<QPair<QString, QString>> summary() const;

private:
    struct Step
    {
        QString name;
        void (Session::*play)();
    };

    static QList<Step> steps();

    // Session_Lifecycle.cpp
    void checkMetadata();
    void initializeFactory();
    void createDevice();
    void startDevice();
    void awaitInitialState();
    void stopDevice();
    void destroyDevice();
    void unloadPlugin();

    // Session_ReportRate.cpp
    void changeReportRate();
    void refuseReportRate();
    void reportRateUnasked();
    void disagreeAboutReportRate();

    // Session_Dpi.cpp
    void changeDpiSlotValues();
    void refuseDpiSlotValues();
    void disagreeAboutDpiSlotValues();
    void changeActiveDpiSlot();
    void loseActiveDpiSlotConfirmation();
    void changeDpiButton();
    void pressDpiButton();

    // Session_Buttons.cpp
    void readDefaultProfile();
    void divertButtons();
    void giveButtonsBack();
    void tapSmartPointer();
    void applyAndResetSettings();
    void changeCapability();
    void drainBattery();
    void sleepAndWake();

    void check(const QString &what, const QString &expected, const QString &seen);
    template <typename Value>
    void check(const QString &what, const Value &expected, const Value &seen)
    {
        check(what, readableValue(timelineValue(expected)), readableValue(timelineValue(seen)));
    }
    /// Compares all that the step left on the timeline, log lines apart.
    void checkTimeline(const QStringList &expected);
    QStringList stepLines() const;
    /// Runs the event loop until the receiver has delivered everything.
    void awaitReceiver();
    /// Runs it until the condition holds.
    void awaitEvent(const std::function<bool()> &condition);
    void countEntries(const QList<TimelineEntry> &entries);
    void readValues();

    const QString m_pluginFile;
    Timeline m_timeline;
    LogRecorder m_logRecorder{m_timeline};
    SimulatedHostServices m_hostServices{m_timeline};
    SimulatedReceiver m_receiver{m_timeline};
    PluginHost m_host{m_timeline};
    std::unique_ptr<HostedDevice> m_device;

    QString m_step;
    quint64 m_stepStart = 0;  // the last entry before the step's own
    int m_checkCount = 0;
    QList<Difference> m_differences;
    QHash<TimelineEntry::Kind, int> m_entryCounts;
    QList<QPair<QString, QString>> m_values;
};
