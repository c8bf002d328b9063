#include "Bench.h"
#include "OtherThread.h"
#include "TimelineText.h"

#include <QtTest/QTest>

#include <functional>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

// The three DPI inputs follow one rule; each row of a test names one of them.
struct Input
{
    QString property;
    std::function<void(Bench &, HostedDevice &, int)> report;
    std::function<int(const ILogicalDeviceGen3Mouse &)> value;
    QString call;  // what the report itself leaves on the timeline, %1 the value; empty for receiver signals
};

QList<Input> inputs()
{
    return {{u"dpiMin"_s,
             [](Bench &bench, HostedDevice &, int value) { Q_EMIT bench.receiver.dpiMinChanged(value); },
             [](const ILogicalDeviceGen3Mouse &device) { return device.dpiMin(); }, QString()},
            {u"dpiMax"_s,
             [](Bench &bench, HostedDevice &, int value) { Q_EMIT bench.receiver.dpiMaxChanged(value); },
             [](const ILogicalDeviceGen3Mouse &device) { return device.dpiMax(); }, QString()},
            {u"dpiValue"_s,
             [](Bench &, HostedDevice &device, int value) { device.dpiValueChangedCallBack(value); },
             [](const ILogicalDeviceGen3Mouse &device) { return device.dpiValue(); },
             u"call dpiValueChangedCallBack(%1)"_s}};
}

void addInputRows()
{
    QTest::addColumn<int>("input");
    int index = 0;
    const QList<Input> rows = inputs();
    for (const Input &input : rows)
        QTest::newRow(qPrintable(input.property)) << index++;
}

QStringList change(const QString &property, int value)
{
    return {debugLine(u"Updating %1 :  %2"_s.arg(property).arg(value)),
            u"signal %1Changed(%2)"_s.arg(property).arg(value)};
}

QStringList reported(const Input &input, int value, const QStringList &effect)
{
    QStringList lines = effect;
    if (!input.call.isEmpty())
        lines.prepend(input.call.arg(value));
    return lines;
}

QStringList ppidLines(const QStringList &inner)
{
    return QStringList{debugLine(u"onPPIDChanged enter"_s)} + inner +
           QStringList{debugLine(u"onPPIDChanged exit"_s)};
}

}  // namespace

class tst_Dpi : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void reportIsStoredAndSignalled_data() { addInputRows(); }
    void reportIsStoredAndSignalled();
    void sameReportAgainIsSilent_data() { addInputRows(); }
    void sameReportAgainIsSilent();
    void nothingIsValidated_data() { addInputRows(); }
    void nothingIsValidated();
    void defaultAgainIsSilent_data() { addInputRows(); }
    void defaultAgainIsSilent();
    void valueIsNotClampedToTheRange();
    void minimumAboveTheMaximum();
    void storedBeforeTheSignal();
    void rangeFollowsBothSignalsApart();
    void valueIsSignalledOnTheCallingThread();
    void rangeIsSignalledOnTheDevicesThread();
    void fixedAnswersStayWhatIsReported();
    void setDpiValueIsIgnored();
    void valuesStayAfterStop();
    void reportsNeedNoStart();
    void ppidIsStoredAndSignalled();
    void ppidIsStoredBeforeItsSignal();
    void samePpidAgainIsSilent();
    void ppidDiffersByLetterCase();
    void emptyPpid();
    void ppidTakesAnyText_data();
    void ppidTakesAnyText();
    void ppidIsSignalledOnTheCallingThread();
    void ppidByNameFromAnotherThread();
};

void tst_Dpi::reportIsStoredAndSignalled()
{
    QFETCH(const int, input);
    const Input tested = inputs().at(input);
    Bench bench;
    HostedDevice &device = bench.started();
    tested.report(bench, device, 1600);
    QCOMPARE(bench.take(), timelineText(reported(tested, 1600, change(tested.property, 1600))));
    QCOMPARE(tested.value(*device.device()), 1600);
}

void tst_Dpi::sameReportAgainIsSilent()
{
    QFETCH(const int, input);
    const Input tested = inputs().at(input);
    Bench bench;
    HostedDevice &device = bench.started();
    tested.report(bench, device, 1600);
    bench.take();
    tested.report(bench, device, 1600);
    QCOMPARE(bench.take(), timelineText(reported(tested, 1600, {})));
    // Back and forth is two changes.
    tested.report(bench, device, 800);
    tested.report(bench, device, 1600);
    QCOMPARE(bench.take(), timelineText(reported(tested, 800, change(tested.property, 800)) +
                                        reported(tested, 1600, change(tested.property, 1600))));
}

