#include "OtherThread.h"
#include "PluginFixture.h"
#include "TimelineText.h"

#include <QtTest/QTest>

#include <limits>

using namespace Qt::StringLiterals;

namespace {

constexpr quint16 slotValues[5] = {800, 1600, 2400, 3200, 4000};

QString settingLine(int index)
{
    return debugLine(u"Setting active dpi slot index :  %1"_s.arg(index));
}

QString sentLine(int index, bool isAccepted = true, int button = 15)
{
    return u"receiver setDpiButtonAndActiveSlot(%1, %2) -> %3"_s.arg(button).arg(index).arg(
        isAccepted ? u"true"_s : u"false"_s);
}

QString pendingSignal(bool isPending)
{
    return u"signal isActiveDpiSlotIndexChangePendingChanged(%1)"_s.arg(isPending ? u"true"_s : u"false"_s);
}

// A confirmation with what it does between its enter and exit lines.
QStringList confirmation(int index, const QStringList &inner)
{
    return QStringList{u"call activeDpiSlotIndexConfirmed(%1)"_s.arg(index),
                       debugLine(u"activeDpiSlotIndexConfirmed enter, index : %1"_s.arg(index))} +
           inner + QStringList{debugLine(u"activeDpiSlotIndexConfirmed exit"_s)};
}

QStringList changeLines(const QStringList &inner)
{
    return QStringList{debugLine(u"onActiveDpiSlotIndexChanged enter"_s)} + inner +
           QStringList{debugLine(u"onActiveDpiSlotIndexChanged exit"_s)};
}

QStringList indexChange(int index)
{
    return {debugLine(u"Updating activeDpiSlotIndex =  %1"_s.arg(index)),
            u"signal activeDpiSlotIndexChanged(%1)"_s.arg(index)};
}

QStringList dpiChange(int dpi)
{
    return {debugLine(u"Updating dpiValue :  %1"_s.arg(dpi)), u"signal dpiValueChanged(%1)"_s.arg(dpi)};
}

/// A started device on slot 2, with a request for slot 3 pending.
HostedDevice &pendingThree(PluginFixture &fixture)
{
    HostedDevice &device = fixture.started();
    device.setActiveDpiSlotIndex(3);
    fixture.take();
    return device;
}

}  // namespace

class tst_ActiveDpiSlot : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void requestForTheCurrentIndexDoesNothing();
    void requestIsPendingUntilConfirmed();
    void requestCarriesTheDpiButton();
    void requestPassesAnyIndex_data();
    void requestPassesAnyIndex();
    void requestWithoutReceiver();
    void refusedFromIdle();
    void refusedWhilePending();
    void secondRequestReplacesTheFirst();
    void requestForTheCurrentIndexLeavesARequestPending();
    void confirmationSignalsTheFlagFirst();
    void confirmationBelowOneIsIgnored_data();
    void confirmationBelowOneIsIgnored();
    void confirmationWithNothingPending();
    void confirmationOfTheCurrentIndexLeavesTheRequest();
    void confirmationOfAThirdIndexSendsAgain();
    void lowestIndexIsSentAgainToo();
    void confirmationEndsTheRequestForGood();
    void requestIsKnownWhenItsFlagIsSignalled();
    void requestIsOverWhenItsFlagIsSignalled();
    void confirmationRepeatsWithoutLimit();
    void refusedRepeatEndsTheRequest();
    void acceptedZeroLeavesTheFlagWithNothingToWaitFor();
    void negativePendingIndexBlocksConfirmations();
    void repeatDoesNothingWhenAReportMadeTheValueCurrent();
    void reportUnasked();
    void reportOfTheSameIndex();
    void reportWhilePendingLeavesTheRequest();
    void reportTakesAnyIndex();
    void dpiFollowsTheSlot_data();
    void dpiFollowsTheSlot();
    void dpiThatIsTheSameIsNotSignalled();
    void dpiNeedsKnownSlotValues();
    void otherThreadSignalsTheDpiBeforeTheIndex();
    void otherThreadSignalsCarryTheValueAtDelivery();
    void requestSurvivesStop();
    void reportInsideTheIndexSignal_data();
    void reportInsideTheIndexSignal();
    void valuesReportedInsideTheIndexSignalCount();
    void indexIsPendingUntilTheWarningIsWritten();
};

