#include "AllocationCount.h"
#include "LibraryRound.h"
#include "PluginFixture.h"
#include "StepThread.h"

#include <QtTest/QTest>

#include <memory>

namespace {

// Qt fills caches of its own in the first lives.
constexpr int warmUpRounds = 20;

// Enough for a text that gets a letter longer with each use to need a larger block many times over.
constexpr int uses = 2000;

// Puts back all that useOnce() changes, so that the next use has the same to do.
void resetDevice(PluginFixture &fixture, HostedDevice &device)
{
    constexpr quint16 values[5] = {800, 1600, 2400, 3200, 4000};
    Q_EMIT fixture.receiver.dpiMinChanged(50);
    Q_EMIT fixture.receiver.dpiMaxChanged(4000);
    device.dpiSlotValuesChangedCallBack(values);
    device.activeDpiSlotIndexChangedCallBack(2);
    device.dpiButtonIdConfirmed(4);
    device.dpiButtonIdChangedCallBack(15);
    device.setReportRate(500);
    device.reportRateConfirmed(500);
    device.setButtonsOrKeysToDefault();
    device.resetSettings();
    device.ppidChangedCallBack({});
    device.mouseEventCallBack(0);
    device.setFirmwareVersion(1);
    device.setBatteryLevel(1);
    device.setBatteryLevel(2);
    device.capabilityChangedCallBack(1);
    device.stop();
}

}  // namespace

// The blocks of the heap are counted, one by one, as no size of a process could tell them.
class tst_LifecycleMemory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyBlockIsCounted();
    void everyByteIsCounted();
    void noLifeLeavesABlock();
    void noUseTakesMemory();
};

void tst_LifecycleMemory::everyBlockIsCounted()
{
    const long before = outstandingBlocks();
    const auto byNew = std::make_unique<int>(1);
    const auto byQt = std::make_unique<QObject>();
    const std::unique_ptr<void, decltype(&std::free)> byCalloc(std::calloc(3, 5), &std::free);
    const long during = outstandingBlocks();
    // Qt has a second block for the private part of an object.
    QCOMPARE(during - before, 4);
}

void tst_LifecycleMemory::everyByteIsCounted()
{
    const long before = outstandingBytes();
    void *block = std::malloc(1000);
    const long small = outstandingBytes() - before;
    // More than the heap can add without a word.
    void *moved = std::realloc(block, 100000);
    const long large = outstandingBytes() - before;
    std::free(moved);
    QVERIFY(small >= 1000 && small < 1100);
    QVERIFY(large >= 100000 && large < 105000);
    QCOMPARE(outstandingBytes(), before);
}

void tst_LifecycleMemory::noLifeLeavesABlock()
{
    const int rounds = roundsToPlay();
    const QString expected = wholeLife();
    StepThread otherThread;
    for (int round = 0; round < warmUpRounds; ++round)
        QCOMPARE(liveOnce(otherThread), expected);

    const long before = outstandingBlocks();
    for (int round = 0; round < rounds; ++round)
        QVERIFY(liveOnce(otherThread) == expected);
    QCOMPARE(outstandingBlocks(), before);
    qInfo("%d lives of the library, %ld blocks of the heap in use before and after", rounds, before);
}

// One life, however long: what is used again and again stays as large as it is.
void tst_LifecycleMemory::noUseTakesMemory()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    const auto useAndReset = [&] {
        useOnce(fixture, device);
        resetDevice(fixture, device);
        fixture.timeline.clear();
    };
    for (int use = 0; use < warmUpRounds; ++use)
        useAndReset();

    const long blocks = outstandingBlocks();
    const long bytes = outstandingBytes();
    for (int use = 0; use < uses; ++use)
        useAndReset();
    QCOMPARE(outstandingBlocks(), blocks);
    QCOMPARE(outstandingBytes(), bytes);
}

QTEST_GUILESS_MAIN(tst_LifecycleMemory)
#include "tst_LifecycleMemory.moc"
