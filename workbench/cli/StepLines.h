#pragma once

#include "Output.h"
#include "Timeline.h"

#include <QtCore/QJsonObject>
#include <QtCore/QString>

#include <optional>

// What kvx run --steps and kvx shell --json print alike.

/// On one line.
QString jsonText(const QJsonObject &object);

/// The line for a call, a receiver's operation or a report that begins, so that the last one before a crash or a hang is
/// known; nothing for other entries.
std::optional<QString> begunLine(const TimelineEntry &entry);

/// How a line or a scenario ended that did not end with success.
QString resultWord(ExitCode code);
