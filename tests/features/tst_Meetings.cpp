#include "Bench.h"
#include "OtherThread.h"
#include "TimelineText.h"

#include <QtTest/QTest>

#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr quint16 factoryValues[5] = {800, 1600, 2400, 3200, 4000};

QStringList texts(const char *words)
{
    return QString::fromLatin1(words).split(u' ');
}

void reportRange(Bench &bench)
{
    Q_EMIT bench.receiver.dpiMinChanged(100);
    Q_EMIT bench.receiver.dpiMaxChanged(8000);
    bench.take();
}

}  // namespace

// What happens where two features, two devices or two threads meet.
class tst_Meetings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void slotChangeWhileSlotValuesArePending();
    void slotValuesRepeatCarriesTheLatestButtonAndSlot();
    void buttonAndSlotRequestsArePendingApart();
    void buttonRequestDoesNotEndASlotRequest();
    void confirmedSlotValuesServeTheNextSlotChange();
    void resetWhileButtonsAreDiverted();
    void capabilityChangeLeavesDiversionAlone();
    void twoDevicesOnOneReceiver();
    void requestOfOneDeviceDestroyedByAnother();
    void reportFromAWorkerWhileTheHostRequests();
    void allFlagsPendingAtOnce();
    void secondStartKeepsPendingRequests();
    void manyDevicesComeAndGo();
};

void tst_Meetings::slotChangeWhileSlotValuesArePending()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    reportRange(bench);
    device.dpiSlotValuesChangedCallBack(factoryValues);
    device.setDpiSlotValues(texts("200 300 400 500 600"));
    bench.take();
    device.activeDpiSlotIndexChangedCallBack(4);
    // The DPI comes from the values in force, not from those that wait for their confirmation.
    QCOMPARE(bench.take(),
             timelineText({u"call activeDpiSlotIndexChangedCallBack(4)"_s,
                           u"signal activeDpiSlotIndexChanged(4)"_s, u"signal dpiValueChanged(3200)"_s}));
    QVERIFY(device.device()->isDpiSlotValuesChangePending());

    // Their confirmation does not move it; the next change of the slot does.
    const quint16 confirmed[5] = {200, 300, 400, 500, 600};
    device.dpiSlotValuesConfirmed(confirmed);
    QCOMPARE(device.device()->dpiValue(), 3200);
    device.activeDpiSlotIndexChangedCallBack(5);
    QCOMPARE(device.device()->dpiValue(), 600);
}

void tst_Meetings::slotValuesRepeatCarriesTheLatestButtonAndSlot()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    reportRange(bench);
    device.setDpiSlotValues(texts("200 300 400 500 600"));
    device.dpiButtonIdChangedCallBack(9);
    device.activeDpiSlotIndexChangedCallBack(1);
    bench.take();
    device.dpiSlotValuesConfirmed(factoryValues);
    QCOMPARE(bench.take(),
             timelineText({u"call dpiSlotValuesConfirmed([800, 1600, 2400, 3200, 4000])"_s,
                           u"receiver setDpiSlotValues([200, 300, 400, 500, 600], 9, 1) -> true"_s}));
}

void tst_Meetings::buttonAndSlotRequestsArePendingApart()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    device.setDpiButtonId(6);
    device.setActiveDpiSlotIndex(3);
    // The slot request carries the button in force, not the one that is waited for.
    QCOMPARE(
        bench.take(),
        timelineText({u"call setDpiButtonId(6)"_s, u"receiver setDpiButtonAndActiveSlot(6, 0) -> true"_s,
                      u"signal isDpiButtonIdChangePendingChanged(true)"_s, u"call setActiveDpiSlotIndex(3)"_s,
                      u"receiver setDpiButtonAndActiveSlot(15, 3) -> true"_s,
                      u"signal isActiveDpiSlotIndexChangePendingChanged(true)"_s}));
    device.dpiButtonIdConfirmed(6);
    QVERIFY(!device.device()->isDpiButtonIdChangePending());
    QVERIFY(device.device()->isActiveDpiSlotIndexChangePending());
    device.activeDpiSlotIndexConfirmed(3);
    QVERIFY(!device.device()->isActiveDpiSlotIndexChangePending());
}

