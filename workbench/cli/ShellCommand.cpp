#include "ShellCommand.h"

#include "LineReader.h"
#include "Scenario.h"

using namespace Qt::StringLiterals;

ExitCode runShell(const QString &pluginFile)
{
    Scenario scenario(printLine);
    if (const std::optional<QString> reason =
            scenario.load(pluginFile.isEmpty() ? libraryBesideTheProgram() : pluginFile)) {
        printError(*reason);
        return ExitCode::Unusable;
    }
    LineReader reader(Scenario::commandNames());
    const auto execute = [&](const QString &line) {
        const CommandResult result = scenario.execute(line);
        printEntries(scenario.takeEntries(), scenario.lineStyle());
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
