#pragma once

#include "Output.h"

/// What kvx run is told on its command line.
struct RunOptions
{
    /// The scenario; "-" for standard input.
    QString file;
    /// Empty for the library that lies beside the program.
    QString pluginFile;
    bool isJson = false;
};

/// kvx run: plays the commands of a file, prints each with what it left on the timeline, and ends at the first
/// that goes wrong.
ExitCode runScenario(const RunOptions &options);
