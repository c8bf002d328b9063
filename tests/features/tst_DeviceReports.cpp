#include "OtherThread.h"
#include "PluginFixture.h"
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
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setFirmwareVersion(4294967295U);
    COMPARE_LINES(fixture.take(),
                  {u"call setFirmwareVersion(4294967295)"_s, u"signal firmwareVersionChanged(4294967295)"_s});
    QCOMPARE(device.device()->firmwareVersion(), 4294967295U);
}

void tst_DeviceReports::valuesAreStoredBeforeTheirSignals()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    uint firmwareVersion = 0;
    int batteryLevel = 0;
    fixture.timeline.setObserver([&](const TimelineEntry &entry) {
        if (entry.name == u"firmwareVersionChanged")
            firmwareVersion = device.device()->firmwareVersion();
        if (entry.name == u"batteryLevelChanged")
            batteryLevel = device.device()->batteryLevel();
    });
    device.setFirmwareVersion(7);
    device.setBatteryLevel(8);
    fixture.timeline.setObserver({});
    QCOMPARE(firmwareVersion, 7U);
    QCOMPARE(batteryLevel, 8);
}

void tst_DeviceReports::firmwareVersionSignalsTheSameValueAgain()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setFirmwareVersion(258);
    device.setFirmwareVersion(258);
    const QStringList once{u"call setFirmwareVersion(258)"_s, u"signal firmwareVersionChanged(258)"_s};
    COMPARE_LINES(fixture.take(), once + once);
}

void tst_DeviceReports::firmwareVersionFromAnotherThreadIsQueuedWhole()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    OtherThread other;
    other.run([&] { device.setFirmwareVersion(7); });
    QCOMPARE(device.device()->firmwareVersion(), 258U);
    COMPARE_LINES(fixture.take(), {u"call setFirmwareVersion(7) on thread 2"_s});
    deliverQueuedCalls();
    QCOMPARE(device.device()->firmwareVersion(), 7U);
    COMPARE_LINES(fixture.take(), {u"signal firmwareVersionChanged(7)"_s});
}

void tst_DeviceReports::firmwareVersionCallsFromAnotherThreadKeepTheirValues()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    OtherThread other;
    other.run([&] {
        device.setFirmwareVersion(7);
        device.setFirmwareVersion(8);
        device.setFirmwareVersion(8);
    });
    fixture.take();
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(),
                  {u"signal firmwareVersionChanged(7)"_s, u"signal firmwareVersionChanged(8)"_s,
                   u"signal firmwareVersionChanged(8)"_s});
}

void tst_DeviceReports::firmwareVersionQueuedForADeadDeviceIsDropped()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    OtherThread other;
    other.run([&] { device.setFirmwareVersion(7); });
    fixture.destroy(device);
    fixture.take();
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {});
}

void tst_DeviceReports::batteryLevelIsStoredAndSignalled()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setBatteryLevel(55);
    COMPARE_LINES(fixture.take(), {u"call setBatteryLevel(55)"_s, u"signal batteryLevelChanged(55)"_s});
    QCOMPARE(device.device()->batteryLevel(), 55);
}

void tst_DeviceReports::batteryLevelIgnoresTheSameValue()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setBatteryLevel(80);
    COMPARE_LINES(fixture.take(), {u"call setBatteryLevel(80)"_s});

    HostedDevice &fresh = fixture.create(2);
    fresh.setBatteryLevel(-1);
    COMPARE_LINES(fixture.take(), {u"call setBatteryLevel(-1)"_s});
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
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setBatteryLevel(level);
    COMPARE_LINES(fixture.take(),
                  {u"call setBatteryLevel(%1)"_s.arg(level), u"signal batteryLevelChanged(%1)"_s.arg(level)});
    QCOMPARE(device.device()->batteryLevel(), level);
}

void tst_DeviceReports::batteryLevelFromAnotherThreadIsStoredAtOnce()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    OtherThread other;
    other.run([&] {
        device.setBatteryLevel(40);
        device.setBatteryLevel(60);
    });
    QCOMPARE(device.device()->batteryLevel(), 60);
    COMPARE_LINES(fixture.take(),
                  {u"call setBatteryLevel(40) on thread 2"_s, u"call setBatteryLevel(60) on thread 2"_s});
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {u"signal batteryLevelChanged(60)"_s, u"signal batteryLevelChanged(60)"_s});
}

void tst_DeviceReports::batteryLevelQueuedForADeadDeviceIsDropped()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    OtherThread other;
    other.run([&] { device.setBatteryLevel(40); });
    fixture.destroy(device);
    fixture.take();
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {});
}

void tst_DeviceReports::deviceWithoutAThreadSignalsWhenItGetsOne()
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

void tst_DeviceReports::threadThatFollowsTheDevicesOwnIsAnother()
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

void tst_DeviceReports::reportsNeedNoStart()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    device.setFirmwareVersion(9);
    device.setBatteryLevel(10);
    COMPARE_LINES(fixture.take(), {u"call setFirmwareVersion(9)"_s, u"signal firmwareVersionChanged(9)"_s,
                                   u"call setBatteryLevel(10)"_s, u"signal batteryLevelChanged(10)"_s});
    QVERIFY(!device.device()->hasBatteryLevel());
}

QTEST_GUILESS_MAIN(tst_DeviceReports)
#include "tst_DeviceReports.moc"
