#include "CheckReport.h"

#include <algorithm>

using namespace Qt::StringLiterals;

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
    const auto isKitError = [](const ScenarioVerdict &verdict) {
        return verdict.verdict == Verdict::KitError;
    };
    const QList<ScenarioVerdict> &verdicts = report.verdicts;
    if (!report.problems.isEmpty() || std::any_of(verdicts.cbegin(), verdicts.cend(), breaksTheContract))
        return Outcome::Breaks;
    if (verdicts.size() < report.planned || std::any_of(verdicts.cbegin(), verdicts.cend(), isKitError))
        return Outcome::Incomplete;
    return Outcome::Keeps;
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
    case Outcome::Breaks:
        return u"does not keep the contract"_s;
    case Outcome::Incomplete:
        return u"no answer, the check is incomplete"_s;
    }
    return {};
}

QString featureOf(const QString &scenario)
{
    return scenario.endsWith(u".kvx") ? u"files"_s : scenario.section(u'/', 0, 0);
}

QList<Verdict> allVerdicts()
{
    return {Verdict::Crash,  Verdict::Timeout, Verdict::Fail, Verdict::KitError,
            Verdict::Waived, Verdict::Skipped, Verdict::Pass};
}
