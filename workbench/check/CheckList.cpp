#include "CheckCommand.h"
#include "Contract.h"
#include "ScenarioPlay.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr int listSchemaVersion = 1;

QStringList linesOf(const ContractScenario &scenario)
{
    QString problem;
    return readScenario(scenario.file, problem).value_or(QStringList());
}

QJsonObject jsonOf(const ContractScenario &scenario)
{
    const ScenarioHead &head = scenario.head;
    return {{u"name"_s, scenario.name},
            {u"title"_s, head.title},
            {u"why"_s, head.why},
            {u"level"_s, levelName(head.level)},
            {u"severity"_s, severityName(head.severity)},
            {u"system"_s, head.system.isEmpty() ? QJsonValue() : QJsonValue(head.system)}};
}

QJsonObject jsonWithLinesOf(const ContractScenario &scenario)
{
    QJsonObject object = jsonOf(scenario);
    object.insert(u"lines"_s, QJsonArray::fromStringList(linesOf(scenario)));
    return object;
}

template <typename Function>
void printJson(const QList<ContractScenario> &scenarios, const Function &toJson)
{
    QJsonArray list;
    for (const ContractScenario &scenario : scenarios)
        list.append(toJson(scenario));
    const QJsonObject object{{u"schemaVersion"_s, listSchemaVersion}, {u"scenarios"_s, list}};
    printLine(QString::fromUtf8(QJsonDocument(object).toJson().trimmed()));
}

void printTable(const QList<ContractScenario> &scenarios)
{
    constexpr int levelWidth = 10;
    qsizetype nameWidth = 0;
    for (const ContractScenario &scenario : scenarios)
        nameWidth = std::max(nameWidth, scenario.name.size() + 2);
    for (const ContractScenario &scenario : scenarios)
        printLine(scenario.name.leftJustified(nameWidth) +
                  levelName(scenario.head.level).leftJustified(levelWidth) + scenario.head.title);
}

// As a failure numbers them; what the head has is printed already.
void printNumbered(const QStringList &lines, qsizetype first)
{
    constexpr int numberWidth = 5;
    // The last one ends with a line feed, which is no line of its own.
    const qsizetype end = lines.size() - (lines.endsWith(QString()) ? 1 : 0);
    for (qsizetype index = first; index < end; ++index)
        printLine(QString::number(index + 1).rightJustified(numberWidth) + u"  "_s + lines.at(index));
}

void printExplanations(const QList<ContractScenario> &scenarios)
{
    for (const ContractScenario &scenario : scenarios) {
        printLine(u"scenario  "_s + scenario.name);
        printLine(u"promise   "_s + scenario.head.title);
        printLine(u"why       "_s + scenario.head.why);
        printLine(u"level     "_s + levelName(scenario.head.level));
        printLine(u"severity  "_s + severityName(scenario.head.severity));
        printLine(u"system    "_s + (scenario.head.system.isEmpty() ? u"any"_s : scenario.head.system));
        printNumbered(linesOf(scenario), scenario.head.length);
    }
}

}  // namespace

ExitCode listScenarios(const CheckOptions &options, bool isJson)
{
    const Selected selected =
        select({options.names, options.excluded, levelOf(options.level).value_or(Level::Stress)});
    if (!selected.problem.isEmpty()) {
        printError(selected.problem);
        return ExitCode::Unusable;
    }
    isJson ? printJson(selected.scenarios, jsonOf) : printTable(selected.scenarios);
    return ExitCode::Success;
}

ExitCode explainScenario(const QString &name, bool isJson)
{
    const Selected selected = select({{name}, {}, Level::Stress});
    if (!selected.problem.isEmpty()) {
        printError(selected.problem);
        return ExitCode::Unusable;
    }
    isJson ? printJson(selected.scenarios, jsonWithLinesOf) : printExplanations(selected.scenarios);
    return ExitCode::Success;
}
