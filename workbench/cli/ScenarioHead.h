#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

/// Which scenarios a check runs; each level includes those before it.
enum class Level {
    Load,      ///< loads the library, makes and ends devices
    Contract,  ///< everything promised
    Stress,    ///< random sequences, threads, thousands of life cycles
};

/// What a failure of a scenario means.
enum class Severity {
    Error,  ///< a host relies on it
    Warning,
    Note,
};

/// What the first lines of a scenario say about it: comments with a key, such as "# title: ...".
struct ScenarioHead
{
    QString title;
    /// What a host would suffer from otherwise.
    QString why;
    Level level = Level::Contract;
    Severity severity = Severity::Error;
    /// "linux" or "windows" for a scenario that is for this system only; empty for any.
    QString system;
    /// How many lines it has.
    int length = 0;

    /// Why the scenario is not for this system; empty when it is.
    QString reasonToSkip() const;
};

struct HeadProblem
{
    int line = 0;  // from 1
    /// One sentence.
    QString message;
};

/// Reads the head, which ends before the first line that is no such comment. Answers what is wrong with it, or nothing
/// when it is complete.
std::optional<HeadProblem> readScenarioHead(const QStringList &lines, ScenarioHead &head);

/// As a head or a command line writes them: "contract", "warning".
QString levelName(Level level);
QString severityName(Severity severity);
std::optional<Level> levelOf(const QString &word);
QStringList levelNames();