void tst_Dpi::nothingIsValidated()
{
    QFETCH(const int, input);
    const Input tested = inputs().at(input);
    Bench bench;
    HostedDevice &device = bench.started();
    for (const int value : {12000, 0, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        tested.report(bench, device, value);
        QCOMPARE(bench.take(), timelineText(reported(tested, value, change(tested.property, value))));
        QCOMPARE(tested.value(*device.device()), value);
    }
}

void tst_Dpi::defaultAgainIsSilent()
{
    QFETCH(const int, input);
    const Input tested = inputs().at(input);
    Bench bench;
    HostedDevice &device = bench.started();
    tested.report(bench, device, 0);
    QCOMPARE(bench.take(), timelineText(reported(tested, 0, {})));
}

void tst_Dpi::valueIsNotClampedToTheRange()
{
    Bench bench;
    HostedDevice &device = bench.started();
    Q_EMIT bench.receiver.dpiMinChanged(100);
    Q_EMIT bench.receiver.dpiMaxChanged(8000);
    device.dpiValueChangedCallBack(12000);
    QCOMPARE(device.device()->dpiValue(), 12000);
    bench.take();
    Q_EMIT bench.receiver.dpiMaxChanged(6000);
    QCOMPARE(bench.take(), timelineText(change(u"dpiMax"_s, 6000)));
    QCOMPARE(device.device()->dpiValue(), 12000);
}

void tst_Dpi::minimumAboveTheMaximum()
{
    Bench bench;
    HostedDevice &device = bench.started();
    Q_EMIT bench.receiver.dpiMaxChanged(100);
    Q_EMIT bench.receiver.dpiMinChanged(8000);
    QCOMPARE(device.device()->dpiMin(), 8000);
    QCOMPARE(device.device()->dpiMax(), 100);
}

void tst_Dpi::storedBeforeTheSignal()
{
    Bench bench;
    HostedDevice &device = bench.started();
    QList<int> seen;
    bench.timeline.setObserver([&](const TimelineEntry &entry) {
        if (entry.kind == TimelineEntry::Kind::Signal)
            seen += {device.device()->dpiMin(), device.device()->dpiMax(), device.device()->dpiValue()};
    });
    Q_EMIT bench.receiver.dpiMinChanged(1);
    Q_EMIT bench.receiver.dpiMaxChanged(2);
    device.dpiValueChangedCallBack(3);
    bench.timeline.setObserver({});
    QCOMPARE(seen, QList<int>({1, 0, 0, 1, 2, 0, 1, 2, 3}));
}

void tst_Dpi::rangeFollowsBothSignalsApart()
{
    Bench bench;
    HostedDevice &first = bench.started(1);
    HostedDevice &second = bench.started(2);
    Q_EMIT bench.receiver.dpiMinChanged(100);
    // One receiver tells all its devices.
    QCOMPARE(first.device()->dpiMin(), 100);
    QCOMPARE(second.device()->dpiMin(), 100);
    QCOMPARE(first.device()->dpiMax(), 0);
}

void tst_Dpi::valueIsSignalledOnTheCallingThread()
{
    Bench bench;
    HostedDevice &device = bench.started();
    OtherThread other;
    other.run([&] { device.dpiValueChangedCallBack(1600); });
    QCOMPARE(bench.take(), timelineText({u"call dpiValueChangedCallBack(1600) on thread 2"_s,
                                         debugLine(u"Updating dpiValue :  1600 on thread 2"_s),
                                         u"signal dpiValueChanged(1600) on thread 2"_s}));
    deliverQueuedCalls();
    QCOMPARE(bench.take(), QString());
}

void tst_Dpi::rangeIsSignalledOnTheDevicesThread()
{
    Bench bench;
    HostedDevice &device = bench.started();
    OtherThread other;
    other.run([&] {
        Q_EMIT bench.receiver.dpiMaxChanged(4000);
        Q_EMIT bench.receiver.dpiMaxChanged(5000);
    });
    QCOMPARE(device.device()->dpiMax(), 0);
    deliverQueuedCalls();
    // Each arrives with its own value.
    QCOMPARE(bench.take(), timelineText(change(u"dpiMax"_s, 4000) + change(u"dpiMax"_s, 5000)));
}

void tst_Dpi::fixedAnswersStayWhatIsReported()
{
    Bench bench;
    HostedDevice &device = bench.started();
    device.dpiValueChangedCallBack(1600);
    Q_EMIT bench.receiver.dpiMinChanged(100);
    QCOMPARE(device.device()->dpiDelta(), 50);
    QCOMPARE(device.device()->isDPIValueSupported(), true);
    QCOMPARE(device.device()->isDPIValueChangePending(), false);
}

void tst_Dpi::setDpiValueIsIgnored()
{
    Bench bench;
    HostedDevice &device = bench.started();
    device.device()->setDpiValue(1600);
    QCOMPARE(bench.take(), QString());
    QCOMPARE(device.device()->dpiValue(), 0);
    QCOMPARE(device.device()->isDPIValueChangePending(), false);
}

void tst_Dpi::valuesStayAfterStop()
{
    Bench bench;
    HostedDevice &device = bench.started();
    device.dpiValueChangedCallBack(1600);
    Q_EMIT bench.receiver.dpiMinChanged(100);
    device.ppidChangedCallBack(u"PP"_s);
    device.stop();
    QCOMPARE(device.device()->dpiValue(), 1600);
    QCOMPARE(device.device()->dpiMin(), 100);
    QCOMPARE(device.gen3()->ppid(), u"PP"_s);
}

void tst_Dpi::reportsNeedNoStart()
{
    Bench bench;
    HostedDevice &device = bench.create();
    device.dpiValueChangedCallBack(1600);
    device.ppidChangedCallBack(u"PP"_s);
    QCOMPARE(
        bench.take(),
        timelineText(QStringList{u"call dpiValueChangedCallBack(1600)"_s} + change(u"dpiValue"_s, 1600) +
                     QStringList{u"call ppidChangedCallBack(\"PP\")"_s} +
                     ppidLines({debugLine(u"Updating ppid :  \"PP\""_s), u"signal ppidChanged(\"PP\")"_s})));
}

void tst_Dpi::ppidIsStoredAndSignalled()
{
    Bench bench;
    HostedDevice &device = bench.started();
    device.ppidChangedCallBack(u"A-1"_s);
    QCOMPARE(bench.take(), timelineText(QStringList{u"call ppidChangedCallBack(\"A-1\")"_s} +
                                        ppidLines({debugLine(u"Updating ppid :  \"A-1\""_s),
                                                   u"signal ppidChanged(\"A-1\")"_s})));
    QCOMPARE(device.gen3()->ppid(), u"A-1"_s);
}

void tst_Dpi::ppidIsStoredBeforeItsSignal()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    QString seen;
    bench.timeline.setObserver([&](const TimelineEntry &entry) {
        if (entry.kind == TimelineEntry::Kind::Signal)
            seen = device.gen3()->ppid();
    });
    device.ppidChangedCallBack(u"A-1"_s);
    bench.timeline.setObserver({});
    QCOMPARE(seen, u"A-1"_s);
}

