#include "DrawnCounts.h"
#include "OtherThread.h"
#include "PlayedScenario.h"
#include "Rounds.h"
#include "Scenario.h"
#include "ScenarioWriter.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <algorithm>
#include <array>
#include <cstdio>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <optional>
#include <random>
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

/// From so many operations on, in sequences of that length on average, everything that is counted has come at least
/// once: the rarest comes about 40 times in 200,000 operations.
constexpr qint64 operationsForAll = 100000;
constexpr qint64 averageForAll = 60;

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

// The last line that a scenario can see, unless that is the call itself.
void removeLastVisible(QStringList &lines)
{
    const auto last = std::find_if_not(lines.rbegin(), lines.rend(), &isLogLine);
    if (last != lines.rend() && !last->startsWith(u"call"))
        lines.removeAt(std::distance(last, lines.rend()) - 1);
}

std::vector<Draw> drawnSequence(std::mt19937 &numbers)
{
    constexpr std::size_t length = 40;
    const auto next = [&] { return static_cast<int>(numbers() % (Draw::largest + 1)); };
    std::vector<Draw> draws(length);
    for (Draw &draw : draws)
        draw = drawn(next);
    return draws;
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
    void reportInsideARequestRunsAsAScenario_data();
    void reportInsideARequestRunsAsAScenario();
    void deviceWithoutReceiverRunsAsAScenario_data();
    void deviceWithoutReceiverRunsAsAScenario();
    void switchedOffLogRunsAsAScenario();
    void anySequenceRunsAsAScenario();
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
    const QString scenario = scenarioText(*round.shortest);
    const QStringList lines = scenario.split(u'\n');
    QCOMPARE(
        lines.mid(lines.indexOf(u"setReportRate 500 nowait"_s)),
        QStringList({u"setReportRate 500 nowait"_s, u"# expected:"_s, u"#   call [1] setReportRate(500)"_s,
                     u"#   debug RV418.LogicalDevice: Updating new report rate :  500"_s, u"# seen:"_s,
                     u"#   call [1] setReportRate(500)"_s,
                     u"#   debug RV418.LogicalDevice: Updating new report rate :  500"_s,
                     u"#   warning RV418.LogicalDevice: Unknown IPhysicalDevice interface"_s,
                     u"expect log debug RV418.LogicalDevice: Updating new report rate :  500"_s, QString()}));
    // Nothing was left that is not needed.
    QCOMPARE(round.shortest->operations.size(), std::size_t(3));
    // A line that is one too many is seen by the scenario, too.
    QCOMPARE(playedText(round), QString());
}

void tst_Model::missingLogLineIsWaitedFor()
{
    // Among lines with an address, which is another one in every run.
    const Round round = runRound(1, [](const Operation &operation, QStringList &lines) {
        if (operation.kind == Operation::Kind::DpiSlotValuesConfirmed &&
            operation.route == Operation::Route::Direct && !lines.filter(u"0x"_s).isEmpty())
            lines.append(u"debug RV418.LogicalDevice: confirmed"_s);
    });
    QVERIFY(round.shortest);
    const QString scenario = scenarioText(*round.shortest);
    QVERIFY2(scenario.endsWith(u"wait debug RV418.LogicalDevice: confirmed 0\n"), qPrintable(scenario));
    QCOMPARE(play(scenario).exitCode, 1);
}

void tst_Model::shortDeviationRunsAsAScenario_data()
{
    using Kind = Operation::Kind;
    using Route = Operation::Route;
    QTest::addColumn<int>("kind");
    QTest::addColumn<int>("route");
    const auto rows = [](Route route, const char *prefix, std::initializer_list<Kind> kinds) {
        for (const Kind kind : kinds)
            QTest::addRow("%s%s", prefix, operationName(kind))
                << static_cast<int>(kind) << static_cast<int>(route);
    };
    rows(Route::Direct, "",
         {Kind::Start,
          Kind::Stop,
          Kind::DestroyDevice,
          Kind::DeliverQueuedCalls,
          Kind::SetBatteryLevel,
          Kind::SetFirmwareVersion,
          Kind::ReceiverDpiMinChanged,
          Kind::ReceiverDpiMaxChanged,
          Kind::PpidChangedCallBack,
          Kind::DpiValueChangedCallBack,
          Kind::SetReportRate,
          Kind::ReportRateConfirmed,
          Kind::ReportRateChangedCallBack,
          Kind::SetActiveDpiSlotIndex,
          Kind::ActiveDpiSlotIndexConfirmed,
          Kind::ActiveDpiSlotIndexChangedCallBack,
          Kind::SetDpiButtonId,
          Kind::DpiButtonIdConfirmed,
          Kind::DpiButtonIdChangedCallBack,
          Kind::SetDpiSlotValues,
          Kind::DpiSlotValuesConfirmed,
          Kind::DpiSlotValuesChangedCallBack,
          Kind::DisbaleButtonsOrKeys,
          Kind::SetButtonsOrKeysToDefault,
          Kind::CapabilityChangedCallBack,
          Kind::MouseEventCallBack});
    // What can be seen before the event loop runs.
    rows(Route::OtherThread, "other-thread ",
         {Kind::Start, Kind::Stop, Kind::SetReportRate, Kind::ReportRateConfirmed,
          Kind::SetActiveDpiSlotIndex, Kind::ActiveDpiSlotIndexConfirmed, Kind::SetDpiButtonId,
          Kind::DpiButtonIdConfirmed, Kind::SetDpiSlotValues, Kind::DpiSlotValuesConfirmed,
          Kind::DisbaleButtonsOrKeys, Kind::SetButtonsOrKeysToDefault});
}

