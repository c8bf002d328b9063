#pragma once

#include "Output.h"
#include "Scenario.h"

/// The options of kvx run, kvx session and kvx shell.
struct RunOptions
{
    /// The scenario; "-" for standard input. For kvx run only.
    QString file;
    /// Empty for the library that is beside the program.
    QString pluginFile;
    bool isJson = false;
    /// Prints every step for a program; for kvx run only.
    bool isSteps = false;
    /// Where a picture of the timeline is written. For kvx run without steps only.
    std::optional<QString> diagramFile;
    /// What the random commands of the scenario begin with.
    quint32 seed = Scenario::defaultSeed;
};

/// kvx run: plays the commands of a file, prints each with what it left on the timeline, and ends at the first
/// that goes wrong.
ExitCode runScenario(const RunOptions &options);

/// kvx session: the same with the scenario that is compiled in. Anything that goes wrong in it is a difference.
ExitCode runSession(const RunOptions &options);

/// kvx shell: the commands of scenarios at a prompt, with one mouse started. Goes on after a command that goes
/// wrong; answers Success at its end.
ExitCode runShell(const RunOptions &options);

/// kvx shell --json: the same for a program, as docs/scenarios.md describes it, with no command of its own.
ExitCode runJsonShell(const QString &pluginFile);

/// kvx inspect: prints what a plugin library says of itself, what it misses here, and whether it loads.
ExitCode runInspect(const QString &file);
