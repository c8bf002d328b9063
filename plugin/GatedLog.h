#pragma once

#include "LogSwitches.h"

#include <QtCore/QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(deviceLog)
Q_DECLARE_LOGGING_CATEGORY(pluginLog)

// The switch is asked first: while it is off, no category is created and no operand is evaluated.
// Macros, because file and line must be the caller's; a loop, because it is safe in an unbraced if.
#define GATED_LOG(enabled, line)                                                                             \
    for (bool gatedLogOnce = (enabled); gatedLogOnce; gatedLogOnce = false)                                  \
    line

#define deviceDebug() GATED_LOG(debugLogEnabled(), qCDebug(deviceLog))
#define deviceWarning() GATED_LOG(warningLogEnabled(), qCWarning(deviceLog))
#define deviceCritical() GATED_LOG(criticalLogEnabled(), qCCritical(deviceLog))
#define pluginDebug() GATED_LOG(debugLogEnabled(), qCDebug(pluginLog))
