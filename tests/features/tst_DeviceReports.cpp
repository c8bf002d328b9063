#include "Bench.h"
#include "OtherThread.h"
#include "TimelineText.h"

#include <QtCore/QThread>
#include <QtTest/QTest>

#include <functional>
#include <limits>
#include <memory>

using namespace Qt::StringLiterals;

// The two values that the receiver's side pushes into a device: firmware version and battery level.
class tst_DeviceReports : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void firmwareVersionIsStoredAndSignalled();
    void valuesAreStoredBeforeTheirSignals();
    void firmwareVersionSignalsTheSameValueAgain();
    void firmwareVersionFromAnotherThreadIsQueuedWhole();
    void firmwareVersionCallsFromAnotherThreadKeepTheirValues();
    void firmwareVersionQueuedForADeadDeviceIsDropped();
    void batteryLevelIsStoredAndSignalled();
    void batteryLevelIgnoresTheSameValue();
    void batteryLevelTakesAnyNumber_data();
    void batteryLevelTakesAnyNumber();
    void batteryLevelFromAnotherThreadIsStoredAtOnce();
    void batteryLevelQueuedForADeadDeviceIsDropped();
    void deviceWithoutAThreadSignalsWhenItGetsOne();
    void threadThatFollowsTheDevicesOwnIsAnother();
    void reportsNeedNoStart();
};

void tst_DeviceReports::firmwareVersionIsStoredAndSignalled()
{
    Bench bench;
    HostedDevice &device = bench.started();
    device.setFirmwareVersion(4294967295U);
    QCOMPARE(bench.take(), timelineText({u"call setFirmwareVersion(4294967295)"_s,
                                         u"signal firmwareVersionChanged(4294967295)"_s}));
    QCOMPARE(device.device()->firmwareVersion(), 4294967295U);
}

void tst_DeviceReports::valuesAreStoredBeforeTheirSignals()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    uint firmwareVersion = 0;
    int batteryLevel = 0;
    bench.timeline.setObserver([&](const TimelineEntry &entry) {
        if (entry.name == u"firmwareVersionChanged")
            firmwareVersion = device.device()->firmwareVersion();
        if (entry.name == u"batteryLevelChanged")
            batteryLevel = device.device()->batteryLevel();
    });
    device.setFirmwareVersion(7);
    device.setBatteryLevel(8);
    bench.timeline.setObserver({});
    QCOMPARE(firmwareVersion, 7U);
    QCOMPARE(batteryLevel, 8);
}

void tst_DeviceReports::firmwareVersionSignalsTheSameValueAgain()
{
    Bench bench;
    HostedDevice &device = bench.started();
    device.setFirmwareVersion(258);
    device.setFirmwareVersion(258);
    const QStringList once{u"call setFirmwareVersion(258)"_s, u"signal firmwareVersionChanged(258)"_s};
    QCOMPARE(bench.take(), timelineText(once + once));
}

void tst_DeviceReports::firmwareVersionFromAnotherThreadIsQueuedWhole()
{
    Bench bench;
    HostedDevice &device = bench.started();
    OtherThread other;
    other.run([&] { device.setFirmwareVersion(7); });
    QCOMPARE(device.device()->firmwareVersion(), 258U);
    QCOMPARE(bench.take(), u"call setFirmwareVersion(7) on thread 2"_s);
    deliverQueuedCalls();
    QCOMPARE(device.device()->firmwareVersion(), 7U);
    QCOMPARE(bench.take(), u"signal firmwareVersionChanged(7)"_s);
}

void tst_DeviceReports::firmwareVersionCallsFromAnotherThreadKeepTheirValues()
{
    Bench bench;
    HostedDevice &device = bench.started();
    OtherThread other;
    other.run([&] {
        device.setFirmwareVersion(7);
        device.setFirmwareVersion(8);
        device.setFirmwareVersion(8);
    });
    bench.take();
    deliverQueuedCalls();
    QCOMPARE(bench.take(),
             timelineText({u"signal firmwareVersionChanged(7)"_s, u"signal firmwareVersionChanged(8)"_s,
                           u"signal firmwareVersionChanged(8)"_s}));
}

void tst_DeviceReports::firmwareVersionQueuedForADeadDeviceIsDropped()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    OtherThread other;
    other.run([&] { device.setFirmwareVersion(7); });
    bench.destroy(device);
    bench.take();
    deliverQueuedCalls();
    QCOMPARE(bench.take(), QString());
}

void tst_DeviceReports::batteryLevelIsStoredAndSignalled()
{
    Bench bench;
    HostedDevice &device = bench.started();
    device.setBatteryLevel(55);
    QCOMPARE(bench.take(),
             timelineText({u"call setBatteryLevel(55)"_s, u"signal batteryLevelChanged(55)"_s}));
    QCOMPARE(device.device()->batteryLevel(), 55);
}

