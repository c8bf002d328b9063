#include "Allocations.h"
#include "Heap.h"
#include "Operations.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

#include <benchmark/benchmark.h>
#include <valgrind/callgrind.h>

#include <cstdio>
#include <cstring>
#include <malloc.h>

namespace {

constexpr char usage[] = "measure: say --exact, --instructions (under callgrind), or --time and what Google "
                         "Benchmark understands; "
                         "./dev bench does all three\n";

// Allocations are the same each time, so a few calls tell.
QJsonObject allocationsOf(const std::vector<Subject> &subjects)
{
    QJsonObject perCall;
    for (const Subject &subject : subjects) {
        const std::unique_ptr<Operation> operation = subject.make();
        operation->run(subject.batch);
        const std::size_t before = Allocations::count();
        operation->run(subject.batch);
        const std::size_t made = Allocations::count() - before;
        perCall.insert(subject.name, static_cast<double>(made) / static_cast<double>(subject.batch));
    }
    return perCall;
}

int countExactly(const std::vector<Subject> &subjects)
{
    const QJsonObject found{{QStringLiteral("allocations"), allocationsOf(subjects)},
                            {QStringLiteral("heap"), heapOfOneDevice()}};
    std::puts(QJsonDocument(found).toJson().constData());
    return 0;
}

// One dump of callgrind's for each subject, named "NAME CALLS".
int countInstructions(const std::vector<Subject> &subjects)
{
    if (RUNNING_ON_VALGRIND == 0) {
        std::fputs("measure: --instructions needs callgrind around it; ./dev bench does that\n", stderr);
        return 2;
    }
    for (const Subject &subject : subjects) {
        const std::unique_ptr<Operation> operation = subject.make();
        operation->run(subject.batch);
        const QByteArray name = subject.name.toUtf8() + ' ' + QByteArray::number(subject.batch);
        CALLGRIND_START_INSTRUMENTATION;
        CALLGRIND_ZERO_STATS;
        operation->run(subject.batch);
        CALLGRIND_DUMP_STATS_AT(name.constData());
        CALLGRIND_STOP_INSTRUMENTATION;
    }
    return 0;
}

void measureTime(benchmark::State &state, const Subject &subject)
{
    const std::unique_ptr<Operation> operation = subject.make();
    operation->run(subject.batch);
    while (state.KeepRunningBatch(subject.batch))
        operation->run(subject.batch);
}

int measureTimes(int argc, char **argv, const std::vector<Subject> &subjects)
{
    benchmark::Initialize(&argc, argv);
    if (argc > 1) {
        std::fprintf(stderr, "measure: Google Benchmark does not know '%s'; see --help\n", argv[1]);
        return 2;
    }
    for (const Subject &subject : subjects) {
        auto *measured =
            benchmark::RegisterBenchmark(subject.name.toUtf8().constData(), measureTime, subject);
        if (subject.hasThreads)
            measured->MeasureProcessCPUTime();
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

}  // namespace

int main(int argc, char **argv)
{
    // Qt's own event loop: GLib's makes a system call for each queued event, beside which nothing else would
    // show.
    qputenv("QT_NO_GLIB", "1");
    // One heap for all threads: with several, the operations that happen to share one would be the slower
    // ones.
    mallopt(M_ARENA_MAX, 1);
    const QCoreApplication application(argc, argv);
    const std::vector<Subject> subjects = allSubjects();
    if (argc == 2 && std::strcmp(argv[1], "--exact") == 0)
        return countExactly(subjects);
    if (argc == 2 && std::strcmp(argv[1], "--instructions") == 0)
        return countInstructions(subjects);
    if (argc >= 2 && std::strcmp(argv[1], "--time") == 0) {
        argv[1] = argv[0];
        return measureTimes(argc - 1, argv + 1, subjects);
    }
    std::fputs(usage, stderr);
    return 2;
}
