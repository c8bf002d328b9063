#include "OtherThread.h"
#include "PluginFixture.h"
#include "TimelineText.h"

#include <QtTest/QTest>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

QString settingLine(int id)
{
    return debugLine(u"Setting new dpi button id :  %1"_s.arg(id));
}

QString resetLine()
{
    return debugLine(u"Resetting dpi button id to default value"_s);
}

// A change of the button leaves the active slot to the mouse: its index is 0.
QString sentLine(int id, bool isAccepted = true)
{
    return u"receiver setDpiButtonAndActiveSlot(%1, 0) -> %2"_s.arg(id).arg(isAccepted ? u"true"_s
                                                                                       : u"false"_s);
}

QString refusedLine()
{
    return warningLine(u"Dongle set dpi button id failed"_s);
}

QString pendingSignal(bool isPending)
{
    return u"signal isDpiButtonIdChangePendingChanged(%1)"_s.arg(isPending ? u"true"_s : u"false"_s);
}

// There is no exit line.
QStringList confirmation(int id, const QStringList &inner)
{
    return QStringList{u"call dpiButtonIdConfirmed(%1)"_s.arg(id),
                       debugLine(u"dpiButtonIdConfirmed buttonId : %1"_s.arg(id))} +
           inner;
}

QStringList changeLines(const QStringList &inner)
{
    return QStringList{debugLine(u"onDpiButtonIdChanged enter"_s)} + inner +
           QStringList{debugLine(u"onDpiButtonIdChanged exit"_s)};
}

QStringList idChange(int id)
{
    return {debugLine(u"Updating dpiButtonId =  %1"_s.arg(id)), u"signal dpiButtonIdChanged(%1)"_s.arg(id)};
}

/// A started device on button 15, with a request for button 6 pending.
HostedDevice &pendingSix(PluginFixture &fixture)
{
    HostedDevice &device = fixture.started();
    device.setDpiButtonId(6);
    fixture.take();
    return device;
}

}  // namespace

class tst_DpiButton : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void requestForTheCurrentIdDoesNothing();
    void requestIsPendingUntilConfirmed();
    void zeroAsksForTheDefault();
    void zeroWhenTheDefaultIsCurrent();
    void requestPassesAnyId_data();
    void requestPassesAnyId();
    void requestWithoutReceiver();
    void refusedFromIdle();
    void refusedWhilePending();
    void secondRequestReplacesTheFirst();
    void requestForTheCurrentIdLeavesARequestPending();
    void confirmationBelowOneIsIgnored_data();
    void confirmationBelowOneIsIgnored();
    void confirmationWithNothingPending();
    void confirmationOfTheCurrentIdLeavesTheRequest();
    void confirmationOfAThirdIdSendsAgain();
    void lowestIdIsSentAgainToo();
    void confirmationEndsTheRequestForGood();
    void requestIsKnownWhenItsFlagIsSignalled();
    void requestIsOverWhenItsFlagIsSignalled();
    void confirmationRepeatsWithoutLimit();
    void refusedRepeatEndsTheRequest();
    void negativePendingIdBlocksConfirmations();
    void repeatDoesNothingWhenAReportMadeTheValueCurrent();
    void reportUnasked();
    void reportOfTheSameId();
    void reportWhilePendingLeavesTheRequest();
    void reportTakesAnyId();
    void otherThreadChangesAtOnceAndSignalsLater();
    void otherThreadSignalsCarryTheValueAtDelivery();
    void requestSurvivesStop();
    void idIsPendingUntilTheWarningIsWritten();
};

void tst_DpiButton::requestForTheCurrentIdDoesNothing()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setDpiButtonId(15);
    COMPARE_LINES(fixture.take(), {u"call setDpiButtonId(15)"_s});
}

void tst_DpiButton::requestIsPendingUntilConfirmed()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setDpiButtonId(6);
    COMPARE_LINES(fixture.take(),
                  {u"call setDpiButtonId(6)"_s, settingLine(6), sentLine(6), pendingSignal(true)});
    QVERIFY(device.device()->isDpiButtonIdChangePending());
    QCOMPARE(device.device()->dpiButtonId(), 15);

    device.dpiButtonIdConfirmed(6);
    COMPARE_LINES(fixture.take(),
                  confirmation(6, QStringList{pendingSignal(false)} + changeLines(idChange(6))));
    QVERIFY(!device.device()->isDpiButtonIdChangePending());
    QCOMPARE(device.device()->dpiButtonId(), 6);
}

