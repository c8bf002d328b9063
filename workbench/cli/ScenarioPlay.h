#pragma once

#include "Commands.h"
#include "Scenario.h"

#include <functional>

/// The lines of a scenario file; no value when it is none or cannot be read, with one sentence in problem.
/// file: "-" for standard input.
std::optional<QStringList> readScenario(const QString &file, QString &problem);

/// How playing a scenario ended.
struct PlayResult
{
    CommandResult result;
    /// From 1.
    int line = 0;
    /// Why something of it could not be checked; empty when everything was.
    QString skipped;
};

struct PlayHooks
{
    std::function<void(int line, const QString &command)> beforeCommand;
    std::function<void()> afterCommand;
};

/// Plays the lines up to the first that goes wrong.
PlayResult playLines(Scenario &scenario, const QStringList &lines, const PlayHooks &hooks);

/// kvx run --steps: plays a scenario with a head for a program that reads what happens: one JSON object for each line,
/// as docs/scenarios.md describes them. print may be called on any thread.
ExitCode playSteps(const RunOptions &options, const std::function<void(const QString &line)> &print);
