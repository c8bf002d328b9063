#include "AllocationCount.h"
#include "LibraryRound.h"
#include "StepThread.h"

#include <QtTest/QTest>

#include <memory>

namespace {

// Qt fills caches of its own in the first lives.
constexpr int warmUpRounds = 20;

}  // namespace

// The blocks of the heap are counted, one by one, as no size of a process could tell them.
class tst_LifecycleMemory : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyBlockIsCounted();
    void noLifeLeavesABlock();
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

QTEST_GUILESS_MAIN(tst_LifecycleMemory)
#include "tst_LifecycleMemory.moc"