void tst_Meetings::buttonRequestDoesNotEndASlotRequest()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    device.setActiveDpiSlotIndex(3);
    bench.receiver.answers.acceptsRequests = false;
    device.setDpiButtonId(6);
    QVERIFY(device.device()->isActiveDpiSlotIndexChangePending());
    QVERIFY(!device.device()->isDpiButtonIdChangePending());
}

void tst_Meetings::confirmedSlotValuesServeTheNextSlotChange()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    reportRange(bench);
    device.setDpiSlotValues(texts("200 0 400 500 600"));
    device.setActiveDpiSlotIndex(1);
    const quint16 confirmed[5] = {200, 350, 400, 500, 600};
    device.dpiSlotValuesConfirmed(confirmed);
    bench.take();
    device.activeDpiSlotIndexConfirmed(1);
    QCOMPARE(bench.take(),
             timelineText({u"call activeDpiSlotIndexConfirmed(1)"_s,
                           u"signal isActiveDpiSlotIndexChangePendingChanged(false)"_s,
                           u"signal activeDpiSlotIndexChanged(1)"_s, u"signal dpiValueChanged(200)"_s}));
    device.activeDpiSlotIndexChangedCallBack(2);
    QCOMPARE(device.device()->dpiValue(), 350);
}

void tst_Meetings::resetWhileButtonsAreDiverted()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    device.disbaleButtonsOrKeys({1, 5});
    device.mouseEventCallBack(0x11);
    bench.take();
    device.resetSettings();
    QCOMPARE(bench.take(), u"call resetSettings()"_s);
    // The diverted buttons go on being reported.
    device.mouseEventCallBack(0x10);
    QCOMPARE(bench.take(),
             timelineText({u"call mouseEventCallBack(16)"_s,
                           u"host buttonEvent(\"com.orvane.KVX.Plugin.LogicalDevice.RV418\", 1, false)"_s}));
}

void tst_Meetings::capabilityChangeLeavesDiversionAlone()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    device.disbaleButtonsOrKeys({2});
    bench.receiver.answers.isSmartPointerSupported = false;
    bench.take();
    device.capabilityChangedCallBack(0);
    QCOMPARE(bench.take(), timelineText({u"call capabilityChangedCallBack(0)"_s,
                                         u"receiver isSmartPointerSupported() -> false"_s,
                                         u"signal isSmartPointerSupportedChanged(false)"_s}));
}

void tst_Meetings::twoDevicesOnOneReceiver()
{
    Bench bench({false, false, false});
    HostedDevice &first = bench.started(1);
    HostedDevice &second = bench.started(2);
    reportRange(bench);
    first.setReportRate(1000);
    second.setActiveDpiSlotIndex(3);
    first.setDpiButtonId(6);
    QCOMPARE(bench.take(Timeline::Style::WithDevice),
             timelineText(
                 {u"call [1] setReportRate(1000)"_s, u"signal [1] isReportRateChangePendingChanged(true)"_s,
                  u"receiver [1] setReportRate(1000) -> true"_s, u"signal [1] reportRateChanged(1000)"_s,
                  u"call [2] setActiveDpiSlotIndex(3)"_s,
                  u"receiver [2] setDpiButtonAndActiveSlot(15, 3) -> true"_s,
                  u"signal [2] isActiveDpiSlotIndexChangePendingChanged(true)"_s,
                  u"call [1] setDpiButtonId(6)"_s, u"receiver [1] setDpiButtonAndActiveSlot(6, 0) -> true"_s,
                  u"signal [1] isDpiButtonIdChangePendingChanged(true)"_s}));
    QCOMPARE(second.device()->reportRate(), 500);
    QVERIFY(!second.device()->isReportRateChangePending());
    QCOMPARE(first.device()->activeDpiSlotIndex(), 2);
    QVERIFY(!first.device()->isActiveDpiSlotIndexChangePending());
    QVERIFY(!second.device()->isDpiButtonIdChangePending());

    // The range is the receiver's, and both hear of it.
    Q_EMIT bench.receiver.dpiMinChanged(200);
    QCOMPARE(bench.take(Timeline::Style::WithDevice),
             timelineText({u"signal [1] dpiMinChanged(200)"_s, u"signal [2] dpiMinChanged(200)"_s}));
}

