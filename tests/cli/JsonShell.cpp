#include "JsonShell.h"

#include <QtCore/QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

constexpr int mostMilliseconds = 120000;

}  // namespace

ShellLines linesWith(QLatin1StringView key, const ShellLines &lines)
{
    ShellLines found;
    for (const QJsonObject &line : lines) {
        if (line.contains(key))
            found.append(line);
    }
    return found;
}

QStringList textsOf(QLatin1StringView key, const ShellLines &lines)
{
    QStringList texts;
    const ShellLines found = linesWith(key, lines);
    for (const QJsonObject &line : found)
        texts.append(line[key].toVariant().toString());
    return texts;
}

QJsonObject answerTo(int number, const ShellLines &lines)
{
    ShellLines found;
    const ShellLines answers = linesWith("answer"_L1, lines);
    for (const QJsonObject &line : answers) {
        if (line["answer"_L1].toInt() == number)
            found.append(line);
    }
    return found.size() == 1 ? found.first() : QJsonObject();
}

QJsonObject lastState(const ShellLines &lines)
{
    const ShellLines states = linesWith("state"_L1, lines);
    return states.isEmpty() ? QJsonObject() : states.last()["state"_L1].toObject();
}

JsonShell::JsonShell(const QString &library)
{
    m_process.start(QStringLiteral(KVX_COMMAND), {u"shell"_s, u"--json"_s, u"--plugin"_s, library});
}

JsonShell::~JsonShell()
{
    m_process.kill();
    m_process.waitForFinished(mostMilliseconds);
}

void JsonShell::send(const QString &line)
{
    sendBytes(line.toUtf8() + '\n');
}

void JsonShell::sendBytes(const QByteArray &bytes)
{
    m_process.write(bytes);
}

ShellLines JsonShell::readTo(const std::function<bool(const QJsonObject &)> &isWanted)
{
    ShellLines lines;
    bool hasDebugger = false;
    for (;;) {
        while (!m_process.canReadLine()) {
            if (!m_process.waitForReadyRead(mostMilliseconds) && !m_process.canReadLine())
                return lines;
        }
        const QByteArray line = m_process.readLine();
        const QJsonObject object = QJsonDocument::fromJson(line).object();
        // When kvx has crashed, Wine's debugger describes that.
        hasDebugger |= line.startsWith("WineDbg attached to pid ");
        if (object.isEmpty() && hasDebugger)
            continue;
        if (object.isEmpty())
            qFatal("kvx has printed \"%s\", which is no object", line.constData());
        lines.append(object);
        if (isWanted(object))
            return lines;
    }
}

ShellLines JsonShell::readToAnswer(int number)
{
    return readTo([number](const QJsonObject &line) { return line["answer"_L1].toInt(-1) == number; });
}

bool JsonShell::isSilent(int milliseconds)
{
    return !m_process.canReadLine() && !m_process.waitForReadyRead(milliseconds) &&
           m_process.state() == QProcess::Running;
}

ShellLines JsonShell::finish()
{
    m_process.closeWriteChannel();
    const ShellLines lines = readTo([](const QJsonObject &) { return false; });
    if (!m_process.waitForFinished(mostMilliseconds) && m_process.state() != QProcess::NotRunning)
        qFatal("kvx does not end");
    return lines;
}

ShellLines JsonShell::kill()
{
    m_process.kill();
    return finish();
}

int JsonShell::exitCode() const
{
    return m_process.exitStatus() == QProcess::NormalExit ? m_process.exitCode() : -1;
}

ShellRun runShell(const QByteArray &input, const QString &library)
{
    JsonShell shell(library);
    shell.sendBytes(input);
    const ShellLines lines = shell.finish();
    return {shell.exitCode(), lines};
}

ShellRun runShell(const QStringList &lines, const QString &library)
{
    return runShell(lines.join(u'\n').toUtf8(), library);
}
