#include "OtherThread.h"
#include "PluginFixture.h"
#include "TimelineText.h"

#include <QtCore/QMetaMethod>
#include <QtTest/QTest>

#include <functional>
#include <limits>

using namespace Qt::StringLiterals;

namespace {

// The three DPI inputs follow one rule; each row of a test names one of them.
struct Input
{
    QString property;
    std::function<void(PluginFixture &, HostedDevice &, int)> report;
    std::function<int(const ILogicalDeviceGen3Mouse &)> value;
    QString call;  // what the report itself leaves on the timeline, %1 the value; empty for receiver signals
};

QList<Input> inputs()
{
    return {{u"dpiMin"_s,
             [](PluginFixture &fixture, HostedDevice &, int value) {
                 Q_EMIT fixture.receiver.dpiMinChanged(value);
             },
             [](const ILogicalDeviceGen3Mouse &device) { return device.dpiMin(); }, QString()},
            {u"dpiMax"_s,
             [](PluginFixture &fixture, HostedDevice &, int value) {
                 Q_EMIT fixture.receiver.dpiMaxChanged(value);
             },
             [](const ILogicalDeviceGen3Mouse &device) { return device.dpiMax(); }, QString()},
            {u"dpiValue"_s,
             [](PluginFixture &, HostedDevice &device, int value) { device.dpiValueChangedCallBack(value); },
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

/// A receiver that writes down which of its signals are connected.
class WatchingReceiver : public FakeReceiver
{
public:
    using FakeReceiver::FakeReceiver;

    QByteArrayList connected;

protected:
    void connectNotify(const QMetaMethod &signal) override { connected += signal.methodSignature(); }
};

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
    void minimumIsConnectedBeforeTheMaximum();
};

void tst_Dpi::reportIsStoredAndSignalled()
{
    QFETCH(const int, input);
    const Input tested = inputs().at(input);
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    tested.report(fixture, device, 1600);
    COMPARE_LINES(fixture.take(), reported(tested, 1600, change(tested.property, 1600)));
    QCOMPARE(tested.value(*device.device()), 1600);
}

void tst_Dpi::sameReportAgainIsSilent()
{
    QFETCH(const int, input);
    const Input tested = inputs().at(input);
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    tested.report(fixture, device, 1600);
    fixture.take();
    tested.report(fixture, device, 1600);
    COMPARE_LINES(fixture.take(), reported(tested, 1600, {}));
    // Back and forth is two changes.
    tested.report(fixture, device, 800);
    tested.report(fixture, device, 1600);
    COMPARE_LINES(fixture.take(), reported(tested, 800, change(tested.property, 800)) +
                                      reported(tested, 1600, change(tested.property, 1600)));
}

void tst_Dpi::nothingIsValidated()
{
    QFETCH(const int, input);
    const Input tested = inputs().at(input);
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    for (const int value : {12000, 0, -1, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        tested.report(fixture, device, value);
        COMPARE_LINES(fixture.take(), reported(tested, value, change(tested.property, value)));
        QCOMPARE(tested.value(*device.device()), value);
    }
}

void tst_Dpi::defaultAgainIsSilent()
{
    QFETCH(const int, input);
    const Input tested = inputs().at(input);
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    tested.report(fixture, device, 0);
    COMPARE_LINES(fixture.take(), reported(tested, 0, {}));
}

void tst_Dpi::valueIsNotClampedToTheRange()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    Q_EMIT fixture.receiver.dpiMinChanged(100);
    Q_EMIT fixture.receiver.dpiMaxChanged(8000);
    device.dpiValueChangedCallBack(12000);
    QCOMPARE(device.device()->dpiValue(), 12000);
    fixture.take();
    Q_EMIT fixture.receiver.dpiMaxChanged(6000);
    COMPARE_LINES(fixture.take(), change(u"dpiMax"_s, 6000));
    QCOMPARE(device.device()->dpiValue(), 12000);
}

void tst_Dpi::minimumAboveTheMaximum()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    Q_EMIT fixture.receiver.dpiMaxChanged(100);
    Q_EMIT fixture.receiver.dpiMinChanged(8000);
    QCOMPARE(device.device()->dpiMin(), 8000);
    QCOMPARE(device.device()->dpiMax(), 100);
}

void tst_Dpi::storedBeforeTheSignal()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    QList<int> seen;
    fixture.timeline.setObserver([&](const TimelineEntry &entry) {
        if (entry.kind == TimelineEntry::Kind::Signal)
            seen += {device.device()->dpiMin(), device.device()->dpiMax(), device.device()->dpiValue()};
    });
    Q_EMIT fixture.receiver.dpiMinChanged(1);
    Q_EMIT fixture.receiver.dpiMaxChanged(2);
    device.dpiValueChangedCallBack(3);
    fixture.timeline.setObserver({});
    QCOMPARE(seen, QList<int>({1, 0, 0, 1, 2, 0, 1, 2, 3}));
}

void tst_Dpi::rangeFollowsBothSignalsApart()
{
    PluginFixture fixture;
    HostedDevice &first = fixture.started(1);
    HostedDevice &second = fixture.started(2);
    Q_EMIT fixture.receiver.dpiMinChanged(100);
    // One receiver tells all its devices.
    QCOMPARE(first.device()->dpiMin(), 100);
    QCOMPARE(second.device()->dpiMin(), 100);
    QCOMPARE(first.device()->dpiMax(), 0);
}

void tst_Dpi::valueIsSignalledOnTheCallingThread()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    OtherThread other;
    other.run([&] { device.dpiValueChangedCallBack(1600); });
    COMPARE_LINES(fixture.take(), {u"call dpiValueChangedCallBack(1600) on thread 2"_s,
                                   debugLine(u"Updating dpiValue :  1600 on thread 2"_s),
                                   u"signal dpiValueChanged(1600) on thread 2"_s});
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {});
}

