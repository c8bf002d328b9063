#pragma once

#include <QtCore/QStringList>

/// Where the comment of a scenario's line begins; the line's length when it has none. A # begins a comment at the
/// beginning of a word outside quotes.
qsizetype commentStart(const QString &line);

/// The texts as words of a scenario: in quotes where they need them.
QString scenarioWords(const QStringList &texts);

/// The first word of the command; empty for a line without one.
QString commandWord(const QString &line);
