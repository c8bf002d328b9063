#include "Bench.h"
#include "DrawnCounts.h"
#include "Kvx.h"
#include "OtherThread.h"
#include "Rounds.h"
#include "Scenario.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtTest/QTest>

#include <algorithm>
#include <cstdio>
#include <iterator>
#include <limits>
#include <optional>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr const char *operationsVariable = "KVX_MODEL_OPERATIONS";
constexpr const char *secondsVariable = "KVX_MODEL_SECONDS";

/// How long the model is compared with the library.
struct Effort
{
    qint64 operations = 200000;
    qint64 seconds = 0;
};

/// From so many operations on, everything that is counted has come at least once.
constexpr qint64 operationsForAll = 100000;

void print(const QString &line)
{
    std::fprintf(stderr, "%s\n", qPrintable(line));
}

// Nothing, and a line that says so, when the variable has another value than a number.
std::optional<qint64> positiveNumber(const char *variable, qint64 otherwise)
{
    if (!qEnvironmentVariableIsSet(variable))
        return otherwise;
    bool isNumber = false;
    const qint64 number = qEnvironmentVariable(variable).toLongLong(&isNumber);
    if (isNumber && number > 0)
        return number;
    print(u"%1 is \"%2\"; give a whole number above 0, or leave it unset"_s.arg(
        QLatin1StringView(variable), qEnvironmentVariable(variable)));
    return std::nullopt;
}

QString rarestText(const DrawnCounts &counts)
{
    const QList<QPair<QString, qint64>> all = counts.all();
    const auto rarest = std::min_element(all.cbegin(), all.cend(), [](const auto &one, const auto &other) {
        return one.second < other.second;
    });
    return u"%1 kinds by route and circumstances; the rarest, %2, came %3 times"_s.arg(
        QString::number(all.size()), rarest->first, QString::number(rarest->second));
}

bool isLog(const QString &line)
{
    return line.startsWith(u"debug") || line.startsWith(u"warning") || line.startsWith(u"critical");
}

}  // namespace

class tst_Model : public QObject
{
    Q_OBJECT

public:
    explicit tst_Model(const Effort &effort) : m_effort(effort) {}

private Q_SLOTS:
    void deviationIsMadeShort();
    void missingLogLineIsWaitedFor();
    void shortDeviationRunsAsAScenario_data();
    void shortDeviationRunsAsAScenario();
    void whatWasNeverDrawnIsNamed();
    void libraryAgreesWithTheModel() const;

private:
    Effort m_effort;
};

void tst_Model::deviationIsMadeShort()
{
    const Round round = runRound(1, [](const Operation &operation, QStringList &lines) {
        if (operation.kind == Operation::Kind::SetReportRate)
            lines.removeLast();
    });
    QVERIFY(round.shortest);
    // A line of the log came that is one too many: no command of a scenario expects that there is none.
    const QStringList lines = scenarioText(*round.shortest).split(u'\n');
    QCOMPARE(
        lines.mid(lines.indexOf(u"setReportRate 500 nowait"_s)),
        QStringList({u"setReportRate 500 nowait"_s, u"# expected:"_s, u"#   call [1] setReportRate(500)"_s,
                     u"#   debug RV418.LogicalDevice: Updating new report rate :  500"_s, u"# seen:"_s,
                     u"#   call [1] setReportRate(500)"_s,
                     u"#   debug RV418.LogicalDevice: Updating new report rate :  500"_s,
                     u"#   warning RV418.LogicalDevice: Unknown IPhysicalDevice interface"_s, QString()}));
    // Nothing was left that is not needed.
    QCOMPARE(round.shortest->operations.size(), std::size_t(3));
}

void tst_Model::missingLogLineIsWaitedFor()
{
    const Round round = runRound(1, [](const Operation &operation, QStringList &lines) {
        if (operation.kind == Operation::Kind::Stop && operation.route == Operation::Route::Direct)
            lines.replaceInStrings(u"stop exit"_s, u"stopped"_s);
    });
    QVERIFY(round.shortest);
    const QByteArray scenario = scenarioText(*round.shortest).toUtf8();
    QVERIFY2(scenario.endsWith("wait debug RV418.LogicalDevice: stopped 0\n"), scenario.constData());
    const KvxRun run = runKvx({u"run"_s, u"-"_s, u"--plugin"_s, Bench::builtPluginFile()}, scenario);
    QVERIFY2(run.exitCode == 1, qPrintable(run.errors.join(u'\n')));
}

void tst_Model::shortDeviationRunsAsAScenario_data()
{
    using Kind = Operation::Kind;
    QTest::addColumn<int>("kind");
    for (const Kind kind : {Kind::Start,
                            Kind::Stop,
                            Kind::DestroyDevice,
                            Kind::SetBatteryLevel,
                            Kind::SetFirmwareVersion,
                            Kind::PpidChangedCallBack,
                            Kind::DpiValueChangedCallBack,
                            Kind::SetReportRate,
                            Kind::ReportRateConfirmed,
                            Kind::ReportRateChangedCallBack,
                            Kind::SetActiveDpiSlotIndex,
                            Kind::ActiveDpiSlotIndexConfirmed,
                            Kind::SetDpiButtonId,
                            Kind::DpiButtonIdConfirmed,
                            Kind::SetDpiSlotValues,
                            Kind::DpiSlotValuesConfirmed,
                            Kind::DpiSlotValuesChangedCallBack,
                            Kind::DisbaleButtonsOrKeys,
                            Kind::CapabilityChangedCallBack,
                            Kind::MouseEventCallBack})
        QTest::newRow(operationName(kind)) << static_cast<int>(kind);
}

