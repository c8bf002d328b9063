#include "OtherThread.h"
#include "PluginFixture.h"
#include "TimelineText.h"

#include <QtCore/QThread>
#include <QtTest/QTest>

#include <functional>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr quint16 factoryValues[5] = {800, 1600, 2400, 3200, 4000};

QStringList texts(const char *words)
{
    return QString::fromLatin1(words).split(u' ');
}

void reportRange(PluginFixture &fixture)
{
    Q_EMIT fixture.receiver.dpiMinChanged(100);
    Q_EMIT fixture.receiver.dpiMaxChanged(8000);
    fixture.take();
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
    void twoDevicesOnOneReceiver();
    void requestOfOneDeviceDestroyedByAnother();
    void reportFromAWorkerWhileTheHostRequests();
    void allFlagsPendingAtOnce();
    void manyDevicesComeAndGo();
    void deviceWithoutAThreadSignalsWhenItGetsOne();
    void threadThatFollowsTheDevicesOwnIsAnother();
};

void tst_Meetings::slotChangeWhileSlotValuesArePending()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    reportRange(fixture);
    device.dpiSlotValuesChangedCallBack(factoryValues);
    device.setDpiSlotValues(texts("200 300 400 500 600"));
    fixture.take();
    device.activeDpiSlotIndexChangedCallBack(4);
    // The DPI comes from the values in force, not from those that wait for their confirmation.
    COMPARE_LINES(fixture.take(),
                  {u"call activeDpiSlotIndexChangedCallBack(4)"_s, u"signal activeDpiSlotIndexChanged(4)"_s,
                   u"signal dpiValueChanged(3200)"_s});
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
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    reportRange(fixture);
    device.setDpiSlotValues(texts("200 300 400 500 600"));
    device.dpiButtonIdChangedCallBack(9);
    device.activeDpiSlotIndexChangedCallBack(1);
    fixture.take();
    device.dpiSlotValuesConfirmed(factoryValues);
    COMPARE_LINES(fixture.take(), {u"call dpiSlotValuesConfirmed([800, 1600, 2400, 3200, 4000])"_s,
                                   u"receiver setDpiSlotValues([200, 300, 400, 500, 600], 9, 1) -> true"_s});
}

void tst_Meetings::buttonAndSlotRequestsArePendingApart()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    device.setDpiButtonId(6);
    device.setActiveDpiSlotIndex(3);
    // The slot request carries the button in force, not the one that is waited for.
    COMPARE_LINES(fixture.take(),
                  {u"call setDpiButtonId(6)"_s, u"receiver setDpiButtonAndActiveSlot(6, 0) -> true"_s,
                   u"signal isDpiButtonIdChangePendingChanged(true)"_s, u"call setActiveDpiSlotIndex(3)"_s,
                   u"receiver setDpiButtonAndActiveSlot(15, 3) -> true"_s,
                   u"signal isActiveDpiSlotIndexChangePendingChanged(true)"_s});
    device.dpiButtonIdConfirmed(6);
    QVERIFY(!device.device()->isDpiButtonIdChangePending());
    QVERIFY(device.device()->isActiveDpiSlotIndexChangePending());
    device.activeDpiSlotIndexConfirmed(3);
    QVERIFY(!device.device()->isActiveDpiSlotIndexChangePending());
}

void tst_Meetings::buttonRequestDoesNotEndASlotRequest()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    device.setActiveDpiSlotIndex(3);
    fixture.receiver.answers.acceptsRequests = false;
    device.setDpiButtonId(6);
    QVERIFY(device.device()->isActiveDpiSlotIndexChangePending());
    QVERIFY(!device.device()->isDpiButtonIdChangePending());
}

void tst_Meetings::confirmedSlotValuesServeTheNextSlotChange()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    reportRange(fixture);
    device.setDpiSlotValues(texts("200 0 400 500 600"));
    device.setActiveDpiSlotIndex(1);
    const quint16 confirmed[5] = {200, 350, 400, 500, 600};
    device.dpiSlotValuesConfirmed(confirmed);
    fixture.take();
    device.activeDpiSlotIndexConfirmed(1);
    COMPARE_LINES(fixture.take(),
                  {u"call activeDpiSlotIndexConfirmed(1)"_s,
                   u"signal isActiveDpiSlotIndexChangePendingChanged(false)"_s,
                   u"signal activeDpiSlotIndexChanged(1)"_s, u"signal dpiValueChanged(200)"_s});
    device.activeDpiSlotIndexChangedCallBack(2);
    QCOMPARE(device.device()->dpiValue(), 350);
}