void tst_Meetings::requestOfOneDeviceDestroyedByAnother()
{
    // The host deletes another device inside a request of the first.
    Bench bench({false, false, false});
    HostedDevice &first = bench.started(1);
    HostedDevice &second = bench.started(2);
    bench.take();
    bench.receiver.duringRequest = [&](const QString &) { bench.destroy(second); };
    first.setReportRate(1000);
    QCOMPARE(bench.take(Timeline::Style::WithDevice),
             timelineText(
                 {u"call [1] setReportRate(1000)"_s, u"signal [1] isReportRateChangePendingChanged(true)"_s,
                  u"receiver [1] setReportRate(1000) -> true"_s, u"call [2] destroyDevice()"_s,
                  u"signal [1] instanceNumberChanged(0)"_s, u"signal [1] reportRateChanged(1000)"_s}));
}

void tst_Meetings::reportFromAWorkerWhileTheHostRequests()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    OtherThread worker;
    bench.receiver.duringRequest = [&](const QString &operation) {
        if (operation == u"setReportRate"_s)
            worker.run([&] { device.reportRateConfirmed(1000); });
    };
    device.setReportRate(1000);
    QCOMPARE(
        bench.take(),
        timelineText({u"call setReportRate(1000)"_s, u"signal isReportRateChangePendingChanged(true)"_s,
                      u"receiver setReportRate(1000) -> true"_s,
                      u"call reportRateConfirmed(1000) on thread 2"_s, u"signal reportRateChanged(1000)"_s}));
    QVERIFY(!device.device()->isReportRateChangePending());
    deliverQueuedCalls();
    QCOMPARE(bench.take(), u"signal isReportRateChangePendingChanged(false)"_s);
}

void tst_Meetings::allFlagsPendingAtOnce()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    reportRange(bench);
    device.setReportRate(1000);
    device.setDpiSlotValues(texts("200 300 400 500 600"));
    device.setActiveDpiSlotIndex(3);
    device.setDpiButtonId(6);
    const ILogicalDeviceGen3Mouse &mouse = *device.device();
    QVERIFY(mouse.isReportRateChangePending());
    QVERIFY(mouse.isDpiSlotValuesChangePending());
    QVERIFY(mouse.isActiveDpiSlotIndexChangePending());
    QVERIFY(mouse.isDpiButtonIdChangePending());

    device.activeDpiSlotIndexConfirmed(3);
    QVERIFY(!mouse.isActiveDpiSlotIndexChangePending());
    QVERIFY(mouse.isReportRateChangePending() && mouse.isDpiSlotValuesChangePending() &&
            mouse.isDpiButtonIdChangePending());
    device.reportRateConfirmed(1000);
    QVERIFY(!mouse.isReportRateChangePending());
    QVERIFY(mouse.isDpiSlotValuesChangePending() && mouse.isDpiButtonIdChangePending());
    device.dpiButtonIdConfirmed(6);
    QVERIFY(!mouse.isDpiButtonIdChangePending());
    QVERIFY(mouse.isDpiSlotValuesChangePending());
}

void tst_Meetings::secondStartKeepsPendingRequests()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    reportRange(bench);
    device.setDpiSlotValues(texts("200 300 400 500 600"));
    device.setActiveDpiSlotIndex(3);
    device.setDpiButtonId(6);
    device.setReportRate(1000);
    device.start();
    QVERIFY(device.device()->isDpiSlotValuesChangePending());
    QVERIFY(device.device()->isActiveDpiSlotIndexChangePending());
    QVERIFY(device.device()->isDpiButtonIdChangePending());
    QVERIFY(device.device()->isReportRateChangePending());
    // The start read the rate in force, without a signal.
    QCOMPARE(device.device()->reportRate(), 500);
    QCOMPARE(device.device()->dpiMin(), 100);
}

void tst_Meetings::manyDevicesComeAndGo()
{
    Bench bench({false, false, false});
    std::vector<HostedDevice *> devices;
    for (DeviceId id = 1; id <= 50; ++id)
        devices.push_back(&bench.started(id));
    for (size_t index = 0; index < devices.size(); ++index)
        QCOMPARE(devices.at(index)->device()->instanceNumber(), static_cast<int>(index) + 1);
    for (size_t index = 0; index < devices.size(); index += 2)
        bench.destroy(*devices.at(index));
    for (size_t index = 1; index < devices.size(); index += 2)
        QCOMPARE(devices.at(index)->device()->instanceNumber(), static_cast<int>(index) / 2 + 1);
}

QTEST_GUILESS_MAIN(tst_Meetings)
#include "tst_Meetings.moc"
