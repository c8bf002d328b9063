#include "OtherThread.h"
#include "PluginFixture.h"
#include "SignalHook.h"
#include "TimelineText.h"

#include <QtTest/QTest>

#include <atomic>
#include <memory>

using namespace Qt::StringLiterals;

namespace {

constexpr DeviceId first = 1;
constexpr DeviceId second = 2;
constexpr DeviceId third = 3;

QString announced(DeviceId id, int number)
{
    return u"signal [%1] instanceNumberChanged(%2)"_s.arg(id).arg(number);
}

}  // namespace

// Log switches are off here: only calls, signals and numbers matter.
class tst_InstanceRegistry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void numberIsOneBeforeStart();
    void loneDeviceHasNumberZero();
    void severalAreNumberedInOrderOfStart();
    void destroyingTheFirstRenumbersTheOthers();
    void destroyingOneOfTwoLeavesALoneDevice();
    void destroyingANeverStartedDeviceAnnouncesTheOthers();
    void destroyingANeverStartedDeviceAlone();
    void stopKeepsTheNumber();
    void allGoneStartsAnew();
    void announcementsGoToEachDevicesThread();
    void devicesOnThreeThreadsAreAnnouncedOnTheirOwn();
    void announcementFromAnotherThreadCarriesTheNumberAtDelivery();
    void queuedAnnouncementDiesWithItsDevice();
    void secondStartRegistersTwice();
    void numbersAreReadUnderTheLock();
    void twoFactoriesOfOneLibraryShareTheRegistry();

private:
    static QStringList take(PluginFixture &fixture) { return fixture.take(Timeline::Style::WithDevice); }
};

void tst_InstanceRegistry::numberIsOneBeforeStart()
{
    PluginFixture fixture;
    QCOMPARE(fixture.create(first).device()->instanceNumber(), 1);
    QCOMPARE(fixture.create(second).device()->instanceNumber(), 1);
}

void tst_InstanceRegistry::loneDeviceHasNumberZero()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.create(first);
    device.start();
    QCOMPARE(take(fixture).constLast(), announced(first, 0));
    QCOMPARE(device.device()->instanceNumber(), 0);
}

void tst_InstanceRegistry::severalAreNumberedInOrderOfStart()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &created1 = fixture.create(first);
    HostedDevice &created2 = fixture.create(second);
    HostedDevice &created3 = fixture.create(third);

    created2.start();
    created1.start();
    COMPARE_LINES(take(fixture).mid(25), {announced(second, 1), announced(first, 2)});
    QCOMPARE(created2.device()->instanceNumber(), 1);
    QCOMPARE(created1.device()->instanceNumber(), 2);
    QCOMPARE(created3.device()->instanceNumber(), 1);

    created3.start();
    COMPARE_LINES(take(fixture).mid(12), {announced(second, 1), announced(first, 2), announced(third, 3)});
    QCOMPARE(created3.device()->instanceNumber(), 3);
}

void tst_InstanceRegistry::destroyingTheFirstRenumbersTheOthers()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &started1 = fixture.started(first);
    HostedDevice &started2 = fixture.started(second);
    HostedDevice &started3 = fixture.started(third);
    fixture.take();
    fixture.destroy(started1);
    COMPARE_LINES(take(fixture), {u"call [1] destroyDevice()"_s, announced(second, 1), announced(third, 2)});
    QCOMPARE(started2.device()->instanceNumber(), 1);
    QCOMPARE(started3.device()->instanceNumber(), 2);
}

void tst_InstanceRegistry::destroyingOneOfTwoLeavesALoneDevice()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &started1 = fixture.started(first);
    HostedDevice &started2 = fixture.started(second);
    fixture.take();
    fixture.destroy(started1);
    COMPARE_LINES(take(fixture), {u"call [1] destroyDevice()"_s, announced(second, 0)});
    QCOMPARE(started2.device()->instanceNumber(), 0);
}

void tst_InstanceRegistry::destroyingANeverStartedDeviceAnnouncesTheOthers()
{
    PluginFixture fixture;
    HostedDevice &started1 = fixture.started(first);
    HostedDevice &started2 = fixture.started(second);
    HostedDevice &created = fixture.create(third);
    fixture.take();
    fixture.destroy(created);
    COMPARE_LINES(take(fixture),
                  {u"call [3] destroyDevice()"_s, debugLine(u"~LogicalDevice enter"_s), announced(first, 1),
                   announced(second, 2), debugLine(u"~LogicalDevice exit"_s)});
    QCOMPARE(started1.device()->instanceNumber(), 1);
    QCOMPARE(started2.device()->instanceNumber(), 2);
}

void tst_InstanceRegistry::destroyingANeverStartedDeviceAlone()
{
    PluginFixture fixture;
    HostedDevice &created = fixture.create(first);
    fixture.destroy(created);
    COMPARE_LINES(take(fixture), {u"call [1] destroyDevice()"_s, debugLine(u"~LogicalDevice enter"_s),
                                  debugLine(u"~LogicalDevice exit"_s)});
}

void tst_InstanceRegistry::stopKeepsTheNumber()
{
    PluginFixture fixture;
    HostedDevice &started1 = fixture.started(first);
    HostedDevice &started2 = fixture.started(second);
    started1.stop();
    QCOMPARE(started1.device()->instanceNumber(), 1);
    QCOMPARE(started2.device()->instanceNumber(), 2);
}

void tst_InstanceRegistry::allGoneStartsAnew()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &started1 = fixture.started(first);
    HostedDevice &started2 = fixture.started(second);
    fixture.destroy(started2);
    fixture.take();
    fixture.destroy(started1);
    COMPARE_LINES(take(fixture), {u"call [1] destroyDevice()"_s});
    QCOMPARE(fixture.started(third).device()->instanceNumber(), 0);
}

