#include "Allocations.h"
#include "MeasuredDevice.h"
#include "Subject.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QHashFunctions>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <valgrind/callgrind.h>

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <limits>
#include <malloc.h>

namespace {

// One dump of callgrind's, named "NAME CALLS".
void countInstructions(const Subject &subject)
{
    const std::unique_ptr<Operation> operation = subject.make();
    operation->run(subject.calls);
    const QByteArray name = subject.name.toUtf8() + ' ' + QByteArray::number(subject.calls);
    CALLGRIND_START_INSTRUMENTATION;
    CALLGRIND_ZERO_STATS;
    operation->run(subject.calls);
    CALLGRIND_DUMP_STATS_AT(name.constData());
    CALLGRIND_STOP_INSTRUMENTATION;
}

// Nanoseconds of processor time of all threads, of the fastest of a few repetitions.
double timeOf(Operation &operation, qint64 calls)
{
    constexpr int repetitions = 5;
    constexpr std::clock_t leastTicks = CLOCKS_PER_SEC / 500;
    double fewestTicks = std::numeric_limits<double>::max();
    for (int repetition = 0; repetition < repetitions; ++repetition) {
        const std::clock_t begin = std::clock();
        std::clock_t ticks = 0;
        qint64 made = 0;
        for (; ticks < leastTicks; ticks = std::clock() - begin) {
            operation.run(calls);
            made += calls;
        }
        fewestTicks = std::min(fewestTicks, static_cast<double>(ticks) / static_cast<double>(made));
    }
    return fewestTicks * 1e9 / CLOCKS_PER_SEC;
}

QJsonObject costOf(const Subject &subject)
{
    const std::unique_ptr<Operation> operation = subject.make();
    operation->run(subject.calls);
    const qint64 before = Allocations::count().made;
    operation->run(subject.calls);
    const qint64 made = Allocations::count().made - before;
    return {{QStringLiteral("name"), subject.name},
            {QStringLiteral("allocations"), static_cast<double>(made) / static_cast<double>(subject.calls)},
            {QStringLiteral("time"), timeOf(*operation, subject.calls)}};
}

QJsonObject heapOfOneDevice()
{
    QuietReceiver receiver;
    Allocations::Count before;
    Allocations::Count after;
    // The first device fills what Qt and the library keep between two of them; the second one counts.
    for (int devices = 0; devices < 2; ++devices) {
        before = Allocations::count();
        ILogicalDevice *device = factory().createLogicalDevice(&receiver, 1);
        device->start();
        after = Allocations::count();
        factory().destroyDevice(device);
    }
    return {{QStringLiteral("name"), QStringLiteral("heap of a started device, blocks and bytes")},
            {QStringLiteral("bytes"), after.bytes - before.bytes},
            {QStringLiteral("blocks"), after.blocks - before.blocks}};
}

}  // namespace

// Under callgrind it counts instructions; else it prints the other costs as JSON.
int main(int argc, char **argv)
{
    // Qt's own event loop: GLib's makes a system call for each queued event, beside which nothing else would
    // show.
    qputenv("QT_NO_GLIB", "1");
    // One heap for all threads, and the same hashes in every run, so that all runs cost the same.
    mallopt(M_ARENA_MAX, 1);
    QHashSeed::setDeterministicGlobalSeed();
    const QCoreApplication application(argc, argv);
    QJsonArray costs;
    for (const Subject &subject : allSubjects()) {
        if (RUNNING_ON_VALGRIND != 0)
            countInstructions(subject);
        else
            costs.append(costOf(subject));
    }
    if (RUNNING_ON_VALGRIND == 0)
        costs.append(heapOfOneDevice());
    std::puts(QJsonDocument(costs).toJson().constData());
    return 0;
}
