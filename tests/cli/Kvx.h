#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// One run of the kvx command.
struct KvxRun
{
    /// -1 when it did not start, crashed or hung.
    int exitCode = -1;
    QStringList output;
    QStringList errors;
};

KvxRun runKvx(const QStringList &arguments, const QByteArray &input = {});
/// The same with a copy of the command.
KvxRun runProgram(const QString &program, const QStringList &arguments, const QByteArray &input = {});

/// A scenario of these lines, run with the library under test.
KvxRun playLines(const QStringList &lines);
/// What kvx says of one of these lines.
QString errorAt(int line, const QString &text);

/// A library of the tests that is wrong in the way that its name says.
QString wrongLibrary(const QString &name);
