#include "Bench.h"
#include "OtherThread.h"
#include "TimelineText.h"

#include <QtTest/QTest>

#include <atomic>
#include <functional>
#include <memory>
#include <utility>

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

/// Runs a function inside an emission.
class SignalHook : public QObject
{
    Q_OBJECT

public:
    explicit SignalHook(std::function<void()> hook) : m_hook(std::move(hook)) {}

public Q_SLOTS:
    void run() { m_hook(); }

private:
    std::function<void()> m_hook;
};

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
    void announcementFromAnotherThreadCarriesTheNumberAtDelivery();
    void queuedAnnouncementDiesWithItsDevice();
    void secondStartRegistersTwice();
    void numbersAreReadUnderTheLock();
    void twoFactoriesOfOneLibraryShareTheRegistry();

private:
    static QString take(Bench &bench) { return bench.take(Timeline::Style::WithDevice); }
};

void tst_InstanceRegistry::numberIsOneBeforeStart()
{
    Bench bench;
    QCOMPARE(bench.create(first).device()->instanceNumber(), 1);
    QCOMPARE(bench.create(second).device()->instanceNumber(), 1);
}

void tst_InstanceRegistry::loneDeviceHasNumberZero()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.create(first);
    device.start();
    QCOMPARE(take(bench).split(u'\n').last(), announced(first, 0));
    QCOMPARE(device.device()->instanceNumber(), 0);
}

void tst_InstanceRegistry::severalAreNumberedInOrderOfStart()
{
    Bench bench({false, false, false});
    HostedDevice &created1 = bench.create(first);
    HostedDevice &created2 = bench.create(second);
    HostedDevice &created3 = bench.create(third);

    created2.start();
    created1.start();
    QCOMPARE(take(bench).split(u'\n').mid(25), QStringList({announced(second, 1), announced(first, 2)}));
    QCOMPARE(created2.device()->instanceNumber(), 1);
    QCOMPARE(created1.device()->instanceNumber(), 2);
    QCOMPARE(created3.device()->instanceNumber(), 1);

    created3.start();
    QCOMPARE(take(bench).split(u'\n').mid(12),
             QStringList({announced(second, 1), announced(first, 2), announced(third, 3)}));
    QCOMPARE(created3.device()->instanceNumber(), 3);
}

void tst_InstanceRegistry::destroyingTheFirstRenumbersTheOthers()
{
    Bench bench({false, false, false});
    HostedDevice &started1 = bench.started(first);
    HostedDevice &started2 = bench.started(second);
    HostedDevice &started3 = bench.started(third);
    bench.take();
    bench.destroy(started1);
    QCOMPARE(take(bench),
             timelineText({u"call [1] destroyDevice()"_s, announced(second, 1), announced(third, 2)}));
    QCOMPARE(started2.device()->instanceNumber(), 1);
    QCOMPARE(started3.device()->instanceNumber(), 2);
}

void tst_InstanceRegistry::destroyingOneOfTwoLeavesALoneDevice()
{
    Bench bench({false, false, false});
    HostedDevice &started1 = bench.started(first);
    HostedDevice &started2 = bench.started(second);
    bench.take();
    bench.destroy(started1);
    QCOMPARE(take(bench), timelineText({u"call [1] destroyDevice()"_s, announced(second, 0)}));
    QCOMPARE(started2.device()->instanceNumber(), 0);
}

void tst_InstanceRegistry::destroyingANeverStartedDeviceAnnouncesTheOthers()
{
    Bench bench;
    HostedDevice &started1 = bench.started(first);
    HostedDevice &started2 = bench.started(second);
    HostedDevice &created = bench.create(third);
    bench.take();
    bench.destroy(created);
    QCOMPARE(take(bench),
             timelineText({u"call [3] destroyDevice()"_s, debugLine(u"~LogicalDevice enter"_s),
                           announced(first, 1), announced(second, 2), debugLine(u"~LogicalDevice exit"_s)}));
    QCOMPARE(started1.device()->instanceNumber(), 1);
    QCOMPARE(started2.device()->instanceNumber(), 2);
}

void tst_InstanceRegistry::destroyingANeverStartedDeviceAlone()
{
    Bench bench;
    HostedDevice &created = bench.create(first);
    bench.destroy(created);
    QCOMPARE(take(bench), timelineText({u"call [1] destroyDevice()"_s, debugLine(u"~LogicalDevice enter"_s),
                                        debugLine(u"~LogicalDevice exit"_s)}));
}

