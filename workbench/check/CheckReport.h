#pragma once

#include "ScenarioHead.h"

#include <QtCore/QDateTime>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <chrono>
#include <utility>

/// How a scenario ended.
enum class Verdict {
    Pass,
    Fail,      ///< the library did something else than the scenario expects
    Crash,     ///< the process ended by a signal or an exception
    Timeout,   ///< no progress until the deadline
    Skipped,   ///< it cannot run here; message has the reason
    Waived,    ///< it failed, and a waiver says that this is known
    KitError,  ///< kvx could not run it; says nothing of the library
};

struct ScenarioVerdict
{
    QString name;
    ScenarioHead head;
    Verdict verdict = Verdict::Pass;
    /// What it would be without its waiver.
    Verdict unwaived = Verdict::Pass;
    /// One sentence; empty after a pass.
    QString message;
    /// Of the scenario; 0 for none.
    int line = 0;
    QStringList expected;
    QStringList actual;
    /// The library's log lines.
    QStringList log;
    QString lastCall;
    QString standardError;
    /// The reason of its waiver.
    QString waiver;
    quint32 seed = 0;
    std::chrono::milliseconds time{0};
    QString repeatCommand;
};

/// What kvx check found out about a library.
struct CheckReport
{
    QString pluginFile;
    /// Names and values: Qt, compiler, build type of library and host, system.
    QList<std::pair<QString, QString>> environment;
    quint32 seed = 0;
    Level level = Level::Contract;
    QDateTime started;
    std::chrono::milliseconds time{0};
    /// Fewer verdicts than planned: the check was ended early.
    qsizetype planned = 0;
    /// What ended it early: "SIGINT".
    QString interruption;
    /// How many scenarios the contract has, up to this level.
    qsizetype contractSize = 0;
    QList<ScenarioVerdict> verdicts;
    /// What fails the check beside the scenarios, one sentence each: waivers that are no longer right.
    QStringList problems;
};

/// The answer of a check.
enum class Outcome {
    Keeps,         ///< the library keeps the contract
    KeepsPart,     ///< it keeps what was run, and the contract has more
    Breaks,        ///< it does not keep the contract
    WrongWaivers,  ///< it keeps what was run, but a waiver is not right
    NoAnswer,      ///< scenarios are missing, or kvx could not run them, or none could run here
};

/// Whether the library does not keep the contract because of it.
bool breaksTheContract(const ScenarioVerdict &verdict);

Outcome outcomeOf(const CheckReport &report);

/// As reports and output write it: "kit error".
QString wordOf(Verdict verdict);
QString wordOf(Outcome outcome);

/// The outcome with its numbers, for people: "keeps the contract except for 1 waived failure".
QString answerOf(const CheckReport &report);

/// How many verdicts of a kind there are.
qsizetype countOf(const QList<ScenarioVerdict> &verdicts, Verdict wanted);

/// "1 scenario", "2 scenarios".
QString counted(qsizetype number, const QString &noun);

/// Whether a scenario is a file of the user's.
bool isScenarioFile(const QString &scenario);

/// What a scenario is counted under: its folder in the contract, or "files".
QString featureOf(const QString &scenario);

/// All verdicts, those first that ask for a reader's attention.
QList<Verdict> allVerdicts();