void tst_ActiveDpiSlot::requestForTheCurrentIndexDoesNothing()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setActiveDpiSlotIndex(2);
    COMPARE_LINES(fixture.take(), {u"call setActiveDpiSlotIndex(2)"_s});
}

void tst_ActiveDpiSlot::requestIsPendingUntilConfirmed()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setActiveDpiSlotIndex(3);
    COMPARE_LINES(fixture.take(),
                  {u"call setActiveDpiSlotIndex(3)"_s, settingLine(3), sentLine(3), pendingSignal(true)});
    QVERIFY(device.device()->isActiveDpiSlotIndexChangePending());
    QCOMPARE(device.device()->activeDpiSlotIndex(), 2);

    device.activeDpiSlotIndexConfirmed(3);
    COMPARE_LINES(fixture.take(),
                  confirmation(3, QStringList{pendingSignal(false)} + changeLines(indexChange(3))));
    QVERIFY(!device.device()->isActiveDpiSlotIndexChangePending());
    QCOMPARE(device.device()->activeDpiSlotIndex(), 3);
}

void tst_ActiveDpiSlot::requestCarriesTheDpiButton()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    device.dpiButtonIdChangedCallBack(9);
    fixture.take();
    device.setActiveDpiSlotIndex(5);
    COMPARE_LINES(fixture.take(),
                  {u"call setActiveDpiSlotIndex(5)"_s, sentLine(5, true, 9), pendingSignal(true)});
}

void tst_ActiveDpiSlot::requestPassesAnyIndex_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("zero") << 0;
    QTest::newRow("six") << 6;
    QTest::newRow("negative") << -1;
    QTest::newRow("largest") << std::numeric_limits<int>::max();
    QTest::newRow("smallest") << std::numeric_limits<int>::min();
}

void tst_ActiveDpiSlot::requestPassesAnyIndex()
{
    QFETCH(const int, index);
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setActiveDpiSlotIndex(index);
    COMPARE_LINES(fixture.take(), {u"call setActiveDpiSlotIndex(%1)"_s.arg(index), settingLine(index),
                                   sentLine(index), pendingSignal(true)});
}

void tst_ActiveDpiSlot::requestWithoutReceiver()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    device.setActiveDpiSlotIndex(3);
    COMPARE_LINES(fixture.take(), {u"call setActiveDpiSlotIndex(3)"_s, settingLine(3),
                                   warningLine(u"Unknown IPhysicalDevice interface"_s)});
    QVERIFY(!device.device()->isActiveDpiSlotIndexChangePending());
    device.setActiveDpiSlotIndex(2);
    COMPARE_LINES(fixture.take(), {u"call setActiveDpiSlotIndex(2)"_s});
}

void tst_ActiveDpiSlot::refusedFromIdle()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    fixture.receiver.answers.acceptsRequests = false;
    device.setActiveDpiSlotIndex(3);
    COMPARE_LINES(fixture.take(), {u"call setActiveDpiSlotIndex(3)"_s, settingLine(3), sentLine(3, false),
                                   warningLine(u"Dongle set active DPI slot index failed"_s)});
    // Nothing is waited for: any confirmation is the mouse's state.
    device.activeDpiSlotIndexConfirmed(4);
    QCOMPARE(device.device()->activeDpiSlotIndex(), 4);
}

