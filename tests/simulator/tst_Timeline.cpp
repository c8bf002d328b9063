#include "OtherThread.h"
#include "Timeline.h"
#include "TimelineText.h"
#include "TimelineValue.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QSemaphore>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;
using Kind = TimelineEntry::Kind;

Q_DECLARE_METATYPE(TimelineEntry)

namespace {

TimelineEntry entry(Kind kind, const QString &name, const QJsonArray &arguments,
                    const QJsonValue &result = QJsonValue::Undefined)
{
    TimelineEntry entry;
    entry.sequence = 7;
    entry.time = std::chrono::microseconds(12345);
    entry.thread = 1;
    entry.device = 42;
    entry.kind = kind;
    entry.name = name;
    entry.arguments = arguments;
    entry.result = result;
    return entry;
}

TimelineEntry logEntry(const QString &severity, const QString &category, const QString &text)
{
    TimelineEntry entry;
    entry.thread = 1;
    entry.kind = Kind::Log;
    entry.name = severity;
    entry.category = category;
    entry.arguments = {text};
    return entry;
}

}  // namespace

class tst_Timeline : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void plainLines_data();
    void plainLines();
    void deviceStandsBehindTheWord();
    void otherThreadsAreNamed();
    void fullLineHasColumns();
    void jsonLineHoldsEverything();
    void jsonOfALogLineKeepsTheCategory();
    void jsonKeepsLargeNumbersAsText();
    void sequenceHasNoGaps();
    void takeForgetsAndGoesOn();
    void entriesAfterANumber();
    void timeNeverGoesBack();
    void resultOfAForgottenEntryIsIgnored();
    void observerSeesEachEntryWithNoLockHeld();
    void lastingObserverStaysWhenTheOtherChanges();
    void manyThreadsRecordAtOnce();
};

void tst_Timeline::plainLines_data()
{
    QTest::addColumn<TimelineEntry>("entry");
    QTest::addColumn<QString>("line");
    QTest::newRow("call") << entry(Kind::Call, u"setReportRate"_s, {500}) << u"call setReportRate(500)"_s;
    QTest::newRow("receiver-with-result")
        << entry(Kind::Receiver, u"setReportRate"_s, {500}, true) << u"receiver setReportRate(500) -> true"_s;
    QTest::newRow("report") << entry(Kind::Report, u"reportRateConfirmed"_s, {-1})
                            << u"report reportRateConfirmed(-1)"_s;
    QTest::newRow("signal-with-list") << entry(Kind::Signal, u"s"_s, {QJsonValue(QJsonArray{u"1"_s, u"2"_s})})
                                      << u"signal s([\"1\", \"2\"])"_s;
    QTest::newRow("host-service") << entry(Kind::HostService, u"buttonEvent"_s, {u"iid"_s, 1, true})
                                  << u"host buttonEvent(\"iid\", 1, true)"_s;
    QTest::newRow("verdict") << entry(Kind::Verdict, u"verdict"_s, {u"so it is"_s}) << u"verdict so it is"_s;
    QTest::newRow("no-arguments") << entry(Kind::Call, u"stop"_s, {}) << u"call stop()"_s;
    QTest::newRow("null-and-false") << entry(Kind::Call, u"c"_s, {QJsonValue::Null, false})
                                    << u"call c(null, false)"_s;
    QTest::newRow("quotes-and-backslash")
        << entry(Kind::Call, u"c"_s, {u"a\"b\\c"_s}) << u"call c(\"a\\\"b\\\\c\")"_s;
    QTest::newRow("map") << entry(Kind::Call, u"c"_s, {QJsonObject{{u"b"_s, 2}, {u"a"_s, u"x"_s}}})
                         << u"call c({\"a\": \"x\", \"b\": 2})"_s;
    QTest::newRow("fraction") << entry(Kind::Call, u"c"_s, {0.5}) << u"call c(0.5)"_s;
    QTest::newRow("beyond-32-bits") << entry(Kind::Call, u"c"_s, {qint64{4294967296}})
                                    << u"call c(4294967296)"_s;
    QTest::newRow("text-result") << entry(Kind::Call, u"c"_s, {}, u"r"_s) << u"call c() -> \"r\""_s;
    QTest::newRow("own-log-category")
        << logEntry(u"debug"_s, u"com.orvane.KVX.Plugin.LogicalDevice.RV418.LogicalDevice"_s,
                    u"start enter"_s)
        << u"debug RV418.LogicalDevice: start enter"_s;
    QTest::newRow("other-log-category")
        << logEntry(u"warning"_s, u"default"_s, u"x"_s) << u"warning default: x"_s;
}

void tst_Timeline::plainLines()
{
    QFETCH(const TimelineEntry, entry);
    QFETCH(const QString, line);
    QCOMPARE(Timeline::line(entry, Timeline::Style::Plain), line);
}

