#include "Kvx.h"
#include "PluginFixture.h"

#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

QStringList started()
{
    return {u"answer-delay 0"_s, u"mouse 1"_s, u"start"_s};
}

KvxRun playStarted(const QStringList &lines)
{
    return playLines(started() + lines);
}

KvxRun playWithSeed(int seed)
{
    const QStringList lines = started() + QStringList{u"random 60"_s};
    return runKvx({u"run"_s, u"--seed"_s, QString::number(seed), u"--plugin"_s,
                   PluginFixture::builtPluginFile(), u"-"_s},
                  lines.join(u'\n').toUtf8());
}

}  // namespace

class tst_KvxStress : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void linesAreRepeated();
    void theRoundThatDiffersEndsIt();
    void badLines_data();
    void badLines();
    void whatAScenarioHoldsIsGrowth();
    void whatIsGivenBackIsNoGrowth();
    void agreementHolds();
    void disagreements_data();
    void disagreements();
    void signalsOfOtherThreadsAreNoDisagreement();
    void aSeedGivesItsLines();
    void randomOperationsAreDone();
    void randomFindsAMouseThatDoesNotAgree();
    void parallelLivesLeaveTheNumbersAsTheyWere();
};

void tst_KvxStress::linesAreRepeated()
{
    const KvxRun run = playStarted({u"repeat 3"_s, u"drain 1"_s, u"end"_s, u"expect batteryLevel 77"_s});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.output.filter(u"> drain 1"_s).size(), 3);
    QVERIFY(run.output.contains(u"signal batteryLevelChanged(77)"));
}

void tst_KvxStress::theRoundThatDiffersEndsIt()
{
    const KvxRun run = playStarted({u"repeat 5"_s, u"drain 10"_s, u"= report setBatteryLevel(70)"_s,
                                    u"= signal batteryLevelChanged(70)"_s, u"end"_s});
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.errors,
             QStringList{errorAt(
                 6, u"line 1 of what the command caused: expected report setBatteryLevel(70), seen report "
                    "setBatteryLevel(60)"_s)});
}

void tst_KvxStress::badLines_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<int>("line");
    QTest::addColumn<QString>("message");
    const auto row = [](const char *tag, const QStringList &lines, int line, const QString &message) {
        QTest::newRow(tag) << lines << line << message;
    };
    row("repeat-once", {u"repeat 1"_s}, 1, u"\"1\" is not a number of rounds, 2 to 100000"_s);
    row("repeat-in-repeat", {u"repeat 2"_s, u"repeat 2"_s}, 2,
        u"repeat inside of repeat; put \"end\" before it"_s);
    row("no-end", {u"repeat 2"_s, u"settle"_s}, 2,
        u"\"repeat\" is not ended; put \"end\" behind its lines"_s);
    row("end-alone", {u"end"_s}, 1, u"there is nothing to end; put \"repeat N\" before it"_s);
    row("nothing-measured", {u"expect no-growth"_s}, 1,
        u"there is nothing to measure yet; put \"repeat N ... end\" before it"_s);
    row("measured-inside", {u"repeat 2"_s, u"expect no-growth"_s, u"end"_s}, 2,
        u"there is nothing to measure yet; put \"repeat N ... end\" before it"_s);
    row("random-nothing", {u"mouse 1"_s, u"start"_s, u"random 0"_s}, 3,
        u"\"0\" is not a number of operations, 1 to 10000"_s);
    row("random-not-started", {u"mouse 1"_s, u"random 1"_s}, 2,
        u"the device is not started; put \"start\" before it"_s);
    row("agreement-not-started", {u"mouse 1"_s, u"expect agreement"_s}, 2,
        u"the device is not started; put \"start\" before it"_s);
    row("agreement-asleep", {u"mouse 1"_s, u"start"_s, u"sleep"_s, u"expect agreement"_s}, 4,
        u"the mouse sleeps; put \"wake\" before it"_s);
    const QString parallel =
        u"\"%1\" is not a number of threads, 1 to 64, and one of lives on each, 1 to 10000"_s;
    row("parallel-threads", {u"parallel 65 1"_s}, 1, parallel.arg(u"65 1"_s));
    row("parallel-lives", {u"parallel 2"_s}, 1, parallel.arg(u"2"_s));
}

void tst_KvxStress::badLines()
{
    QFETCH(const QStringList, lines);
    QFETCH(const int, line);
    QFETCH(const QString, message);
    const KvxRun run = playLines(lines);
    QCOMPARE(run.errors, QStringList{errorAt(line, message)});
    QCOMPARE(run.exitCode, 2);
}

void tst_KvxStress::whatAScenarioHoldsIsGrowth()
{
    // Nothing uses the faults up.
    const KvxRun run =
        playStarted({u"repeat 400"_s, u"fault getLevelValue refuse"_s, u"end"_s, u"expect no-growth"_s});
#ifdef KVX_NO_HEAP_MEASURE
    QVERIFY(run.output.contains(
        u"not checked: the heap cannot be measured on Windows, under a sanitizer or under valgrind"));
#else
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.errors.size(), 1);
    QVERIFY(run.errors.first().startsWith(errorAt(7, u"the heap has "_s)));
    QVERIFY(run.errors.first().endsWith(u" bytes more in use than 200 rounds ago"));
