#include "ParallelLives.h"
#include "ProcessState.h"
#include "Scenario.h"
#include "Words.h"

using namespace Qt::StringLiterals;

CommandResult Scenario::repeat(const QStringList &words)
{
    constexpr int mostRounds = 100000;
    const std::optional<int> rounds = onlyNumber(words, 2, mostRounds);
    if (!rounds)
        return wrongWord(words.join(u' '), u"a number of rounds, 2 to %1"_s.arg(mostRounds));
    if (!m_lineIndex)
        return CommandResult::unusable(u"repeat is for the lines of a file; write them there"_s);
    if (m_repeat.isOpen)
        return CommandResult::unusable(u"repeat inside of repeat; put \"end\" before it"_s);
    m_repeat = {true, *m_lineIndex + 1, *rounds, 0, {}, 0};
    return {};
}

CommandResult Scenario::end(const QStringList & /*words*/)
{
    if (!m_repeat.isOpen)
        return CommandResult::unusable(u"there is nothing to end; put \"repeat N\" before it"_s);
    // What was recorded must not be what grows.
    noteSignals();
    m_workbench.timeline.clear();
    ++m_repeat.done;
    if (m_repeat.done == m_repeat.rounds / 2) {
        m_repeat.heapAtHalf = steadyHeap();
        m_repeat.handlesAtHalf = openHandleCount();
    }
    m_repeat.isOpen = m_repeat.done < m_repeat.rounds;
    CommandResult result;
    if (m_repeat.isOpen)
        result.nextLine = m_repeat.firstLine;
    return result;
}

CommandResult Scenario::parallel(const QStringList &words)
{
    constexpr int mostThreads = 64;
    constexpr int mostLives = 10000;
    const std::optional<int> threads = onlyNumber(words.mid(0, 1), 1, mostThreads);
    const std::optional<int> lives = onlyNumber(words.mid(1), 1, mostLives);
    if (!threads || !lives)
        return wrongWord(words.join(u' '),
                         u"a number of threads, 1 to %1, and one of lives on each, 1 to %2"_s.arg(mostThreads)
                             .arg(mostLives));
    ++m_checkCount;
    const std::optional<LifeDifference> difference =
        playParallelLives(m_workbench.host, m_workbench.timeline, *threads, *lives);
    if (difference)
        return CommandResult::difference(difference->message, difference->expected, difference->actual);
    return settle();
}

std::optional<qint64> Scenario::steadyHeap()
{
    m_workbench.runOnOtherThread([] { fillCacheOfFreedBlocks(); });
    fillCacheOfFreedBlocks();
    return heapInUse();
}

CommandResult Scenario::expectNoGrowth()
{
    // Blocks are not always as large as what was asked for, so the sum varies by some bytes.
    constexpr qint64 noise = 512;
    if (m_repeat.isOpen || m_repeat.done == 0)
        return CommandResult::unusable(
            u"there is nothing to measure yet; put \"repeat N ... end\" before it"_s);
    const std::optional<qint64> heap = steadyHeap();
    const int rounds = m_repeat.rounds - m_repeat.rounds / 2;
    const int handles = openHandleCount();
    ++m_checkCount;
    // Threads come and go with some; what each round leaves behind is more.
    if (handles - m_repeat.handlesAtHalf > rounds / 10)
        return CommandResult::difference(
            u"%1 more files or handles are open than %2 rounds ago"_s.arg(handles - m_repeat.handlesAtHalf)
                .arg(rounds));
    if (!heap || !m_repeat.heapAtHalf)
        return CommandResult::notChecked(
            u"the heap cannot be measured on Windows, under a sanitizer or under valgrind"_s);
    const qint64 growth = *heap - *m_repeat.heapAtHalf;
    if (growth > noise)
        return CommandResult::difference(
            u"the heap has %1 bytes more in use than %2 rounds ago"_s.arg(growth).arg(rounds));
    return {};
}

CommandResult Scenario::expectAgreement()
{
    CommandResult settled = settle();
    if (settled.code != ExitCode::Success)
        return settled;
    if (!m_workbench.isStarted())
        return CommandResult::unusable(u"the device is not started; put \"start\" before it"_s);
    const SimulatedMouse mouse = currentMouse();
    if (m_workbench.hasMouse() && mouse.isAsleep)
        return CommandResult::unusable(u"the mouse sleeps; put \"wake\" before it"_s);
    noteSignals();
    ++m_checkCount;
    const QStringList found =
        disagreements(*m_workbench.device(), m_lastSignals, m_workbench.hasMouse() ? &mouse : nullptr);
    return found.isEmpty() ? CommandResult() : CommandResult::difference(found.join(u"; "_s));
}

void Scenario::noteSignals()
{
    const QList<TimelineEntry> entries = m_workbench.timeline.entriesAfter(m_noted);
    for (const TimelineEntry &entry : entries)
        m_lastSignals.note(entry);
    m_noted = m_workbench.timeline.lastSequence();
}
