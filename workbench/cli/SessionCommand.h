#pragma once

#include "Output.h"

/// What kvx session is told on its command line.
struct SessionOptions
{
    /// Empty for the library that lies beside the program.
    QString pluginFile;
    bool isJson = false;
};

/// kvx session: plays a session on one simulated mouse, prints its timeline and what came of it.
ExitCode runSession(const SessionOptions &options);
