#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

/// Compares what Timeline::take() gives with the expected lines, and ends the test function where they differ.
/// The failure shows the first line that differs and the lines before it.
#define COMPARE_LINES(actual, ...)                                                                           \
    do {                                                                                                     \
        if (!compareLines((actual), __VA_ARGS__, __FILE__, __LINE__))                                        \
            return;                                                                                          \
    } while (false)

/// What COMPARE_LINES calls: adds a failure of the current test function and answers false when they differ.
bool compareLines(const QStringList &actual, const QStringList &expected, const char *file, int line);

/// The lines of an expected timeline that is written as one text.
QStringList linesOf(const QString &text);

/// A log line of the device.
QString debugLine(const QString &text);
QString warningLine(const QString &text);
QString criticalLine(const QString &text);

/// What a start asks the sane receiver, in its order, without log lines.
QStringList bindingLines();