#endif
}

void tst_KvxStress::whatIsGivenBackIsNoGrowth()
{
    const KvxRun run = playStarted({u"repeat 400"_s, u"fault getLevelValue refuse"_s, u"clear-faults"_s,
                                    u"drain 1"_s, u"drain -1"_s, u"end"_s, u"expect no-growth"_s});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
}

void tst_KvxStress::agreementHolds()
{
    const KvxRun run =
        playStarted({u"setReportRate 250"_s, u"sleep"_s, u"setActiveDpiSlotIndex 4 nowait"_s, u"wake"_s,
                     u"expect agreement"_s, u"device 2 none"_s, u"start"_s, u"expect agreement"_s});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
}

void tst_KvxStress::disagreements_data()
{
    QTest::addColumn<QStringList>("lines");
    QTest::addColumn<QString>("message");
    QTest::newRow("mouse") << QStringList{u"set ppid X"_s}
                           << u"ppid: expected \"X\", as the mouse, seen \"RV418-0001\""_s;
    QTest::newRow("flag") << QStringList{u"fault reportRateConfirmed drop"_s,
                                         u"setReportRate 250 => pending"_s}
                          << u"isReportRateChangePending: expected \"false\", as nothing is under way, seen "
                             "\"true\""_s;
    QTest::newRow("signal") << QStringList{u"call batteryLevelChanged 50"_s}
                            << u"batteryLevel: expected \"50\", as its last signal, seen \"80\""_s;
    QTest::newRow("signal-of-an-earlier-round")
        << QStringList{u"repeat 2"_s, u"call batteryLevelChanged 50"_s, u"end"_s}
        << u"batteryLevel: expected \"50\", as its last signal, seen \"80\""_s;
    QTest::newRow("thread")
        << QStringList{u"other-thread call batteryLevelChanged 80"_s}
        << u"on another thread than the device's: signal batteryLevelChanged(80) on thread 2"_s;
}

void tst_KvxStress::disagreements()
{
    QFETCH(QStringList, lines);
    QFETCH(const QString, message);
    lines.append(u"expect agreement"_s);
    const KvxRun run = playStarted(lines);
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.errors.size(), 1);
    QVERIFY2(run.errors.first().contains(message), qPrintable(run.errors.first()));
}

void tst_KvxStress::signalsOfOtherThreadsAreNoDisagreement()
{
    const KvxRun run =
        playStarted({u"set ppid X"_s, u"other-thread report ppidChangedCallBack X"_s, u"expect agreement"_s});
    QCOMPARE(run.errors, QStringList());
    QVERIFY(run.output.contains(u"signal ppidChanged(\"X\") on thread 2"));
}

void tst_KvxStress::aSeedGivesItsLines()
{
    const KvxRun first = playWithSeed(7);
    QCOMPARE(first.errors, QStringList());
    QCOMPARE(playWithSeed(7).output.filter(u"random: "_s), first.output.filter(u"random: "_s));
    QVERIFY(playWithSeed(8).output.filter(u"random: "_s) != first.output.filter(u"random: "_s));
}

void tst_KvxStress::randomOperationsAreDone()
{
    const KvxRun run = playStarted({u"random 300"_s});
    QCOMPARE(run.errors, QStringList());
    for (const QString &operation :
         {u"setReportRate"_s, u"setDpiSlotValues"_s, u"setActiveDpiSlotIndex"_s, u"setDpiButtonId"_s,
          u"other-thread set"_s, u"sleep"_s, u"wake"_s, u"press"_s, u"drain"_s, u"fault"_s, u"report"_s})
        QVERIFY2(!run.output.filter(u"verdict random: "_s + operation).isEmpty(), qPrintable(operation));
    QVERIFY(!run.output.filter(u"receiver setReportRate("_s).isEmpty());
}

void tst_KvxStress::randomFindsAMouseThatDoesNotAgree()
{
    const KvxRun run = playStarted({u"set ppid X"_s, u"random 1"_s});
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.errors.size(), 1);
    QVERIFY2(run.errors.first().startsWith(errorAt(5, u"operation 1 ("_s)), qPrintable(run.errors.first()));
    QVERIFY(run.errors.first().contains(u"ppid: expected \"X\", as the mouse"));
}

void tst_KvxStress::parallelLivesLeaveTheNumbersAsTheyWere()
{
    const KvxRun run = playStarted({u"parallel 3 4"_s, u"expect instanceNumber 0"_s, u"expect agreement"_s});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
    // Its own start, and each start and each end on the other threads.
    QCOMPARE(run.output.filter(u"signal instanceNumberChanged("_s).size(), 1 + 2 * 12);
}

QTEST_GUILESS_MAIN(tst_KvxStress)
#include "tst_KvxStress.moc"
