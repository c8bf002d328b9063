#include "Probe.h"
#include "ProcessMemory.h"
#include "Record.h"

#include <QtCore/QCborMap>
#include <QtCore/QDeadlineTimer>
#include <QtCore/QDebug>
#include <QtCore/QElapsedTimer>
#include <QtCore/QEventLoop>
#include <QtCore/QJsonArray>
#include <QtCore/QJsonObject>
#include <QtCore/QProcess>
#include <QtCore/QSemaphore>
#include <QtCore/QThread>
#include <QtCore/QTimer>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>

#include <atomic>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <thread>
#include <typeinfo>

using namespace std::chrono_literals;
using namespace Qt::StringLiterals;

// What Qt's classes have among their members has the same size in both standard libraries.
static_assert(sizeof(std::unique_ptr<int>) == sizeof(void *));
static_assert(sizeof(std::pair<void *, char>) == 2 * sizeof(void *));
static_assert(sizeof(std::atomic<int>) == sizeof(int) && sizeof(std::atomic<void *>) == sizeof(void *));
static_assert(sizeof(std::chrono::nanoseconds) == 8 && sizeof(std::exception_ptr) == 2 * sizeof(void *));

namespace {

/// Runs it in a thread that begins and ends meanwhile. Answers what that thread noted.
QStringList inThread(const std::function<void()> &run)
{
    std::thread thread(run);
    const std::thread::id id = thread.get_id();
    thread.join();
    return Record::ofThread(id);
}

QString printed(QProcess &program)
{
    return QString::fromLocal8Bit(program.readAllStandardOutput()).remove(u'\r');
}

constexpr unsigned long errorDllInitFailed = 1114;

// What the functions that are given to the probe work with, as they are plain functions.
QSemaphore entered;
QSemaphore mayGoOn;
std::atomic<int> calls = 0;
const Probe *loaded = nullptr;

}  // namespace

class tst_WindowsRuntime : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup();

    void staticObjectsBeginInOrderAndEndInReverse();
    void exitFunctionsOfALibraryRunAtItsUnload();
    void exitFunctionMayRegisterAnother();
    void initializerThatFailsRefusesTheLibrary_data();
    void initializerThatFailsRefusesTheLibrary();
    void loadingAThousandTimesLeavesNothing();

    void programKeepsItsExitCode_data();
    void programKeepsItsExitCode();
    void uncaughtExceptionTerminatesTheProgram_data();
    void uncaughtExceptionTerminatesTheProgram();
    void programGetsItsArguments();

    void localStaticIsInitializedOnceByTwoThreads();
    void localStaticIsInitializedAgainAfterAnException();
    void waitingThreadInitializesAfterAnException();

    void eachThreadHasVariablesOfItsOwn();
    void endOfThreadRunsDestructorsInReverse();
    void threadFromBeforeTheLoadIsInitializedAtFirstUse();
    void unloadEndsTheThreadLocalsOfItsThread();
    void threadMayEndAfterTheUnload();
    void threadLocalIsAligned();

    void exceptionsOfTheLibraryAreCaughtByType();
    void exceptionsOfTheProgramAreCaughtInTheLibrary();
    void exceptionsOfMicrosoftsRuntimeAreCaughtByType();
    void exceptionsEndTheFramesOfBoth();
    void exceptionPointerCrossesThreads();
    void typesAreTheSameInBoth();

    void hugeNewThrows();
    void hugeNewAnswersNullWhenToldNotToThrow();
    void newHandlerIsCalled();
    void newAligns();
    void bigFrameTouchesEachPage();
    void dividesNumbersOf128Bits_data();
    void dividesNumbersOf128Bits();

    void jsonArrayIsMadeFromAList();
    void jsonObjectIsMadeFromAList();
    void cborMapIsMadeFromAList();
    void createdThreadRunsItsFunction();
    void createdThreadMayBeDeletedWhileItRuns();
    void timerTakesDurations();
    void singleShotTakesADuration();
    void deadlineAnswersADuration();
    void testSleepTakesADuration();
    void listGrows();
};

