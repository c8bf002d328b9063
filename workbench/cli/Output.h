#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>

/// What kvx answers to the shell.
enum class ExitCode {
    Success = 0,
    Difference = 1,  ///< something was not as it should be
    Unusable = 2,    ///< bad usage, or a file that cannot be used
    Refused = 3,     ///< the receiver refused a request, and nobody said that this is right
    Pending = 4,     ///< a request was never confirmed, and nobody said that this is right
    NoAnswer = 3,    ///< of kvx check: not all that was planned was run, or nothing
};

/// Writes a line to standard output, at once.
void printLine(const QString &line);

/// Writes whole lines with their ends to standard output, at once.
void printLines(const QByteArray &lines);

/// Why a line could not be written to standard output: "No space left on device". Empty when all could, and when their
/// reader has gone.
QString outputProblem();

/// Writes "kvx: " and the message as one line to standard error.
void printError(const QString &message);

/// The text without whatever would end the line or control the terminal: for what comes from a file.
QString onOneLine(QString text);
