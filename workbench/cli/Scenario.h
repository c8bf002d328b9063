#pragma once

#include "Output.h"
#include "Workbench.h"

#include <QtCore/QStringList>

#include <functional>
#include <optional>

/// What came of one command line.
struct CommandResult
{
    ExitCode code = ExitCode::Success;
    /// What was wrong, in one sentence; empty when nothing was.
    QString message;
    bool isEnd = false;

    static CommandResult unusable(const QString &message) { return {ExitCode::Unusable, message, false}; }
    static CommandResult difference(const QString &message) { return {ExitCode::Difference, message, false}; }
};

/// The language of kvx run and kvx shell: one command a line, on a workbench of its own.
/// A feature's commands stand in a file of their own (Scenario_Requests.cpp ...) and in the table of commands().
class Scenario
{
public:
    struct Command
    {
        QString name;
        QString arguments;  // as help shows them
        QString help;
        CommandResult (Scenario::*run)(const QStringList &words);
    };

    /// print: where the answers of commands go that have one, a line at a time.
    explicit Scenario(std::function<void(const QString &)> print);

    /// The reason in one sentence when the plugin cannot be used.
    std::optional<QString> load(const QString &pluginFile);

    /// Runs one line. Empty lines and comments do nothing.
    CommandResult execute(const QString &line);

    /// What came on the timeline since the last call.
    QList<TimelineEntry> takeEntries();
    Timeline::Style lineStyle() const;

    static QStringList commandNames();

private:
    /// From where a call or a report comes.
    enum class Route {
        Usual,  ///< a call from the devices' thread, a report from its event loop
        OtherThread,
        AtOnce,
        InsideRequest,
    };

    static const QList<Command> &commands();
    CommandResult dispatch(const Command &command, const QStringList &words);

    // Scenario.cpp
    CommandResult help(const QStringList &words);
    CommandResult quit(const QStringList &words);

    // Scenario_Requests.cpp
    CommandResult start(const QStringList &words);
    CommandResult stop(const QStringList &words);
    CommandResult setReportRate(const QStringList &words);
    CommandResult setDpiSlotValues(const QStringList &words);
    CommandResult setActiveDpiSlotIndex(const QStringList &words);
    CommandResult setDpiButtonId(const QStringList &words);
    CommandResult disableButtons(const QStringList &words);
    CommandResult setButtonsToDefault(const QStringList &words);
    CommandResult applySettings(const QStringList &words);
    CommandResult resetSettings(const QStringList &words);

    // Scenario_Host.cpp
    CommandResult device(const QStringList &words);
    CommandResult log(const QStringList &words);
    CommandResult settle(const QStringList &words);
    CommandResult otherThread(const QStringList &words);
    CommandResult atOnce(const QStringList &words);
    CommandResult insideRequest(const QStringList &words);
    /// Runs the command that the words are, if it is one of the known ones.
    CommandResult runBy(Route route, const QStringList &known, const QStringList &words);
    /// Makes the call from where the line says.
    void callDevice(const std::function<void()> &call);

    // Scenario_Mouse.cpp
    CommandResult mouse(const QStringList &words);
    CommandResult use(const QStringList &words);
    CommandResult remove(const QStringList &words);
    CommandResult set(const QStringList &words);
    CommandResult press(const QStringList &words);
    CommandResult release(const QStringList &words);
    CommandResult drain(const QStringList &words);
    CommandResult sleep(const QStringList &words);
    CommandResult wake(const QStringList &words);
    CommandResult report(const QStringList &words);
    void sendReport(const MouseMessage &report);
    CommandResult fault(const QStringList &words);
    CommandResult faults(const QStringList &words);
    CommandResult clearFaults(const QStringList &words);
    CommandResult answerDelay(const QStringList &words);
    CommandResult resendLimit(const QStringList &words);

    // Scenario_Checks.cpp
    CommandResult show(const QStringList &words);
    CommandResult showTimeline(const QStringList &words);
    CommandResult expect(const QStringList &words);
    CommandResult expectSignal(const QString &expected);
    CommandResult expectTimeline(const QString &expected);
    CommandResult expectLog(const QString &expected);
    CommandResult wait(const QStringList &words);
    CommandResult deadline(const QStringList &words);

    /// A request and its outcome: waits until pending answers false or nothing more can come, unless the line says
    /// not to; pending is null for requests that are not confirmed.
    CommandResult request(const QString &receiverOperation, bool (ILogicalDeviceGen3Mouse::*pending)() const,
                          const std::function<void(HostedDevice &)> &call);
    CommandResult settled();
    CommandResult act(const std::function<QList<MouseMessage>(SimulatedMouse &)> &action);
    static CommandResult withoutAnyDevice();
    CommandResult wrongWord(const QString &word, const QString &wanted) const;
    QStringList eventLines(quint64 after) const;
    QStringList logLines(quint64 after) const;

    std::function<void(const QString &)> m_print;
    Workbench m_workbench;
    quint64 m_taken = 0;         // the last entry that takeEntries() gave
    quint64 m_signalCursor = 0;  // the last entry that "expect signal" or "wait" has used
    quint64 m_lastAction = 0;    // the last entry before the last command that did something to a device
    // What the line says behind its command, or in front of it.
    QString m_rest;
    QString m_wantedOutcome;
    bool m_isWaiting = true;
    Route m_route = Route::Usual;
};