void tst_WindowsRuntime::cleanup()
{
    Record::setWish("");
    Record::take();
    loaded = nullptr;
    calls = 0;
    entered.acquire(entered.available());
    mayGoOn.acquire(mayGoOn.available());
}

// --- start and end of a library ---

void tst_WindowsRuntime::staticObjectsBeginInOrderAndEndInReverse()
{
    Probe probe;
    QVERIFY(probe.isLoaded());
    QCOMPARE(Record::take(),
             (QStringList{u"C's initializer"_s, u"early object"_s, u"first object"_s, u"second object"_s,
                          u"object of the second unit"_s, u"thread's first"_s, u"thread's second"_s}));
    probe.unload();
    QVERIFY(!Probe::isInProcess());
    // The destructor of the thread's second object uses the thread's local one.
    QCOMPARE(Record::take(),
             (QStringList{u"local of thread"_s, u"end of thread's second"_s, u"end of local of thread"_s,
                          u"end of thread's first"_s, u"end of object of the second unit"_s,
                          u"end of second object"_s, u"end of first object"_s, u"end of early object"_s}));
}

void tst_WindowsRuntime::exitFunctionsOfALibraryRunAtItsUnload()
{
    Probe probe;
    QVERIFY(probe.isLoaded());
    OF_PROBE(probe, registerExitFunctions)();
    Record::take();
    probe.unload();
    const QStringList events = Record::take();
    const auto second = events.indexOf(u"second exit function"_s);
    QCOMPARE(events.mid(second, 3), (QStringList{u"second exit function"_s, u"first exit function"_s,
                                                 u"end of object of the second unit"_s}));
}

void tst_WindowsRuntime::exitFunctionMayRegisterAnother()
{
    Record::setWish(Wish::registerAtExit);
    Probe probe;
    QVERIFY(probe.isLoaded());
    probe.unload();
    QCOMPARE(Record::take().count(u"another exit function"_s), 1);
}

void tst_WindowsRuntime::initializerThatFailsRefusesTheLibrary_data()
{
    QTest::addColumn<QByteArray>("wish");
    QTest::addColumn<QStringList>("events");

    QTest::newRow("in-c") << QByteArray(Wish::failInC) << QStringList{u"C's initializer"_s};
    QTest::newRow("exception") << QByteArray(Wish::throwInCpp)
                               << QStringList{u"C's initializer"_s,
                                              u"early object"_s,
                                              u"first object"_s,
                                              u"second object"_s,
                                              u"object of the second unit"_s,
                                              u"end of object of the second unit"_s,
                                              u"end of second object"_s,
                                              u"end of first object"_s,
                                              u"end of early object"_s};
}

void tst_WindowsRuntime::initializerThatFailsRefusesTheLibrary()
{
    QFETCH(const QByteArray, wish);
    Record::setWish(wish.constData());
    const Probe probe;
    QVERIFY(!probe.isLoaded());
    QCOMPARE(probe.error(), errorDllInitFailed);
    QVERIFY(!Probe::isInProcess());
    QTEST(Record::take(), "events");
}

void tst_WindowsRuntime::loadingAThousandTimesLeavesNothing()
{
    constexpr int warmUpRounds = 100;
    constexpr int rounds = 1000;
    const auto useOnce = [] {
        const Probe probe;
        OF_PROBE(probe, registerExitFunctions)();
        OF_PROBE(probe, useLocalOfThread)();
        inThread([&probe] { *OF_PROBE(probe, threadConstructed)() = 1; });
        Record::take();
    };
    // Windows and Qt fill caches of their own in the first rounds.
    for (int round = 0; round < warmUpRounds; ++round)
        useOnce();
    const qsizetype before = ProcessMemory::heapBlocks();
    for (int round = 0; round < rounds; ++round)
        useOnce();
    QVERIFY(!Probe::isInProcess());
    QVERIFY(before > 0);
    // Wine keeps 31 small blocks in one, so one that is left behind by each round makes 32. Windows' own
    // threads may have work to do meanwhile.
    constexpr int allowed = 24;
    QCOMPARE_LT(ProcessMemory::heapBlocks(), before + allowed);
}

