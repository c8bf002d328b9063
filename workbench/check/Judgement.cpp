#include "Judgement.h"

#include "ChildProcess.h"
#include "Contract.h"

using namespace Qt::StringLiterals;

namespace {

QString lastCommand(const StepReader &steps)
{
    return steps.line() == 0 ? u"before the first command"_s : u"in \"%1\""_s.arg(steps.command());
}

void end(ScenarioVerdict &verdict, Verdict how, const QString &message)
{
    verdict.verdict = how;
    verdict.message = message;
}

void judgeResult(const StepReader::Result &result, ScenarioVerdict &verdict)
{
    if (result.word == u"pass") {
        verdict.verdict = Verdict::Pass;
        return;
    }
    verdict.message = result.message;
    verdict.line = result.line;
    verdict.expected = result.expected;
    verdict.actual = result.actual;
    if (result.word == u"skipped")
        verdict.verdict = Verdict::Skipped;
    else if (result.word == u"unusable")
        verdict.verdict = Verdict::KitError;
    else
        verdict.verdict = Verdict::Fail;
}

void endEarly(const StepReader &steps, ScenarioVerdict &verdict, Verdict how, const QString &what)
{
    const QString where = steps.result() ? u"after the last command"_s : lastCommand(steps);
    end(verdict, how, what + u' ' + where);
    verdict.lastCall = steps.lastCall();
}

void judgeExit(const ChildProcess &child, ScenarioVerdict &verdict)
{
    const StepReader &steps = child.steps();
    const int code = child.exitCode();
    if (CheckSystem::isException(code))
        endEarly(steps, verdict, Verdict::Crash, CheckSystem::crashName(code));
    else if (!steps.hasBegun())
        end(verdict, Verdict::KitError, u"kvx ended with exit code %1 before it began"_s.arg(code));
    else if (!steps.result() || code != 0)
        endEarly(steps, verdict, Verdict::Crash, u"the process ended with exit code %1"_s.arg(code));
    else
        judgeResult(*steps.result(), verdict);
}

void judgeTimeout(const ChildProcess &child, ScenarioVerdict &verdict)
{
    const double seconds = std::chrono::duration<double>(child.deadline().value()).count();
    endEarly(child.steps(), verdict, Verdict::Timeout, u"no progress for %1 s"_s.arg(seconds, 0, 'g', 3));
}

}  // namespace

ScenarioVerdict newVerdict(const ContractScenario &scenario, quint32 seed)
{
    ScenarioVerdict verdict;
    verdict.name = scenario.name;
    verdict.head = scenario.head;
    verdict.seed = seed;
    return verdict;
}

bool judgeUnrun(const ContractScenario &scenario, ScenarioVerdict &verdict)
{
    const QString reasonToSkip = scenario.head.reasonToSkip();
    if (!reasonToSkip.isEmpty())
        end(verdict, Verdict::Skipped, reasonToSkip);
    return !reasonToSkip.isEmpty();
}

void judge(const ChildProcess &child, ScenarioVerdict &verdict)
{
    const StepReader &steps = child.steps();
    verdict.line = steps.line();
    verdict.time = child.time();
    verdict.log = steps.log();
    verdict.standardError = child.standardError();
    // What the process does after a difference is a consequence. After a pass it counts.
    if (steps.result() && steps.result()->word != u"pass")
        return judgeResult(*steps.result(), verdict);
    switch (child.end()) {
    case ChildProcess::End::NotYet:
    case ChildProcess::End::NotStarted:
        return end(verdict, Verdict::KitError, u"kvx could not be started: "_s + child.reason());
    case ChildProcess::End::Exit:
        return judgeExit(child, verdict);
    case ChildProcess::End::Crash:
        return endEarly(steps, verdict, Verdict::Crash, CheckSystem::crashName(child.exitCode()));
    case ChildProcess::End::Timeout:
        return judgeTimeout(child, verdict);
    case ChildProcess::End::TooMuch:
        return endEarly(steps, verdict, Verdict::Timeout, u"writes without an end"_s);
    }
}

void judge(const StepReader &steps, ScenarioVerdict &verdict)
{
    verdict.line = steps.line();
    verdict.log = steps.log();
    judgeResult(steps.result().value_or(StepReader::Result{u"unusable"_s, 0, u"it has no result"_s, {}, {}}),
                verdict);
}
