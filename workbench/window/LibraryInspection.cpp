#include "LibraryInspection.h"

#include <utility>

using namespace Qt::StringLiterals;

LibraryInspection::LibraryInspection(QObject *parent) : QObject(parent)
{
    CheckSystem::ProcessTree::prepare(m_process);
    connect(&m_process, &QProcess::started, this, [this] {
        m_tree.emplace().adopt(m_process);
        m_process.closeWriteChannel();
    });
    connect(&m_process, &QProcess::finished, this, [this](int exitCode, QProcess::ExitStatus status) {
        const QByteArray output = m_process.readAllStandardOutput();
        const QByteArray text = exitCode == 0 ? output : m_process.readAllStandardError();
        if (status == QProcess::CrashExit)
            takeEnd(noExitCode, tr("kvx inspect crashed: %1").arg(CheckSystem::crashName(exitCode)));
        else
            takeEnd(exitCode, QString::fromUtf8(text).trimmed());
    });
    connect(&m_process, &QProcess::errorOccurred, this, [this](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart)
            takeEnd(noExitCode, tr("kvx cannot be started: %1").arg(m_process.errorString()));
    });
}

LibraryInspection::~LibraryInspection()
{
    m_process.disconnect(this);
    endChild();
    // The process object must not be destroyed before its process has ended; a killed one does so at once.
    m_process.waitForFinished();
}

void LibraryInspection::start(const Engine::Setup &setup, const QString &file)
{
    m_setup = setup;
    m_file = file;
    m_startsAgain = m_process.state() != QProcess::NotRunning;
    if (m_startsAgain)
        endChild();
    else
        startChild();
}

void LibraryInspection::endChild()
{
    if (m_tree && m_process.state() != QProcess::NotRunning)
        m_tree->end();
    m_process.kill();
}

void LibraryInspection::startChild()
{
    QStringList words = m_setup.wrapper;
    words << m_setup.kvx << u"inspect"_s << m_file;
    const QString program = words.takeFirst();
    m_process.start(program, words);
}

void LibraryInspection::takeEnd(int exitCode, const QString &text)
{
    m_tree.reset();
    if (std::exchange(m_startsAgain, false))
        startChild();
    else
        Q_EMIT finished(m_file, exitCode, text);
}
