#include "CountingReceiver.h"
#include "ILogicalDevicePlugin.h"
#include "PluginFixture.h"
#include "WatchedDevice.h"
#include "Workers.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QSemaphore>
#include <QtTest/QTest>

#include <algorithm>
#include <atomic>
#include <memory>
#include <numeric>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

constexpr int workerCount = 4;
constexpr int devicesOfAWorker = 6;
constexpr int rounds = 100;
constexpr quint16 factoryValues[5] = {800, 1600, 2400, 3200, 4000};

template <typename Number = int>
QList<Number> oneTo(int last)
{
    QList<Number> numbers(last);
    std::iota(numbers.begin(), numbers.end(), Number(1));
    return numbers;
}

using Devices = std::vector<std::unique_ptr<WatchedDevice>>;

// The library with a receiver and host services that threads may share. Its log is off: the lines would meet
// at the lock of the recorder.
struct SharedBench
{
    SharedBench() { fixture.host.initialize(&hostServices, false, false, false); }

    std::unique_ptr<WatchedDevice> started(DeviceId id)
    {
        auto *device = dynamic_cast<ILogicalDeviceGen3Mouse *>(
            fixture.host.factory()->createLogicalDevice(&receiver, id));
        auto watched = std::make_unique<WatchedDevice>(device);
        device->start();
        return watched;
    }

    // On this thread. They die with the factory.
    Devices startedDevices(int count)
    {
        Devices devices;
        for (int index = 0; index < count; ++index)
            devices.push_back(started(static_cast<DeviceId>(index)));
        return devices;
    }

    PluginFixture fixture{{false, false, false}};
    CountingHostServices hostServices;
    CountingReceiver receiver{fixture.timeline};
};

// Six requests.
constexpr int requestsOfARound = 6;

void requestAndConfirm(WatchedDevice &device, int round)
{
    device->setActiveDpiSlotIndex(100 + round);
    device->activeDpiSlotIndexConfirmed(100 + round);
    device->setDpiButtonId(100 + round);
    device->dpiButtonIdConfirmed(100 + round);
    device->setReportRate(1000 + round);
    device->reportRateConfirmed(1000 + round);
    device->setDpiSlotValues({u"800"_s, u"1600"_s, u"2400"_s, u"3200"_s, u"4000"_s});
    device->dpiSlotValuesConfirmed(factoryValues);
    device->disbaleButtonsOrKeys({1, 2});
    device->setButtonsOrKeysToDefault();
}

void callWithoutRequest(WatchedDevice &device, int round)
{
    device->setFirmwareVersion(static_cast<uint>(round));
    device->setBatteryLevel(round);
    device->dpiValueChangedCallBack(round);
    device->activeDpiSlotIndexChangedCallBack(100 + round);
    device->dpiButtonIdChangedCallBack(100 + round);
    device->dpiSlotValuesChangedCallBack(factoryValues);
    device.gen3()->ppidChangedCallBack(QString::number(round));
    device->capabilityChangedCallBack(1);
    device->applySettings({{u"round"_s, round}});
    device->resetSettings();
    device->stop();
    device->forwardToPhysicalDevice(1, 2, 3);
    device->query26(1, 2, 3);
    device->instanceNumber();
    device->defaultProfile();
    device->deviceImage();
}

// Meets the other workers: nobody goes on before all have come.
class Meeting
{
public:
    explicit Meeting(int count) : m_count(count) {}

    void attend()
    {
        if (m_arrived.fetch_add(1) + 1 == m_count)
            m_open.release(m_count);
        m_open.acquire();
    }

private:
    const int m_count;
    std::atomic<int> m_arrived{0};
    QSemaphore m_open;
};

// Devices come and go on this thread; the last ones stay.
Devices startAndDestroy(SharedBench &shared)
{
    Devices staying;
    for (int round = 0; round < rounds / 5; ++round) {
        Devices devices;
        for (DeviceId id = 0; id < devicesOfAWorker; ++id)
            devices.push_back(shared.started(id));
        for (std::size_t index = 0; index < devices.size(); ++index)
            (*devices.at((index * 5) % devices.size()))->instanceNumber();
        staying.swap(devices);
        for (const auto &device : devices)
            shared.fixture.host.factory()->destroyDevice(device->device());
    }
    return staying;
}

}  // namespace

// Each worker has devices of its own, and calls on them what may be called from anywhere; the devices' thread
// delivers at the same time. What is emitted there carries the value of that moment, but is emitted once for
// each change.
class tst_Threads : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyOperation();
    void listsAndTexts();
    void wholeCallsFromSeveralThreads();
    void gettersDuringChanges();
    void signalsOfTheReceiver();
    void startsAndDestructions();
    void mouseEventsOnSeveralThreads();
};

