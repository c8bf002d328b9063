#pragma once

#include "CheckSystem.h"

#include <QtCore/QStringList>

#include <functional>
#include <optional>

/// What a run of kvx is started with.
struct KvxSetup
{
    /// The kvx program.
    QString kvx;
    /// The plugin library; empty for the one beside kvx.
    QString pluginFile;
    /// A program and its arguments that run kvx: valgrind, gdb, wine. Usually empty.
    QStringList wrapper;
};

/// A process with all that it starts, which end with it and with this object. Nothing blocks.
class KvxProcess : public QProcess
{
    Q_OBJECT

public:
    explicit KvxProcess(QObject *parent = nullptr);
    ~KvxProcess() override;
    Q_DISABLE_COPY_MOVE(KvxProcess)

    /// Starts kvx with these arguments, under the wrapper.
    void startKvx(const KvxSetup &setup, const QStringList &arguments);
    bool isRunning() const { return state() != NotRunning; }
    /// As ProcessTree::interrupt().
    void interrupt();
    /// Ends all of them at once; does nothing when none runs.
    void end();

private:
    std::optional<CheckSystem::ProcessTree> m_tree;  // while it runs
};

/// How a run of kvx ended that was asked for something.
struct KvxAnswer
{
    static constexpr int noExitCode = -1;

    /// noExitCode when it did not run to its end.
    int exitCode = noExitCode;
    /// What it printed.
    QString output;
    /// Why the exit code is not 0; empty when it is.
    QString problem;
};

/// Runs kvx with these arguments and calls the function with the answer, never after the receiver is gone. Who deletes
/// the process before that ends it and gets no answer.
KvxProcess *askKvx(const KvxSetup &setup, const QStringList &arguments, QObject *receiver,
                   const std::function<void(const KvxAnswer &answer)> &answered);

/// Asks for the text of a scenario that "kvx check" knows by this name; problem: why there is none.
void askKvxForScenario(const KvxSetup &setup, const QString &name, QObject *receiver,
                       const std::function<void(const QString &text, const QString &problem)> &answered);