void tst_InstanceRegistry::stopKeepsTheNumber()
{
    Bench bench;
    HostedDevice &started1 = bench.started(first);
    HostedDevice &started2 = bench.started(second);
    started1.stop();
    QCOMPARE(started1.device()->instanceNumber(), 1);
    QCOMPARE(started2.device()->instanceNumber(), 2);
}

void tst_InstanceRegistry::allGoneStartsAnew()
{
    Bench bench({false, false, false});
    HostedDevice &started1 = bench.started(first);
    HostedDevice &started2 = bench.started(second);
    bench.destroy(started2);
    bench.take();
    bench.destroy(started1);
    QCOMPARE(take(bench), u"call [1] destroyDevice()"_s);
    QCOMPARE(bench.started(third).device()->instanceNumber(), 0);
}

void tst_InstanceRegistry::announcementsGoToEachDevicesThread()
{
    Bench bench({false, false, false});
    HostedDevice &started1 = bench.started(first);
    HostedDevice &created2 = bench.create(second);
    bench.take();
    OtherThread other;
    other.run([&] { created2.start(); });

    // The numbers are there at once, the announcements wait for the devices' thread.
    QCOMPARE(started1.device()->instanceNumber(), 1);
    QCOMPARE(created2.device()->instanceNumber(), 2);
    QVERIFY(!take(bench).contains(u"instanceNumberChanged"_s));
    deliverQueuedCalls();
    QCOMPARE(take(bench), timelineText({announced(first, 1), announced(second, 2)}));
}

void tst_InstanceRegistry::announcementFromAnotherThreadCarriesTheNumberAtDelivery()
{
    Bench bench({false, false, false});
    HostedDevice &created1 = bench.create(first);
    HostedDevice &created2 = bench.create(second);
    OtherThread other;
    other.run([&] {
        created1.start();
        created2.start();
    });
    bench.take();
    deliverQueuedCalls();
    QCOMPARE(take(bench), timelineText({announced(first, 1), announced(first, 1), announced(second, 2)}));
}

void tst_InstanceRegistry::queuedAnnouncementDiesWithItsDevice()
{
    Bench bench({false, false, false});
    HostedDevice &created1 = bench.create(first);
    OtherThread other;
    other.run([&] { created1.start(); });
    bench.destroy(created1);
    bench.take();
    deliverQueuedCalls();
    QCOMPARE(take(bench), QString());
}

void tst_InstanceRegistry::secondStartRegistersTwice()
{
    // Deleting the device undoes one of its two registrations, so it is deleted last and the library unloaded
    // behind it.
    Bench bench({false, false, false});
    HostedDevice &twice = bench.started(first);
    QCOMPARE(twice.device()->instanceNumber(), 0);
    bench.take();
    twice.start();
    QCOMPARE(take(bench).split(u'\n').mid(12), QStringList({announced(first, 2), announced(first, 2)}));
    QCOMPARE(twice.device()->instanceNumber(), 2);

    HostedDevice &other = bench.started(second);
    QCOMPARE(other.device()->instanceNumber(), 3);
    bench.take();
    bench.destroy(other);
    QCOMPARE(take(bench),
             timelineText({u"call [2] destroyDevice()"_s, announced(first, 2), announced(first, 2)}));
    bench.destroy(twice);
    // The entry that stays is announced by the device that is going.
    QCOMPARE(take(bench), timelineText({u"call [1] destroyDevice()"_s, announced(first, 0)}));
}

void tst_InstanceRegistry::numbersAreReadUnderTheLock()
{
    // On the device's thread the announcement is made with the lock held: a reader in another thread gets its
    // answer only afterwards. The reader is let go by the announcement itself and must not have finished when
    // the slot returns to the registry, however long the slot waits.
    Bench bench({false, false, false});
    HostedDevice &device = bench.create(first);
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
    Bench bench({false, false, false});
    HostedDevice &started1 = bench.started(first);
    Bench another({false, false, false});
    HostedDevice &started2 = another.started(second);
    QCOMPARE(started1.device()->instanceNumber(), 1);
    QCOMPARE(started2.device()->instanceNumber(), 2);
}

QTEST_GUILESS_MAIN(tst_InstanceRegistry)
#include "tst_InstanceRegistry.moc"
