#include "PluginInspection.h"
#include "Scenario.h"
#include "TimelineFile.h"
#include "Words.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QPluginLoader>

using namespace Qt::StringLiterals;

namespace {

// Where several lines are expected, they are on one line with this between them.
const QLatin1StringView lineSeparator = " | "_L1;

bool isLog(const TimelineEntry &entry)
{
    return entry.kind == TimelineEntry::Kind::Log;
}

bool isEvent(const TimelineEntry &entry)
{
    return !isLog(entry);
}

const DeviceOperation *findGetter(const QString &name)
{
    const DeviceOperation *operation = findOperation(otherOperations(), name);
    return operation && operation->isGetter ? operation : nullptr;
}

}  // namespace

CommandResult Scenario::show(const QStringList &words)
{
    constexpr int nameWidth = 36;
    if (words.size() > 1)
        return wrongWord(words.join(u' '), u"one value"_s);
    if (words.size() == 1) {
        const DeviceOperation *getter = findGetter(words.first());
        if (!getter)
            return wrongWord(words.first(), u"a value; \"show\" alone prints all of them"_s);
        m_print(shownValue(*getter));
        return {};
    }
    for (const DeviceOperation *operation : otherOperations()) {
        if (operation->isGetter)
            m_print(u"  "_s + operation->text().leftJustified(nameWidth) + shownValue(*operation));
    }
    return {};
}

QString Scenario::shownValue(const DeviceOperation &getter)
{
    const HostedDevice &device = *m_workbench.device();
    const QJsonValue value = getter.call(*device.device(), {});
    // Not on the timeline, whose lines are compared.
    TimelineEntry entry;
    entry.kind = TimelineEntry::Kind::Call;
    entry.device = device.id();
    entry.name = getter.text();
    entry.result = value;
    addToTimelineFile(entry);
    return plainValue(value);
}

CommandResult Scenario::showTimeline(const QStringList &words)
{
    constexpr int defaultCount = 20;
    const std::optional<int> count = words.isEmpty() ? defaultCount : onlyNumber(words, 1);
    if (!count)
        return wrongWord(words.join(u' '), u"a number of lines"_s);
    const QStringList lines = m_workbench.timeline.lines(Timeline::Style::Full);
    const QStringList lastLines = lines.mid(qMax(qsizetype(0), lines.size() - *count));
    for (const QString &line : lastLines)
        m_print(line);
    return {};
}

CommandResult Scenario::compare(const QString &what, const QString &expected, const QString &seen)
{
    ++m_checkCount;
    if (expected == seen)
        return {};
    const auto shown = [](const QString &text) { return text.isEmpty() ? u"none"_s : text; };
    return CommandResult::difference(u"%1: expected %2, seen %3"_s.arg(what, shown(expected), shown(seen)),
                                     {expected}, {seen});
}

CommandResult Scenario::compareLines(const QString &what, const QString &expected, const QString &seen)
{
    CommandResult result = compare(what, expected, seen);
    if (result.code != ExitCode::Success) {
        result.expected = expected.split(lineSeparator, Qt::SkipEmptyParts);
        result.actual = seen.split(lineSeparator, Qt::SkipEmptyParts);
    }
    return result;
}

CommandResult Scenario::compareLine(qsizetype index, const QString &expected)
{
    QStringList seen = linesAfter(m_lastAction, {});
    for (QString &line : seen)
        line = withoutAddresses(line);
    CommandResult result =
        compare(u"line %1 of what the command caused"_s.arg(index + 1), expected, seen.value(index));
    if (result.code != ExitCode::Success) {
        result.expected = m_comparedLines;
        result.actual = seen;
    }
    return result;
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
    if (name == u"metadata")
        return expectMetadata(rest);
    if (name == u"exports")
        return expectExports(words.mid(1));
    if (words == QStringList{u"no-growth"_s})
        return expectNoGrowth();
    if (name == u"factory") {
        CommandResult missing = whatIsMissing(Command::Needs::Plugin);
        if (missing.code != ExitCode::Success)
            return missing;
        return expectOfObject(m_workbench.host.root(), rest)
            .value_or(wrongWord(words.value(1), u"\"class\", \"method\" or \"cast\""_s));
    }
    CommandResult missing = whatIsMissing(Command::Needs::Device);
    if (missing.code != ExitCode::Success)
        return missing;
    if (words == QStringList{u"agreement"_s})
        return expectAgreement();
    if (const std::optional<CommandResult> result = expectOfObject(m_workbench.device()->object(), m_rest))
        return *result;
    const DeviceOperation *getter = findGetter(name);
    if (!getter)
        return wrongWord(name, u"a value or another thing to compare; see help"_s);
    const auto quoted = [](const QString &text) { return u'"' + text + u'"'; };
    return compare(name, quoted(words.mid(1).join(u' ')), quoted(shownValue(*getter)));
}

CommandResult Scenario::expectSignal(const QString &expected)
{
    QString seen;
    const QList<TimelineEntry> entries = m_workbench.timeline.entriesAfter(m_signalCursor);
    for (const TimelineEntry &entry : entries) {
        if (entry.kind != TimelineEntry::Kind::Signal)
            continue;
        m_signalCursor = entry.sequence;
        seen = Timeline::line(entry, lineStyle()).sliced(QStringLiteral("signal ").size());
        break;
    }
    return compare(u"the next signal"_s, expected, seen);
}

CommandResult Scenario::expectTimeline(const QString &expected)
{
    const qsizetype count = expected.isEmpty() ? 0 : expected.split(lineSeparator).size();
    QStringList seen = linesAfter(count == 0 ? m_lastAction : 0, isEvent);
    if (count > 0)
        seen = seen.mid(qMax(qsizetype(0), seen.size() - count));
    return compareLines(u"the last lines"_s, expected, seen.join(lineSeparator));
}

CommandResult Scenario::expectLog(const QString &expected)
{
    const QString seen = linesAfter(m_lastAction, isLog).join(lineSeparator);
    return compareLines(u"the log of the last command"_s, withoutAddresses(expected), withoutAddresses(seen));
}

CommandResult Scenario::expectMetadata(const QString &expected)
{
    QJsonObject metaData = QPluginLoader(m_workbench.host.fileName()).metaData();
    // These depend on the build.
    for (const QLatin1StringView key : {"version"_L1, "debug"_L1})
        metaData.remove(key);
    return compare(u"the metadata"_s, expected,
                   QString::fromUtf8(QJsonDocument(metaData).toJson(QJsonDocument::Compact)));
}

CommandResult Scenario::expectExports(QStringList expected)
{
    const QStringList seen = inspectPlugin(m_workbench.host.fileName()).contents.exports;
    expected.sort();
    CommandResult result = compare(u"the exported symbols"_s, expected.join(u' '), seen.join(u' '));
    if (result.code != ExitCode::Success) {
        result.expected = expected;
        result.actual = seen;
    }
    return result;
}

CommandResult Scenario::expectNextLine(const QStringList & /*words*/)
{
    m_comparedLines.append(withoutAddresses(m_rest));
    return compareLine(m_comparedLines.size() - 1, m_comparedLines.last());
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
    ++m_checkCount;
    const auto longest = limit ? std::chrono::milliseconds(*limit) : m_workbench.deadline;
    if (!m_workbench.waitFor(hasCome, longest))
        return CommandResult::difference(
            u"expected %1, seen nothing of it in %2 ms"_s.arg(event, QString::number(longest.count())),
            {event});
    return {};
}
