#include "Bench.h"
#include "OtherThread.h"
#include "TimelineText.h"

#include <QtTest/QTest>

#include <functional>
#include <utility>
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

/// One call of every operation with an effect, by name.
using Operation = std::pair<const char *, std::function<void(HostedDevice &)>>;

const ReportRateInfo rates{0, 250, {125, 250, 0, 0}};

std::vector<Operation> everyOperation()
{
    return {
        {"setFirmwareVersion", [](HostedDevice &device) { device.setFirmwareVersion(5); }},
        {"setBatteryLevel", [](HostedDevice &device) { device.setBatteryLevel(5); }},
        {"applySettings", [](HostedDevice &device) { device.applySettings({}); }},
        {"resetSettings", [](HostedDevice &device) { device.resetSettings(); }},
        {"capabilityChangedCallBack", [](HostedDevice &device) { device.capabilityChangedCallBack(1); }},
        {"setButtonsOrKeysToDefault", [](HostedDevice &device) { device.setButtonsOrKeysToDefault(); }},
        {"disbaleButtonsOrKeys", [](HostedDevice &device) { device.disbaleButtonsOrKeys({1}); }},
        {"dpiValueChangedCallBack", [](HostedDevice &device) { device.dpiValueChangedCallBack(5); }},
        {"setActiveDpiSlotIndex", [](HostedDevice &device) { device.setActiveDpiSlotIndex(5); }},
        {"activeDpiSlotIndexConfirmed", [](HostedDevice &device) { device.activeDpiSlotIndexConfirmed(5); }},
        {"activeDpiSlotIndexChangedCallBack",
         [](HostedDevice &device) { device.activeDpiSlotIndexChangedCallBack(4); }},
        {"setDpiSlotValues", [](HostedDevice &device) { device.setDpiSlotValues(texts("1 2 3 4 5")); }},
        {"dpiSlotValuesConfirmed",
         [](HostedDevice &device) { device.dpiSlotValuesConfirmed(factoryValues); }},
        {"dpiSlotValuesChangedCallBack",
         [](HostedDevice &device) { device.dpiSlotValuesChangedCallBack(factoryValues); }},
        {"setDpiButtonId", [](HostedDevice &device) { device.setDpiButtonId(0); }},
        {"dpiButtonIdConfirmed", [](HostedDevice &device) { device.dpiButtonIdConfirmed(6); }},
        {"dpiButtonIdChangedCallBack", [](HostedDevice &device) { device.dpiButtonIdChangedCallBack(7); }},
        {"setReportRate", [](HostedDevice &device) { device.setReportRate(1000); }},
        {"reportRateConfirmed", [](HostedDevice &device) { device.reportRateConfirmed(1000); }},
        {"reportRateChangedCallBack", [](HostedDevice &device) { device.reportRateChangedCallBack(&rates); }},
        {"ppidChangedCallBack", [](HostedDevice &device) { device.ppidChangedCallBack(u"P"_s); }},
        {"stop", [](HostedDevice &device) { device.stop(); }},
    };
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
    void everyOperationWorksBeforeStart();
    void everyOperationWorksWithoutAReceiver();
    void everyOperationWorksAfterStop();
    void everyOperationTwiceFromAnotherThread();
    void refusalOfTheNthRequest_data();
    void refusalOfTheNthRequest();
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

void tst_Meetings::everyOperationWorksBeforeStart()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.create();
    for (const auto &[name, operation] : everyOperation()) {
        operation(device);
        const QString timeline = bench.take();
        QVERIFY2(!timeline.contains(u"receiver "_s), qPrintable(timeline));
        QVERIFY2(timeline.startsWith(u"call "_s + QString::fromLatin1(name)), qPrintable(timeline));
    }
    QVERIFY(!device.device()->isReportRateChangePending());
    QVERIFY(!device.device()->isDpiSlotValuesChangePending());
    QVERIFY(!device.device()->isActiveDpiSlotIndexChangePending());
    QVERIFY(!device.device()->isDpiButtonIdChangePending());
}

