#pragma once

#include "DeviceId.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <limits>
#include <optional>

/// A command line in its words. Blanks separate; double quotes keep blanks together, and inside them \" and \\ stand
/// for themselves. A # that begins a word outside quotes begins a comment. No value when a quote is left open.
std::optional<QStringList> wordsOf(const QString &line);

/// The line without its comment and the blanks around it.
QString withoutComment(const QString &line);

/// What is behind the first word or before the last, as it was written, without the comment and the blanks around it.
QString behindFirstWord(const QString &line);
QString withoutLastWord(const QString &line);

/// A whole number as the interfaces take them: decimal, or hexadecimal after 0x.
std::optional<int> numberOf(const QString &word);

/// The number that the only word is; no value when it is no number or outside the range, or the words are more.
std::optional<int> onlyNumber(const QStringList &words, int lowest = std::numeric_limits<int>::min(),
                              int highest = std::numeric_limits<int>::max());

/// The line with 0x... for each address, because addresses differ from run to run.
QString withoutAddresses(QString line);

/// The id of a mouse or device: a whole number, decimal.
std::optional<DeviceId> deviceIdOf(const QString &word);
