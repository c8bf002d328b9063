#pragma once

#include "Agreement.h"
#include "Output.h"
#include "RandomSteps.h"
#include "Workbench.h"

#include <QtCore/QMetaMethod>
#include <QtCore/QStringList>

#include <functional>
#include <optional>
#include <utility>

/// What came of one command line.
struct CommandResult
{
    ExitCode code = ExitCode::Success;
    /// What was wrong, in one sentence; empty when nothing was.
    QString message;
    bool isEnd = false;
    /// Of a difference, a line each: all that was expected, and what was there.
    QStringList expected;
    QStringList actual;
    /// Why a check could not be made here, in one sentence; empty when it was made.
    QString skipped;
    /// Where the scenario goes on when it is not with the next line; counted from 0.
    std::optional<qsizetype> nextLine = std::nullopt;

    static CommandResult unusable(const QString &message)
    {
        return {ExitCode::Unusable, message, false, {}, {}, {}};
    }
    static CommandResult difference(const QString &message, const QStringList &expected = {},
                                    const QStringList &actual = {})
    {
        return {ExitCode::Difference, message, false, expected, actual, {}};
    }
    static CommandResult notChecked(const QString &reason)
    {
        return {ExitCode::Success, {}, false, {}, {}, reason};
    }
};

/// The language of kvx run, kvx shell and kvx session: one command a line, on a workbench of its own.
/// The table of all commands is in Scenario.cpp; they are in a file for each subject (Scenario_Operations.cpp ...).
class Scenario
{
public:
    struct Command
    {
        /// What must be there before it can run; each includes those before it.
        enum class Needs { Nothing, Plugin, Device, PhysicalDevice, Mouse };
        /// Whether it leaves something on the timeline that later commands compare.
        enum class Kind { Action, Check, Setting };
        /// How it can come apart from the usual way.
        enum class Routes { Usual, OtherThread, All };

        const char *name;
        const char *arguments;  // as help shows them
        const char *help;
        CommandResult (Scenario::*run)(const QStringList &words);
        Needs needs = Needs::Nothing;
        Kind kind = Kind::Action;
        Routes routes = Routes::Usual;
        /// Of a command that calls an operation of the device: the operation, what the device asks of the receiver for
        /// it, and whether the mouse has still to confirm that.
        const DeviceOperation *operation = nullptr;
        const DeviceOperation *request = nullptr;
        bool (ILogicalDeviceGen3Mouse::*isPending)() const = nullptr;
    };

    /// print: where the answers of commands go that have one, a line at a time.
    /// seed: what random commands begin with.
    explicit Scenario(std::function<void(const QString &)> print, quint32 seed = defaultSeed);
    static constexpr quint32 defaultSeed = 1;

    /// The reason in one sentence when the plugin cannot be used.
    std::optional<QString> load(const QString &pluginFile);

    /// Calls the function for each entry of the timeline as it begins, on the thread that records it.
    void addObserver(const std::function<void(const TimelineEntry &)> &observer)
    {
        m_workbench.timeline.addLastingObserver(observer);
    }

    /// Runs one line. Empty lines and comments do nothing.
    /// index: the place of the line in its file, counted from 0; without it, no line can be repeated.
    CommandResult execute(const QString &line, std::optional<qsizetype> index = std::nullopt);
    /// To be called behind the last line: what the last command left beyond what was expected is a difference.
    CommandResult finish();

    /// Whether "repeat" waits for its "end".
    bool isRepeating() const { return m_repeat.isOpen; }
    /// Does without the rounds that are left.
    void stopRepeating() { m_repeat = {}; }

    /// What came on the timeline since the last call.
    QList<TimelineEntry> takeEntries();
    Timeline::Style lineStyle() const;
    /// How many comparisons were made.
    int checkCount() const { return m_checkCount; }
    /// Devices with their values, mice, faults and log switches now, as docs/scenarios.md describes them for front ends.
    /// Leaves nothing on the timeline.
    QJsonObject state();
    /// The operations that "fault" takes, with their kind.
    static QJsonArray operations();

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
    static const Command *findCommand(const QString &name);
    CommandResult dispatch(const Command &command, const QStringList &words);
    /// A difference when what the factory made is no device of this family.
    CommandResult checkNewDevice();
    CommandResult whatIsMissing(Command::Needs needs) const;
    /// A difference when "=" lines have not compared all lines of the last command.
    CommandResult uncomparedLine();

    // Scenario.cpp
    CommandResult help(const QStringList &words);
    CommandResult quit(const QStringList &words);

    // Scenario_Operations.cpp
    CommandResult callOperation(const QStringList &words);
    CommandResult outcomeOf(const Command &command, quint64 before);
    CommandResult callOther(const QStringList &words);
    CommandResult invokeSlot(const QStringList &words);
    CommandResult invokeSlot(const QMetaMethod &method, const QStringList &words);
    CommandResult report(const QStringList &words);
    CommandResult fault(const QStringList &words);
    CommandResult faults(const QStringList &words);
    static QList<const DeviceOperation *> operationsWithFaults();
    static QString faultText(const ReceiverFault &fault);
    CommandResult clearFaults(const QStringList &words);
    /// Runs the command that the words are, if it can come by this route.
    CommandResult runBy(Route route, const QStringList &words);
    template <Route route>
    CommandResult runBy(const QStringList &words)
    {
        return runBy(route, words);
    }
    /// Makes the call from where the line says.
    void callDevice(const std::function<void()> &call);