// --- start and end of a program ---

void tst_WindowsRuntime::programKeepsItsExitCode_data()
{
    QTest::addColumn<QString>("mode");
    QTest::addColumn<int>("code");
    QTest::addColumn<QString>("output");

    const QString endOfProgram = u"end of main thread's object\nsecond exit function\nfirst exit function\n"
                                 "end of static object\n"_s;
    QTest::newRow("return") << u"return"_s << 7 << u"end of main\n"_s + endOfProgram;
    QTest::newRow("exit") << u"exit"_s << 9 << endOfProgram;
}

void tst_WindowsRuntime::programKeepsItsExitCode()
{
    QFETCH(const QString, mode);
    QProcess program;
    program.start(QStringLiteral(KVX_RUNTIME_PROGRAM), {mode});
    QVERIFY(program.waitForFinished(-1));
    QTEST(printed(program), "output");
    QCOMPARE(program.exitStatus(), QProcess::NormalExit);
    QTEST(program.exitCode(), "code");
}

void tst_WindowsRuntime::uncaughtExceptionTerminatesTheProgram_data()
{
    QTest::addColumn<QString>("mode");

    QTest::newRow("out-of-main") << u"throw"_s;
    QTest::newRow("out-of-a-static-initializer") << u"throw-before-main"_s;
}

void tst_WindowsRuntime::uncaughtExceptionTerminatesTheProgram()
{
    QFETCH(const QString, mode);
    QProcess program;
    program.start(QStringLiteral(KVX_RUNTIME_PROGRAM), {mode});
    QVERIFY(program.waitForFinished(-1));
    QCOMPARE(printed(program), u"terminate handler\n"_s);
    QCOMPARE(program.exitCode(), 5);
}

void tst_WindowsRuntime::programGetsItsArguments()
{
    QProcess program;
    program.start(QStringLiteral(KVX_RUNTIME_PROGRAM), {u"return"_s, u"two words"_s, u"*.*"_s, u"a\"quote"_s,
                                                        u"back\\slash\\"_s, u"ends\\ \\"_s, QString()});
    QVERIFY(program.waitForFinished(-1));
    const QString output = printed(program);
    QCOMPARE(output.left(output.indexOf(u"end of main"_s)),
             u"two words\n*.*\na\"quote\nback\\slash\\\nends\\ \\\n\n"_s);
}

// --- local statics ---

void tst_WindowsRuntime::localStaticIsInitializedOnceByTwoThreads()
{
    const Probe probe;
    loaded = &probe;
    const auto initialize = [] {
        if (++calls > 1)
            return;
        entered.release();
        mayGoOn.acquire();
        // Time for the other thread to come here, which must not matter.
        for (int each = 0; each < 1000; ++each)
            std::this_thread::yield();
    };
    int values[2] = {};
    std::thread first([&] { values[0] = *OF_PROBE(probe, localStatic)(initialize); });
    entered.acquire();
    std::thread second([&] {
        mayGoOn.release();
        values[1] = *OF_PROBE(probe, localStatic)(initialize);
    });
    first.join();
    second.join();
    QCOMPARE(values[0], 42);
    QCOMPARE(values[1], 42);
    QCOMPARE(calls, 1);
    // It is new to this thread, which has come to none of the module's statics.
    QCOMPARE(*OF_PROBE(probe, localStatic)(initialize), 42);
    QCOMPARE(calls, 1);
}

void tst_WindowsRuntime::localStaticIsInitializedAgainAfterAnException()
{
    const Probe probe;
    auto *const retried = OF_PROBE(probe, retriedStatic);
    QVERIFY_THROWS_EXCEPTION(CodeError, retried([] { throw CodeError{1}; }));
    QVERIFY_THROWS_EXCEPTION(CodeError, retried([] { throw CodeError{1}; }));
    QCOMPARE(*retried([] { ++calls; }), 42);
    QCOMPARE(*retried([] { ++calls; }), 42);
    QCOMPARE(calls, 1);
}

