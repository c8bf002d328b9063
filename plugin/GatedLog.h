#pragma once

#include "LogLine.h"
#include "LogSwitches.h"

#include <QtCore/QLoggingCategory>

Q_DECLARE_LOGGING_CATEGORY(deviceLog)
Q_DECLARE_LOGGING_CATEGORY(pluginLog)

// The switch is asked first: while it is off no category is created and no operand is evaluated.
// Macros, so that file and line are the caller's; a loop, so that they stand in an unbraced if.
#define GATED_LOG(enabled, type, category)                                                                   \
    for (bool gatedLogOnce = (enabled); Q_UNLIKELY(gatedLogOnce); gatedLogOnce = false)                      \
    LogLine<type>{category, QT_MESSAGELOG_FILE, QT_MESSAGELOG_LINE, QT_MESSAGELOG_FUNC} <<= LogOperands<>()

#define deviceDebug() GATED_LOG(debugLogEnabled(), QtDebugMsg, deviceLog)
#define deviceWarning() GATED_LOG(warningLogEnabled(), QtWarningMsg, deviceLog)
#define deviceCritical() GATED_LOG(criticalLogEnabled(), QtCriticalMsg, deviceLog)
#define pluginDebug() GATED_LOG(debugLogEnabled(), QtDebugMsg, pluginLog)
