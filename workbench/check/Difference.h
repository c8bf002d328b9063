#pragma once

#include <QtCore/QStringList>

/// Expected and actual lines as one list: "  " before a line that is in both, "- " before one that is missing, "+ "
/// before one too many, and "=> " in front of the first of these, three blanks in front of all others. Of long equal
/// parts only the lines next to a difference are there, and "..." for the rest.
QStringList difference(const QStringList &expected, const QStringList &actual);
