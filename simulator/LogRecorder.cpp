#include "LogRecorder.h"

#include "Timeline.h"

#include <QtCore/QList>
#include <QtCore/QMutex>
#include <QtCore/QMutexLocker>

#include <array>

namespace {

// Held while a line is written, so that no recorder goes while another thread is using it.
struct ActiveRecorders
{
    QMutex mutex;
    QList<LogRecorder *> recorders;
};

ActiveRecorders &activeRecorders()
{
    static ActiveRecorders active;
    return active;
}

// In the order of QtMsgType.
constexpr std::array severityWords{"debug", "warning", "critical", "fatal", "info"};

}  // namespace

LogRecorder::LogRecorder(Timeline &timeline) : m_timeline(timeline)
{
    ActiveRecorders &active = activeRecorders();
    const QMutexLocker locker(&active.mutex);
    active.recorders.append(this);
    // Under the lock, so that lines and recorders agree.
    // NOLINTNEXTLINE(cppcoreguidelines-prefer-member-initializer)
    m_previous = qInstallMessageHandler(&LogRecorder::handle);
}

LogRecorder::~LogRecorder()
{
    ActiveRecorders &active = activeRecorders();
    const QMutexLocker locker(&active.mutex);
    active.recorders.removeOne(this);
    qInstallMessageHandler(m_previous);
}

void LogRecorder::handle(QtMsgType severity, const QMessageLogContext &context, const QString &text)
{
    ActiveRecorders &active = activeRecorders();
    QtMessageHandler previous = nullptr;
    {
        const QMutexLocker locker(&active.mutex);
        if (active.recorders.isEmpty())
            return;
        LogRecorder *recorder = active.recorders.last();
        previous = active.recorders.first()->m_previous;
        recorder->m_timeline.recordLog(
            QString::fromLatin1(severityWords.at(static_cast<std::size_t>(severity))),
            QString::fromUtf8(context.category), text);
    }
    if (severity == QtFatalMsg && previous)
        previous(severity, context, text);
}