void tst_InstanceRegistry::announcementsGoToEachDevicesThread()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &started1 = fixture.started(first);
    HostedDevice &created2 = fixture.create(second);
    fixture.take();
    OtherThread other;
    other.run([&] { created2.start(); });

    // The numbers are there at once, the announcements wait for the devices' thread.
    QCOMPARE(started1.device()->instanceNumber(), 1);
    QCOMPARE(created2.device()->instanceNumber(), 2);
    QVERIFY(!take(fixture).contains(u"instanceNumberChanged"_s));
    deliverQueuedCalls();
    COMPARE_LINES(take(fixture), {announced(first, 1), announced(second, 2)});
}

void tst_InstanceRegistry::devicesOnThreeThreadsAreAnnouncedOnTheirOwn()
{
    PluginFixture fixture({false, false, false});
    OtherThread secondThread;
    OtherThread thirdThread;
    HostedDevice *onSecond = nullptr;
    HostedDevice *onThird = nullptr;
    fixture.started(first);
    secondThread.run([&] { onSecond = &fixture.create(second); });
    thirdThread.run([&] {
        onThird = &fixture.create(third);
        onThird->start();
    });
    deliverQueuedCalls();
    fixture.take();

    // The third thread waits meanwhile, so nothing is delivered there.
    QStringList atOnce;
    thirdThread.run([&] {
        secondThread.run([&] { onSecond->start(); });
        atOnce = take(fixture).mid(12);
    });
    COMPARE_LINES(atOnce, {announced(second, 3) + u" on thread 2"_s});
    thirdThread.run([] {});
    COMPARE_LINES(take(fixture), {announced(third, 2) + u" on thread 3"_s});
    deliverQueuedCalls();
    COMPARE_LINES(take(fixture), {announced(first, 1)});

    thirdThread.run([&] {
        secondThread.run([&] { fixture.destroy(*onSecond); });
        atOnce = take(fixture);
    });
    COMPARE_LINES(atOnce, {u"call [2] destroyDevice() on thread 2"_s});
    thirdThread.run([&] { fixture.destroy(*onThird); });
    COMPARE_LINES(take(fixture),
                  {announced(third, 2) + u" on thread 3"_s, u"call [3] destroyDevice() on thread 3"_s});
    deliverQueuedCalls();
    COMPARE_LINES(take(fixture), {announced(first, 0), announced(first, 0)});
}

void tst_InstanceRegistry::announcementFromAnotherThreadCarriesTheNumberAtDelivery()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &created1 = fixture.create(first);
    HostedDevice &created2 = fixture.create(second);
    OtherThread other;
    other.run([&] {
        created1.start();
        created2.start();
    });
    fixture.take();
    deliverQueuedCalls();
    COMPARE_LINES(take(fixture), {announced(first, 1), announced(first, 1), announced(second, 2)});
}

void tst_InstanceRegistry::queuedAnnouncementDiesWithItsDevice()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &created1 = fixture.create(first);
    OtherThread other;
    other.run([&] { created1.start(); });
    fixture.destroy(created1);
    fixture.take();
    deliverQueuedCalls();
    COMPARE_LINES(take(fixture), {});
}

void tst_InstanceRegistry::secondStartRegistersTwice()
{
    // Deleting the device undoes one of its two registrations, so it is deleted last and the library unloaded
    // behind it.
    PluginFixture fixture({false, false, false});
    HostedDevice &twice = fixture.started(first);
    QCOMPARE(twice.device()->instanceNumber(), 0);
    fixture.take();
    twice.start();
    COMPARE_LINES(take(fixture).mid(12), {announced(first, 2), announced(first, 2)});
    QCOMPARE(twice.device()->instanceNumber(), 2);

    HostedDevice &other = fixture.started(second);
    QCOMPARE(other.device()->instanceNumber(), 3);
    fixture.take();
    fixture.destroy(other);
    COMPARE_LINES(take(fixture), {u"call [2] destroyDevice()"_s, announced(first, 2), announced(first, 2)});
    fixture.destroy(twice);
    // The entry that stays is announced by the device that is going.
    COMPARE_LINES(take(fixture), {u"call [1] destroyDevice()"_s, announced(first, 0)});
}

void tst_InstanceRegistry::numbersAreReadUnderTheLock()
{
    // On the device's thread the announcement is made with the lock held: a reader in another thread gets its
    // answer only afterwards. The reader is let go by the announcement itself and must not have finished when
    // the slot returns to the registry, however long the slot waits.
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.create(first);
    std::atomic<bool> hasRead{false};
    bool hadReadDuringAnnouncement = true;
    std::unique_ptr<QThread> reader;
    SignalHook hook([&] {
        reader.reset(QThread::create([&] { hasRead = device.device()->instanceNumber() == 0; }));
        reader->start();
        reader->wait(100);
        hadReadDuringAnnouncement = hasRead;
    });
    QVERIFY(connect(device.object(), SIGNAL(instanceNumberChanged(int)), &hook, SLOT(run())));
    device.start();
    QVERIFY(reader);
    reader->wait();
    QVERIFY(!hadReadDuringAnnouncement);
    QVERIFY(hasRead);
}

void tst_InstanceRegistry::twoFactoriesOfOneLibraryShareTheRegistry()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &started1 = fixture.started(first);
    PluginFixture another({false, false, false});
    HostedDevice &started2 = another.started(second);
    QCOMPARE(started1.device()->instanceNumber(), 1);
    QCOMPARE(started2.device()->instanceNumber(), 2);
}

QTEST_GUILESS_MAIN(tst_InstanceRegistry)
#include "tst_InstanceRegistry.moc"
