#include "Commands.h"
#include "LineReader.h"
#include "ReportFile.h"
#include "ScenarioPlay.h"
#include "SequenceDiagram.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QSaveFile>

#include <functional>

using namespace Qt::StringLiterals;

namespace {

SequenceEntry sequenceEntry(const TimelineEntry &entry)
{
    return {entry.sequence,
            entry.time.count(),
            entry.thread,
            entry.device,
            entry.receiver,
            Timeline::kindWord(entry.kind),
            Timeline::line(entry, Timeline::Style::Plain)};
}

// diagram: gets the same entries, unless it is null.
void printNewEntries(Scenario &scenario, bool isJson, SequenceDiagram *diagram = nullptr)
{
    const QList<TimelineEntry> entries = scenario.takeEntries();
    for (const TimelineEntry &entry : entries) {
        if (diagram)
            diagram->add(sequenceEntry(entry));
        printLine(isJson ? QString::fromUtf8(Timeline::jsonLine(entry))
                         : Timeline::line(entry, scenario.lineStyle()));
    }
}

ExitCode play(Scenario &scenario, const QString &name, const QStringList &lines, bool isJson,
              SequenceDiagram *diagram = nullptr)
{
    if (isJson)
        printLine(QString::fromUtf8(Timeline::jsonHeader()));
    const auto printCommand = [isJson](int /*line*/, const QString &command) {
        if (!isJson && !command.startsWith(u"= "))
            printLine(u"> "_s + command);
    };
    const PlayResult played =
        playLines(scenario, lines, {printCommand, [&] { printNewEntries(scenario, isJson, diagram); }});
    if (!played.skipped.isEmpty() && !isJson)
        printLine(u"not checked: "_s + played.skipped);
    if (!played.result.message.isEmpty())
        printError(u"%1:%2: %3"_s.arg(name, QString::number(played.line), played.result.message));
    return played.result.code;
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

ExitCode load(Scenario &scenario, const QString &library)
{
    const std::optional<QString> reason = scenario.load(library);
    if (!reason)
        return ExitCode::Success;
    printError(*reason);
    return ExitCode::Unusable;
}

QString libraryFile(const RunOptions &options)
{
    return options.pluginFile.isEmpty() ? libraryBesideTheProgram() : options.pluginFile;
}

std::function<void(const QString &)> printer(const RunOptions &options)
{
    return [isJson = options.isJson](const QString &line) {
        if (!isJson)
            printLine(line);
    };
}

// Before a run that takes long. The file itself is made after it, so that a crash leaves nothing behind.
bool canBeWritten(const QString &diagramFile)
{
    QSaveFile file(diagramFile);
    if (!diagramFile.isEmpty() && file.open(QIODevice::WriteOnly))
        return true;
    const QString reason = diagramFile.isEmpty() ? u"it is no name of a file"_s : file.errorString();
    printError(u"\"%1\" cannot be written: %2; give the path of an SVG file behind --diagram"_s.arg(
        diagramFile, reason));
    return false;
}

bool writeDiagram(const QString &file, const SequenceDiagram &diagram)
{
    const std::optional<QString> reason = writeReportFile(file, diagram.svg(SequencePalette::light()));
    if (reason)
        printError(*reason);
    return !reason;
}

}  // namespace

ExitCode runScenario(const RunOptions &options)
{
    if (options.isSteps) {
        RunOptions resolved = options;
        resolved.pluginFile = libraryFile(options);
        return playSteps(resolved, printLine);
    }
    QString problem;
    const std::optional<QStringList> lines = readScenario(options.file, problem);
    if (!lines) {
        printError(problem);
        return ExitCode::Unusable;
    }
    if (options.diagramFile && !canBeWritten(*options.diagramFile))
        return ExitCode::Unusable;
    Scenario scenario(printer(options), options.seed);
    const ExitCode loaded = load(scenario, libraryFile(options));
    if (loaded != ExitCode::Success)
        return loaded;
    SequenceDiagram diagram;
    const ExitCode played =
        play(scenario, options.file, *lines, options.isJson, options.diagramFile ? &diagram : nullptr);
    return !options.diagramFile || writeDiagram(*options.diagramFile, diagram) ? played : ExitCode::Unusable;
}

ExitCode runSession(const RunOptions &options)
{
    Scenario scenario(printer(options));
    const ExitCode loaded = load(scenario, libraryFile(options));
    if (loaded != ExitCode::Success)
        return loaded;
    QString problem;
    const std::optional<QStringList> lines = readScenario(u":/contract/session.kvx"_s, problem);
    if (play(scenario, u"session.kvx"_s, lines.value(), options.isJson) != ExitCode::Success)
        return ExitCode::Difference;
    if (!options.isJson)
        printLine(u"session: all %1 checks passed"_s.arg(scenario.checkCount()));
    return ExitCode::Success;
}

ExitCode runShell(const RunOptions &options)
{
    if (options.isJson)
        return runJsonShell(libraryFile(options));
    Scenario scenario(printLine);
    const ExitCode loaded = load(scenario, libraryFile(options));
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
