#pragma once

#include "Output.h"

/// kvx shell: the commands of scenarios at a prompt, with one mouse started. Goes on after a command that goes
/// wrong; answers Success at its end. pluginFile: empty for the library that lies beside the program.
ExitCode runShell(const QString &pluginFile);
