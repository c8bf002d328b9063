#include "Kvx.h"

#include "PluginFixture.h"

#include <QtCore/QProcess>

using namespace Qt::StringLiterals;

namespace {

QStringList lines(const QByteArray &bytes)
{
    QString text = QString::fromUtf8(bytes);
    if (text.endsWith(u'\n'))
        text.chop(1);
    return text.isEmpty() ? QStringList() : text.split(u'\n');
}

}  // namespace

KvxRun runKvx(const QStringList &arguments, const QByteArray &input)
{
    return runProgram(QStringLiteral(KVX_COMMAND), arguments, input);
}

KvxRun runProgram(const QString &program, const QStringList &arguments, const QByteArray &input)
{
    constexpr int mostMilliseconds = 120000;
    QProcess process;
    process.start(program, arguments);
    process.write(input);
    process.closeWriteChannel();
    KvxRun run;
    if (process.waitForFinished(mostMilliseconds) && process.exitStatus() == QProcess::NormalExit)
        run.exitCode = process.exitCode();
    run.output = lines(process.readAllStandardOutput());
    run.errors = lines(process.readAllStandardError());
    return run;
}

KvxRun playLines(const QStringList &lines)
{
    return runKvx({u"run"_s, u"--plugin"_s, PluginFixture::builtPluginFile(), u"-"_s},
                  lines.join(u'\n').toUtf8());
}

QString errorAt(int line, const QString &text)
{
    return u"kvx: -:%1: %2"_s.arg(line).arg(text);
}

QString wrongLibrary(const QString &name)
{
    return QStringLiteral(KVX_WRONG_LIBRARIES "/") + name + QStringLiteral(KVX_LIBRARY_SUFFIX);
}