void tst_Meetings::everyOperationWorksWithoutAReceiver()
{
    Bench bench;
    HostedDevice &device = bench.create(nullptr, Bench::mouse);
    device.start();
    bench.take();
    QStringList warned;
    for (const auto &[name, operation] : everyOperation()) {
        operation(device);
        if (bench.take().contains(warningLine(u"Unknown IPhysicalDevice interface"_s)))
            warned += QString::fromLatin1(name);
    }
    // Without a known DPI range a request for slot values ends before the receiver is missed.
    QCOMPARE(warned, QStringList({u"setButtonsOrKeysToDefault"_s, u"disbaleButtonsOrKeys"_s,
                                  u"setActiveDpiSlotIndex"_s, u"setDpiButtonId"_s, u"setReportRate"_s}));
}

void tst_Meetings::everyOperationWorksAfterStop()
{
    Bench bench({false, false, false});
    HostedDevice &running = bench.started(1);
    reportRange(bench);
    QStringList whileRunning;
    for (const auto &[name, operation] : everyOperation()) {
        operation(running);
        whileRunning += bench.take();
    }
    HostedDevice &stopped = bench.started(2);
    reportRange(bench);
    Q_EMIT bench.receiver.dpiMinChanged(101);
    stopped.stop();
    bench.take();
    QStringList afterStop;
    for (const auto &[name, operation] : everyOperation()) {
        operation(stopped);
        afterStop += bench.take();
    }
    QCOMPARE(afterStop, whileRunning);
}

void tst_Meetings::everyOperationTwiceFromAnotherThread()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    reportRange(bench);
    OtherThread other;
    const QStringList direct{u"stopped"_s, u"isSmartPointerSupportedChanged"_s, u"dpiValueChanged"_s,
                             u"ppidChanged"_s};
    for (const auto &[name, operation] : everyOperation()) {
        other.run([&, &run = operation] {
            run(device);
            run(device);
        });
        const QStringList lines = bench.take().split(u'\n');
        for (const QString &line : lines) {
            const bool isSignal = line.startsWith(u"signal "_s);
            const QString signal = line.section(u'(', 0, 0).section(u' ', 1, 1);
            QVERIFY2(!isSignal || direct.contains(signal), qPrintable(line));
        }
        deliverQueuedCalls();
        QVERIFY(!bench.take().contains(u" on thread "_s));
    }
}

void tst_Meetings::refusalOfTheNthRequest_data()
{
    QTest::addColumn<int>("refused");
    QTest::newRow("first") << 1;
    QTest::newRow("second") << 2;
    QTest::newRow("third") << 3;
    QTest::newRow("fourth") << 4;
}

void tst_Meetings::refusalOfTheNthRequest()
{
    QFETCH(const int, refused);
    Bench bench({false, true, false});
    HostedDevice &device = bench.started();
    reportRange(bench);
    const std::vector<std::function<void()>> requests = {
        [&] { device.setReportRate(1000); }, [&] { device.setDpiSlotValues(texts("200 300 400 500 600")); },
        [&] { device.setActiveDpiSlotIndex(3); }, [&] { device.setDpiButtonId(6); }};
    int number = 0;
    for (const auto &request : requests) {
        bench.receiver.answers.acceptsRequests = ++number != refused;
        request();
    }
    const ILogicalDeviceGen3Mouse &mouse = *device.device();
    QCOMPARE(mouse.isReportRateChangePending(), refused != 1);
    QCOMPARE(mouse.isDpiSlotValuesChangePending(), refused != 2);
    QCOMPARE(mouse.isActiveDpiSlotIndexChangePending(), refused != 3);
    QCOMPARE(mouse.isDpiButtonIdChangePending(), refused != 4);
    const QStringList warnings = bench.take().split(u'\n').filter(u"warning "_s);
    const QStringList expected{u"Dongle set report rate failed"_s, u"Dongle set dpi slot values failed"_s,
                               u"Dongle set active DPI slot index failed"_s,
                               u"Dongle set dpi button id failed"_s};
    QCOMPARE(warnings, QStringList{warningLine(expected.at(refused - 1))});
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