void tst_WindowsRuntime::waitingThreadInitializesAfterAnException()
{
    const Probe probe;
    auto *const retried = OF_PROBE(probe, retriedStatic);
    bool isThrown = false;
    std::thread first([&] {
        try {
            retried([] {
                entered.release();
                mayGoOn.acquire();
                for (int each = 0; each < 1000; ++each)
                    std::this_thread::yield();
                throw CodeError{1};
            });
        } catch (const CodeError &) {
            isThrown = true;
        }
    });
    entered.acquire();
    int value = 0;
    std::thread second([&] {
        mayGoOn.release();
        value = *retried([] { ++calls; });
    });
    first.join();
    second.join();
    QVERIFY(isThrown);
    QCOMPARE(value, 42);
    QCOMPARE(calls, 1);
}

// --- thread-local variables ---

void tst_WindowsRuntime::eachThreadHasVariablesOfItsOwn()
{
    const Probe probe;
    *OF_PROBE(probe, threadConstant)() = 50;
    *OF_PROBE(probe, threadConstructed)() = 70;
    int constant = 0;
    int constructed = 0;
    inThread([&] {
        constant = (*OF_PROBE(probe, threadConstant)())++;
        constructed = (*OF_PROBE(probe, threadConstructed)())++;
    });
    QCOMPARE(constant, 5);
    QCOMPARE(constructed, 7);
    QCOMPARE(*OF_PROBE(probe, threadConstant)(), 50);
    QCOMPARE(*OF_PROBE(probe, threadConstructed)(), 70);
}

void tst_WindowsRuntime::endOfThreadRunsDestructorsInReverse()
{
    const Probe probe;
    QCOMPARE(
        inThread([&] { OF_PROBE(probe, useLocalOfThread)(); }),
        (QStringList{u"thread's first"_s, u"thread's second"_s, u"local of thread"_s,
                     u"end of local of thread"_s, u"end of thread's second"_s, u"end of thread's first"_s}));
}

void tst_WindowsRuntime::threadFromBeforeTheLoadIsInitializedAtFirstUse()
{
    std::unique_ptr<Probe> probe;
    QStringList before;
    int constant = 0;
    int constructed = 0;
    std::thread thread([&] {
        entered.release();
        mayGoOn.acquire();
        before = Record::ofThread(std::this_thread::get_id());
        constant = *OF_PROBE(*probe, threadConstant)();
        constructed = *OF_PROBE(*probe, threadConstructed)();
    });
    const std::thread::id id = thread.get_id();
    entered.acquire();
    probe = std::make_unique<Probe>();
    mayGoOn.release();
    thread.join();
    QCOMPARE(before, QStringList());
    QCOMPARE(constant, 5);
    QCOMPARE(constructed, 7);
    QCOMPARE(Record::ofThread(id).first(2), (QStringList{u"thread's first"_s, u"thread's second"_s}));
    QCOMPARE(Record::ofThread(id).constLast(), u"end of thread's first"_s);
}

void tst_WindowsRuntime::unloadEndsTheThreadLocalsOfItsThread()
{
    std::unique_ptr<Probe> probe;
    const QStringList ofThread = inThread([&] {
        probe = std::make_unique<Probe>();
        OF_PROBE(*probe, useLocalOfThread)();
        Record::take();
        probe->unload();
    });
    QCOMPARE(ofThread.first(3), (QStringList{u"end of local of thread"_s, u"end of thread's second"_s,
                                             u"end of thread's first"_s}));
}

void tst_WindowsRuntime::threadMayEndAfterTheUnload()
{
    Probe probe;
    std::thread thread([&] {
        OF_PROBE(probe, useLocalOfThread)();
        entered.release();
        mayGoOn.acquire();
    });
    const std::thread::id id = thread.get_id();
    entered.acquire();
    probe.unload();
    QVERIFY(!Probe::isInProcess());
    mayGoOn.release();
    thread.join();
    QCOMPARE(Record::ofThread(id).constLast(), u"local of thread"_s);
}

void tst_WindowsRuntime::threadLocalIsAligned()
{
    const Probe probe;
    QCOMPARE(OF_PROBE(probe, addressOfAlignedLocal)() % 16, std::size_t(0));
}

