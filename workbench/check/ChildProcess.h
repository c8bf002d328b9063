#pragma once

#include "CheckSystem.h"
#include "StepReader.h"

#include <QtCore/QElapsedTimer>
#include <QtCore/QProcess>
#include <QtCore/QTimer>

#include <chrono>
#include <functional>
#include <optional>

/// kvx run --steps in a process of its own.
class ChildProcess
{
public:
    enum class End {
        NotYet,
        NotStarted,  ///< reason() says why
        Exit,        ///< with exitCode()
        Crash,       ///< by a signal or an exception
        Timeout,     ///< ended here, because it wrote nothing for too long
        TooMuch,     ///< ended here, because it wrote more than any scenario does
    };

    /// Starts it. deadline: how long it may write nothing; none for ever. ended: called at its end; must not delete
    /// this object.
    ChildProcess(const QStringList &arguments, std::optional<std::chrono::milliseconds> deadline,
                 std::function<void()> ended);
    /// Ends it, and all that it started, when it still runs.
    ~ChildProcess();
    Q_DISABLE_COPY_MOVE(ChildProcess)

    End end() const { return m_end; }
    QString reason() const { return m_process.errorString(); }
    int exitCode() const { return m_process.exitCode(); }
    std::chrono::milliseconds time() const { return m_time; }
    std::optional<std::chrono::milliseconds> deadline() const { return m_deadline; }
    const StepReader &steps() const { return m_steps; }
    /// The end of what it wrote there.
    QString standardError() const { return QString::fromUtf8(m_standardError); }

private:
    void read();
    void endIt(End why);
    void noteEnd(End end);

    CheckSystem::ProcessTree m_tree;
    StepReader m_steps;
    QByteArray m_standardError;
    qint64 m_writtenBytes = 0;
    End m_end = End::NotYet;
    std::optional<std::chrono::milliseconds> m_deadline;
    std::function<void()> m_ended;
    QElapsedTimer m_clock;
    std::chrono::milliseconds m_time{0};
    QTimer m_silence;
    QProcess m_process;
};
