#pragma once

#include "Output.h"

/// kvx inspect: prints what a plugin library says of itself, what it misses here, and whether it loads.
ExitCode runInspect(const QString &file);