// --- exceptions and types ---

void tst_WindowsRuntime::exceptionsOfTheLibraryAreCaughtByType()
{
    const Probe probe;
    try {
        OF_PROBE(probe, throwCode)(3);
        QFAIL("nothing thrown");
    } catch (const std::exception &) {
        QFAIL("a code is no exception of the standard library");
    } catch (CodeError error) {
        QCOMPARE(error.code, 3);
    }
    try {
        OF_PROBE(probe, throwText)("a text");
        QFAIL("nothing thrown");
    } catch (const std::logic_error &) {
        QFAIL("a runtime error is no logic error");
    } catch (const std::runtime_error &error) {
        QCOMPARE(error.what(), "a text");
        QVERIFY(typeid(error) == typeid(TextError));
    }
}

void tst_WindowsRuntime::exceptionsOfTheProgramAreCaughtInTheLibrary()
{
    const Probe probe;
    QCOMPARE(OF_PROBE(probe, codeThrownBy)([] { throw CodeError{4}; }), 4);
    QCOMPARE(OF_PROBE(probe, codeThrownBy)([] {}), 0);
    QVERIFY_THROWS_EXCEPTION(TextError, OF_PROBE(probe, codeThrownBy)([] { throw TextError("passes"); }));
}

void tst_WindowsRuntime::exceptionsOfMicrosoftsRuntimeAreCaughtByType()
{
    const Probe probe;
    QVERIFY_THROWS_EXCEPTION(std::bad_cast, OF_PROBE(probe, throwBadCast)());
    QVERIFY_THROWS_EXCEPTION(std::bad_typeid, OF_PROBE(probe, throwBadTypeid)());
    try {
        OF_PROBE(probe, throwBadCast)();
    } catch (const std::exception &error) {
        QVERIFY(qstrlen(error.what()) > 0);
    }
}

void tst_WindowsRuntime::exceptionsEndTheFramesOfBoth()
{
    const Probe probe;
    loaded = &probe;
    Record::take();
    struct Frame
    {
        ~Frame() { exceptionsDuring = std::uncaught_exceptions(); }
        int &exceptionsDuring;
    };
    static int exceptionsDuring = 0;
    QVERIFY_THROWS_EXCEPTION(CodeError, OF_PROBE(probe, runBeneathFrame)([] {
                                 const Frame frame{exceptionsDuring};
                                 OF_PROBE(*loaded, throwCode)(1);
                             }));
    QCOMPARE(exceptionsDuring, 1);
    QCOMPARE(std::uncaught_exceptions(), 0);
    QCOMPARE(Record::take(), (QStringList{u"library's frame"_s, u"end of library's frame"_s}));
}

void tst_WindowsRuntime::exceptionPointerCrossesThreads()
{
    const Probe probe;
    std::exception_ptr captured;
    inThread([&] { OF_PROBE(probe, captureText)("from afar", &captured); });
    QVERIFY(captured);
    try {
        std::rethrow_exception(captured);
        QFAIL("nothing thrown");
    } catch (const TextError &error) {
        QCOMPARE(error.what(), "from afar");
    }
    QVERIFY_THROWS_EXCEPTION(CodeError, std::rethrow_exception(std::make_exception_ptr(CodeError{1})));
}

void tst_WindowsRuntime::typesAreTheSameInBoth()
{
    const Probe probe;
    const std::unique_ptr<Shape> shape(OF_PROBE(probe, makeCircle)());
    const Shape &object = *shape;
    const auto *named = dynamic_cast<const Named *>(&object);
    QVERIFY(named);
    QCOMPARE(named->letters, 6);
    QVERIFY(dynamic_cast<const Circle *>(named));
    const std::type_info &type = typeid(object);
    QVERIFY(type == typeid(Circle));
    QVERIFY(type != typeid(Shape));
    QCOMPARE(type.hash_code(), typeid(Circle).hash_code());
    QVERIFY(OF_PROBE(probe, isCircle)(Circle()));
    QVERIFY(!OF_PROBE(probe, isCircle)(Shape()));
}

