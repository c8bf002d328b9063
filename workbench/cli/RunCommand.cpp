#include "RunCommand.h"

#include "Scenario.h"
#include "Words.h"

#include <QtCore/QFile>

#include <cstdio>

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
    if (isJson)
        printEntriesAsJson(scenario.takeEntries());
    else
        printEntries(scenario.takeEntries(), scenario.lineStyle());
}

}  // namespace

ExitCode runScenario(const RunOptions &options)
{
    const std::optional<QStringList> lines = readLines(options.file);
    if (!lines)
        return ExitCode::Unusable;
    Scenario scenario([&](const QString &line) {
        if (!options.isJson)
            printLine(line);
    });
    const QString library = options.pluginFile.isEmpty() ? libraryBesideTheProgram() : options.pluginFile;
    if (const std::optional<QString> reason = scenario.load(library)) {
        printError(*reason);
        return ExitCode::Unusable;
    }
    if (options.isJson)
        printLine(QString::fromUtf8(Timeline::jsonHeader()));

    for (qsizetype number = 0; number < lines->size(); ++number) {
        const QString command = withoutComment(lines->at(number));
        if (!options.isJson && !command.isEmpty())
            printLine(u"> "_s + command);
        const CommandResult result = scenario.execute(lines->at(number));
        printNewEntries(scenario, options.isJson);
        if (!result.message.isEmpty())
            printError(u"%1:%2: %3"_s.arg(options.file, QString::number(number + 1), result.message));
        if (result.code != ExitCode::Success)
            return result.code;
        if (result.isEnd)
            break;
    }
    return ExitCode::Success;
}
