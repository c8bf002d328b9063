#pragma once

#include "Entry.h"
#include "KvxProcess.h"

#include <QtCore/QJsonObject>
#include <QtCore/QObject>

/// What the child says to one line.
struct Answer
{
    /// Which line, from 1 since the child's start; 0 when the library could not be loaded.
    int number = 0;
    QString command;
    /// done, difference, unusable, refused, pending, skipped, end or unloadable.
    QString result;
    /// What was wrong, in one sentence; empty when nothing was.
    QString message;
    /// Of a difference, a line each.
    QStringList expected;
    QStringList actual;
    /// What the command printed, for example of show and help.
    QStringList printed;
};

/// How the child ended.
struct EngineEnd
{
    enum class Kind {
        Finished,    ///< after quit, or its input's end
        Stopped,     ///< by stop() or restart()
        Unloadable,  ///< the library cannot be loaded; errorText has the reason
        Crashed,     ///< by a signal or exception, or with an unknown exit code
        NotStarted,  ///< there is no such program
    };
    Kind kind = Kind::Finished;
    int exitCode = 0;
    /// The last call, receiver's operation or report that began; empty when none did.
    QString lastCall;
    /// What the child wrote to its standard error, and the reason.
    QString errorText;
    /// "SIGSEGV", "0xC0000005 (access violation)": why it crashed; empty when it ended with an exit code.
    QString crash;
};

/// Runs "kvx shell --json" as a child process and speaks with it. The library lives in the child only: when it crashes or
/// hangs, this object goes on. For the thread that it lives on; nothing blocks.
class Engine : public QObject
{
    Q_OBJECT

public:
    explicit Engine(QObject *parent = nullptr);

    /// For the next start.
    void setSetup(const KvxSetup &setup) { m_setup = setup; }
    const KvxSetup &setup() const { return m_setup; }

    /// Starts a child with a fresh library; does nothing while one runs.
    void start();
    /// Ends the child at once, whatever it is doing; emits ended().
    void stop();
    /// Ends the child, if there is one, and starts another.
    void restart();

    /// Gives the child one line of a scenario. Without a child it does nothing. Line breaks in it become blanks.
    void send(const QString &line);

    bool isRunning() const { return m_process.isRunning(); }
    /// Whether lines wait for their answers.
    bool isBusy() const { return isRunning() && m_answered < m_sent; }
    /// How many lines the child was given.
    int sentCount() const { return m_sent; }
    /// The last call that began in the child.
    QString lastCall() const { return m_lastCall; }
    /// The last state; empty before the first.
    const QJsonObject &state() const { return m_state; }

Q_SIGNALS:
    /// A child runs; nothing is known of it yet.
    void started();
    /// number: from 1 since the start.
    void sent(int number, const QString &line);
    void answered(const Answer &answer);
    void entriesCame(const QList<Entry> &entries);
    /// As docs/scenarios.md describes it. Comes with each start, too.
    void stateChanged(const QJsonObject &state);
    void busyChanged(bool isBusy);
    void ended(const EngineEnd &end);

private:
    void readOutput();
    void noteError(const QByteArray &output);
    /// False when the line is no JSON object.
    bool takeLine(const QByteArray &line);
    void deliverEntries();
    void takeAnswer(const QJsonObject &object);
    void takeEnd(int exitCode, QProcess::ExitStatus status);
    void takeError(QProcess::ProcessError error);
    void finish(const EngineEnd &end);
    void noteBusy();

    KvxSetup m_setup;
    KvxProcess m_process;
    QByteArray m_unfinishedLine;
    QByteArray m_errorOutput;
    QList<Entry> m_entries;  // not delivered yet
    QJsonObject m_state;
    QString m_lastCall;
    QString m_unloadable;  // the reason
    int m_sent = 0;
    int m_answered = 0;
    bool m_wasBusy = false;
    bool m_isStopping = false;
    bool m_startsAgain = false;
};