void tst_Threads::everyOperation()
{
    SharedBench shared;
    const Devices devices = shared.startedDevices(workerCount * devicesOfAWorker);
    std::vector<std::function<void()>> workers;
    workers.reserve(workerCount);
    for (int worker = 0; worker < workerCount; ++worker) {
        workers.emplace_back([&devices, worker] {
            for (int round = 1; round <= rounds; ++round) {
                for (int index = 0; index < devicesOfAWorker; ++index) {
                    WatchedDevice &device = *devices.at(size_t(worker * devicesOfAWorker + index));
                    device->dpiSlotValuesChangedCallBack(factoryValues);
                    requestAndConfirm(device, round);
                    callWithoutRequest(device, round);
                }
            }
        });
    }
    // Known before, as if the receiver had reported it after the start.
    Q_EMIT shared.receiver.dpiMinChanged(100);
    Q_EMIT shared.receiver.dpiMaxChanged(8000);
    runAtOnce(workers);

    QCOMPARE(shared.receiver.requestCount(), int(devices.size()) * rounds * requestsOfARound);
    for (const auto &device : devices) {
        QCOMPARE(device->firmwareVersions, oneTo<uint>(rounds));
        QCOMPARE(device->batteryLevels.size(), rounds);
        QCOMPARE(device->batteryLevels.last(), rounds);
        QCOMPARE(device->activeSlots.size(), rounds);
        QCOMPARE(device->activeSlots.last(), 100 + rounds);
        QCOMPARE(device->buttons.size(), rounds);
        QCOMPARE(device->buttons.last(), 100 + rounds);
        QCOMPARE(device->reportRates.size(), rounds);
        QCOMPARE(device->reportRates.last(), 1000 + rounds);
        QCOMPARE(device->slotValues.size(), 1);
        QCOMPARE(device->dpiChanges.load(), rounds);
        // Four flags, up and down.
        QCOMPARE(device->flagChanges, 8 * rounds);
        QCOMPARE((*device)->batteryLevel(), rounds);
        QCOMPARE((*device)->dpiValue(), rounds);
        QVERIFY(!(*device)->isActiveDpiSlotIndexChangePending());
        QVERIFY(!(*device)->isDpiSlotValuesChangePending());
        QVERIFY(!(*device)->isDpiButtonIdChangePending());
        QVERIFY(!(*device)->isReportRateChangePending());
    }
}

// A list must not change while its emission reads it, so the next change waits for the delivery.
void tst_Threads::listsAndTexts()
{
    SharedBench shared;
    const Devices devices = shared.startedDevices(workerCount);
    for (quint16 round = 1; round <= 20; ++round) {
        const quint16 values[5] = {round, 2, 3, 4, 5};
        const ReportRateInfo info{0, 500, {round, 500, 0, 0}};
        std::vector<std::function<void()>> workers;
        workers.reserve(devices.size());
        for (const auto &device : devices) {
            workers.emplace_back([&values, &info, round, &device = *device] {
                device->dpiSlotValuesChangedCallBack(values);
                device->reportRateChangedCallBack(&info);
                device.gen3()->ppidChangedCallBack(QString::number(round));
            });
        }
        runAtOnce(workers);
        const QString text = QString::number(round);
        for (const auto &device : devices) {
            QCOMPARE(device->slotValues.size(), round);
            QCOMPARE(device->slotValues.last().join(u' '), text + u" 2 3 4 5"_s);
            QCOMPARE(device->rateLists.size(), round);
            QCOMPARE(device->rateLists.last().join(u' '), text + u" 500"_s);
            QCOMPARE(device->gen3()->ppid(), text);
        }
    }
}

// setFirmwareVersion is queued whole, so it alone may be called on one device from several threads at once.
void tst_Threads::wholeCallsFromSeveralThreads()
{
    SharedBench shared;
    const std::unique_ptr<WatchedDevice> device = shared.started(1);
    std::vector<std::function<void()>> workers;
    workers.reserve(workerCount);
    for (uint worker = 0; worker < workerCount; ++worker) {
        workers.emplace_back([&device, worker] {
            for (uint round = 0; round < rounds; ++round)
                (*device)->setFirmwareVersion(worker * rounds + round);
        });
    }
    runAtOnce(workers);

    QCOMPARE(device->firmwareVersions.size(), workerCount * rounds);
    QCOMPARE((*device)->firmwareVersion(), device->firmwareVersions.last());
    // None lost, none twice, and those of one thread in its order.
    for (uint worker = 0; worker < workerCount; ++worker) {
        QList<uint> own;
        std::copy_if(device->firmwareVersions.cbegin(), device->firmwareVersions.cend(),
                     std::back_inserter(own), [&](uint version) { return version / rounds == worker; });
        QVERIFY(std::is_sorted(own.cbegin(), own.cend()));
        QCOMPARE(std::unique(own.begin(), own.end()) - own.begin(), rounds);
    }
}

