#include "Engine.h"

#include "JsonStrings.h"

#include <QtCore/QJsonDocument>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// Of the child's standard error, what is worth showing.
constexpr qsizetype longestErrorOutput = 65'536;  // bytes
// No line of the child's is longer; what is cannot be kept until it ends.
constexpr qsizetype longestLine = 16'777'216;  // bytes

Entry entryOf(const QJsonObject &object, const QByteArray &line)
{
    Entry entry;
    entry.sequence = object.value("sequence"_L1).toVariant().toULongLong();
    entry.time = object.value("timeUs"_L1).toVariant().toLongLong();
    entry.thread = object.value("thread"_L1).toInt(1);
    if (const QJsonValue device = object.value("device"_L1); !device.isUndefined())
        entry.device = device.toVariant().toULongLong();
    entry.receiver = object.value("receiver"_L1).toInt(1);
    entry.kind = object.value("kind"_L1).toString();
    entry.name = object.value("name"_L1).toString();
    entry.arguments = object.value("arguments"_L1).toArray();
    entry.text = object.value("text"_L1).toString();
    entry.json = QString::fromUtf8(line);
    return entry;
}

}  // namespace

Engine::Engine(QObject *parent) : QObject(parent)
{
    connect(&m_process, &QProcess::started, this, [this] {
        // It may have been stopped before it ran.
        if (m_isStopping)
            m_process.end();
        else
            Q_EMIT started();
    });
    connect(&m_process, &QProcess::readyReadStandardOutput, this, &Engine::readOutput);
    connect(&m_process, &QProcess::readyReadStandardError, this,
            [this] { noteError(m_process.readAllStandardError()); });
    connect(&m_process, &QProcess::finished, this, &Engine::takeEnd);
    connect(&m_process, &QProcess::errorOccurred, this, &Engine::takeError);
}

void Engine::start()
{
    if (isRunning())
        return;
    m_unfinishedLine.clear();
    m_errorOutput.clear();
    m_entries.clear();
    m_state = {};
    m_lastCall.clear();
    m_unloadable.clear();
    m_sent = 0;
    m_answered = 0;
    m_isStopping = false;
    QStringList words{u"shell"_s, u"--json"_s};
    if (!m_setup.pluginFile.isEmpty())
        words << u"--plugin"_s << m_setup.pluginFile;
    m_process.startKvx(m_setup, words);
}

void Engine::stop()
{
    m_startsAgain = false;
    if (!isRunning())
        return;
    m_isStopping = true;
    m_process.end();
}

void Engine::restart()
{
    if (!isRunning()) {
        start();
        return;
    }
    stop();
    m_startsAgain = true;
}

void Engine::send(const QString &line)
{
    if (!isRunning() || m_isStopping)
        return;
    QString oneLine = line;
    oneLine.replace(u'\n', u' ').replace(u'\r', u' ');
    m_process.write(oneLine.toUtf8() + '\n');
    ++m_sent;
    Q_EMIT sent(m_sent, oneLine);
    noteBusy();
}

void Engine::readOutput()
{
    const QByteArray output = m_process.readAllStandardOutput();
    qsizetype begin = 0;
    for (qsizetype end = 0; (end = output.indexOf('\n', begin)) >= 0; begin = end + 1) {
        m_unfinishedLine += output.mid(begin, end - begin);
        const QByteArray line = std::exchange(m_unfinishedLine, {}).trimmed();
        if (!line.isEmpty() && !takeLine(line))
            noteError(line + '\n');
    }
    m_unfinishedLine += output.mid(begin);
    if (m_unfinishedLine.size() > longestLine)
        noteError(std::exchange(m_unfinishedLine, {}));
    deliverEntries();
}

void Engine::noteError(const QByteArray &output)
{
    m_errorOutput = (m_errorOutput + output).right(longestErrorOutput);
}

bool Engine::takeLine(const QByteArray &line)
{
    const QJsonDocument document = QJsonDocument::fromJson(line);
    if (!document.isObject())
        return false;
    const QJsonObject object = document.object();
    if (object.contains("kind"_L1)) {
        m_entries.append(entryOf(object, line));
    } else if (object.contains("began"_L1)) {
        m_lastCall = object.value("began"_L1).toString();
    } else if (object.contains("answer"_L1)) {
        deliverEntries();
        takeAnswer(object);
    } else if (object.contains("state"_L1)) {
        deliverEntries();
        m_state = object.value("state"_L1).toObject();
        Q_EMIT stateChanged(m_state);
    }
    return true;
}

void Engine::deliverEntries()
{
    if (!m_entries.isEmpty())
        Q_EMIT entriesCame(std::exchange(m_entries, {}));
}

void Engine::takeAnswer(const QJsonObject &object)
{
    Answer answer;
    answer.number = object.value("answer"_L1).toInt();
    answer.command = object.value("command"_L1).toString();
    answer.result = object.value("result"_L1).toString();
    answer.message = object.value("message"_L1).toString();
    answer.expected = stringsOf(object.value("expected"_L1));
    answer.actual = stringsOf(object.value("actual"_L1));
    answer.printed = stringsOf(object.value("printed"_L1));
    if (answer.result == "unloadable"_L1)
        m_unloadable = answer.message;
    m_answered = std::clamp(answer.number, m_answered, m_sent);
    Q_EMIT answered(answer);
    noteBusy();
}

void Engine::takeEnd(int exitCode, QProcess::ExitStatus status)
{
    readOutput();
    EngineEnd end{
        EngineEnd::Kind::Finished, exitCode, m_lastCall, QString::fromUtf8(m_errorOutput).trimmed(), {}};
    if (m_isStopping) {
        end.kind = EngineEnd::Kind::Stopped;
    } else if (!m_unloadable.isEmpty()) {
        end.kind = EngineEnd::Kind::Unloadable;
        end.errorText = m_unloadable;
    } else if (status == QProcess::CrashExit || exitCode != 0) {
        end.kind = EngineEnd::Kind::Crashed;
        if (status == QProcess::CrashExit || CheckSystem::isException(exitCode))
            end.crash = CheckSystem::crashName(exitCode);
    }
    finish(end);
}

void Engine::takeError(QProcess::ProcessError error)
{
    if (error == QProcess::FailedToStart)
        finish({EngineEnd::Kind::NotStarted,
                0,
                {},
                m_process.program() + u": "_s + m_process.errorString(),
                {}});
}

void Engine::finish(const EngineEnd &end)
{
    const bool startsAgain = std::exchange(m_startsAgain, false);
    m_isStopping = false;
    noteBusy();
    Q_EMIT ended(end);
    if (startsAgain)
        start();
}

void Engine::noteBusy()
{
    if (m_wasBusy == isBusy())
        return;
    m_wasBusy = !m_wasBusy;
    Q_EMIT busyChanged(m_wasBusy);
}