void tst_ActiveDpiSlot::refusedWhilePending()
{
    PluginFixture fixture;
    HostedDevice &device = pendingThree(fixture);
    fixture.receiver.answers.acceptsRequests = false;
    device.setActiveDpiSlotIndex(4);
    COMPARE_LINES(fixture.take(),
                  {u"call setActiveDpiSlotIndex(4)"_s, settingLine(4), sentLine(4, false),
                   warningLine(u"Dongle set active DPI slot index failed"_s), pendingSignal(false)});
    device.activeDpiSlotIndexConfirmed(5);
    COMPARE_LINES(fixture.take(), confirmation(5, changeLines(indexChange(5))));
}

void tst_ActiveDpiSlot::secondRequestReplacesTheFirst()
{
    PluginFixture fixture;
    HostedDevice &device = pendingThree(fixture);
    device.setActiveDpiSlotIndex(4);
    COMPARE_LINES(fixture.take(), {u"call setActiveDpiSlotIndex(4)"_s, settingLine(4), sentLine(4)});
    device.activeDpiSlotIndexConfirmed(3);
    COMPARE_LINES(fixture.take(), confirmation(3, {settingLine(4), sentLine(4)}));
    device.activeDpiSlotIndexConfirmed(4);
    QCOMPARE(device.device()->activeDpiSlotIndex(), 4);
}

void tst_ActiveDpiSlot::requestForTheCurrentIndexLeavesARequestPending()
{
    PluginFixture fixture;
    HostedDevice &device = pendingThree(fixture);
    device.setActiveDpiSlotIndex(2);
    COMPARE_LINES(fixture.take(), {u"call setActiveDpiSlotIndex(2)"_s});
    QVERIFY(device.device()->isActiveDpiSlotIndexChangePending());
}

void tst_ActiveDpiSlot::confirmationSignalsTheFlagFirst()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.dpiSlotValuesChangedCallBack(slotValues);
    device.setActiveDpiSlotIndex(3);
    fixture.take();
    device.activeDpiSlotIndexConfirmed(3);
    COMPARE_LINES(fixture.take(), confirmation(3, QStringList{pendingSignal(false)} +
                                                      changeLines(indexChange(3) + dpiChange(2400))));
}

void tst_ActiveDpiSlot::confirmationBelowOneIsIgnored_data()
{
    QTest::addColumn<int>("index");
    QTest::newRow("zero") << 0;
    QTest::newRow("negative") << -1;
    QTest::newRow("smallest") << std::numeric_limits<int>::min();
}

void tst_ActiveDpiSlot::confirmationBelowOneIsIgnored()
{
    QFETCH(const int, index);
    PluginFixture fixture;
    HostedDevice &idle = fixture.started(1);
    idle.activeDpiSlotIndexConfirmed(index);
    COMPARE_LINES(fixture.take(),
                  confirmation(index, {debugLine(u"Ignoring activeDpiSlotIndex :  %1"_s.arg(index))}));
    QCOMPARE(idle.device()->activeDpiSlotIndex(), 2);

    HostedDevice &pending = pendingThree(fixture);
    pending.activeDpiSlotIndexConfirmed(index);
    COMPARE_LINES(fixture.take(),
                  confirmation(index, {debugLine(u"Ignoring activeDpiSlotIndex :  %1"_s.arg(index))}));
    QVERIFY(pending.device()->isActiveDpiSlotIndexChangePending());
}

void tst_ActiveDpiSlot::confirmationWithNothingPending()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.activeDpiSlotIndexConfirmed(1);
    COMPARE_LINES(fixture.take(), confirmation(1, changeLines(indexChange(1))));
    device.activeDpiSlotIndexConfirmed(1);
    COMPARE_LINES(fixture.take(), confirmation(1, changeLines({})));
    device.activeDpiSlotIndexConfirmed(99);
    QCOMPARE(device.device()->activeDpiSlotIndex(), 99);
}

