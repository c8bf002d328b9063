#include "DeviceValues.h"
#include "Scenario.h"
#include "Words.h"

using namespace Qt::StringLiterals;

namespace {

// Where several lines are expected, they stand on one line with this between them.
const QLatin1StringView lineSeparator = " | "_L1;

// For a text whose last word has no blank in it.
QString withoutLastWord(const QString &text)
{
    qsizetype end = text.size();
    while (end > 0 && !text.at(end - 1).isSpace())
        --end;
    return text.left(end).trimmed();
}

}  // namespace

CommandResult Scenario::show(const QStringList &words)
{
    constexpr int nameWidth = 36;
    const HostedDevice &device = *m_workbench.device();
    if (words.size() == 1) {
        const std::optional<QString> value = deviceValue(device, words.first());
        if (!value)
            return wrongWord(words.first(), u"a value; \"show\" alone prints all of them"_s);
        m_print(*value);
        return {};
    }
    if (!words.isEmpty())
        return wrongWord(words.join(u' '), u"one value"_s);
    const QList<QPair<QString, QString>> values = deviceValues(device);
    for (const auto &[name, value] : values)
        m_print(u"  "_s + name.leftJustified(nameWidth) + value);
    return {};
}

CommandResult Scenario::showTimeline(const QStringList &words)
{
    constexpr int defaultCount = 20;
    const std::optional<int> count = words.isEmpty() ? defaultCount : numberOf(words.first());
    if (!count || *count < 1 || words.size() > 1)
        return wrongWord(words.join(u' '), u"a number of lines"_s);
    const QStringList lines = m_workbench.timeline.lines(Timeline::Style::Full);
    const QStringList lastLines = lines.mid(qMax(qsizetype(0), lines.size() - *count));
    for (const QString &line : lastLines)
        m_print(line);
    return {};
}

CommandResult Scenario::expect(const QStringList &words)
{
    const QString name = words.value(0);
    const QString rest = behindFirstWord(m_rest);
    if (name == u"signal")
        return expectSignal(rest);
    if (name == u"timeline")
        return expectTimeline(rest);
    if (name == u"log")
        return expectLog(rest);
    if (!m_workbench.device())
        return withoutAnyDevice();
    const std::optional<QString> value = deviceValue(*m_workbench.device(), name);
    if (!value)
        return wrongWord(name, u"a value, \"signal\", \"timeline\" or \"log\""_s);
    const QString expected = words.mid(1).join(u' ');
    if (*value != expected)
        return CommandResult::difference(u"%1: expected \"%2\", seen \"%3\""_s.arg(name, expected, *value));
    return {};
}

CommandResult Scenario::expectSignal(const QString &expected)
{
    const QList<TimelineEntry> entries = m_workbench.timeline.entriesAfter(m_signalCursor);
    for (const TimelineEntry &entry : entries) {
        if (entry.kind != TimelineEntry::Kind::Signal)
            continue;
        m_signalCursor = entry.sequence;
        const QString seen = Timeline::line(entry, lineStyle()).sliced(QStringLiteral("signal ").size());
        if (seen == expected)
            return {};
        return CommandResult::difference(u"the next signal: expected %1, seen %2"_s.arg(expected, seen));
    }
    return CommandResult::difference(u"the next signal: expected %1, seen none"_s.arg(expected));
}

CommandResult Scenario::expectTimeline(const QString &expected)
{
    const QStringList wanted = expected.isEmpty() ? QStringList() : expected.split(lineSeparator);
    QStringList seen = eventLines(wanted.isEmpty() ? m_lastAction : 0);
    if (!wanted.isEmpty())
        seen = seen.mid(qMax(qsizetype(0), seen.size() - wanted.size()));
    if (seen == wanted)
        return {};
    return CommandResult::difference(u"the last lines: expected %1, seen %2"_s.arg(
        expected.isEmpty() ? u"none"_s : expected, seen.join(lineSeparator)));
}

CommandResult Scenario::expectLog(const QString &expected)
{
    const QString seen = logLines(m_lastAction).join(lineSeparator).trimmed();
    if (seen == expected)
        return {};
    const auto text = [](const QString &lines) { return lines.isEmpty() ? u"none"_s : lines; };
    return CommandResult::difference(
        u"the log of the last command: expected %1, seen %2"_s.arg(text(expected), text(seen)));
}

CommandResult Scenario::wait(const QStringList &words)
{
    const std::optional<int> limit = words.size() > 1 ? numberOf(words.last()) : std::nullopt;
    const QString event = limit ? withoutLastWord(m_rest) : m_rest;
    if (event.isEmpty())
        return CommandResult::unusable(u"wait for what? write the beginning of a timeline line"_s);
    if (limit && *limit < 0)
        return wrongWord(words.last(), u"a number of milliseconds"_s);
    const auto hasCome = [&] {
        const QList<TimelineEntry> entries = m_workbench.timeline.entriesAfter(m_signalCursor);
        for (const TimelineEntry &entry : entries) {
            if (Timeline::line(entry, lineStyle()).startsWith(event)) {
                m_signalCursor = entry.sequence;
                return true;
            }
        }
        return false;
    };
    const auto longest = limit ? std::chrono::milliseconds(*limit) : m_workbench.deadline;
    if (!m_workbench.waitFor(hasCome, longest))
        return CommandResult::difference(
            u"expected %1, seen nothing of it in %2 ms"_s.arg(event, QString::number(longest.count())));
    return {};
}

CommandResult Scenario::deadline(const QStringList &words)
{
    const std::optional<int> limit = numberOf(words.value(0));
    if (!limit || *limit < 0 || words.size() != 1)
        return wrongWord(words.join(u' '), u"a number of milliseconds"_s);
    m_workbench.deadline = std::chrono::milliseconds(*limit);
    return {};
}
