#include "Scenario.h"
#include "Words.h"

using namespace Qt::StringLiterals;

CommandResult Scenario::random(const QStringList &words)
{
    constexpr int mostSteps = 10000;
    const std::optional<int> count = onlyNumber(words, 1, mostSteps);
    if (!count)
        return wrongWord(words.join(u' '), u"a number of operations, 1 to %1"_s.arg(mostSteps));
    if (!m_workbench.isStarted())
        return CommandResult::unusable(u"the device is not started; put \"start\" before it"_s);
    const quint64 before = m_lastAction;
    CommandResult result;
    for (int step = 1; step <= *count && result.code == ExitCode::Success; ++step)
        result = runStep(m_randomSteps.next(currentMouse()), step);
    if (result.code == ExitCode::Success && currentMouse().isAsleep)
        result = runStep({{u"wake"_s}}, *count + 1);
    m_lastAction = before;
    return result;
}

// A step ends at rest, and in agreement when the mouse is awake.
CommandResult Scenario::runStep(const RandomSteps::Step &step, int number)
{
    CommandResult result = runCommands(step.commands);
    if (result.code == ExitCode::Success && step.losesTrack)
        result = runCommands(RandomSteps::stateReports(currentMouse()));
    if (result.code == ExitCode::Success && !currentMouse().isAsleep)
        result = expectAgreement();
    if (result.code != ExitCode::Success)
        result.message = u"operation %1 (%2): %3"_s.arg(QString::number(number), step.commands.join(u" | "_s),
                                                        result.message);
    return result;
}

CommandResult Scenario::runCommands(const QStringList &commands)
{
    for (const QString &command : commands) {
        m_workbench.timeline.recordVerdict(u"random: "_s + command, m_workbench.currentMouse());
        CommandResult result = execute(command);
        if (result.code != ExitCode::Success)
            return result;
    }
    return {};
}
