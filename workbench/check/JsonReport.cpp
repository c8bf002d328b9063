#include "JsonReport.h"

#include "CheckReport.h"
#include "ReportFile.h"
#include "ReportFiles.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>

using namespace Qt::StringLiterals;

namespace {

QJsonValue number(std::chrono::milliseconds time)
{
    return static_cast<qint64>(time.count());
}

QJsonObject toJson(const ScenarioVerdict &verdict)
{
    return {
        {u"name"_s, verdict.name},
        {u"title"_s, verdict.head.title},
        {u"why"_s, verdict.head.why},
        {u"level"_s, levelName(verdict.head.level)},
        {u"severity"_s, severityName(verdict.head.severity)},
        {u"system"_s, verdict.head.system},
        {u"verdict"_s, wordOf(verdict.verdict)},
        {u"unwaived"_s, wordOf(verdict.unwaived)},
        {u"message"_s, verdict.message},
        {u"line"_s, verdict.line},
        {u"expected"_s, QJsonArray::fromStringList(verdict.expected)},
        {u"actual"_s, QJsonArray::fromStringList(verdict.actual)},
        {u"log"_s, QJsonArray::fromStringList(verdict.log)},
        {u"lastCall"_s, verdict.lastCall},
        {u"standardError"_s, verdict.standardError},
        {u"waiver"_s, verdict.waiver},
        {u"seed"_s, qint64{verdict.seed}},
        {u"milliseconds"_s, number(verdict.time)},
        {u"repeatCommand"_s, verdict.repeatCommand},
    };
}

}  // namespace

QJsonObject toJson(const CheckReport &report)
{
    QJsonArray environment;
    for (const auto &[name, value] : report.environment)
        environment.append(QJsonObject{{u"name"_s, name}, {u"value"_s, value}});
    QJsonArray scenarios;
    for (const ScenarioVerdict &verdict : report.verdicts)
        scenarios.append(toJson(verdict));
    return {
        {u"schemaVersion"_s, 1},
        {u"library"_s, report.pluginFile},
        {u"outcome"_s, wordOf(outcomeOf(report))},
        {u"answer"_s, answerOf(report)},
        {u"environment"_s, environment},
        {u"seed"_s, qint64{report.seed}},
        {u"level"_s, levelName(report.level)},
        {u"started"_s, report.started.toUTC().toString(Qt::ISODateWithMs)},
        {u"milliseconds"_s, number(report.time)},
        {u"planned"_s, qint64{report.planned}},
        {u"contractSize"_s, qint64{report.contractSize}},
        {u"interruption"_s, report.interruption},
        {u"scenarios"_s, scenarios},
        {u"problems"_s, QJsonArray::fromStringList(report.problems)},
    };
}

std::optional<QString> writeJson(const CheckReport &report, const QString &file)
{
    return writeReportFile(file, QJsonDocument(toJson(report)).toJson());
}
