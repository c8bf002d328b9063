#include "Commands.h"
#include "LineReader.h"
#include "Scenario.h"
#include "Words.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>

#include <cstdio>
#include <functional>

using namespace Qt::StringLiterals;

namespace {

// No scenario that a hand writes comes near; what does is some other kind of file.
constexpr qint64 largestScenario = 1 << 20;  // bytes

std::optional<QStringList> readLines(const QString &fileName)
{
    QFile file(fileName);
    const bool isOpen =
        fileName == u"-" ? file.open(stdin, QIODevice::ReadOnly) : file.open(QIODevice::ReadOnly);
    if (!isOpen) {
        printError(
            u"\"%1\" cannot be read: %2; give the path of a scenario"_s.arg(fileName, file.errorString()));
        return std::nullopt;
    }
    const QByteArray bytes = file.read(largestScenario + 1);
    if (bytes.size() > largestScenario || bytes.contains('\0')) {
        printError(u"\"%1\" is no scenario; give a text file with one command a line"_s.arg(fileName));
        return std::nullopt;
    }
    return QString::fromUtf8(bytes).split(u'\n');
}

void printNewEntries(Scenario &scenario, bool isJson)
{
    const QList<TimelineEntry> entries = scenario.takeEntries();
    for (const TimelineEntry &entry : entries)
        printLine(isJson ? QString::fromUtf8(Timeline::jsonLine(entry))
                         : Timeline::line(entry, scenario.lineStyle()));
}

ExitCode play(Scenario &scenario, const QString &name, const QStringList &lines, bool isJson)
{
    const auto fail = [&](qsizetype number, const CommandResult &result) {
        if (!result.message.isEmpty())
            printError(u"%1:%2: %3"_s.arg(name, QString::number(number + 1), result.message));
        return result.code;
    };
    if (isJson)
        printLine(QString::fromUtf8(Timeline::jsonHeader()));
    qsizetype number = 0;
    for (; number < lines.size(); ++number) {
        const QString command = withoutComment(lines.at(number));
        if (!isJson && !command.isEmpty() && !command.startsWith(u"= "))
            printLine(u"> "_s + command);
        const CommandResult result = scenario.execute(command);
        printNewEntries(scenario, isJson);
        if (result.code != ExitCode::Success)
            return fail(number, result);
        if (result.isEnd)
            return ExitCode::Success;
    }
    return fail(number - 1, scenario.finish());
}

QString libraryBesideTheProgram()
{
#ifdef Q_OS_WIN
    const QString suffix = u".dll"_s;
#else
    const QString suffix = u".so"_s;
#endif
    return QDir(QCoreApplication::applicationDirPath())
        .filePath(u"com.orvane.KVX.Plugin.LogicalDevice.RV418"_s + suffix);
}

ExitCode load(Scenario &scenario, const RunOptions &options)
{
    const QString library = options.pluginFile.isEmpty() ? libraryBesideTheProgram() : options.pluginFile;
    const std::optional<QString> reason = scenario.load(library);
    if (!reason)
        return ExitCode::Success;
    printError(*reason);
    return ExitCode::Unusable;
}

std::function<void(const QString &)> printer(const RunOptions &options)
{
    return [isJson = options.isJson](const QString &line) {
        if (!isJson)
            printLine(line);
    };
}

}  // namespace

ExitCode runScenario(const RunOptions &options)
{
    const std::optional<QStringList> lines = readLines(options.file);
    if (!lines)
        return ExitCode::Unusable;
    Scenario scenario(printer(options));
    const ExitCode loaded = load(scenario, options);
    return loaded == ExitCode::Success ? play(scenario, options.file, *lines, options.isJson) : loaded;
}

ExitCode runSession(const RunOptions &options)
{
    Scenario scenario(printer(options));
    const ExitCode loaded = load(scenario, options);
    if (loaded != ExitCode::Success)
        return loaded;
    const std::optional<QStringList> lines = readLines(u":/kvx/session.kvx"_s);
    if (play(scenario, u"session.kvx"_s, lines.value(), options.isJson) != ExitCode::Success)
        return ExitCode::Difference;
    if (!options.isJson)
        printLine(u"session: all %1 checks passed"_s.arg(scenario.checkCount()));
    return ExitCode::Success;
}

ExitCode runShell(const RunOptions &options)
{
    Scenario scenario(printLine);
    const ExitCode loaded = load(scenario, options);
    if (loaded != ExitCode::Success)
        return loaded;
    LineReader reader(Scenario::commandNames());
    const auto execute = [&](const QString &line) {
        const CommandResult result = scenario.execute(line);
        printNewEntries(scenario, false);
        if (!result.message.isEmpty())
            printError(result.message);
        return result.isEnd;
    };
    execute(u"mouse 1"_s);
    execute(u"start"_s);
    printLine(u"One mouse is started. \"help\" lists the commands."_s);
    while (const std::optional<QString> line = reader.readLine(u"kvx> "_s)) {
        if (execute(*line))
            break;
    }
    return ExitCode::Success;
}