void tst_Dpi::rangeIsSignalledOnTheDevicesThread()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    OtherThread other;
    other.run([&] {
        Q_EMIT fixture.receiver.dpiMaxChanged(4000);
        Q_EMIT fixture.receiver.dpiMaxChanged(5000);
    });
    QCOMPARE(device.device()->dpiMax(), 0);
    deliverQueuedCalls();
    // Each arrives with its own value.
    COMPARE_LINES(fixture.take(), change(u"dpiMax"_s, 4000) + change(u"dpiMax"_s, 5000));
}

void tst_Dpi::fixedAnswersStayWhatIsReported()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.dpiValueChangedCallBack(1600);
    Q_EMIT fixture.receiver.dpiMinChanged(100);
    QCOMPARE(device.device()->dpiDelta(), 50);
    QCOMPARE(device.device()->isDPIValueSupported(), true);
    QCOMPARE(device.device()->isDPIValueChangePending(), false);
}

void tst_Dpi::setDpiValueIsIgnored()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.device()->setDpiValue(1600);
    COMPARE_LINES(fixture.take(), {});
    QCOMPARE(device.device()->dpiValue(), 0);
    QCOMPARE(device.device()->isDPIValueChangePending(), false);
}

void tst_Dpi::valuesStayAfterStop()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.dpiValueChangedCallBack(1600);
    Q_EMIT fixture.receiver.dpiMinChanged(100);
    device.ppidChangedCallBack(u"PP"_s);
    device.stop();
    QCOMPARE(device.device()->dpiValue(), 1600);
    QCOMPARE(device.device()->dpiMin(), 100);
    QCOMPARE(device.gen3()->ppid(), u"PP"_s);
}

void tst_Dpi::reportsNeedNoStart()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    device.dpiValueChangedCallBack(1600);
    device.ppidChangedCallBack(u"PP"_s);
    COMPARE_LINES(fixture.take(),
                  QStringList{u"call dpiValueChangedCallBack(1600)"_s} + change(u"dpiValue"_s, 1600) +
                      QStringList{u"call ppidChangedCallBack(\"PP\")"_s} +
                      ppidLines({debugLine(u"Updating ppid :  \"PP\""_s), u"signal ppidChanged(\"PP\")"_s}));
}