// A user interface looks at the numbers and flags whenever it likes.
void tst_Threads::gettersDuringChanges()
{
    SharedBench shared;
    const std::unique_ptr<WatchedDevice> device = shared.started(1);
    const ILogicalDeviceGen3Mouse &mouse = *device->device();
    std::atomic<bool> isLookedAt{false};
    int round = 0;
    QList<int> seen[4];
    runAtOnce({[&] {
                   while (!isLookedAt.load(std::memory_order_relaxed)) {
                       callWithoutRequest(*device, ++round);
                       requestAndConfirm(*device, round);
                   }
               },
               [&] {
                   for (int look = 0; look < 10 * rounds; ++look) {
                       seen[0].append(mouse.batteryLevel());
                       seen[1].append(mouse.dpiValue());
                       seen[2].append(mouse.activeDpiSlotIndex());
                       seen[3].append(mouse.reportRate());
                   }
                   isLookedAt.store(true, std::memory_order_relaxed);
               }});
    // Each grows with the rounds, and nobody saw it otherwise.
    for (const QList<int> &values : seen)
        QVERIFY(std::is_sorted(values.cbegin(), values.cend()));
    QCOMPARE(mouse.batteryLevel(), round);
    QCOMPARE(device->firmwareVersions, oneTo<uint>(round));
    QCOMPARE(device->batteryLevels.size(), round);
}

// They wait for the devices' thread, as Qt queues them there.
void tst_Threads::signalsOfTheReceiver()
{
    SharedBench shared;
    const Devices devices = shared.startedDevices(workerCount);
    runAtOnce({[&] {
        for (int round = 1; round <= rounds; ++round)
            Q_EMIT shared.receiver.dpiMinChanged(round);
    }});
    for (const auto &device : devices) {
        QCOMPARE(device->dpiMinima, oneTo(rounds));
        QCOMPARE((*device)->dpiMin(), rounds);
    }
}

// Devices live on the thread that creates them; all are in the one registry, which has a lock.
void tst_Threads::startsAndDestructions()
{
    SharedBench shared;
    Meeting allStarted(workerCount);
    Meeting allLookedAt(workerCount);
    std::vector<QList<int>> numbers(workerCount);
    std::vector<int> disagreements(workerCount, 0);
    std::vector<std::function<void()>> workers;
    workers.reserve(workerCount);
    for (std::size_t worker = 0; worker < workerCount; ++worker) {
        workers.emplace_back([&, worker] {
            const Devices devices = startAndDestroy(shared);
            allStarted.attend();
            QCoreApplication::sendPostedEvents();
            for (const auto &device : devices) {
                numbers.at(worker).append((*device)->instanceNumber());
                disagreements.at(worker) += device->instanceNumbers.last() != (*device)->instanceNumber();
            }
            allLookedAt.attend();
            for (const auto &device : devices)
                shared.fixture.host.factory()->destroyDevice(device->device());
        });
    }
    runAtOnce(workers);

    QList<int> all;
    for (const QList<int> &own : numbers) {
        // In the order of their start.
        QVERIFY(std::is_sorted(own.cbegin(), own.cend()));
        all += own;
    }
    std::sort(all.begin(), all.end());
    QCOMPARE(all, oneTo(workerCount * devicesOfAWorker));
    QCOMPARE(disagreements, std::vector<int>(workerCount, 0));
    QCOMPARE((*shared.started(1))->instanceNumber(), 0);
}

// Each on its device's own thread, where its timer is.
void tst_Threads::mouseEventsOnSeveralThreads()
{
    SharedBench shared;
    runAtOnce(std::vector<std::function<void()>>(workerCount, [&] {
        const std::unique_ptr<WatchedDevice> device = shared.started(1);
        for (int round = 0; round < rounds; ++round) {
            (*device)->mouseEventCallBack(0x9f);
            (*device)->mouseEventCallBack(0);
        }
        shared.fixture.host.factory()->destroyDevice(device->device());
    }));
    QCOMPARE(shared.hostServices.ctrlEventCount(), 2 * workerCount * rounds);
    QCOMPARE(shared.hostServices.buttonEventCount(), 2 * 5 * workerCount * rounds);
}

QTEST_GUILESS_MAIN(tst_Threads)
#include "tst_Threads.moc"
