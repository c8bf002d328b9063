#include "OtherThread.h"
#include "PluginFixture.h"
#include "TimelineText.h"

#include <QtCore/QMetaMethod>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

/// A receiver that writes down which of its signals are connected, and the records as it gets them to fill.
class WatchingReceiver : public FakeReceiver
{
public:
    using FakeReceiver::FakeReceiver;

    QByteArrayList connected;
    QByteArrayList records;

    bool getReportRateInfo(DeviceId id, ReportRateInfo *info) override
    {
        records += QByteArray(reinterpret_cast<const char *>(info), sizeof *info);
        return FakeReceiver::getReportRateInfo(id, info);
    }

protected:
    void connectNotify(const QMetaMethod &signal) override { connected += signal.methodSignature(); }
};

// Leaves bytes on the stack, which a record there then has unless it is cleared.
Q_NEVER_INLINE void dirtyTheStack()
{
    volatile char noise[4096];
    for (volatile char &byte : noise)
        byte = 0x55;
}

/// A started device that knows its range.
HostedDevice &ranged(PluginFixture &fixture)
{
    HostedDevice &device = fixture.started();
    Q_EMIT fixture.receiver.dpiMinChanged(100);
    Q_EMIT fixture.receiver.dpiMaxChanged(8000);
    fixture.take();
    return device;
}

QString sentLine(const QString &values)
{
    return u"receiver setDpiSlotValues([%1], 15, 2) -> true"_s.arg(values);
}

QString pendingLine()
{
    return u"signal isDpiSlotValuesChangePendingChanged(true)"_s;
}

}  // namespace

// What the scenarios of contract/ cannot say of these features: texts that no line has, another thread inside
// a request, and what a receiver alone sees.
class tst_DpiAndReportRate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void nullPpidIsTheEmptyText();
    void longPpid();
    void ppidByNameFromAnotherThread();
    void minimumIsConnectedBeforeTheMaximum();
    void thousandsOfSlotValues();
    void slotTextBetweenTabAndLineFeed();
    void slotTextsThatEndBeforeMoreDigits();
    void slotValuesFromAnotherThreadInsideTheirRequest();
    void everyStartHasAnEmptyReportRateRecord();
};

void tst_DpiAndReportRate::nullPpidIsTheEmptyText()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    device.ppidChangedCallBack(QString());
    device.ppidChangedCallBack(u"A"_s);
    device.ppidChangedCallBack(QString());
    device.ppidChangedCallBack(u""_s);
    COMPARE_LINES(fixture.take(), {u"call ppidChangedCallBack(\"\")"_s, u"call ppidChangedCallBack(\"A\")"_s,
                                   u"signal ppidChanged(\"A\")"_s, u"call ppidChangedCallBack(\"\")"_s,
                                   u"signal ppidChanged(\"\")"_s, u"call ppidChangedCallBack(\"\")"_s});
}

void tst_DpiAndReportRate::longPpid()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    const QString ppid(100000, u'x');
    device.ppidChangedCallBack(ppid);
    QCOMPARE(device.gen3()->ppid(), ppid);
    COMPARE_LINES(fixture.take().mid(1), {u"signal ppidChanged(\"%1\")"_s.arg(ppid)});
}

void tst_DpiAndReportRate::ppidByNameFromAnotherThread()
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

void tst_DpiAndReportRate::minimumIsConnectedBeforeTheMaximum()
{
    PluginFixture fixture({false, false, false});
    WatchingReceiver receiver(fixture.timeline);
    HostedDevice &device = fixture.create(&receiver, PluginFixture::mouse);
    device.start();
    QCOMPARE(receiver.connected, QByteArrayList({"dpiMinChanged(int)", "dpiMaxChanged(int)"}));
    fixture.destroy(device);
}

void tst_DpiAndReportRate::thousandsOfSlotValues()
{
    PluginFixture fixture({false, true, false});
    HostedDevice &device = ranged(fixture);
    device.setDpiSlotValues(QStringList(5000, u"800"_s));
    COMPARE_LINES(fixture.take().mid(1),
                  {warningLine(u"Invalid SET command, dpiSlotValues parameter must have size 5"_s)});
}

void tst_DpiAndReportRate::slotTextBetweenTabAndLineFeed()
{
    PluginFixture fixture({false, true, false});
    HostedDevice &device = ranged(fixture);
    device.setDpiSlotValues({u"\t800\n"_s, u"1600"_s, u"2400"_s, u"3200"_s, u"4000"_s});
    COMPARE_LINES(fixture.take().mid(1), {sentLine(u"800, 1600, 2400, 3200, 4000"_s), pendingLine()});
}

void tst_DpiAndReportRate::slotTextsThatEndBeforeMoreDigits()
{
    // Texts that share one buffer have no zero behind them.
    PluginFixture fixture({false, true, false});
    HostedDevice &device = ranged(fixture);
    const QString buffer = u"800160024003200400099"_s;
    QStringList texts;
    qsizetype start = 0;
    for (const qsizetype length : {3, 4, 4, 4, 4}) {
        texts += QString::fromRawData(buffer.constData() + start, length);
        start += length;
    }
    device.setDpiSlotValues(texts);
    COMPARE_LINES(fixture.take().mid(1), {sentLine(u"800, 1600, 2400, 3200, 4000"_s), pendingLine()});
}

void tst_DpiAndReportRate::slotValuesFromAnotherThreadInsideTheirRequest()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = ranged(fixture);
    OtherThread other;
    fixture.receiver.duringRequest = [&](const QString &) {
        constexpr quint16 reported[5] = {1, 2, 3, 4, 5};
        other.run([&] { device.dpiSlotValuesChangedCallBack(reported); });
    };
    device.setDpiSlotValues({u"200"_s, u"300"_s, u"400"_s, u"500"_s, u"600"_s});
    COMPARE_LINES(fixture.take().mid(1),
                  {sentLine(u"200, 300, 400, 500, 600"_s),
                   u"call dpiSlotValuesChangedCallBack([1, 2, 3, 4, 5]) on thread 2"_s, pendingLine()});
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {u"signal dpiSlotValuesChanged([\"1\", \"2\", \"3\", \"4\", \"5\"])"_s});
    QVERIFY(device.device()->isDpiSlotValuesChangePending());
}

void tst_DpiAndReportRate::everyStartHasAnEmptyReportRateRecord()
{
    PluginFixture fixture({false, false, false});
    WatchingReceiver receiver(fixture.timeline);
    HostedDevice &device = fixture.create(&receiver, PluginFixture::mouse);
    for (int start = 0; start < 2; ++start) {
        dirtyTheStack();
        device.device()->start();
    }
    const QByteArray empty(sizeof(ReportRateInfo), '\0');
    QCOMPARE(receiver.records, QByteArrayList({empty, empty}));
    fixture.destroy(device);
}

QTEST_GUILESS_MAIN(tst_DpiAndReportRate)
#include "tst_DpiAndReportRate.moc"