void tst_Model::shortDeviationRunsAsAScenario()
{
    QFETCH(const int, kind);
    QFETCH(const int, route);
    const Round round = runRound(1, [&](const Operation &operation, QStringList &lines) {
        if (static_cast<int>(operation.kind) == kind && static_cast<int>(operation.route) == route)
            removeLastVisible(lines);
    });
    QCOMPARE(playedText(round), QString());
}

void tst_Model::reportInsideARequestRunsAsAScenario_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("battery") << u"signal [1] batteryLevelChanged("_s;
    QTest::newRow("product-id") << u"signal [1] ppidChanged("_s;
    QTest::newRow("minimum") << u"signal [1] dpiMinChanged("_s;
    QTest::newRow("maximum") << u"signal [1] dpiMaxChanged("_s;
    QTest::newRow("rates") << u"signal [1] reportRateValuesChanged("_s;
    QTest::newRow("firmware") << u"signal [1] firmwareVersionChanged("_s;
}

void tst_Model::reportInsideARequestRunsAsAScenario()
{
    QFETCH(const QString, line);
    const Round round = runRound(1, [&](const Operation &operation, QStringList &lines) {
        const auto isRequest = [](const QString &seen) { return seen.startsWith(u"receiver"); };
        const auto request = std::find_if(lines.cbegin(), lines.cend(), isRequest);
        const auto isWanted = [&](const QString &seen) { return seen.startsWith(line); };
        const auto signal = std::find_if(request, lines.cend(), isWanted);
        // By themselves neither says any of that.
        const bool isOwn = operation.kind == Operation::Kind::SetReportRate ||
                           operation.kind == Operation::Kind::SetDpiButtonId;
        if (isOwn && operation.route == Operation::Route::Direct && signal != lines.cend())
            lines.removeAt(std::distance(lines.cbegin(), signal));
    });
    QCOMPARE(playedText(round), QString());
    QVERIFY(scenarioText(*round.shortest).contains(u"\ninside-request report "_s));
}

void tst_Model::deviceWithoutReceiverRunsAsAScenario_data()
{
    QTest::addColumn<int>("physical");
    QTest::addColumn<QString>("word");
    QTest::newRow("none") << static_cast<int>(Physical::Nothing) << u"none"_s;
    QTest::newRow("other") << static_cast<int>(Physical::NoReceiver) << u"other"_s;
}

void tst_Model::deviceWithoutReceiverRunsAsAScenario()
{
    QFETCH(const int, physical);
    QFETCH(const QString, word);
    std::array<Physical, deviceSlotCount> places{};
    const Round round = runRound(1, [&](const Operation &operation, QStringList &lines) {
        Physical &place = places.at(static_cast<std::size_t>(operation.slot));
        if (operation.kind == Operation::Kind::CreateDevice)
            place = operation.physical;
        if (operation.kind == Operation::Kind::Stop && static_cast<int>(place) == physical)
            removeLastVisible(lines);
    });
    QCOMPARE(playedText(round), QString());
    QVERIFY(scenarioText(*round.shortest).contains(QRegularExpression(u"\ndevice [1-4] %1\n"_s.arg(word))));
}

void tst_Model::switchedOffLogRunsAsAScenario()
{
    bool isDebugOn = false;
    const Round round = runRound(1, [&](const Operation &operation, QStringList &lines) {
        if (operation.kind == Operation::Kind::Initialize)
            isDebugOn = operation.logSwitches[0];
        if (operation.kind == Operation::Kind::Stop && !isDebugOn)
            lines.append(u"debug RV418.LogicalDevice: stop exit"_s);
    });
    QCOMPARE(playedText(round), QString());
    QVERIFY(scenarioText(*round.shortest).contains(u"\nlog debug off "_s));
}

void tst_Model::anySequenceRunsAsAScenario()
{
    constexpr int sequences = 200;
    OtherThread otherThread;
    std::mt19937 numbers(1);
    int played = 0;
    for (int sequence = 0; sequence < sequences; ++sequence) {
        // At any of the first operations the model expects a line that does not come.
        auto countdown = 3 + numbers() % 20;
        SequenceResult result =
            runSequence(drawnSequence(numbers), otherThread, [&](const Operation &, QStringList &lines) {
                if (--countdown == 0)
                    lines.append(u"signal [1] nothing()"_s);
            });
        if (!result.deviation || scenarioText(result).contains(u"does not show the deviation"_s))
            continue;
        ++played;
        // Played up to there, kvx sees what the library has shown.
        result.deviation->expectedLines.swap(result.deviation->seenLines);
        const QString scenario = scenarioText(result);
        const KvxRun run = play(scenario);
        QVERIFY2(run.exitCode == 0, qPrintable(scenario + run.errors.join(u'\n')));
    }
    QVERIFY2(played >= sequences / 10, qPrintable(QString::number(played)));
    print(u"%1 sequences played as scenarios"_s.arg(played));
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
    if (operations < operationsForAll || operations < sequences * averageForAll) {
        print(u"too few operations, or too short sequences, to ask whether everything was drawn; that takes "
              u"%1, %2 "
              "a sequence"_s.arg(operationsForAll)
                  .arg(averageForAll));
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