void tst_Dpi::ppidIsStoredAndSignalled()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.ppidChangedCallBack(u"A-1"_s);
    COMPARE_LINES(fixture.take(), QStringList{u"call ppidChangedCallBack(\"A-1\")"_s} +
                                      ppidLines({debugLine(u"Updating ppid :  \"A-1\""_s),
                                                 u"signal ppidChanged(\"A-1\")"_s}));
    QCOMPARE(device.gen3()->ppid(), u"A-1"_s);
}

void tst_Dpi::ppidIsStoredBeforeItsSignal()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    QString seen;
    fixture.timeline.setObserver([&](const TimelineEntry &entry) {
        if (entry.kind == TimelineEntry::Kind::Signal)
            seen = device.gen3()->ppid();
    });
    device.ppidChangedCallBack(u"A-1"_s);
    fixture.timeline.setObserver({});
    QCOMPARE(seen, u"A-1"_s);
}

void tst_Dpi::samePpidAgainIsSilent()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.ppidChangedCallBack(u"A-1"_s);
    fixture.take();
    device.ppidChangedCallBack(u"A-1"_s);
    COMPARE_LINES(fixture.take(), QStringList{u"call ppidChangedCallBack(\"A-1\")"_s} + ppidLines({}));
}

void tst_Dpi::ppidDiffersByLetterCase()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.ppidChangedCallBack(u"abc"_s);
    fixture.take();
    device.ppidChangedCallBack(u"abC"_s);
    COMPARE_LINES(fixture.take(), QStringList{u"call ppidChangedCallBack(\"abC\")"_s} +
                                      ppidLines({debugLine(u"Updating ppid :  \"abC\""_s),
                                                 u"signal ppidChanged(\"abC\")"_s}));
    QCOMPARE(device.gen3()->ppid(), u"abC"_s);
}

void tst_Dpi::emptyPpid()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.ppidChangedCallBack(QString());
    device.ppidChangedCallBack(u""_s);
    const QStringList silent = QStringList{u"call ppidChangedCallBack(\"\")"_s} + ppidLines({});
    COMPARE_LINES(fixture.take(), silent + silent);
    device.ppidChangedCallBack(u"A"_s);
    fixture.take();
    device.ppidChangedCallBack(QString());
    COMPARE_LINES(fixture.take(),
                  QStringList{u"call ppidChangedCallBack(\"\")"_s} +
                      ppidLines({debugLine(u"Updating ppid :  \"\""_s), u"signal ppidChanged(\"\")"_s}));
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
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    device.ppidChangedCallBack(ppid);
    QCOMPARE(device.gen3()->ppid(), ppid);
    COMPARE_LINES(fixture.take(), {u"call ppidChangedCallBack(\"%1\")"_s.arg(ppid),
                                   u"signal ppidChanged(\"%1\")"_s.arg(ppid)});
}

void tst_Dpi::ppidIsSignalledOnTheCallingThread()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    OtherThread other;
    other.run([&] { device.ppidChangedCallBack(u"A"_s); });
    COMPARE_LINES(fixture.take(), {u"call ppidChangedCallBack(\"A\") on thread 2"_s,
                                   u"signal ppidChanged(\"A\") on thread 2"_s});
}

void tst_Dpi::ppidByNameFromAnotherThread()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    OtherThread other;
    other.run([&] { QMetaObject::invokeMethod(device.object(), "onPPIDChanged", Q_ARG(QString, u"B"_s)); });
    QCOMPARE(device.gen3()->ppid(), QString());
    deliverQueuedCalls();
    QCOMPARE(device.gen3()->ppid(), u"B"_s);
    COMPARE_LINES(fixture.take(), {u"signal ppidChanged(\"B\")"_s});
}

void tst_Dpi::minimumIsConnectedBeforeTheMaximum()
{
    PluginFixture fixture({false, false, false});
    WatchingReceiver receiver(fixture.timeline);
    HostedDevice &device = fixture.create(&receiver, PluginFixture::mouse);
    device.start();
    QCOMPARE(receiver.connected, QByteArrayList({"dpiMinChanged(int)", "dpiMaxChanged(int)"}));
    fixture.destroy(device);
}

QTEST_GUILESS_MAIN(tst_Dpi)
#include "tst_Dpi.moc"
