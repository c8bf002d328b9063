#pragma once

#include "Output.h"

/// kvx inspect: prints what a library file says of itself as a plugin, and whether it loads here.
ExitCode runInspect(const QString &file);
