#include "CheckReport.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

// A scenario that is named runs at any level.
bool isWhole(const CheckReport &report)
{
    const Level level = std::max(report.level, Level::Contract);
    return report.contractSize == std::count_if(report.verdicts.cbegin(), report.verdicts.cend(),
                                                [&](const ScenarioVerdict &verdict) {
                                                    return !isScenarioFile(verdict.name) &&
                                                           verdict.head.level <= level;
                                                });
}

bool hasRunNothing(const CheckReport &report)
{
    return countOf(report.verdicts, Verdict::Skipped) == report.verdicts.size();
}

QString outcomeWithNumbers(const CheckReport &report)
{
    const Outcome outcome = outcomeOf(report);
    const qsizetype waived = countOf(report.verdicts, Verdict::Waived);
    QString answer = wordOf(outcome);
    if (outcome == Outcome::KeepsPart) {
        const qsizetype run = std::count_if(
            report.verdicts.cbegin(), report.verdicts.cend(), [](const ScenarioVerdict &verdict) {
                return !isScenarioFile(verdict.name) && verdict.verdict != Verdict::Skipped;
            });
        answer += u" (%1 of %2)"_s.arg(run).arg(counted(report.contractSize, u"scenario"_s));
    }
    if (waived > 0 && (outcome == Outcome::Keeps || outcome == Outcome::KeepsPart))
        answer += u" except for "_s + counted(waived, u"waived failure"_s);
    if (outcome == Outcome::NoAnswer && report.verdicts.size() == report.planned)
        answer += hasRunNothing(report)
                      ? u", no scenario ran"_s
                      : u", kvx could not run "_s +
                            counted(countOf(report.verdicts, Verdict::KitError), u"scenario"_s);
    return answer;
}

}  // namespace

bool breaksTheContract(const ScenarioVerdict &verdict)
{
    switch (verdict.verdict) {
    case Verdict::Crash:
    case Verdict::Timeout:
        return true;
    case Verdict::Fail:
        return verdict.head.severity == Severity::Error;
    case Verdict::Pass:
    case Verdict::Skipped:
    case Verdict::Waived:
    case Verdict::KitError:
        return false;
    }
    return false;
}

Outcome outcomeOf(const CheckReport &report)
{
    const QList<ScenarioVerdict> &verdicts = report.verdicts;
    if (std::any_of(verdicts.cbegin(), verdicts.cend(), breaksTheContract))
        return Outcome::Breaks;
    if (!report.problems.isEmpty())
        return Outcome::WrongWaivers;
    if (verdicts.size() < report.planned || countOf(verdicts, Verdict::KitError) > 0 || hasRunNothing(report))
        return Outcome::NoAnswer;
    return isWhole(report) ? Outcome::Keeps : Outcome::KeepsPart;
}

QString wordOf(Verdict verdict)
{
    switch (verdict) {
    case Verdict::Pass:
        return u"pass"_s;
    case Verdict::Fail:
        return u"fail"_s;
    case Verdict::Crash:
        return u"crash"_s;
    case Verdict::Timeout:
        return u"timeout"_s;
    case Verdict::Skipped:
        return u"skipped"_s;
    case Verdict::Waived:
        return u"waived"_s;
    case Verdict::KitError:
        return u"kit error"_s;
    }
    return {};
}

QString wordOf(Outcome outcome)
{
    switch (outcome) {
    case Outcome::Keeps:
        return u"keeps the contract"_s;
    case Outcome::KeepsPart:
        return u"keeps the part of the contract that was run"_s;
    case Outcome::Breaks:
        return u"does not keep the contract"_s;
    case Outcome::WrongWaivers:
        return u"the waivers are not right"_s;
    case Outcome::NoAnswer:
        return u"no answer"_s;
    }
    return {};
}

QString answerOf(const CheckReport &report)
{
    QString answer = outcomeWithNumbers(report);
    if (report.verdicts.size() == report.planned)
        return answer;
    return u"interrupted (%1) after %2 of %3, %4"_s.arg(report.interruption,
                                                        QString::number(report.verdicts.size()),
                                                        counted(report.planned, u"scenario"_s), answer);
}

qsizetype countOf(const QList<ScenarioVerdict> &verdicts, Verdict wanted)
{
    return std::count_if(verdicts.cbegin(), verdicts.cend(),
                         [&](const ScenarioVerdict &verdict) { return verdict.verdict == wanted; });
}

QString counted(qsizetype number, const QString &noun)
{
    return u"%1 %2%3"_s.arg(QString::number(number), noun, number == 1 ? QString() : u"s"_s);
}

bool isScenarioFile(const QString &scenario)
{
    return scenario.endsWith(u".kvx");
}

QString featureOf(const QString &scenario)
{
    return isScenarioFile(scenario) ? u"files"_s : scenario.section(u'/', 0, 0);
}

QList<Verdict> allVerdicts()
{
    return {Verdict::Crash,  Verdict::Timeout, Verdict::Fail, Verdict::KitError,
            Verdict::Waived, Verdict::Skipped, Verdict::Pass};
}
