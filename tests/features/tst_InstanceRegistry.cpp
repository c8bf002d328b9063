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
    void devicesOnThreeThreadsAreAnnouncedOnTheirOwn();
    void numbersAreReadUnderTheLock();
    void twoFactoriesOfOneLibraryShareTheRegistry();

private:
    static QStringList take(PluginFixture &fixture) { return fixture.take(Timeline::Style::WithDevice); }
};

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
