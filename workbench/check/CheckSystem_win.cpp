#include "CheckSystem.h"

#include <QtCore/QObject>
#include <QtCore/QRegularExpression>

#include <array>
#include <atomic>
#include <cstdio>
#include <io.h>
#include <utility>

#include <windows.h>

using namespace Qt::StringLiterals;

namespace CheckSystem {

// --- process tree ---

struct ProcessTree::Data
{
    HANDLE job = nullptr;
};

// Its processes end when the last handle of a job is closed, which is ours.
ProcessTree::ProcessTree() : m_data(std::make_unique<Data>())
{
    m_data->job = CreateJobObjectW(nullptr, nullptr);
    JOBOBJECT_EXTENDED_LIMIT_INFORMATION limits = {};
    limits.BasicLimitInformation.LimitFlags = JOB_OBJECT_LIMIT_KILL_ON_JOB_CLOSE;
    SetInformationJobObject(m_data->job, JobObjectExtendedLimitInformation, &limits, sizeof(limits));
}

ProcessTree::~ProcessTree()
{
    CloseHandle(m_data->job);
}

void ProcessTree::prepare(QProcess & /*process*/)
{
    // Children inherit it: no window of the system's waits for somebody to close it.
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
}

void ProcessTree::adopt(const QProcess &process)
{
    const HANDLE handle =
        OpenProcess(PROCESS_SET_QUOTA | PROCESS_TERMINATE, FALSE, static_cast<DWORD>(process.processId()));
    if (!handle)
        return;
    AssignProcessToJobObject(m_data->job, handle);
    CloseHandle(handle);
}

// Ctrl-C reaches only the processes of one's own console.
void ProcessTree::interrupt(QProcess & /*process*/)
{
    end();
}

void ProcessTree::end()
{
    TerminateJobObject(m_data->job, 1);
}

// --- interruption ---

namespace {

std::atomic<QObject *> receiverOfInterruption = nullptr;
std::function<void(const QString &)> interruptionFunction;

// Runs on a thread of the system's. FALSE: the next handler, which ends the program.
BOOL WINAPI noteInterruption(DWORD kind)
{
    QObject *const receiver = receiverOfInterruption.exchange(nullptr);
    if (!receiver)
        return FALSE;
    const QString name = kind == CTRL_C_EVENT ? u"Ctrl-C"_s : u"request to end"_s;
    QMetaObject::invokeMethod(receiver, [name] { interruptionFunction(name); }, Qt::QueuedConnection);
    return TRUE;
}

}  // namespace

struct Interruption::Data
{
    QObject receiver;
};

Interruption::Interruption(std::function<void(const QString &)> function) : m_data(std::make_unique<Data>())
{
    interruptionFunction = std::move(function);
    receiverOfInterruption = &m_data->receiver;
    SetConsoleCtrlHandler(noteInterruption, TRUE);
}

Interruption::~Interruption()
{
    SetConsoleCtrlHandler(noteInterruption, FALSE);
    receiverOfInterruption = nullptr;
}

// --- the rest ---

QString crashName(int exitCode)
{
    struct Name
    {
        DWORD code;
        const char *name;
    };
    static constexpr std::array names = {
        Name{0x80000003, "breakpoint"},           Name{0xC0000005, "access violation"},
        Name{0xC000001D, "illegal instruction"},  Name{0xC0000094, "integer division by zero"},
        Name{0xC00000FD, "stack overflow"},       Name{0xC0000374, "heap corruption"},
        Name{0xC0000409, "stack buffer overrun"}, Name{0xE06D7363, "C++ exception"},
    };
    const auto code = static_cast<DWORD>(exitCode);
    const QString number = u"0x%1"_s.arg(QString::number(code, 16).toUpper(), 8, u'0');
    for (const Name &name : names) {
        if (name.code == code)
            return u"%1 (%2)"_s.arg(number, QLatin1StringView(name.name));
    }
    return number;
}

bool isException(int exitCode)
{
    constexpr DWORD first = 0x80000000;
    return static_cast<DWORD>(exitCode) >= first;
}

void ignoreClosedPipes() {}

bool isTerminal()
{
    return _isatty(_fileno(stdout)) != 0;
}

QString quoted(const QString &text)
{
    static const QRegularExpression plain(u"^[A-Za-z0-9_./\\\\:+=@-]+$"_s);
    return plain.match(text).hasMatch() ? text : u'"' + text + u'"';
}

}  // namespace CheckSystem