void tst_Timeline::deviceStandsBehindTheWord()
{
    const TimelineEntry signal = entry(Kind::Signal, u"s"_s, {1});
    QCOMPARE(Timeline::line(signal, Timeline::Style::WithDevice), u"signal [42] s(1)"_s);
    TimelineEntry large = signal;
    large.device = 0xfedcba9876543210U;
    QCOMPARE(Timeline::line(large, Timeline::Style::WithDevice), u"signal [18364758544493064720] s(1)"_s);
    const TimelineEntry log = logEntry(u"debug"_s, u"c"_s, u"t"_s);
    QCOMPARE(Timeline::line(log, Timeline::Style::WithDevice), u"debug c: t"_s);
}

void tst_Timeline::otherThreadsAreNamed()
{
    TimelineEntry call = entry(Kind::Call, u"c"_s, {});
    call.thread = 2;
    QCOMPARE(Timeline::line(call, Timeline::Style::Plain), u"call c() on thread 2"_s);
    QCOMPARE(Timeline::line(call, Timeline::Style::WithDevice), u"call [42] c() on thread 2"_s);
    call.result = true;
    QCOMPARE(Timeline::line(call, Timeline::Style::Plain), u"call c() -> true on thread 2"_s);
}

void tst_Timeline::fullLineHasColumns()
{
    QCOMPARE(Timeline::line(entry(Kind::Signal, u"s"_s, {1}), Timeline::Style::Full),
             u"    7    12.345 ms  thread 1  [42]  signal s(1)"_s);
    QCOMPARE(Timeline::line(logEntry(u"debug"_s, u"c"_s, u"t"_s), Timeline::Style::Full),
             u"    0     0.000 ms  thread 1        debug c: t"_s);
}

void tst_Timeline::jsonLineHoldsEverything()
{
    QCOMPARE(Timeline::jsonHeader(), QByteArray("{\"schemaVersion\":1}"));
    QCOMPARE(
        Timeline::jsonLine(entry(Kind::Receiver, u"setReportRate"_s, {500}, true)),
        QByteArray("{\"arguments\":[500],\"device\":\"42\",\"kind\":\"receiver\",\"name\":\"setReportRate\","
                   "\"result\":true,\"sequence\":7,\"thread\":1,\"timeUs\":12345}"));
}

void tst_Timeline::jsonOfALogLineKeepsTheCategory()
{
    const QString category = u"com.orvane.KVX.Plugin.LogicalDevice.RV418.LogicalDevice"_s;
    const QByteArray line = Timeline::jsonLine(logEntry(u"debug"_s, category, u"two\nlines"_s));
    QVERIFY(!line.contains('\n'));
    const QJsonObject object = QJsonDocument::fromJson(line).object();
    QCOMPARE(object.value("category"_L1).toString(), category);
    QCOMPARE(object.value("kind"_L1).toString(), u"log"_s);
    QCOMPARE(object.value("name"_L1).toString(), u"debug"_s);
    QCOMPARE(object.value("arguments"_L1).toArray().at(0).toString(), u"two\nlines"_s);
    QVERIFY(!object.contains("device"_L1));
    QVERIFY(!object.contains("result"_L1));
}

void tst_Timeline::jsonKeepsLargeNumbersAsText()
{
    constexpr qint64 largestExact = qint64{1} << 53;
    const QByteArray line = Timeline::jsonLine(entry(
        Kind::Call, u"c"_s, {largestExact, largestExact + 1, QJsonValue(QJsonArray{-largestExact - 1})}));
    QVERIFY2(line.contains("[9007199254740992,\"9007199254740993\",[\"-9007199254740993\"]]"),
             line.constData());
    QCOMPARE(timelineValue(std::numeric_limits<quint64>::max()), QJsonValue(u"18446744073709551615"_s));
    QCOMPARE(timelineValue(quint64{5}), QJsonValue(5));
}

void tst_Timeline::sequenceHasNoGaps()
{
    Timeline timeline;
    QCOMPARE(timeline.lastSequence(), 0U);
    QCOMPARE(timeline.record(Kind::Call, {}, u"a"_s), 1U);
    QCOMPARE(timeline.recordLog(u"info"_s, u"c"_s, u"t"_s), 2U);
    QCOMPARE(timeline.recordVerdict(u"v"_s, 3), 3U);
    QCOMPARE(timeline.lastSequence(), 3U);
    COMPARE_LINES(timeline.lines(Timeline::Style::WithDevice),
                  {u"call a()"_s, u"info c: t"_s, u"verdict [3] v"_s});
}

