#pragma once

#include <QtCore/QString>

/// The text with each character that XML cannot hold or a reader cannot see as "<U+001B>", with other brackets. Blanks,
/// tabs and line ends stay.
QString visibleText(const QString &text);
