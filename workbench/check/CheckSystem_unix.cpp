#include "CheckSystem.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QSocketNotifier>

#include <sys/prctl.h>

#include <csignal>
#include <cstring>
#include <unistd.h>
#include <utility>

using namespace Qt::StringLiterals;

namespace CheckSystem {

// --- process tree ---

struct ProcessTree::Data
{
    qint64 process = 0;
};

ProcessTree::ProcessTree() : m_data(std::make_unique<Data>()) {}
ProcessTree::~ProcessTree() = default;

void ProcessTree::prepare(QProcess &process)
{
    process.setChildProcessModifier([] {
        setsid();
        prctl(PR_SET_PDEATHSIG, SIGKILL);
    });
}

void ProcessTree::adopt(const QProcess &process)
{
    m_data->process = process.processId();
}

void ProcessTree::interrupt(QProcess &process)
{
    process.terminate();
}

void ProcessTree::end()
{
    if (m_data->process > 0)
        kill(static_cast<pid_t>(-m_data->process), SIGKILL);
}

// --- interruption ---

namespace {

constexpr int signalNumbers[] = {SIGINT, SIGTERM, SIGHUP};
int pipeEnds[2] = {-1, -1};  // to read, to write

void noteSignal(int number)
{
    const char byte = static_cast<char>(number);
    static_cast<void>(write(pipeEnds[1], &byte, 1));
}

}  // namespace

struct Interruption::Data
{
    std::unique_ptr<QSocketNotifier> notifier;
    struct sigaction before[std::size(signalNumbers)];
};

Interruption::Interruption(std::function<void(const QString &)> function) : m_data(std::make_unique<Data>())
{
    if (pipe(pipeEnds) != 0)
        return;
    m_data->notifier = std::make_unique<QSocketNotifier>(pipeEnds[0], QSocketNotifier::Read);
    QObject::connect(m_data->notifier.get(), &QSocketNotifier::activated, m_data->notifier.get(),
                     [this, function = std::move(function)] {
                         m_data->notifier->setEnabled(false);
                         char number = 0;
                         static_cast<void>(read(pipeEnds[0], &number, 1));
                         function(crashName(number));
                     });
    struct sigaction action = {};
    action.sa_handler = noteSignal;
    action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
    for (std::size_t index = 0; index < std::size(signalNumbers); ++index)
        sigaction(signalNumbers[index], &action, &m_data->before[index]);
}

Interruption::~Interruption()
{
    if (!m_data->notifier)
        return;
    for (std::size_t index = 0; index < std::size(signalNumbers); ++index)
        sigaction(signalNumbers[index], &m_data->before[index], nullptr);
    m_data->notifier.reset();
    for (const int end : pipeEnds)
        close(end);
}

// --- the rest ---

QString crashName(int exitCode)
{
    const char *const name = sigabbrev_np(exitCode);
    return name ? u"SIG"_s + QLatin1StringView(name) : u"signal %1"_s.arg(exitCode);
}

bool isException(int /*exitCode*/)
{
    return false;
}

void ignoreClosedPipes()
{
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
}

bool isTerminal()
{
    return isatty(STDOUT_FILENO) == 1;
}

QString quoted(const QString &text)
{
    static const QRegularExpression plain(u"^[A-Za-z0-9_./:+=@%,-]+$"_s);
    if (plain.match(text).hasMatch())
        return text;
    return u'\'' + QString(text).replace(u'\'', u"'\\''"_s) + u'\'';
}

}  // namespace CheckSystem