void tst_Timeline::takeForgetsAndGoesOn()
{
    Timeline timeline;
    timeline.record(Kind::Call, {}, u"a"_s);
    timeline.record(Kind::Call, {}, u"b"_s);
    COMPARE_LINES(timeline.take(), {u"call a()"_s, u"call b()"_s});
    COMPARE_LINES(timeline.take(), {});
    timeline.record(Kind::Call, {}, u"c"_s);
    timeline.clear();
    QCOMPARE(timeline.record(Kind::Call, {}, u"d"_s), 4U);
    COMPARE_LINES(timeline.take(), {u"call d()"_s});
}

void tst_Timeline::entriesAfterANumber()
{
    Timeline timeline;
    for (int number = 1; number <= 4; ++number)
        timeline.recordVerdict(QString::number(number));
    QCOMPARE(timeline.entriesAfter(0).size(), 4);
    QCOMPARE(timeline.entriesAfter(2).size(), 2);
    QCOMPARE(timeline.entriesAfter(2).constFirst().sequence, 3U);
    QVERIFY(timeline.entriesAfter(4).isEmpty());
}

void tst_Timeline::timeNeverGoesBack()
{
    Timeline timeline;
    for (int count = 0; count < 100; ++count)
        timeline.recordVerdict(u"v"_s);
    std::chrono::microseconds last{0};
    const QList<TimelineEntry> entries = timeline.entries();
    for (const TimelineEntry &entry : entries) {
        QVERIFY(entry.time >= last);
        last = entry.time;
    }
}

void tst_Timeline::resultOfAForgottenEntryIsIgnored()
{
    Timeline timeline;
    const quint64 first = timeline.record(Kind::Call, {}, u"a"_s);
    timeline.clear();
    const quint64 second = timeline.record(Kind::Call, {}, u"b"_s);
    timeline.setResult(first, 1);
    COMPARE_LINES(timeline.lines(), {u"call b()"_s});
    timeline.setResult(second, 2);
    COMPARE_LINES(timeline.lines(), {u"call b() -> 2"_s});
}

void tst_Timeline::observerSeesEachEntryWithNoLockHeld()
{
    Timeline timeline;
    QList<quint64> seen;
    timeline.setObserver([&](const TimelineEntry &entry) {
        seen.append(entry.sequence);
        // Would never return with the lock held.
        if (timeline.lastSequence() < 3)
            timeline.recordVerdict(u"from the observer"_s);
    });
    timeline.recordVerdict(u"v"_s);
    QCOMPARE(seen, QList<quint64>({1, 2, 3}));
    timeline.setObserver({});
    timeline.recordVerdict(u"v"_s);
    QCOMPARE(seen.size(), 3);
}

void tst_Timeline::lastingObserverStaysWhenTheOtherChanges()
{
    Timeline timeline;
    QStringList seen;
    timeline.addLastingObserver([&](const TimelineEntry &entry) {
        seen.append(u"lasting %1"_s.arg(entry.sequence));
        // Would never return with the lock held.
        seen.append(u"of %1"_s.arg(timeline.lastSequence()));
    });
    timeline.recordVerdict(u"v"_s);
    timeline.setObserver(
        [&](const TimelineEntry &entry) { seen.append(u"observer %1"_s.arg(entry.sequence)); });
    timeline.recordVerdict(u"v"_s);
    timeline.setObserver({});
    timeline.recordVerdict(u"v"_s);
    COMPARE_LINES(seen, {u"lasting 1"_s, u"of 1"_s, u"lasting 2"_s, u"of 2"_s, u"observer 2"_s,
                         u"lasting 3"_s, u"of 3"_s});
}

void tst_Timeline::manyThreadsRecordAtOnce()
{
    constexpr int count = 500;
    Timeline timeline;
    OtherThread second;
    QSemaphore started;
    QSemaphore finished;
    const auto recordMany = [&] {
        for (int number = 0; number < count; ++number)
            timeline.recordVerdict(QString::number(number));
    };
    QObject context;
    context.moveToThread(second.thread());
    QMetaObject::invokeMethod(
        &context,
        [&] {
            started.release();
            recordMany();
            finished.release();
        },
        Qt::QueuedConnection);
    started.acquire();
    recordMany();
    finished.acquire();
    // The context may only be destroyed when its thread has left the closure.
    second.run([&] { context.moveToThread(QCoreApplication::instance()->thread()); });

    const QList<TimelineEntry> entries = timeline.entries();
    QCOMPARE(entries.size(), 2 * count);
    QHash<int, int> nextByThread;
    quint64 sequence = 0;
    for (const TimelineEntry &entry : entries) {
        QCOMPARE(entry.sequence, ++sequence);
        QCOMPARE(entry.arguments.at(0).toString(), QString::number(nextByThread[entry.thread]++));
    }
    QCOMPARE(nextByThread, (QHash<int, int>{{1, count}, {2, count}}));
}

QTEST_GUILESS_MAIN(tst_Timeline)
#include "tst_Timeline.moc"