void tst_ActiveDpiSlot::confirmationOfTheCurrentIndexLeavesTheRequest()
{
    PluginFixture fixture;
    HostedDevice &device = pendingThree(fixture);
    device.activeDpiSlotIndexConfirmed(2);
    COMPARE_LINES(fixture.take(), confirmation(2, {}));
    QVERIFY(device.device()->isActiveDpiSlotIndexChangePending());
}

void tst_ActiveDpiSlot::confirmationOfAThirdIndexSendsAgain()
{
    PluginFixture fixture;
    HostedDevice &device = pendingThree(fixture);
    device.activeDpiSlotIndexConfirmed(4);
    COMPARE_LINES(fixture.take(), confirmation(4, {settingLine(3), sentLine(3)}));
    QCOMPARE(device.device()->activeDpiSlotIndex(), 2);
    QVERIFY(device.device()->isActiveDpiSlotIndexChangePending());
}

void tst_ActiveDpiSlot::lowestIndexIsSentAgainToo()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setActiveDpiSlotIndex(1);
    fixture.take();
    device.activeDpiSlotIndexConfirmed(4);
    COMPARE_LINES(fixture.take(), confirmation(4, {settingLine(1), sentLine(1)}));
}

void tst_ActiveDpiSlot::confirmationEndsTheRequestForGood()
{
    PluginFixture fixture;
    HostedDevice &device = pendingThree(fixture);
    device.activeDpiSlotIndexConfirmed(3);
    fixture.take();
    // Nothing is waited for any more: another index is the mouse's own.
    device.activeDpiSlotIndexConfirmed(4);
    COMPARE_LINES(fixture.take(), confirmation(4, changeLines(indexChange(4))));
}

void tst_ActiveDpiSlot::requestIsKnownWhenItsFlagIsSignalled()
{
    // A slot of the flag's signal that has the mouse's answer already ends the request with it.
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    fixture.timeline.setObserver([&](const TimelineEntry &entry) {
        if (entry.name == u"isActiveDpiSlotIndexChangePendingChanged" &&
            device.device()->isActiveDpiSlotIndexChangePending())
            device.device()->activeDpiSlotIndexConfirmed(3);
    });
    device.setActiveDpiSlotIndex(3);
    fixture.timeline.setObserver({});
    COMPARE_LINES(fixture.take(), {u"call setActiveDpiSlotIndex(3)"_s, sentLine(3), pendingSignal(true),
                                   pendingSignal(false), u"signal activeDpiSlotIndexChanged(3)"_s});
    QVERIFY(!device.device()->isActiveDpiSlotIndexChangePending());
}

void tst_ActiveDpiSlot::requestIsOverWhenItsFlagIsSignalled()
{
    // A slot of the flag's signal already meets a device that waits for nothing: what it reports is stored.
    PluginFixture fixture({false, false, false});
    HostedDevice &device = pendingThree(fixture);
    fixture.timeline.setObserver([&](const TimelineEntry &entry) {
        if (entry.name == u"isActiveDpiSlotIndexChangePendingChanged")
            device.device()->activeDpiSlotIndexConfirmed(4);
    });
    device.activeDpiSlotIndexConfirmed(3);
    fixture.timeline.setObserver({});
    COMPARE_LINES(fixture.take(),
                  {u"call activeDpiSlotIndexConfirmed(3)"_s, pendingSignal(false),
                   u"signal activeDpiSlotIndexChanged(4)"_s, u"signal activeDpiSlotIndexChanged(3)"_s});
}

void tst_ActiveDpiSlot::confirmationRepeatsWithoutLimit()
{
    PluginFixture fixture;
    HostedDevice &device = pendingThree(fixture);
    for (int i = 0; i < 1000; ++i) {
        device.activeDpiSlotIndexConfirmed(4);
        COMPARE_LINES(fixture.take(), confirmation(4, {settingLine(3), sentLine(3)}));
    }
}