void tst_DpiButton::zeroAsksForTheDefault()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setDpiButtonId(0);
    COMPARE_LINES(fixture.take(), {u"call setDpiButtonId(0)"_s, resetLine(), settingLine(6), sentLine(6),
                                   pendingSignal(true)});
    device.dpiButtonIdConfirmed(6);
    QCOMPARE(device.device()->dpiButtonId(), 6);
}

void tst_DpiButton::zeroWhenTheDefaultIsCurrent()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.dpiButtonIdChangedCallBack(6);
    fixture.take();
    device.setDpiButtonId(0);
    COMPARE_LINES(fixture.take(), {u"call setDpiButtonId(0)"_s, resetLine()});
    QVERIFY(!device.device()->isDpiButtonIdChangePending());
}

void tst_DpiButton::requestPassesAnyId_data()
{
    QTest::addColumn<int>("id");
    QTest::newRow("one") << 1;
    QTest::newRow("negative") << -1;
    QTest::newRow("largest") << std::numeric_limits<int>::max();
    QTest::newRow("smallest") << std::numeric_limits<int>::min();
}

void tst_DpiButton::requestPassesAnyId()
{
    QFETCH(const int, id);
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setDpiButtonId(id);
    COMPARE_LINES(fixture.take(),
                  {u"call setDpiButtonId(%1)"_s.arg(id), settingLine(id), sentLine(id), pendingSignal(true)});
}

void tst_DpiButton::requestWithoutReceiver()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    device.setDpiButtonId(0);
    COMPARE_LINES(fixture.take(), {u"call setDpiButtonId(0)"_s, resetLine(), settingLine(6),
                                   warningLine(u"Unknown IPhysicalDevice interface"_s)});
    QVERIFY(!device.device()->isDpiButtonIdChangePending());
}

void tst_DpiButton::refusedFromIdle()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    fixture.receiver.answers.acceptsRequests = false;
    device.setDpiButtonId(6);
    COMPARE_LINES(fixture.take(),
                  {u"call setDpiButtonId(6)"_s, settingLine(6), sentLine(6, false), refusedLine()});
    device.dpiButtonIdConfirmed(4);
    QCOMPARE(device.device()->dpiButtonId(), 4);
}

void tst_DpiButton::refusedWhilePending()
{
    PluginFixture fixture;
    HostedDevice &device = pendingSix(fixture);
    fixture.receiver.answers.acceptsRequests = false;
    device.setDpiButtonId(7);
    COMPARE_LINES(fixture.take(), {u"call setDpiButtonId(7)"_s, settingLine(7), sentLine(7, false),
                                   refusedLine(), pendingSignal(false)});
    device.dpiButtonIdConfirmed(8);
    COMPARE_LINES(fixture.take(), confirmation(8, changeLines(idChange(8))));
}

void tst_DpiButton::secondRequestReplacesTheFirst()
{
    PluginFixture fixture;
    HostedDevice &device = pendingSix(fixture);
    device.setDpiButtonId(7);
    COMPARE_LINES(fixture.take(), {u"call setDpiButtonId(7)"_s, settingLine(7), sentLine(7)});
    device.dpiButtonIdConfirmed(6);
    COMPARE_LINES(fixture.take(), confirmation(6, {settingLine(7), sentLine(7)}));
    device.dpiButtonIdConfirmed(7);
    QCOMPARE(device.device()->dpiButtonId(), 7);
}

void tst_DpiButton::requestForTheCurrentIdLeavesARequestPending()
{
    PluginFixture fixture;
    HostedDevice &device = pendingSix(fixture);
    device.setDpiButtonId(15);
    COMPARE_LINES(fixture.take(), {u"call setDpiButtonId(15)"_s});
    QVERIFY(device.device()->isDpiButtonIdChangePending());
}

void tst_DpiButton::confirmationBelowOneIsIgnored_data()
{
    QTest::addColumn<int>("id");
    QTest::newRow("zero") << 0;
    QTest::newRow("negative") << -1;
    QTest::newRow("smallest") << std::numeric_limits<int>::min();
}

void tst_DpiButton::confirmationBelowOneIsIgnored()
{
    QFETCH(const int, id);
    PluginFixture fixture;
    HostedDevice &device = pendingSix(fixture);
    device.dpiButtonIdConfirmed(id);
    COMPARE_LINES(fixture.take(), confirmation(id, {debugLine(u"Ignoring buttonId :  %1"_s.arg(id))}));
    QVERIFY(device.device()->isDpiButtonIdChangePending());

    HostedDevice &idle = fixture.started(2);
    idle.dpiButtonIdConfirmed(id);
    COMPARE_LINES(fixture.take(), confirmation(id, {debugLine(u"Ignoring buttonId :  %1"_s.arg(id))}));
    QCOMPARE(idle.device()->dpiButtonId(), 15);
}

