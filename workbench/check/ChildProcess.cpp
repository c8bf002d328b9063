#include "ChildProcess.h"

#include <QtCore/QCoreApplication>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

// Whether a log line comes, and whether it ends the process, is up to the scenario.
QProcessEnvironment environmentWithoutLogRules()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString &name : {u"QT_LOGGING_RULES"_s, u"QT_LOGGING_CONF"_s, u"QT_FATAL_WARNINGS"_s,
                                u"QT_FATAL_CRITICALS"_s, u"QT_MESSAGE_PATTERN"_s})
        environment.remove(name);
    return environment;
}

}  // namespace

ChildProcess::ChildProcess(const QStringList &arguments, std::optional<std::chrono::milliseconds> deadline,
                           std::function<void()> ended)
    : m_deadline(deadline), m_ended(std::move(ended))
{
    QObject::connect(&m_process, &QProcess::started, &m_process, [this] { m_tree.adopt(m_process); });
    QObject::connect(&m_process, &QProcess::readyReadStandardOutput, &m_process, [this] { read(); });
    QObject::connect(&m_process, &QProcess::readyReadStandardError, &m_process, [this] { read(); });
    QObject::connect(&m_process, &QProcess::finished, &m_process, [this](int, QProcess::ExitStatus status) {
        read();
        noteEnd(status == QProcess::CrashExit ? End::Crash : End::Exit);
    });
    QObject::connect(&m_process, &QProcess::errorOccurred, &m_process, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            noteEnd(End::NotStarted);
    });
    m_silence.setSingleShot(true);
    QObject::connect(&m_silence, &QTimer::timeout, &m_silence, [this] { endIt(End::Timeout); });

    m_process.setProcessEnvironment(environmentWithoutLogRules());
    CheckSystem::ProcessTree::prepare(m_process);
    m_clock.start();
    if (m_deadline)
        m_silence.start(*m_deadline);
    m_process.start(QCoreApplication::applicationFilePath(), arguments);
    m_process.closeWriteChannel();
}

ChildProcess::~ChildProcess()
{
    m_process.disconnect();
    if (m_process.state() == QProcess::NotRunning)
        return;
    endIt(m_end);
    m_process.waitForFinished(-1);
}

void ChildProcess::read()
{
    constexpr qint64 mostBytes = qint64{256} << 20;
    constexpr qsizetype mostOfStandardError = 64 << 10;
    const QByteArray output = m_process.readAllStandardOutput();
    const QByteArray errors = m_process.readAllStandardError();
    m_steps.add(output);
    m_standardError = (m_standardError + errors).right(mostOfStandardError);
    m_writtenBytes += output.size() + errors.size();
    if (m_writtenBytes > mostBytes)
        endIt(End::TooMuch);
    else if (m_silence.isActive())
        m_silence.start();
}

void ChildProcess::endIt(End why)
{
    m_silence.stop();
    if (m_end == End::NotYet)
        m_end = why;
    m_tree.end();
    m_process.kill();
}

void ChildProcess::noteEnd(End end)
{
    m_silence.stop();
    if (m_end == End::NotYet)
        m_end = end;
    m_time = std::chrono::milliseconds(m_clock.elapsed());
    m_ended();
}
