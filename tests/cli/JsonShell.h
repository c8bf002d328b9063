#pragma once

#include "PluginFixture.h"

#include <QtCore/QJsonObject>
#include <QtCore/QList>
#include <QtCore/QProcess>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <functional>

/// What kvx shell --json has printed, an object a line.
using ShellLines = QList<QJsonObject>;

/// Those that have the key, and the key's values as texts.
ShellLines linesWith(QLatin1StringView key, const ShellLines &lines);
QStringList textsOf(QLatin1StringView key, const ShellLines &lines);
/// The answer with this number; empty unless there is exactly one.
QJsonObject answerTo(int number, const ShellLines &lines);
/// Empty when there is none.
QJsonObject lastState(const ShellLines &lines);

/// A kvx shell --json that runs. Each line that it prints must be a JSON object; else the test program ends.
class JsonShell
{
public:
    explicit JsonShell(const QString &library = PluginFixture::builtPluginFile());
    ~JsonShell();
    Q_DISABLE_COPY_MOVE(JsonShell)

    void send(const QString &line);
    void sendBytes(const QByteArray &bytes);

    /// The objects from here up to the first that is wanted, and it; all of them when none is.
    ShellLines readTo(const std::function<bool(const QJsonObject &)> &isWanted);
    ShellLines readToAnswer(int number);
    /// Whether nothing comes for so long.
    bool isSilent(int milliseconds);
    /// The rest, up to the process' end; ends its input first.
    ShellLines finish();
    /// The rest up to now; ends the process first.
    ShellLines kill();

    /// Of a process that has ended; -1 when it crashed.
    int exitCode() const;

private:
    QProcess m_process;
};

/// A whole run.
struct ShellRun
{
    /// -1 when it crashed.
    int exitCode = -1;
    ShellLines lines;
};
ShellRun runShell(const QByteArray &input, const QString &library = PluginFixture::builtPluginFile());
ShellRun runShell(const QStringList &lines, const QString &library = PluginFixture::builtPluginFile());
