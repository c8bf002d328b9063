#include "ScenarioHead.h"
#include "ScenarioPlay.h"
#include "StepLines.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>

using namespace Qt::StringLiterals;

namespace {

using Print = std::function<void(const QString &line)>;

struct Outcome
{
    QString word;
    PlayResult played;
    int checkCount = 0;
};

Outcome unusable(int line, const QString &message)
{
    return {u"unusable"_s, {CommandResult::unusable(message), line, {}}, 0};
}

QString resultLine(const Outcome &outcome)
{
    const CommandResult &result = outcome.played.result;
    return jsonText({{u"result"_s, outcome.word},
                     {u"line"_s, outcome.played.line},
                     {u"message"_s, result.message.isEmpty() ? outcome.played.skipped : result.message},
                     {u"expected"_s, QJsonArray::fromStringList(result.expected)},
                     {u"actual"_s, QJsonArray::fromStringList(result.actual)},
                     {u"checks"_s, outcome.checkCount}});
}

Outcome outcomeOf(const PlayResult &played, int checkCount)
{
    if (played.result.code != ExitCode::Success)
        return {resultWord(played.result.code), played, checkCount};
    if (!played.skipped.isEmpty())
        return {u"skipped"_s, played, checkCount};
    if (checkCount == 0)
        return unusable(played.line,
                        u"the scenario expects nothing; add \"expect\", \"wait\" or \"= LINE\""_s);
    return {u"pass"_s, played, checkCount};
}

Outcome play(Scenario &scenario, const RunOptions &options, const QStringList &lines, const Print &print)
{
    if (const std::optional<QString> reason = scenario.load(options.pluginFile))
        return {u"unloadable"_s, {CommandResult::unusable(*reason), 0, {}}, 0};
    const auto beforeCommand = [&](int line, const QString &command) {
        print(jsonText({{u"line"_s, line}, {u"command"_s, command}}));
    };
    const auto printEntries = [&] {
        const QList<TimelineEntry> entries = scenario.takeEntries();
        for (const TimelineEntry &entry : entries)
            print(QString::fromUtf8(Timeline::jsonLine(entry)));
    };
    const PlayResult played = playLines(scenario, lines, {beforeCommand, printEntries});
    return outcomeOf(played, scenario.checkCount());
}

}  // namespace

ExitCode playSteps(const RunOptions &options, const Print &print)
{
    const auto report = [&](const Outcome &outcome) {
        print(resultLine(outcome));
        return outcome.played.result.code;
    };
    print(QString::fromUtf8(Timeline::jsonHeader()));
    QString problem;
    const std::optional<QStringList> lines = readScenario(options.file, problem);
    if (!lines)
        return report(unusable(0, problem));
    ScenarioHead head;
    if (const std::optional<HeadProblem> wrong = readScenarioHead(*lines, head))
        return report(unusable(wrong->line, wrong->message));
    if (const QString reason = head.reasonToSkip(); !reason.isEmpty())
        return report({u"skipped"_s, {{}, 0, reason}, 0});
    std::optional<Scenario> scenario(std::in_place, [](const QString &) {}, options.seed);
    scenario->addObserver([&](const TimelineEntry &entry) {
        if (const std::optional<QString> line = begunLine(entry))
            print(*line);
    });
    const Outcome outcome = play(*scenario, options, *lines, print);
    // Unloading belongs to what must pass. After a difference it may crash or hang, so the result comes
    // first.
    if (outcome.played.result.code == ExitCode::Success)
        scenario.reset();
    return report(outcome);
}