void tst_ActiveDpiSlot::refusedRepeatEndsTheRequest()
{
    PluginFixture fixture;
    HostedDevice &device = pendingThree(fixture);
    fixture.receiver.answers.acceptsRequests = false;
    device.activeDpiSlotIndexConfirmed(4);
    COMPARE_LINES(fixture.take(), confirmation(4, {settingLine(3), sentLine(3, false),
                                                   warningLine(u"Dongle set active DPI slot index failed"_s),
                                                   pendingSignal(false)}));
    QCOMPARE(device.device()->activeDpiSlotIndex(), 2);
}

void tst_ActiveDpiSlot::acceptedZeroLeavesTheFlagWithNothingToWaitFor()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setActiveDpiSlotIndex(0);
    fixture.take();
    QVERIFY(device.device()->isActiveDpiSlotIndexChangePending());
    // Taken as the mouse's state, and the flag stays.
    device.activeDpiSlotIndexConfirmed(4);
    COMPARE_LINES(fixture.take(), confirmation(4, changeLines(indexChange(4))));
    QVERIFY(device.device()->isActiveDpiSlotIndexChangePending());
    // The next request ends with its own confirmation; the flag was set already.
    device.setActiveDpiSlotIndex(5);
    COMPARE_LINES(fixture.take(), {u"call setActiveDpiSlotIndex(5)"_s, settingLine(5), sentLine(5)});
    device.activeDpiSlotIndexConfirmed(5);
    QVERIFY(!device.device()->isActiveDpiSlotIndexChangePending());
}

void tst_ActiveDpiSlot::negativePendingIndexBlocksConfirmations()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setActiveDpiSlotIndex(-1);
    fixture.take();
    device.activeDpiSlotIndexConfirmed(4);
    COMPARE_LINES(fixture.take(), confirmation(4, {}));
    QCOMPARE(device.device()->activeDpiSlotIndex(), 2);
    QVERIFY(device.device()->isActiveDpiSlotIndexChangePending());
}

void tst_ActiveDpiSlot::repeatDoesNothingWhenAReportMadeTheValueCurrent()
{
    PluginFixture fixture;
    HostedDevice &device = pendingThree(fixture);
    device.activeDpiSlotIndexChangedCallBack(3);
    fixture.take();
    device.activeDpiSlotIndexConfirmed(4);
    COMPARE_LINES(fixture.take(), confirmation(4, {}));
    QVERIFY(device.device()->isActiveDpiSlotIndexChangePending());
    QCOMPARE(device.device()->activeDpiSlotIndex(), 3);
    device.activeDpiSlotIndexConfirmed(3);
    COMPARE_LINES(fixture.take(), confirmation(3, QStringList{pendingSignal(false)} + changeLines({})));
}

void tst_ActiveDpiSlot::reportUnasked()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    device.activeDpiSlotIndexChangedCallBack(5);
    COMPARE_LINES(fixture.take(),
                  QStringList{u"call activeDpiSlotIndexChangedCallBack(5)"_s} + changeLines(indexChange(5)));
    QCOMPARE(device.device()->activeDpiSlotIndex(), 5);
}

void tst_ActiveDpiSlot::reportOfTheSameIndex()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.activeDpiSlotIndexChangedCallBack(2);
    COMPARE_LINES(fixture.take(),
                  QStringList{u"call activeDpiSlotIndexChangedCallBack(2)"_s} + changeLines({}));
}

void tst_ActiveDpiSlot::reportWhilePendingLeavesTheRequest()
{
    PluginFixture fixture;
    HostedDevice &device = pendingThree(fixture);
    device.activeDpiSlotIndexChangedCallBack(4);
    COMPARE_LINES(fixture.take(),
                  QStringList{u"call activeDpiSlotIndexChangedCallBack(4)"_s} + changeLines(indexChange(4)));
    QVERIFY(device.device()->isActiveDpiSlotIndexChangePending());
    QCOMPARE(device.device()->activeDpiSlotIndex(), 4);
    device.activeDpiSlotIndexConfirmed(3);
    QCOMPARE(device.device()->activeDpiSlotIndex(), 3);
}