void tst_Meetings::twoDevicesOnOneReceiver()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &first = fixture.started(1);
    HostedDevice &second = fixture.started(2);
    reportRange(fixture);
    first.setReportRate(1000);
    second.setActiveDpiSlotIndex(3);
    first.setDpiButtonId(6);
    COMPARE_LINES(fixture.take(Timeline::Style::WithDevice),
                  {u"call [1] setReportRate(1000)"_s, u"signal [1] isReportRateChangePendingChanged(true)"_s,
                   u"receiver [1] setReportRate(1000) -> true"_s, u"signal [1] reportRateChanged(1000)"_s,
                   u"call [2] setActiveDpiSlotIndex(3)"_s,
                   u"receiver [2] setDpiButtonAndActiveSlot(15, 3) -> true"_s,
                   u"signal [2] isActiveDpiSlotIndexChangePendingChanged(true)"_s,
                   u"call [1] setDpiButtonId(6)"_s, u"receiver [1] setDpiButtonAndActiveSlot(6, 0) -> true"_s,
                   u"signal [1] isDpiButtonIdChangePendingChanged(true)"_s});
    QCOMPARE(second.device()->reportRate(), 500);
    QVERIFY(!second.device()->isReportRateChangePending());
    QCOMPARE(first.device()->activeDpiSlotIndex(), 2);
    QVERIFY(!first.device()->isActiveDpiSlotIndexChangePending());
    QVERIFY(!second.device()->isDpiButtonIdChangePending());

    // The range is the receiver's, and both hear of it.
    Q_EMIT fixture.receiver.dpiMinChanged(200);
    COMPARE_LINES(fixture.take(Timeline::Style::WithDevice),
                  {u"signal [1] dpiMinChanged(200)"_s, u"signal [2] dpiMinChanged(200)"_s});
}

void tst_Meetings::requestOfOneDeviceDestroyedByAnother()
{
    // The host deletes another device inside a request of the first.
    PluginFixture fixture({false, false, false});
    HostedDevice &first = fixture.started(1);
    HostedDevice &second = fixture.started(2);
    fixture.take();
    fixture.receiver.duringRequest = [&](const QString &) { fixture.destroy(second); };
    first.setReportRate(1000);
    COMPARE_LINES(fixture.take(Timeline::Style::WithDevice),
                  {u"call [1] setReportRate(1000)"_s, u"signal [1] isReportRateChangePendingChanged(true)"_s,
                   u"receiver [1] setReportRate(1000) -> true"_s, u"call [2] destroyDevice()"_s,
                   u"signal [1] instanceNumberChanged(0)"_s, u"signal [1] reportRateChanged(1000)"_s});
}

void tst_Meetings::reportFromAWorkerWhileTheHostRequests()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    OtherThread worker;
    fixture.receiver.duringRequest = [&](const QString &operation) {
        if (operation == u"setReportRate"_s)
            worker.run([&] { device.reportRateConfirmed(1000); });
    };
    device.setReportRate(1000);
    COMPARE_LINES(fixture.take(),
                  {u"call setReportRate(1000)"_s, u"signal isReportRateChangePendingChanged(true)"_s,
                   u"receiver setReportRate(1000) -> true"_s, u"call reportRateConfirmed(1000) on thread 2"_s,
                   u"signal reportRateChanged(1000)"_s});
    QVERIFY(!device.device()->isReportRateChangePending());
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {u"signal isReportRateChangePendingChanged(false)"_s});
}

void tst_Meetings::allFlagsPendingAtOnce()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    reportRange(fixture);
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

void tst_Meetings::manyDevicesComeAndGo()
{
    PluginFixture fixture({false, false, false});
    std::vector<HostedDevice *> devices;
    for (DeviceId id = 1; id <= 50; ++id)
        devices.push_back(&fixture.started(id));
    for (size_t index = 0; index < devices.size(); ++index)
        QCOMPARE(devices.at(index)->device()->instanceNumber(), static_cast<int>(index) + 1);
    for (size_t index = 0; index < devices.size(); index += 2)
        fixture.destroy(*devices.at(index));
    for (size_t index = 1; index < devices.size(); index += 2)
        QCOMPARE(devices.at(index)->device()->instanceNumber(), static_cast<int>(index) / 2 + 1);
}

void tst_Meetings::deviceWithoutAThreadSignalsWhenItGetsOne()
{
    PluginFixture fixture({false, false, false});
    OtherThread other;
    HostedDevice *device = nullptr;
    other.run([&] {
        // Off the factory's thread, so it has no parent, which would bind it to that.
        device = &fixture.create();
        device->object()->moveToThread(nullptr);
    });
    fixture.take();
    device->setBatteryLevel(40);
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {u"call setBatteryLevel(40)"_s});
    device->object()->moveToThread(QThread::currentThread());
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {u"signal batteryLevelChanged(40)"_s});
    fixture.destroy(*device);
}

void tst_Meetings::threadThatFollowsTheDevicesOwnIsAnother()
{
    PluginFixture fixture({false, false, false});
    HostedDevice *device = nullptr;
    const auto runOnAThread = [](const std::function<void()> &function) {
        std::unique_ptr<QThread> thread(QThread::create(function));
        thread->start();
        thread->wait();
        return thread;
    };
    const std::unique_ptr<QThread> own = runOnAThread([&] { device = &fixture.create(); });
    fixture.take();
    // Systems give the number of a thread that has ended to one of the next.
    constexpr int followers = 50;
    for (int follower = 0; follower < followers; ++follower) {
        runOnAThread([&] {
            device->device()->setFirmwareVersion(7);
            device->device()->setBatteryLevel(follower);
        });
    }
    QCOMPARE(device->device()->firmwareVersion(), 0U);
    COMPARE_LINES(fixture.take(), {});
    fixture.destroy(*device);
}

QTEST_GUILESS_MAIN(tst_Meetings)
#include "tst_Meetings.moc"
