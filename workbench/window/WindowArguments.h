#pragma once

#include "KvxProcess.h"

/// The command line of the window's program.
struct WindowArguments
{
    KvxSetup setup;
    /// At most one; empty for none.
    QString scenario;
};

/// What the program does instead of showing its window.
struct WindowAnswer
{
    int exitCode = 0;
    QString text;
};

/// Reads the words behind the program's name; folder is the program's own. Answers what to print when there is nothing
/// to show: for --help, --version, bad usage, and files that cannot be used.
std::optional<WindowAnswer> readArguments(const QStringList &words, const QString &folder,
                                          WindowArguments &arguments);
