#include "OtherThread.h"
#include "PluginFixture.h"
#include "TimelineText.h"

#include <QtCore/QThread>
#include <QtTest/QTest>

#include <functional>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

// What happens where two features, two devices or two threads meet.
class tst_Meetings : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void requestOfOneDeviceDestroyedByAnother();
    void reportFromAWorkerWhileTheHostRequests();
    void manyDevicesComeAndGo();
    void deviceWithoutAThreadSignalsWhenItGetsOne();
    void threadThatFollowsTheDevicesOwnIsAnother();
};

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