void tst_DpiButton::confirmationWithNothingPending()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.dpiButtonIdConfirmed(1);
    COMPARE_LINES(fixture.take(), confirmation(1, changeLines(idChange(1))));
    device.dpiButtonIdConfirmed(1);
    COMPARE_LINES(fixture.take(), confirmation(1, changeLines({})));
}

void tst_DpiButton::confirmationOfTheCurrentIdLeavesTheRequest()
{
    PluginFixture fixture;
    HostedDevice &device = pendingSix(fixture);
    device.dpiButtonIdConfirmed(15);
    COMPARE_LINES(fixture.take(), confirmation(15, {}));
    QVERIFY(device.device()->isDpiButtonIdChangePending());
}

void tst_DpiButton::confirmationOfAThirdIdSendsAgain()
{
    PluginFixture fixture;
    HostedDevice &device = pendingSix(fixture);
    device.dpiButtonIdConfirmed(4);
    COMPARE_LINES(fixture.take(), confirmation(4, {settingLine(6), sentLine(6)}));
    QCOMPARE(device.device()->dpiButtonId(), 15);
    QVERIFY(device.device()->isDpiButtonIdChangePending());
}

void tst_DpiButton::lowestIdIsSentAgainToo()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setDpiButtonId(1);
    fixture.take();
    device.dpiButtonIdConfirmed(4);
    COMPARE_LINES(fixture.take(), confirmation(4, {settingLine(1), sentLine(1)}));
}

void tst_DpiButton::confirmationEndsTheRequestForGood()
{
    PluginFixture fixture;
    HostedDevice &device = pendingSix(fixture);
    device.dpiButtonIdConfirmed(6);
    fixture.take();
    device.dpiButtonIdConfirmed(4);
    COMPARE_LINES(fixture.take(), confirmation(4, changeLines(idChange(4))));
}

void tst_DpiButton::requestIsKnownWhenItsFlagIsSignalled()
{
    // A slot of the flag's signal that has the mouse's answer already ends the request with it.
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    fixture.timeline.setObserver([&](const TimelineEntry &entry) {
        if (entry.name == u"isDpiButtonIdChangePendingChanged" &&
            device.device()->isDpiButtonIdChangePending())
            device.device()->dpiButtonIdConfirmed(6);
    });
    device.setDpiButtonId(6);
    fixture.timeline.setObserver({});
    COMPARE_LINES(fixture.take(), {u"call setDpiButtonId(6)"_s, sentLine(6), pendingSignal(true),
                                   pendingSignal(false), u"signal dpiButtonIdChanged(6)"_s});
    QVERIFY(!device.device()->isDpiButtonIdChangePending());
}

void tst_DpiButton::requestIsOverWhenItsFlagIsSignalled()
{
    // A slot of the flag's signal already meets a device that waits for nothing: what it reports is stored.
    PluginFixture fixture({false, false, false});
    HostedDevice &device = pendingSix(fixture);
    fixture.timeline.setObserver([&](const TimelineEntry &entry) {
        if (entry.name == u"isDpiButtonIdChangePendingChanged")
            device.device()->dpiButtonIdConfirmed(4);
    });
    device.dpiButtonIdConfirmed(6);
    fixture.timeline.setObserver({});
    COMPARE_LINES(fixture.take(), {u"call dpiButtonIdConfirmed(6)"_s, pendingSignal(false),
                                   u"signal dpiButtonIdChanged(4)"_s, u"signal dpiButtonIdChanged(6)"_s});
}

void tst_DpiButton::confirmationRepeatsWithoutLimit()
{
    PluginFixture fixture;
    HostedDevice &device = pendingSix(fixture);
    for (int i = 0; i < 1000; ++i) {
        device.dpiButtonIdConfirmed(4);
        COMPARE_LINES(fixture.take(), confirmation(4, {settingLine(6), sentLine(6)}));
    }
}

void tst_DpiButton::refusedRepeatEndsTheRequest()
{
    PluginFixture fixture;
    HostedDevice &device = pendingSix(fixture);
    fixture.receiver.answers.acceptsRequests = false;
    device.dpiButtonIdConfirmed(4);
    COMPARE_LINES(fixture.take(),
                  confirmation(4, {settingLine(6), sentLine(6, false), refusedLine(), pendingSignal(false)}));
    QCOMPARE(device.device()->dpiButtonId(), 15);
}

void tst_DpiButton::negativePendingIdBlocksConfirmations()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setDpiButtonId(-3);
    fixture.take();
    device.dpiButtonIdConfirmed(4);
    COMPARE_LINES(fixture.take(), confirmation(4, {}));
    QCOMPARE(device.device()->dpiButtonId(), 15);
    QVERIFY(device.device()->isDpiButtonIdChangePending());
}

