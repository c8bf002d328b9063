#include "LibraryRound.h"
#include "OtherThread.h"
#include "PluginFixture.h"
#include "ProcessState.h"
#include "StepThread.h"
#include "TimelineText.h"

#include <QtTest/QTest>

#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int deviceCount = 100;
// What Qt and the C library open once: found to be settled after the first life.
constexpr int warmUpRounds = 3;

using Devices = std::vector<std::unique_ptr<HostedDevice>>;

// Started devices that nobody will destroy.
Devices startedDevices(PluginFixture &fixture)
{
    Devices devices;
    for (DeviceId id = 1; id <= deviceCount; ++id) {
        devices.push_back(fixture.host.createDevice(&fixture.receiver, id));
        devices.back()->start();
    }
    return devices;
}

// Two emissions, a whole call and a running timer for each device.
void queueCallsForAll(const Devices &devices)
{
    OtherThread other;
    other.run([&] {
        for (const auto &device : devices) {
            device->setBatteryLevel(5);
            device->setFirmwareVersion(7);
            device->setReportRate(1000);
        }
    });
    for (const auto &device : devices)
        device->mouseEventCallBack(0x80);
}

QStringList signalsOnTimeline(const PluginFixture &fixture)
{
    QStringList lines;
    const QList<TimelineEntry> entries = fixture.timeline.entries();
    for (const TimelineEntry &entry : entries) {
        if (entry.kind == TimelineEntry::Kind::Signal)
            lines += Timeline::line(entry, Timeline::Style::Plain);
    }
    return lines;
}

// The devices go in the order of their creation, and each leaving renumbers those that stay.
QStringList announcementsWhenAllGo()
{
    QStringList lines;
    for (int left = deviceCount - 1; left > 0; --left) {
        for (int position = 0; position < left; ++position)
            lines += u"signal instanceNumberChanged(%1)"_s.arg(left == 1 ? 0 : position + 1);
    }
    return lines;
}

}  // namespace

// The library comes and goes, and takes with it all that it brought.
class tst_LibraryLifecycle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyLifeIsTheFirst();
    void factoryDeletedWithDevicesAliveAndCallsQueued();
    void unloadedWithDevicesAliveAndCallsQueued();
};

void tst_LibraryLifecycle::everyLifeIsTheFirst()
{
    const int rounds = roundsToPlay();
    StepThread otherThread;
    int handles = 0;
    for (int round = 0; round < rounds + warmUpRounds; ++round) {
        QCOMPARE(liveOnce(otherThread), wholeLife());
        if (round == warmUpRounds - 1)
            handles = openHandleCount();
    }
    QVERIFY(handles > 0);
    QCOMPARE(openHandleCount(), handles);
    qInfo("%d lives of the library, %d handles open before and after", rounds, handles);
}

void tst_LibraryLifecycle::factoryDeletedWithDevicesAliveAndCallsQueued()
{
    PluginFixture fixture({false, false, false});
    {
        const Devices devices = startedDevices(fixture);
        queueCallsForAll(devices);
        fixture.timeline.clear();
        delete fixture.host.root();
    }
    QCOMPARE(signalsOnTimeline(fixture), announcementsWhenAllGo());
    fixture.timeline.clear();
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {});

    // The plugin loader makes a new factory, which finds nobody registered.
    QVERIFY(!fixture.host.load(PluginFixture::builtPluginFile()));
    fixture.host.initialize(&fixture.hostServices, false, false, false);
    QCOMPARE(fixture.started().device()->instanceNumber(), 0);
}

void tst_LibraryLifecycle::unloadedWithDevicesAliveAndCallsQueued()
{
    PluginFixture fixture({false, false, false});
    const Devices devices = startedDevices(fixture);
    queueCallsForAll(devices);
    fixture.timeline.clear();
    QVERIFY(fixture.host.unload());
    QCOMPARE(signalsOnTimeline(fixture), announcementsWhenAllGo());
    fixture.timeline.clear();
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {});
    QCOMPARE(fixture.receiver.connectionCount("dpiMinChanged(int)"), 0);
}

QTEST_GUILESS_MAIN(tst_LibraryLifecycle)
#include "tst_LibraryLifecycle.moc"
