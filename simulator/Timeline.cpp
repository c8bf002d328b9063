#include "Timeline.h"

#include "TimelineValue.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QMutexLocker>
#include <QtCore/QThread>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView ownCategoryPrefix{"com.orvane.KVX.Plugin.LogicalDevice."};

// In the order of TimelineEntry::Kind.
constexpr std::array kindWords{"call", "receiver", "report", "signal", "log", "host", "verdict"};

QString lineStart(const TimelineEntry &entry, bool showsDevice)
{
    QString start = entry.kind == TimelineEntry::Kind::Log ? entry.name : Timeline::kindWord(entry.kind);
    if (entry.receiver != 1)
        start += u' ' + QString::number(entry.receiver);
    if (showsDevice && entry.device)
        start += u" ["_s + QString::number(*entry.device) + u']';
    return start + u' ';
}

QString lineContent(const TimelineEntry &entry)
{
    if (entry.kind == TimelineEntry::Kind::Verdict)
        return entry.arguments.at(0).toString();
    if (entry.kind == TimelineEntry::Kind::Log) {
        QString category = entry.category;
        if (category.startsWith(ownCategoryPrefix))
            category.remove(0, ownCategoryPrefix.size());
        return category + u": "_s + entry.arguments.at(0).toString();
    }
    QStringList arguments;
    for (const auto argument : entry.arguments)
        arguments.append(readableValue(argument));
    QString content = entry.name + u'(' + arguments.join(u", "_s) + u')';
    if (!entry.result.isUndefined())
        content += u" -> "_s + readableValue(entry.result);
    return content;
}

QString fullLine(const TimelineEntry &entry)
{
    constexpr int sequenceWidth = 5;
    constexpr int timeWidth = 10;
    constexpr int deviceWidth = 5;
    const double milliseconds = std::chrono::duration<double, std::milli>(entry.time).count();
    const QString device = entry.device ? u'[' + QString::number(*entry.device) + u']' : QString();
    return QString::number(entry.sequence).rightJustified(sequenceWidth) +
           QString::number(milliseconds, 'f', 3).rightJustified(timeWidth) + u" ms  thread "_s +
           QString::number(entry.thread) + u"  "_s + device.leftJustified(deviceWidth) + u' ' +
           lineStart(entry, false) + lineContent(entry);
}

// Integers that were put in as they are still have to survive a reader that keeps numbers as doubles.
QJsonValue portableValue(const QJsonValue &value)
{
    if (value.isDouble()) {
        const qint64 integer = value.toInteger();
        return static_cast<double>(integer) == value.toDouble() ? timelineValue(integer) : value;
    }
    if (value.isArray()) {
        const QJsonArray items = value.toArray();
        QJsonArray array;
        for (const auto item : items)
            array.append(portableValue(item));
        return array;
    }
    if (value.isObject()) {
        QJsonObject object = value.toObject();
        for (auto item = object.begin(); item != object.end(); ++item)
            item.value() = portableValue(item.value());
        return object;
    }
    return value;
}

QStringList linesOf(const QList<TimelineEntry> &entries, Timeline::Style style)
{
    QStringList lines;
    lines.reserve(entries.size());
    for (const TimelineEntry &entry : entries)
        lines.append(Timeline::line(entry, style));
    return lines;
}

}  // namespace

Timeline::Timeline() : m_start(std::chrono::steady_clock::now()), m_threads{QThread::currentThreadId()} {}

quint64 Timeline::record(TimelineEntry::Kind kind, std::optional<DeviceId> device, const QString &name,
                         const QJsonArray &arguments, const QJsonValue &result, int receiver)
{
    return append({kind, device, receiver, name, arguments, result, {}});
}

quint64 Timeline::recordLog(const QString &severity, const QString &category, const QString &text)
{
    return append({TimelineEntry::Kind::Log, {}, 1, severity, {text}, QJsonValue::Undefined, category});
}

quint64 Timeline::recordVerdict(const QString &text, std::optional<DeviceId> device)
{
    return record(TimelineEntry::Kind::Verdict, device, u"verdict"_s, {text});
}

void Timeline::setResult(quint64 sequence, const QJsonValue &result)
{
    const QMutexLocker locker(&m_mutex);
    const auto entry =
        std::find_if(m_entries.rbegin(), m_entries.rend(),
                     [sequence](const TimelineEntry &candidate) { return candidate.sequence == sequence; });
    if (entry != m_entries.rend())
        entry->result = result;
}