void tst_ActiveDpiSlot::reportTakesAnyIndex()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    for (const int index : {0, -5, std::numeric_limits<int>::max(), std::numeric_limits<int>::min()}) {
        device.activeDpiSlotIndexChangedCallBack(index);
        COMPARE_LINES(fixture.take(),
                      QStringList{u"call activeDpiSlotIndexChangedCallBack(%1)"_s.arg(index)} +
                          changeLines(indexChange(index)));
        QCOMPARE(device.device()->activeDpiSlotIndex(), index);
    }
}

void tst_ActiveDpiSlot::dpiFollowsTheSlot_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<int>("dpi");
    QTest::newRow("first") << 1 << 800;
    QTest::newRow("third") << 3 << 2400;
    QTest::newRow("fourth") << 4 << 3200;
    QTest::newRow("last") << 5 << 4000;
    QTest::newRow("zero") << 0 << 1;
    QTest::newRow("negative") << -1 << 1;
    QTest::newRow("six") << 6 << 1;
    QTest::newRow("seven") << 7 << 1;
}

void tst_ActiveDpiSlot::dpiFollowsTheSlot()
{
    QFETCH(const int, index);
    QFETCH(const int, dpi);
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.dpiSlotValuesChangedCallBack(slotValues);
    device.dpiValueChangedCallBack(1);
    fixture.take();
    device.activeDpiSlotIndexChangedCallBack(index);
    QStringList change = indexChange(index);
    if (dpi != 1)
        change += dpiChange(dpi);
    COMPARE_LINES(fixture.take(), QStringList{u"call activeDpiSlotIndexChangedCallBack(%1)"_s.arg(index)} +
                                      changeLines(change));
    QCOMPARE(device.device()->dpiValue(), dpi);
}

void tst_ActiveDpiSlot::dpiThatIsTheSameIsNotSignalled()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.dpiSlotValuesChangedCallBack(slotValues);
    device.dpiValueChangedCallBack(4000);
    fixture.take();
    device.activeDpiSlotIndexChangedCallBack(5);
    COMPARE_LINES(fixture.take(),
                  QStringList{u"call activeDpiSlotIndexChangedCallBack(5)"_s} + changeLines(indexChange(5)));
}

void tst_ActiveDpiSlot::dpiNeedsKnownSlotValues()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.dpiValueChangedCallBack(1);
    device.activeDpiSlotIndexChangedCallBack(1);
    QCOMPARE(device.device()->dpiValue(), 1);
    // The values arriving later do not move it either; the next change of the slot does.
    device.dpiSlotValuesChangedCallBack(slotValues);
    QCOMPARE(device.device()->dpiValue(), 1);
    device.activeDpiSlotIndexChangedCallBack(2);
    QCOMPARE(device.device()->dpiValue(), 1600);
}

void tst_ActiveDpiSlot::otherThreadSignalsTheDpiBeforeTheIndex()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    device.dpiSlotValuesChangedCallBack(slotValues);
    device.setActiveDpiSlotIndex(4);
    fixture.take();
    OtherThread other;
    other.run([&] { device.activeDpiSlotIndexConfirmed(4); });
    QCOMPARE(device.device()->activeDpiSlotIndex(), 4);
    QVERIFY(!device.device()->isActiveDpiSlotIndexChangePending());
    COMPARE_LINES(fixture.take(), {u"call activeDpiSlotIndexConfirmed(4) on thread 2"_s,
                                   u"signal dpiValueChanged(3200) on thread 2"_s});
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {pendingSignal(false), u"signal activeDpiSlotIndexChanged(4)"_s});
}