void tst_DeviceReports::batteryLevelIgnoresTheSameValue()
{
    Bench bench;
    HostedDevice &device = bench.started();
    device.setBatteryLevel(80);
    QCOMPARE(bench.take(), u"call setBatteryLevel(80)"_s);

    HostedDevice &fresh = bench.create(2);
    fresh.setBatteryLevel(-1);
    QCOMPARE(bench.take(), u"call setBatteryLevel(-1)"_s);
}

void tst_DeviceReports::batteryLevelTakesAnyNumber_data()
{
    QTest::addColumn<int>("level");
    QTest::newRow("not-known") << -1;
    QTest::newRow("above-hundred") << 101;
    QTest::newRow("largest") << std::numeric_limits<int>::max();
    QTest::newRow("smallest") << std::numeric_limits<int>::min();
}

void tst_DeviceReports::batteryLevelTakesAnyNumber()
{
    QFETCH(const int, level);
    Bench bench;
    HostedDevice &device = bench.started();
    device.setBatteryLevel(level);
    QCOMPARE(bench.take(), timelineText({u"call setBatteryLevel(%1)"_s.arg(level),
                                         u"signal batteryLevelChanged(%1)"_s.arg(level)}));
    QCOMPARE(device.device()->batteryLevel(), level);
}

void tst_DeviceReports::batteryLevelFromAnotherThreadIsStoredAtOnce()
{
    Bench bench;
    HostedDevice &device = bench.started();
    OtherThread other;
    other.run([&] {
        device.setBatteryLevel(40);
        device.setBatteryLevel(60);
    });
    QCOMPARE(device.device()->batteryLevel(), 60);
    QCOMPARE(bench.take(), timelineText({u"call setBatteryLevel(40) on thread 2"_s,
                                         u"call setBatteryLevel(60) on thread 2"_s}));
    deliverQueuedCalls();
    QCOMPARE(bench.take(),
             timelineText({u"signal batteryLevelChanged(60)"_s, u"signal batteryLevelChanged(60)"_s}));
}

void tst_DeviceReports::batteryLevelQueuedForADeadDeviceIsDropped()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    OtherThread other;
    other.run([&] { device.setBatteryLevel(40); });
    bench.destroy(device);
    bench.take();
    deliverQueuedCalls();
    QCOMPARE(bench.take(), QString());
}

void tst_DeviceReports::deviceWithoutAThreadSignalsWhenItGetsOne()
{
    Bench bench({false, false, false});
    OtherThread other;
    HostedDevice *device = nullptr;
    other.run([&] {
        // Off the factory's thread, so it has no parent, which would bind it to that.
        device = &bench.create();
        device->object()->moveToThread(nullptr);
    });
    bench.take();
    device->setBatteryLevel(40);
    deliverQueuedCalls();
    QCOMPARE(bench.take(), u"call setBatteryLevel(40)"_s);
    device->object()->moveToThread(QThread::currentThread());
    deliverQueuedCalls();
    QCOMPARE(bench.take(), u"signal batteryLevelChanged(40)"_s);
    bench.destroy(*device);
}

void tst_DeviceReports::threadThatFollowsTheDevicesOwnIsAnother()
{
    Bench bench({false, false, false});
    HostedDevice *device = nullptr;
    const auto runOnAThread = [](const std::function<void()> &function) {
        std::unique_ptr<QThread> thread(QThread::create(function));
        thread->start();
        thread->wait();
        return thread;
    };
    const std::unique_ptr<QThread> own = runOnAThread([&] { device = &bench.create(); });
    bench.take();
    // Systems give the number of a thread that has ended to one of the next.
    constexpr int followers = 50;
    for (int follower = 0; follower < followers; ++follower) {
        runOnAThread([&] {
            device->device()->setFirmwareVersion(7);
            device->device()->setBatteryLevel(follower);
        });
    }
    QCOMPARE(device->device()->firmwareVersion(), 0U);
    QCOMPARE(bench.take(), QString());
    bench.destroy(*device);
}

void tst_DeviceReports::reportsNeedNoStart()
{
    Bench bench;
    HostedDevice &device = bench.create();
    device.setFirmwareVersion(9);
    device.setBatteryLevel(10);
    QCOMPARE(bench.take(),
             timelineText({u"call setFirmwareVersion(9)"_s, u"signal firmwareVersionChanged(9)"_s,
                           u"call setBatteryLevel(10)"_s, u"signal batteryLevelChanged(10)"_s}));
    QVERIFY(!device.device()->hasBatteryLevel());
}

QTEST_GUILESS_MAIN(tst_DeviceReports)
#include "tst_DeviceReports.moc"