void tst_Dpi::samePpidAgainIsSilent()
{
    Bench bench;
    HostedDevice &device = bench.started();
    device.ppidChangedCallBack(u"A-1"_s);
    bench.take();
    device.ppidChangedCallBack(u"A-1"_s);
    QCOMPARE(bench.take(), timelineText(QStringList{u"call ppidChangedCallBack(\"A-1\")"_s} + ppidLines({})));
}

void tst_Dpi::ppidDiffersByLetterCase()
{
    Bench bench;
    HostedDevice &device = bench.started();
    device.ppidChangedCallBack(u"abc"_s);
    bench.take();
    device.ppidChangedCallBack(u"abC"_s);
    QCOMPARE(bench.take(), timelineText(QStringList{u"call ppidChangedCallBack(\"abC\")"_s} +
                                        ppidLines({debugLine(u"Updating ppid :  \"abC\""_s),
                                                   u"signal ppidChanged(\"abC\")"_s})));
    QCOMPARE(device.gen3()->ppid(), u"abC"_s);
}

void tst_Dpi::emptyPpid()
{
    Bench bench;
    HostedDevice &device = bench.started();
    device.ppidChangedCallBack(QString());
    device.ppidChangedCallBack(u""_s);
    const QStringList silent = QStringList{u"call ppidChangedCallBack(\"\")"_s} + ppidLines({});
    QCOMPARE(bench.take(), timelineText(silent + silent));
    device.ppidChangedCallBack(u"A"_s);
    bench.take();
    device.ppidChangedCallBack(QString());
    QCOMPARE(bench.take(),
             timelineText(QStringList{u"call ppidChangedCallBack(\"\")"_s} +
                          ppidLines({debugLine(u"Updating ppid :  \"\""_s), u"signal ppidChanged(\"\")"_s})));
    QCOMPARE(device.gen3()->ppid(), QString());
}

void tst_Dpi::ppidTakesAnyText_data()
{
    QTest::addColumn<QString>("ppid");
    QTest::newRow("blanks") << u"  "_s;
    QTest::newRow("umlauts") << u"Mäuschen Ω 🐭"_s;
    QTest::newRow("long") << QString(100000, u'x');
}

void tst_Dpi::ppidTakesAnyText()
{
    QFETCH(const QString, ppid);
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    device.ppidChangedCallBack(ppid);
    QCOMPARE(device.gen3()->ppid(), ppid);
    QCOMPARE(bench.take(), timelineText({u"call ppidChangedCallBack(\"%1\")"_s.arg(ppid),
                                         u"signal ppidChanged(\"%1\")"_s.arg(ppid)}));
}

void tst_Dpi::ppidIsSignalledOnTheCallingThread()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    OtherThread other;
    other.run([&] { device.ppidChangedCallBack(u"A"_s); });
    QCOMPARE(bench.take(), timelineText({u"call ppidChangedCallBack(\"A\") on thread 2"_s,
                                         u"signal ppidChanged(\"A\") on thread 2"_s}));
}

void tst_Dpi::ppidByNameFromAnotherThread()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    OtherThread other;
    other.run([&] { QMetaObject::invokeMethod(device.object(), "onPPIDChanged", Q_ARG(QString, u"B"_s)); });
    QCOMPARE(device.gen3()->ppid(), QString());
    deliverQueuedCalls();
    QCOMPARE(device.gen3()->ppid(), u"B"_s);
    QCOMPARE(bench.take(), u"signal ppidChanged(\"B\")"_s);
}

QTEST_GUILESS_MAIN(tst_Dpi)
#include "tst_Dpi.moc"