void tst_ActiveDpiSlot::otherThreadSignalsCarryTheValueAtDelivery()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    OtherThread other;
    other.run([&] {
        device.setActiveDpiSlotIndex(3);
        device.activeDpiSlotIndexConfirmed(3);
        device.activeDpiSlotIndexChangedCallBack(5);
    });
    fixture.take();
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(),
                  {pendingSignal(false), pendingSignal(false), u"signal activeDpiSlotIndexChanged(5)"_s,
                   u"signal activeDpiSlotIndexChanged(5)"_s});
}

void tst_ActiveDpiSlot::requestSurvivesStop()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = pendingThree(fixture);
    device.stop();
    QVERIFY(device.device()->isActiveDpiSlotIndexChangePending());
    device.activeDpiSlotIndexConfirmed(3);
    QCOMPARE(device.device()->activeDpiSlotIndex(), 3);
}

void tst_ActiveDpiSlot::reportInsideTheIndexSignal_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QStringList>("dpiSignals");
    QTest::newRow("another-slot") << 5 << QStringList{u"signal dpiValueChanged(4000)"_s};
    QTest::newRow("the-slot-before") << 2 << QStringList{u"signal dpiValueChanged(1600)"_s};
    QTest::newRow("no-slot") << 7 << QStringList();
}

void tst_ActiveDpiSlot::reportInsideTheIndexSignal()
{
    // The DPI is that of the slot reported last, signalled once.
    QFETCH(const int, index);
    QFETCH(const QStringList, dpiSignals);
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    device.dpiSlotValuesChangedCallBack(slotValues);
    fixture.take();
    fixture.onceInside(u"signal activeDpiSlotIndexChanged(3)"_s,
                       [&] { device.activeDpiSlotIndexChangedCallBack(index); });
    device.activeDpiSlotIndexChangedCallBack(3);
    COMPARE_LINES(fixture.take(), QStringList({u"call activeDpiSlotIndexChangedCallBack(3)"_s,
                                               u"signal activeDpiSlotIndexChanged(3)"_s,
                                               u"call activeDpiSlotIndexChangedCallBack(%1)"_s.arg(index),
                                               u"signal activeDpiSlotIndexChanged(%1)"_s.arg(index)}) +
                                      dpiSignals);
}

void tst_ActiveDpiSlot::valuesReportedInsideTheIndexSignalCount()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    constexpr quint16 later[5] = {1, 2, 3, 4, 5};
    fixture.onceInside(u"signal activeDpiSlotIndexChanged(3)"_s,
                       [&] { device.dpiSlotValuesChangedCallBack(later); });
    device.activeDpiSlotIndexChangedCallBack(3);
    COMPARE_LINES(fixture.take(),
                  {u"call activeDpiSlotIndexChangedCallBack(3)"_s, u"signal activeDpiSlotIndexChanged(3)"_s,
                   u"call dpiSlotValuesChangedCallBack([1, 2, 3, 4, 5])"_s,
                   u"signal dpiSlotValuesChanged([\"1\", \"2\", \"3\", \"4\", \"5\"])"_s,
                   u"signal dpiValueChanged(3)"_s});
}

void tst_ActiveDpiSlot::indexIsPendingUntilTheWarningIsWritten()
{
    // From inside the warning the mouse confirms the request before, which is still waited for.
    PluginFixture fixture({false, true, false});
    HostedDevice &device = pendingThree(fixture);
    const QString warning = warningLine(u"Dongle set active DPI slot index failed"_s);
    fixture.receiver.answers.acceptsRequests = false;
    fixture.onceInside(warning, [&] { device.activeDpiSlotIndexConfirmed(3); });
    device.setActiveDpiSlotIndex(4);
    COMPARE_LINES(fixture.take(), {u"call setActiveDpiSlotIndex(4)"_s, sentLine(4, false), warning,
                                   u"call activeDpiSlotIndexConfirmed(3)"_s, pendingSignal(false),
                                   u"signal activeDpiSlotIndexChanged(3)"_s});
}

QTEST_GUILESS_MAIN(tst_ActiveDpiSlot)
#include "tst_ActiveDpiSlot.moc"
