#pragma once

#include "DeviceId.h"

#include <QtCore/QHash>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QJsonValue>
#include <QtCore/QList>
#include <QtCore/QMutex>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <chrono>
#include <functional>
#include <optional>

/// One thing that was observed, at the moment when it began.
struct TimelineEntry
{
    enum class Kind {
        Call,         ///< the host calls an operation of the plugin: name, arguments
        Receiver,     ///< the plugin calls the receiver: name, arguments, result
        Report,       ///< the receiver's side calls back into the plugin: name, arguments
        Signal,       ///< a signal of a device or of the receiver: name, arguments
        Log,          ///< a line of Qt's message logger: name is the severity, text in arguments[0]
        HostService,  ///< the plugin calls the host's service object: name, arguments
        Verdict,      ///< the simulation itself notes something: text in arguments[0]
    };

    Kind kind = Kind::Verdict;
    std::optional<DeviceId> device;  ///< unset where it is not known, as for log lines
    /// Of Receiver and Report: which of several receivers; 1 where there is one.
    int receiver = 1;
    QString name;
    QJsonArray arguments;
    QJsonValue result = QJsonValue::Undefined;
    QString category;                   ///< log lines only
    quint64 sequence = 0;               ///< 1, 2, 3 ... without gaps
    std::chrono::microseconds time{0};  ///< since the timeline was made, from a monotonic clock
    int thread = 0;                     ///< 1 is the timeline's own thread, others as they first appear
};

/// The one record of everything that can be observed: calls, signals, log lines, host-service events. A test compares its
/// lines. Any thread may call every operation. It must outlive all that records on it.
class Timeline
{
public:
    static constexpr int schemaVersion = 1;

    enum class Style {
        Plain,       ///< "signal reportRateChanged(500)", and " on thread 2" where it is not thread 1
        WithDevice,  ///< as Plain, with the device: "signal [42] reportRateChanged(500)"
        Full,        ///< with sequence number, time, thread and device, in columns
    };

    Timeline();
    Q_DISABLE_COPY_MOVE(Timeline)

    /// Appends an entry with the next sequence number, the time and the calling thread; returns its number.
    quint64 record(TimelineEntry::Kind kind, std::optional<DeviceId> device, const QString &name,
                   const QJsonArray &arguments = {}, const QJsonValue &result = QJsonValue::Undefined,
                   int receiver = 1);
    /// As record(), for a log line, by its severity ("debug", "info", "warning", "critical", "fatal").
    quint64 recordLog(const QString &severity, const QString &category, const QString &text);
    /// As record(), for a note of the simulation or the test itself.
    quint64 recordVerdict(const QString &text, std::optional<DeviceId> device = {});
    /// Sets the result of an entry that is complete only when the call has returned.
    void setResult(quint64 sequence, const QJsonValue &result);

    QList<TimelineEntry> entries() const { return entriesAfter(0); }
    /// What came after the entry with this number; 0 for all.
    QList<TimelineEntry> entriesAfter(quint64 sequence) const;
    /// 0 before the first entry.
    quint64 lastSequence() const;
    /// Forgets the entries; sequence numbers and time go on.
    void clear();

    /// Every entry as a readable line.
    QStringList lines(Style style = Style::Plain) const;
    /// The lines since the last call, and forgets the entries: what a test compares.
    QStringList take(Style style = Style::Plain);

    /// call, receiver, report, signal, log, host or verdict: the "kind" of its JSON object.
    static QString kindWord(TimelineEntry::Kind kind);
    static QString line(const TimelineEntry &entry, Style style);
    /// {"schemaVersion":1}: the first line of a JSON record.
    static QByteArray jsonHeader();
    static QJsonObject jsonObject(const TimelineEntry &entry);
    /// The same without line breaks.
    static QByteArray jsonLine(const TimelineEntry &entry);

    /// Called for each new entry, on the thread that records it, with no lock held; one observer at a time.
    void setObserver(std::function<void(const TimelineEntry &)> observer);
    /// Others, which are called before it in the order in which they were added, as long as the timeline lives.
    void addLastingObserver(std::function<void(const TimelineEntry &)> observer);

    /// What the calling thread records here goes to the other timeline instead, until it calls this with null.
    void redirectThisThread(Timeline *other);

private:
    quint64 append(TimelineEntry entry);
    int threadNumber();

    mutable QMutex m_mutex;
    std::chrono::steady_clock::time_point m_start;
    QList<Qt::HANDLE> m_threads;
    QHash<Qt::HANDLE, Timeline *> m_redirections;  // by thread
    QList<TimelineEntry> m_entries;
    quint64 m_lastSequence = 0;
    std::function<void(const TimelineEntry &)> m_observer;
    QList<std::function<void(const TimelineEntry &)>> m_lastingObservers;
};