QList<TimelineEntry> Timeline::entriesAfter(quint64 sequence) const
{
    const QMutexLocker locker(&m_mutex);
    const auto first =
        std::upper_bound(m_entries.cbegin(), m_entries.cend(), sequence,
                         [](quint64 last, const TimelineEntry &entry) { return last < entry.sequence; });
    return QList<TimelineEntry>(first, m_entries.cend());
}

quint64 Timeline::lastSequence() const
{
    const QMutexLocker locker(&m_mutex);
    return m_lastSequence;
}

void Timeline::clear()
{
    const QMutexLocker locker(&m_mutex);
    m_entries.clear();
}

QStringList Timeline::lines(Style style) const
{
    return linesOf(entries(), style);
}

QStringList Timeline::take(Style style)
{
    QList<TimelineEntry> taken;
    {
        const QMutexLocker locker(&m_mutex);
        taken.swap(m_entries);
    }
    return linesOf(taken, style);
}

QString Timeline::kindWord(TimelineEntry::Kind kind)
{
    return QString::fromLatin1(kindWords.at(static_cast<std::size_t>(kind)));
}

QString Timeline::line(const TimelineEntry &entry, Style style)
{
    if (style == Style::Full)
        return fullLine(entry);
    QString line = lineStart(entry, style == Style::WithDevice) + lineContent(entry);
    if (entry.thread != 1)
        line += u" on thread "_s + QString::number(entry.thread);
    return line;
}

QByteArray Timeline::jsonHeader()
{
    return QJsonDocument(QJsonObject{{u"schemaVersion"_s, schemaVersion}}).toJson(QJsonDocument::Compact);
}

QJsonObject Timeline::jsonObject(const TimelineEntry &entry)
{
    QJsonObject object{{u"sequence"_s, timelineValue(entry.sequence)},
                       {u"timeUs"_s, timelineValue(static_cast<qint64>(entry.time.count()))},
                       {u"thread"_s, entry.thread},
                       {u"kind"_s, kindWord(entry.kind)},
                       {u"name"_s, entry.name},
                       {u"arguments"_s, portableValue(entry.arguments)}};
    if (entry.device)
        object.insert(u"device"_s, QString::number(*entry.device));
    if (entry.receiver != 1)
        object.insert(u"receiver"_s, entry.receiver);
    if (!entry.result.isUndefined())
        object.insert(u"result"_s, portableValue(entry.result));
    if (entry.kind == TimelineEntry::Kind::Log)
        object.insert(u"category"_s, entry.category);
    return object;
}

QByteArray Timeline::jsonLine(const TimelineEntry &entry)
{
    return QJsonDocument(jsonObject(entry)).toJson(QJsonDocument::Compact);
}

void Timeline::setObserver(std::function<void(const TimelineEntry &)> observer)
{
    const QMutexLocker locker(&m_mutex);
    m_observer = std::move(observer);
}

void Timeline::addLastingObserver(std::function<void(const TimelineEntry &)> observer)
{
    const QMutexLocker locker(&m_mutex);
    m_lastingObservers.append(std::move(observer));
}

quint64 Timeline::append(TimelineEntry entry)
{
    std::function<void(const TimelineEntry &)> observer;
    QList<std::function<void(const TimelineEntry &)>> lastingObservers;
    {
        QMutexLocker locker(&m_mutex);
        if (Timeline *other = m_redirections.value(QThread::currentThreadId())) {
            locker.unlock();
            return other->append(std::move(entry));
        }
        entry.sequence = ++m_lastSequence;
        entry.time =
            std::chrono::duration_cast<std::chrono::microseconds>(std::chrono::steady_clock::now() - m_start);
        entry.thread = threadNumber();
        m_entries.append(entry);
        observer = m_observer;
        lastingObservers = m_lastingObservers;
    }
    for (const auto &lastingObserver : std::as_const(lastingObservers))
        lastingObserver(entry);
    if (observer)
        observer(entry);
    return entry.sequence;
}

void Timeline::redirectThisThread(Timeline *other)
{
    const QMutexLocker locker(&m_mutex);
    if (other)
        m_redirections.insert(QThread::currentThreadId(), other);
    else
        m_redirections.remove(QThread::currentThreadId());
}

int Timeline::threadNumber()
{
    const Qt::HANDLE current = QThread::currentThreadId();
    qsizetype index = m_threads.indexOf(current);
    if (index < 0) {
        index = m_threads.size();
        m_threads.append(current);
    }
    return static_cast<int>(index) + 1;
}
