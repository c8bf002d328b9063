#pragma once

#include <QtCore/QProcess>
#include <QtCore/QString>

#include <functional>
#include <memory>

/// What a check asks of the system that it runs on.
namespace CheckSystem {

/// A process and all that it starts. They end with it, and with kvx, however that ends.
class ProcessTree
{
public:
    ProcessTree();
    ~ProcessTree();
    Q_DISABLE_COPY_MOVE(ProcessTree)

    /// Before the process is started.
    static void prepare(QProcess &process);
    /// When it has started.
    void adopt(const QProcess &process);
    /// Asks the process to end as Ctrl-C does; on a system without a way to ask, ends all of them at once. Only while the
    /// process is running.
    void interrupt(QProcess &process);
    /// Ends all of them at once. Only while the process is running.
    void end();

private:
    struct Data;
    std::unique_ptr<Data> m_data;
};

/// Calls the function from the event loop at the first Ctrl-C or request to end, with the name of what came: "SIGINT".
/// The second one ends kvx at once. One at a time.
class Interruption
{
public:
    explicit Interruption(std::function<void(const QString &)> function);
    ~Interruption();
    Q_DISABLE_COPY_MOVE(Interruption)

private:
    struct Data;
    std::unique_ptr<Data> m_data;
};

/// "SIGSEGV", "0xC0000005 (access violation)": why a process crashed. exitCode: as QProcess has it.
QString crashName(int exitCode);

/// Whether a process that ended by itself with this exit code did so by an exception of the system.
bool isException(int exitCode);

/// From now on, writing to a pipe that nobody reads is an error and does not end this process.
void ignoreClosedPipes();

/// Whether standard output is a terminal.
bool isTerminal();

/// A word that a shell of this system reads as this text.
QString quoted(const QString &text);

}  // namespace CheckSystem