// --- memory and numbers ---

void tst_WindowsRuntime::hugeNewThrows()
{
    const Probe probe;
    QVERIFY_THROWS_EXCEPTION(std::bad_alloc, OF_PROBE(probe, allocate)(PTRDIFF_MAX));
    QVERIFY_THROWS_EXCEPTION(std::bad_alloc, ::operator delete(::operator new(PTRDIFF_MAX)));
}

void tst_WindowsRuntime::hugeNewAnswersNullWhenToldNotToThrow()
{
    const Probe probe;
    QCOMPARE(OF_PROBE(probe, allocateOrNull)(PTRDIFF_MAX), nullptr);
    void *const block = OF_PROBE(probe, allocateOrNull)(1);
    QVERIFY(block);
    ::operator delete(block);
}

void tst_WindowsRuntime::newHandlerIsCalled()
{
    std::set_new_handler([] {
        ++calls;
        std::set_new_handler(nullptr);
    });
    QVERIFY_THROWS_EXCEPTION(std::bad_alloc, ::operator delete(::operator new(PTRDIFF_MAX)));
    QCOMPARE(calls, 1);
}

void tst_WindowsRuntime::newAligns()
{
    const Probe probe;
    QCOMPARE(OF_PROBE(probe, addressOfOverAligned)() % 256, std::size_t(0));
}

void tst_WindowsRuntime::bigFrameTouchesEachPage()
{
    const Probe probe;
    auto *const useFrame = OF_PROBE(probe, useBigFrame);
    bool isTouchedBefore = true;
    bool isTouchedAfter = false;
    // The pages of a new thread's stack have not been in use.
    inThread([&] {
        char top = 0;
        char *const page = &top - bytesOfBigFrame / 2;
        ProcessMemory::watchPage(page);
        isTouchedBefore = ProcessMemory::isTouched(page);
        useFrame();
        isTouchedAfter = ProcessMemory::isTouched(page);
    });
    QVERIFY(!isTouchedBefore);
    QVERIFY(isTouchedAfter);
}

void tst_WindowsRuntime::dividesNumbersOf128Bits_data()
{
    QTest::addColumn<qint64>("high");
    QTest::addColumn<quint64>("low");
    QTest::addColumn<qint64>("divisor");
    QTest::addColumn<qint64>("quotient");
    QTest::addColumn<qint64>("remainder");

    QTest::newRow("small") << qint64(0) << quint64(7) << qint64(2) << qint64(3) << qint64(1);
    QTest::newRow("two-to-the-64") << qint64(1) << quint64(0) << qint64(10) << qint64(1844674407370955161)
                                   << qint64(6);
    QTest::newRow("negative") << qint64(-1) << quint64(-7) << qint64(2) << qint64(-3) << qint64(-1);
    QTest::newRow("negative-divisor") << qint64(0) << quint64(7) << qint64(-2) << qint64(-3) << qint64(1);
}

void tst_WindowsRuntime::dividesNumbersOf128Bits()
{
    QFETCH(const qint64, high);
    QFETCH(const quint64, low);
    QFETCH(const qint64, divisor);
    QT_WARNING_PUSH
    QT_WARNING_DISABLE_CLANG("-Wpedantic")
    using Signed = __int128;
    using Unsigned = unsigned __int128;
    QT_WARNING_POP
    const auto number = static_cast<Signed>((static_cast<Unsigned>(high) << 64) | low);
    QTEST(static_cast<qint64>(number / divisor), "quotient");
    QTEST(static_cast<qint64>(number % divisor), "remainder");
    if (high >= 0 && divisor > 0) {
        QTEST(static_cast<qint64>(static_cast<Unsigned>(number) / static_cast<Unsigned>(divisor)),
              "quotient");
        QTEST(static_cast<qint64>(static_cast<Unsigned>(number) % static_cast<Unsigned>(divisor)),
              "remainder");
    }
}

// --- functions of Qt's that take types of the standard library ---

