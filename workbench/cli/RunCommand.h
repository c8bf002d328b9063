#pragma once

#include "Output.h"

/// The options of kvx run and kvx session.
struct RunOptions
{
    /// The scenario; "-" for standard input. Not used by kvx session.
    QString file;
    /// Empty for the library that is beside the program.
    QString pluginFile;
    bool isJson = false;
};

/// kvx run: plays the commands of a file, prints each with what it left on the timeline, and ends at the first
/// that goes wrong.
ExitCode runScenario(const RunOptions &options);

/// kvx session: the same with the scenario that is compiled in. Anything that goes wrong in it is a difference.
ExitCode runSession(const RunOptions &options);
