#include "Scenario.h"
#include "Words.h"

#include <QtCore/QThread>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

CommandResult Scenario::when(const QStringList &words)
{
    const Command *command = findCommand(words.value(1));
    const bool canNest = command && (command->routes != Command::Routes::Usual ||
                                     command->run == &Scenario::expect || command->run == &Scenario::log);
    if (!canNest)
        return wrongWord(words.value(1),
                         u"a command that runs inside a line: a call, a report, expect VALUE or log"_s);
    if (!m_isWatching) {
        m_isWatching = true;
        m_workbench.timeline.addLastingObserver(
            [this, own = QThread::currentThread()](const TimelineEntry &entry) {
                if (QThread::currentThread() == own)
                    runInside(entry);
            });
    }
    m_watches.append({words.first(), behindFirstWord(m_rest)});
    return {};
}

void Scenario::runInside(const TimelineEntry &entry)
{
    const QString line = Timeline::line(entry, lineStyle());
    const auto watch = std::find_if(m_watches.cbegin(), m_watches.cend(), [&](const Watch &candidate) {
        return line.startsWith(candidate.beginning);
    });
    if (watch == m_watches.cend())
        return;
    const QString command = watch->command;
    m_watches.erase(watch);
    ++m_checkCount;
    CommandResult result = executeInside(command);
    if (m_insideResult.code == ExitCode::Success)
        m_insideResult = std::move(result);
}

CommandResult Scenario::executeInside(const QString &line)
{
    const Command *const outerCommand = std::exchange(m_command, nullptr);
    const auto outerRest = std::exchange(m_rest, behindFirstWord(line));
    const auto outerWanted = std::exchange(m_wantedOutcome, {});
    const auto outerWaiting = std::exchange(m_isWaiting, false);
    const auto outerRoute = std::exchange(m_route, Route::AtOnce);
    QStringList words = wordsOf(line).value_or(QStringList());
    const Command *command = findCommand(words.takeFirst());
    CommandResult result = dispatch(*command, words);
    m_command = outerCommand;
    m_rest = outerRest;
    m_wantedOutcome = outerWanted;
    m_isWaiting = outerWaiting;
    m_route = outerRoute;
    return result;
}

CommandResult Scenario::takeInsideResult()
{
    CommandResult result = std::exchange(m_insideResult, {});
    if (result.code != ExitCode::Success || m_watches.isEmpty())
        return result;
    const QString beginning = m_watches.first().beginning;
    m_watches.clear();
    return compare(u"a line during this command"_s, beginning, QString());
}