void tst_Model::shortDeviationRunsAsAScenario()
{
    QFETCH(const int, kind);
    // The model is made to miss the last line that a scenario can see, unless that is the call itself.
    const Round round = runRound(1, [&](const Operation &operation, QStringList &lines) {
        if (static_cast<int>(operation.kind) != kind || operation.route != Operation::Route::Direct)
            return;
        const auto last = std::find_if_not(lines.rbegin(), lines.rend(), isLog);
        if (last != lines.rend() && !last->startsWith(u"call"))
            lines.removeAt(std::distance(last, lines.rend()) - 1);
    });
    QVERIFY(round.shortest);
    const QStringList arguments{u"run"_s, u"-"_s, u"--plugin"_s, Bench::builtPluginFile()};
    const QString deviating = scenarioText(*round.shortest);
    const KvxRun difference = runKvx(arguments, deviating.toUtf8());
    QVERIFY2(difference.exitCode == 1, qPrintable(deviating + difference.errors.join(u'\n')));
    QVERIFY2(difference.errors.value(0).contains(u"expected"), qPrintable(difference.errors.join(u'\n')));

    // With the model's error mended the same scenario agrees.
    SequenceResult mended = *round.shortest;
    mended.deviation->expectedLines.swap(mended.deviation->seenLines);
    const QString agreeing = scenarioText(mended);
    const KvxRun agreement = runKvx(arguments, agreeing.toUtf8());
    QVERIFY2(agreement.exitCode == 0, qPrintable(agreeing + agreement.errors.join(u'\n')));
}

void tst_Model::whatWasNeverDrawnIsNamed()
{
    OtherThread otherThread;
    DrawnCounts counts;
    const qsizetype before = counts.missing().size();
    // A device is made and the library unloaded, nothing else.
    QVERIFY(!runSequence({}, otherThread, {}, &counts).deviation);
    const QStringList missing = counts.missing();
    QCOMPARE(missing.size(), before - 2);
    QVERIFY(!missing.contains(u"createLogicalDevice directly"_s));
    for (const QString &name :
         {u"start directly"_s, u"start from another thread"_s, u"setBatteryLevel inside a request"_s,
          u"a second start"_s, u"a list of one slot value"_s})
        QVERIFY2(missing.contains(name), qPrintable(name));
    QVERIFY(!missing.contains(u"start inside a request"_s));
    QVERIFY(!missing.contains(u"mouseEventCallBack from another thread"_s));
}

void tst_Model::libraryAgreesWithTheModel() const
{
    constexpr qint64 millisecondsPerSecond = 1000;
    uint64_t seed = configuredSeed();
    qint64 operations = 0;
    qint64 sequences = 0;
    DrawnCounts counts;
    QElapsedTimer timer;
    timer.start();
    while (operations < m_effort.operations || timer.elapsed() < m_effort.seconds * millisecondsPerSecond) {
        // Before the round, so that it is known when the library crashes.
        print(u"RC_PARAMS=\"%1\""_s.arg(parameters(seed)));
        const Round round = runRound(seed, {}, &counts);
        operations += round.operations;
        sequences += round.sequences;
        QVERIFY2(round.problem.isEmpty(), qPrintable(round.problem));
        if (round.shortest) {
            print(scenarioText(*round.shortest));
            print(u"# RC_PARAMS=\"%1\" repeats it"_s.arg(parameters(seed)));
            QFAIL(qPrintable(
                u"the library deviates from the model after %1 operations; the scenario is above"_s.arg(
                    operations)));
        }
        ++seed;
    }
    print(u"%1 operations in %2 sequences, %3 s"_s.arg(operations)
              .arg(sequences)
              .arg(static_cast<double>(timer.elapsed()) / millisecondsPerSecond));
    if (operations < operationsForAll) {
        print(
            u"too few operations to ask whether everything was drawn; that takes %1"_s.arg(operationsForAll));
        return;
    }
    print(rarestText(counts));
    const QStringList missing = counts.missing();
    QVERIFY2(missing.isEmpty(), qPrintable(u"never drawn: "_s + missing.join(u", "_s)));
}

int main(int argc, char **argv)
{
    const bool isTimeGiven = qEnvironmentVariableIsSet(secondsVariable);
    const std::optional<qint64> operations =
        positiveNumber(operationsVariable, isTimeGiven ? 0 : Effort().operations);
    const std::optional<qint64> seconds = positiveNumber(secondsVariable, 0);
    if (!operations || !seconds)
        return 2;
    // As long as it is told to, Qt Test shall not end it.
    if (!qEnvironmentVariableIsSet("QTEST_FUNCTION_TIMEOUT"))
        qputenv("QTEST_FUNCTION_TIMEOUT", QByteArray::number(std::numeric_limits<int>::max()));
    const QCoreApplication application(argc, argv);
    tst_Model test({*operations, *seconds});
    return QTest::qExec(&test, argc, argv);
}

#include "tst_Model.moc"
