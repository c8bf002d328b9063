#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <optional>

/// Reads lines from standard input. At a terminal, where the platform has a library for it, with line editing, a
/// history for the life of the reader, and completion of the first word. One reader at a time.
class LineReader
{
public:
    /// firstWords: what the first word of a line is completed to.
    explicit LineReader(const QStringList &firstWords);
    ~LineReader();
    Q_DISABLE_COPY_MOVE(LineReader)

    /// No value at the end of the input. The prompt is shown at a terminal only.
    std::optional<QString> readLine(const QString &prompt);
};
