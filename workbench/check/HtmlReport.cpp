#include "CheckReport.h"
#include "JsonReport.h"
#include "ReportFile.h"
#include "ReportFiles.h"
#include "VisibleText.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonArray>

#include <kainjow/mustache.hpp>

#include <algorithm>

using namespace Qt::StringLiterals;
namespace mustache = kainjow::mustache;

namespace {

std::string toStandard(const QByteArray &bytes)
{
    return {bytes.constData(), static_cast<std::size_t>(bytes.size())};
}

std::string utf8(const QString &text)
{
    return toStandard(visibleText(text).toUtf8());
}

// For a section of the template an empty text is false.
mustache::data dataOf(const QJsonValue &value)
{
    if (value.isObject()) {
        const QJsonObject object = value.toObject();
        mustache::data data(mustache::data::type::object);
        for (auto member = object.begin(); member != object.end(); ++member)
            data.set(utf8(member.key()), dataOf(member.value()));
        return data;
    }
    if (value.isArray()) {
        const QJsonArray array = value.toArray();
        mustache::data data(mustache::data::type::list);
        for (const auto &item : array)
            data.push_back(dataOf(item));
        return data;
    }
    if (value.isBool())
        return value.toBool();
    const QString text = value.isDouble() ? QString::number(value.toInteger()) : value.toString();
    return text.isEmpty() ? mustache::data(false) : mustache::data(utf8(text));
}

QString withHyphens(QString words)
{
    return words.replace(u' ', u'-');
}

QString seconds(std::chrono::milliseconds time)
{
    return u"%1 s"_s.arg(std::chrono::duration<double>(time).count(), 0, 'f',
                         time < std::chrono::seconds(1) ? 3 : 1);
}

/// The lengths of what two lines have in common at both ends, in whole words.
struct CommonEnds
{
    qsizetype before = 0;
    qsizetype after = 0;
};

// The two halves of a character beyond the first 65,536 belong together, too.
bool isInWord(QChar character)
{
    return character.isLetterOrNumber() || character.isSurrogate();
}

CommonEnds commonEnds(const QString &one, const QString &other)
{
    const qsizetype shorter = std::min(one.size(), other.size());
    CommonEnds ends;
    while (ends.before < shorter && one.at(ends.before) == other.at(ends.before))
        ++ends.before;
    while (ends.before > 0 && isInWord(one.at(ends.before - 1)))
        --ends.before;
    while (ends.after < shorter - ends.before &&
           one.at(one.size() - 1 - ends.after) == other.at(other.size() - 1 - ends.after))
        ++ends.after;
    while (ends.after > 0 && isInWord(one.at(one.size() - ends.after)))
        --ends.after;
    return ends;
}

// other: the same for the other side.
QJsonObject sideOf(const QString &name, const QStringList &lines, const QStringList &other)
{
    const auto [first, ignored] = std::mismatch(lines.cbegin(), lines.cend(), other.cbegin(), other.cend());
    const qsizetype difference = first - lines.cbegin();
    QJsonArray items;
    for (qsizetype index = 0; index < lines.size(); ++index) {
        const QString &line = lines.at(index);
        QJsonObject item{{u"isFirstDifference"_s, index == difference}, {u"same"_s, line}};
        if (index == difference) {
            const CommonEnds ends = commonEnds(line, other.value(index));
            item[u"same"_s] = line.first(ends.before);
            item[u"different"_s] = line.sliced(ends.before, line.size() - ends.before - ends.after);
            item[u"sameAgain"_s] = line.last(ends.after);
        }
        items.append(item);
    }
    return {{u"name"_s, name},
            {u"lines"_s, items},
            {u"endsEarly"_s, difference == lines.size() && lines.size() < other.size()}};
}

QJsonObject comparisonOf(const ScenarioVerdict &verdict)
{
    return {{u"lineCount"_s, std::max(verdict.expected.size(), verdict.actual.size())},
            {u"sides"_s, QJsonArray{sideOf(u"Expected"_s, verdict.expected, verdict.actual),
                                    sideOf(u"Actual"_s, verdict.actual, verdict.expected)}}};
}

/// The same names as in the JSON report where the values are the same.
QJsonObject pageOf(const ScenarioVerdict &verdict, QJsonObject scenario)
{
    const bool isBlock = !verdict.expected.isEmpty() || !verdict.actual.isEmpty();
    scenario[u"key"_s] = withHyphens(wordOf(verdict.verdict));
    scenario[u"isOpen"_s] = breaksTheContract(verdict) || verdict.verdict == Verdict::Fail ||
                            verdict.verdict == Verdict::KitError;
    scenario[u"found"_s] = verdict.verdict == Verdict::Skipped ? u"Reason"_s : u"Found"_s;
    scenario[u"isWaived"_s] = verdict.verdict == Verdict::Waived;
    scenario[u"mildness"_s] =
        verdict.head.severity == Severity::Error ? QString() : severityName(verdict.head.severity);
    scenario[u"lineNumber"_s] = verdict.line > 0 ? QString::number(verdict.line) : QString();
    scenario[u"time"_s] = seconds(verdict.time);
    scenario[u"comparison"_s] = isBlock ? QJsonValue(comparisonOf(verdict)) : QJsonValue(false);
    scenario[u"logText"_s] = verdict.log.join(u'\n');
    scenario[u"logLines"_s] = verdict.log.size();
    return scenario;
}

QJsonObject pageOf(const CheckReport &report)
{
    QJsonObject page = toJson(report);
    const QJsonArray written = page.value(u"scenarios"_s).toArray();
    QJsonArray counts;
    QJsonArray scenarios;
    const QList<Verdict> verdicts = allVerdicts();
    for (const Verdict verdict : verdicts) {
        qsizetype number = 0;
        for (qsizetype index = 0; index < report.verdicts.size(); ++index) {
            if (report.verdicts.at(index).verdict != verdict)
                continue;
            scenarios.append(pageOf(report.verdicts.at(index), written.at(index).toObject()));
            ++number;
        }
        if (number > 0)
            counts.append(QJsonObject{{u"word"_s, wordOf(verdict)},
                                      {u"key"_s, withHyphens(wordOf(verdict))},
                                      {u"number"_s, number}});
    }
    page[u"fileName"_s] = QFileInfo(report.pluginFile).fileName();
    page[u"time"_s] = seconds(report.time);
    page[u"finished"_s] = report.verdicts.size();
    page[u"plannedScenarios"_s] = counted(report.planned, u"scenario"_s);
    page[u"counts"_s] = counts;
    page[u"scenarios"_s] = scenarios;
    page[u"hasProblems"_s] = !report.problems.isEmpty();
    return page;
}

}  // namespace

std::optional<QString> writeHtml(const CheckReport &report, const QString &file)
{
    Q_INIT_RESOURCE(report);  // the linker leaves it out of a static library otherwise
    QFile resource(u":/check/report.html.mustache"_s);
    if (!resource.open(QIODevice::ReadOnly))
        return u"kvx does not contain %1"_s.arg(resource.fileName());
    mustache::mustache page(toStandard(resource.readAll()));
    QByteArray content;
    page.render(dataOf(pageOf(report)), [&](const std::string &part) {
        content.append(part.data(), static_cast<qsizetype>(part.size()));
    });
    return writeReportFile(file, content);
}