void tst_DpiButton::repeatDoesNothingWhenAReportMadeTheValueCurrent()
{
    PluginFixture fixture;
    HostedDevice &device = pendingSix(fixture);
    device.dpiButtonIdChangedCallBack(6);
    fixture.take();
    device.dpiButtonIdConfirmed(4);
    COMPARE_LINES(fixture.take(), confirmation(4, {}));
    QVERIFY(device.device()->isDpiButtonIdChangePending());
    device.dpiButtonIdConfirmed(6);
    COMPARE_LINES(fixture.take(), confirmation(6, QStringList{pendingSignal(false)} + changeLines({})));
}

void tst_DpiButton::reportUnasked()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    device.dpiButtonIdChangedCallBack(4);
    COMPARE_LINES(fixture.take(),
                  QStringList{u"call dpiButtonIdChangedCallBack(4)"_s} + changeLines(idChange(4)));
    QCOMPARE(device.device()->dpiButtonId(), 4);
}

void tst_DpiButton::reportOfTheSameId()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.dpiButtonIdChangedCallBack(15);
    COMPARE_LINES(fixture.take(), QStringList{u"call dpiButtonIdChangedCallBack(15)"_s} + changeLines({}));
}

void tst_DpiButton::reportWhilePendingLeavesTheRequest()
{
    PluginFixture fixture;
    HostedDevice &device = pendingSix(fixture);
    device.dpiButtonIdChangedCallBack(4);
    QVERIFY(device.device()->isDpiButtonIdChangePending());
    QCOMPARE(device.device()->dpiButtonId(), 4);
    fixture.take();
    device.dpiButtonIdConfirmed(6);
    COMPARE_LINES(fixture.take(),
                  confirmation(6, QStringList{pendingSignal(false)} + changeLines(idChange(6))));
}

void tst_DpiButton::reportTakesAnyId()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    for (const int id : {0, -5, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        device.dpiButtonIdChangedCallBack(id);
        COMPARE_LINES(fixture.take(), QStringList{u"call dpiButtonIdChangedCallBack(%1)"_s.arg(id)} +
                                          changeLines(idChange(id)));
        QCOMPARE(device.device()->dpiButtonId(), id);
    }
}

void tst_DpiButton::otherThreadChangesAtOnceAndSignalsLater()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    OtherThread other;
    other.run([&] { device.setDpiButtonId(6); });
    QVERIFY(device.device()->isDpiButtonIdChangePending());
    COMPARE_LINES(fixture.take(), {u"call setDpiButtonId(6) on thread 2"_s, sentLine(6) + u" on thread 2"_s});
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {pendingSignal(true)});
    other.run([&] { device.dpiButtonIdConfirmed(6); });
    QCOMPARE(device.device()->dpiButtonId(), 6);
    fixture.take();
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {pendingSignal(false), u"signal dpiButtonIdChanged(6)"_s});
}

void tst_DpiButton::otherThreadSignalsCarryTheValueAtDelivery()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    OtherThread other;
    other.run([&] {
        device.dpiButtonIdChangedCallBack(3);
        device.dpiButtonIdChangedCallBack(4);
    });
    fixture.take();
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {u"signal dpiButtonIdChanged(4)"_s, u"signal dpiButtonIdChanged(4)"_s});
}

void tst_DpiButton::requestSurvivesStop()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = pendingSix(fixture);
    device.stop();
    QVERIFY(device.device()->isDpiButtonIdChangePending());
    device.dpiButtonIdConfirmed(6);
    QCOMPARE(device.device()->dpiButtonId(), 6);
}

void tst_DpiButton::idIsPendingUntilTheWarningIsWritten()
{
    // From inside the warning the mouse confirms the request before, which is still waited for.
    PluginFixture fixture({false, true, false});
    HostedDevice &device = fixture.started();
    device.setDpiButtonId(6);
    fixture.take();
    fixture.receiver.answers.acceptsRequests = false;
    fixture.onceInside(refusedLine(), [&] { device.dpiButtonIdConfirmed(6); });
    device.setDpiButtonId(9);
    COMPARE_LINES(fixture.take(), {u"call setDpiButtonId(9)"_s, sentLine(9, false), refusedLine(),
                                   u"call dpiButtonIdConfirmed(6)"_s, pendingSignal(false),
                                   u"signal dpiButtonIdChanged(6)"_s});
}

QTEST_GUILESS_MAIN(tst_DpiButton)
#include "tst_DpiButton.moc"