void tst_WindowsRuntime::jsonArrayIsMadeFromAList()
{
    const QJsonArray array{1, u"two"_s, QJsonArray{3, 4}};
    QCOMPARE(array.size(), 3);
    QCOMPARE(array[0].toInt(), 1);
    QCOMPARE(array[1].toString(), u"two"_s);
    QCOMPARE(array[2].toArray().last().toInt(), 4);
}

void tst_WindowsRuntime::jsonObjectIsMadeFromAList()
{
    const QJsonObject object{{u"a"_s, 1}, {u"b"_s, QJsonObject{{u"c"_s, true}}}, {u"a"_s, 2}};
    QCOMPARE(object.size(), 2);
    QCOMPARE(object[u"a"].toInt(), 2);
    QCOMPARE(object[u"b"][u"c"].toBool(), true);
}

void tst_WindowsRuntime::cborMapIsMadeFromAList()
{
    const QCborMap map{{1, u"one"_s}, {u"b"_s, QCborMap{{2, 3}}}, {1, u"uno"_s}};
    QCOMPARE(map.size(), 2);
    QCOMPARE(map[1].toString(), u"uno"_s);
    QCOMPARE(map[u"b"_s].toMap()[2].toInteger(), 3);
}

void tst_WindowsRuntime::createdThreadRunsItsFunction()
{
    std::thread::id id;
    int sum = 0;
    const std::unique_ptr<QThread> thread(QThread::create(
        [&](int first, int second) {
            id = std::this_thread::get_id();
            sum = first + second;
        },
        2, 3));
    thread->start();
    QVERIFY(thread->wait());
    QVERIFY(id != std::this_thread::get_id());
    QCOMPARE(sum, 5);
}

void tst_WindowsRuntime::createdThreadMayBeDeletedWhileItRuns()
{
    bool isDone = false;
    std::unique_ptr<QThread> thread(QThread::create([&isDone] {
        entered.release();
        while (!QThread::currentThread()->isInterruptionRequested())
            QThread::yieldCurrentThread();
        isDone = true;
    }));
    thread->start();
    entered.acquire();
    thread.reset();
    QVERIFY(isDone);
}

void tst_WindowsRuntime::timerTakesDurations()
{
    QTimer timer;
    timer.setInterval(3h);
    QCOMPARE(timer.interval(), 3 * 60 * 60 * 1000);
    QVERIFY(!timer.isActive());
    timer.start(1500ms);
    QCOMPARE(timer.interval(), 1500);
    QVERIFY(timer.isActive());
}

void tst_WindowsRuntime::singleShotTakesADuration()
{
    QEventLoop loop;
    QElapsedTimer clock;
    qint64 elapsed = -1;
    clock.start();
    QTimer::singleShot(5ms, &loop, [&] {
        elapsed = clock.elapsed();
        loop.quit();
    });
    loop.exec();
    QCOMPARE_GE(elapsed, 4);
}

void tst_WindowsRuntime::deadlineAnswersADuration()
{
    QCOMPARE(QDeadlineTimer(QDeadlineTimer::Forever).remainingTimeAsDuration(),
             std::chrono::nanoseconds::max());
    QCOMPARE(QDeadlineTimer(0).remainingTimeAsDuration(), 0ns);
    // Both libraries' steady clocks begin at the same time.
    for (const auto &deadline :
         {QDeadlineTimer(100h), QDeadlineTimer(std::chrono::steady_clock::now() + 100h)}) {
        QCOMPARE_LE(deadline.remainingTimeAsDuration(), 100h);
        QCOMPARE_GT(deadline.remainingTimeAsDuration(), 0ns);
    }
}

void tst_WindowsRuntime::testSleepTakesADuration()
{
    QElapsedTimer clock;
    clock.start();
    QTest::qSleep(5ms);
    QCOMPARE_GE(clock.elapsed(), 4);
}

void tst_WindowsRuntime::listGrows()
{
    QList<int> list;
    for (int each = 0; each < 1000; ++each)
        list.append(each);
    for (int each = 0; each < 1000; ++each)
        QCOMPARE(list[each], each);
}

QTEST_GUILESS_MAIN(tst_WindowsRuntime)
#include "tst_WindowsRuntime.moc"