    // Scenario_Host.cpp
    CommandResult mouse(const QStringList &words);
    CommandResult device(const QStringList &words);
    CommandResult use(const QStringList &words);
    CommandResult remove(const QStringList &words);
    CommandResult receiver(const QStringList &words);
    CommandResult unload(const QStringList &words);
    CommandResult loadAgain(const QStringList &words);
    CommandResult categories(const QStringList &words);
    CommandResult log(const QStringList &words);
    CommandResult settle(const QStringList &words = {});
    CommandResult answerDelay(const QStringList &words);
    CommandResult resendLimit(const QStringList &words);
    CommandResult deadline(const QStringList &words);

    // Scenario_State.cpp
    static QJsonObject deviceState(DeviceId id, const Workbench::KnownDevice &known);
    QJsonArray faultsState();

    // Scenario_Mouse.cpp
    CommandResult set(const QStringList &words);
    CommandResult press(const QStringList &words);
    CommandResult release(const QStringList &words);
    using KeyAction = QList<MouseMessage> (SimulatedMouse::*)();
    CommandResult moveButton(const QStringList &words, QList<MouseMessage> (SimulatedMouse::*button)(int),
                             KeyAction smartPointerKey, KeyAction dpiButton);
    CommandResult drain(const QStringList &words);
    template <KeyAction action>
    CommandResult act(const QStringList & /*words*/)
    {
        return act(action);
    }

    // Scenario_Stress.cpp
    CommandResult repeat(const QStringList &words);
    CommandResult end(const QStringList &words);
    CommandResult parallel(const QStringList &words);
    CommandResult expectNoGrowth();
    /// The bytes of the heap in use, without those that the threads have freed more or fewer of.
    std::optional<qint64> steadyHeap();
    CommandResult expectAgreement();
    void noteSignals();

    // Scenario_Random.cpp
    CommandResult random(const QStringList &words);
    CommandResult runStep(const RandomSteps::Step &step, int number);
    CommandResult runCommands(const QStringList &commands);
    SimulatedMouse currentMouse() { return m_workbench.currentReceiver().mouse(m_workbench.currentMouse()); }

    // Scenario_Checks.cpp
    CommandResult show(const QStringList &words);
    /// What a getter of the current device answers, as text: numbers in decimal, lists with blanks between their items.
    QString shownValue(const DeviceOperation &getter);
    CommandResult showTimeline(const QStringList &words);
    CommandResult expect(const QStringList &words);
    CommandResult expectSignal(const QString &expected);
    CommandResult expectTimeline(const QString &expected);
    CommandResult expectLog(const QString &expected);
    CommandResult expectMetadata(const QString &expected);
    CommandResult expectExports(QStringList expected);

    // Scenario_When.cpp
    CommandResult when(const QStringList &words);
    void runInside(const TimelineEntry &entry);
    CommandResult executeInside(const QString &line);
    /// What came of the commands inside the last one; a difference when one of them did not run.
    CommandResult takeInsideResult();

    // Scenario_Object.cpp
    /// Compares what the words name of the object's class; nothing when they name something else.
    std::optional<CommandResult> expectOfObject(QObject *object, const QString &words);
    CommandResult expectClass(const QObject *object, const QString &expected);
    CommandResult expectMethod(const QObject *object, const QString &expected);
    CommandResult expectCast(QObject *object, const QString &expected);

    // Scenario_Checks.cpp
    CommandResult expectNextLine(const QStringList &words);
    CommandResult wait(const QStringList &words);

    CommandResult compare(const QString &what, const QString &expected, const QString &seen);
    /// The same for texts that are several lines with a separator between them.
    CommandResult compareLines(const QString &what, const QString &expected, const QString &seen);
    /// The same for one of the lines of the last command. An empty text is a line that is missing.
    CommandResult compareLine(qsizetype index, const QString &expected);
    CommandResult act(const std::function<QList<MouseMessage>(SimulatedMouse &)> &action);
    static CommandResult wrongWord(const QString &word, const QString &wanted);
    QStringList linesAfter(quint64 entry, const std::function<bool(const TimelineEntry &)> &isWanted) const;

    std::function<void(const QString &)> m_print;
    RandomSteps m_randomSteps;
    Workbench m_workbench;
    quint64 m_taken = 0;          // the last entry that takeEntries() gave
    quint64 m_signalCursor = 0;   // the last entry that "expect signal" or "wait" has used
    quint64 m_lastAction = 0;     // the last entry before the last action
    QStringList m_comparedLines;  // of the last action, by "=" lines
    int m_checkCount = 0;
    LastSignals m_lastSignals;
    quint64 m_noted = 0;  // the last entry that m_lastSignals has
    struct Repeat
    {
        bool isOpen = false;
        qsizetype firstLine = 0;  // counted from 0
        int rounds = 0;
        int done = 0;
        // What the process holds when the second half begins.
        std::optional<qint64> heapAtHalf;
        int handlesAtHalf = 0;
    };
    Repeat m_repeat;  // the last one
    std::optional<qsizetype> m_lineIndex;
    // Of the line that is executed: the command and what is behind it, or in front of it.
    const Command *m_command = nullptr;
    QString m_rest;
    QString m_wantedOutcome;
    bool m_isWaiting = true;
    Route m_route = Route::Usual;

    /// A command that runs inside the next line that begins so.
    struct Watch
    {
        QString beginning;
        QString command;
    };
    bool m_isWatching = false;
    QList<Watch> m_watches;
    CommandResult m_insideResult;
};
