#include "DrawnCounts.h"
#include "OtherThread.h"
#include "Rounds.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QRegularExpression>
#include <QtTest/QTest>

#include <algorithm>
#include <cstdio>
#include <limits>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

constexpr const char *operationsVariable = "KVX_MODEL_OPERATIONS";
constexpr const char *secondsVariable = "KVX_MODEL_SECONDS";
constexpr const char *seedVariable = "RC_PARAMS";

/// How long the model is compared with the library at least, and with which sequences.
struct Effort
{
    qint64 operations = 200000;
    qint64 seconds = 0;
    uint64_t seed = 0;
};

/// In so many operations each case occurs: the rarest is one operation in about 4,000.
constexpr qint64 operationsForAllCases = 200000;

void print(const QString &line)
{
    std::fprintf(stderr, "%s\n", qPrintable(line));
}

void printBadValue(const char *variable, const QString &wanted)
{
    print(u"%1 is \"%2\"; give %3, or leave it unset"_s.arg(QLatin1StringView(variable),
                                                            qEnvironmentVariable(variable), wanted));
}

std::optional<qint64> positiveNumber(const char *variable, qint64 otherwise)
{
    if (!qEnvironmentVariableIsSet(variable))
        return otherwise;
    bool isNumber = false;
    const qint64 number = qEnvironmentVariable(variable).toLongLong(&isNumber);
    if (isNumber && number > 0)
        return number;
    printBadValue(variable, u"a whole number above 0"_s);
    return std::nullopt;
}

// RapidCheck's other parameters would make sequences shorter or fewer.
bool isSeedAlone(const QString &parameters)
{
    static const QRegularExpression expression(u"^seed=([0-9]+)$"_s);
    bool isNumber = false;
    expression.match(parameters).captured(1).toULongLong(&isNumber);
    return isNumber;
}

bool isSeedConfigured()
{
    if (!qEnvironmentVariableIsSet(seedVariable) || isSeedAlone(qEnvironmentVariable(seedVariable)))
        return true;
    printBadValue(seedVariable, u"seed=NUMBER"_s);
    return false;
}

QString parametersText(uint64_t seed)
{
    return u"RC_PARAMS=\"seed=%1\""_s.arg(seed);
}

QString casesText(const DrawnCounts &counts)
{
    const QList<QPair<QString, qint64>> all = counts.all();
    const auto rarest = std::min_element(all.cbegin(), all.cend(), [](const auto &one, const auto &other) {
        return one.second < other.second;
    });
    return u"all %1 cases occurred; the rarest, \"%2\", %3 times"_s.arg(
        QString::number(all.size()), rarest->first, QString::number(rarest->second));
}

}  // namespace

class tst_Model : public QObject
{
    Q_OBJECT

public:
    explicit tst_Model(const Effort &effort) : m_effort(effort) {}

private Q_SLOTS:
    void differenceIsMadeShortAndRepeated();
    void stepsArePrintedWithDeviceArgumentsAndRoute();
    void onlyASeedIsTakenFromTheParameters();
    void whatWasNeverDrawnIsNamed();
    void libraryAgreesWithTheModel() const;

private:
    Effort m_effort;
};

void tst_Model::differenceIsMadeShortAndRepeated()
{
    const SpoilExpectation spoil = [](const Step &step, QStringList &lines) {
        if (step.kind == Step::Kind::SetReportRate)
            lines.removeLast();
    };
    const QString expected = u"operations:\n"
                             "  initialize(true, true, true)\n"
                             "  [1] createLogicalDevice(first receiver)\n"
                             "  [1] setReportRate(500)\n"
                             "expected of the last one:\n"
                             "  call [1] setReportRate(500)\n"
                             "  debug RV418.LogicalDevice: Updating new report rate :  500\n"
                             "seen:\n"
                             "  call [1] setReportRate(500)\n"
                             "  debug RV418.LogicalDevice: Updating new report rate :  500\n"
                             "  warning RV418.LogicalDevice: Unknown IPhysicalDevice interface\n"_s;
    for (int run = 0; run < 2; ++run) {
        const Round round = runRound(1, spoil);
        QVERIFY(round.shortest);
        QCOMPARE(round.shortest->text().split(u'\n'), expected.split(u'\n'));
    }
}

void tst_Model::stepsArePrintedWithDeviceArgumentsAndRoute()
{
    using Kind = Step::Kind;
    using Route = Step::Route;
    Step onNull = stepOf(Kind::CreateDevice);
    onNull.physical = Physical::Nothing;
    Step refusing = stepOf(Kind::ChangeReceiver);
    refusing.receiver = 1;
    refusing.answers.batteryLevel = 101;
    refusing.answers.acceptsRequests = false;
    refusing.answers.reportRateInfo.currentRate = 333;
    Step texts = stepOf(Kind::SetDpiSlotValues, Route::OtherThread, 3);
    texts.texts = QStringList{u"800"_s, u""_s};
    Step report = stepOf(Kind::SetBatteryLevel, Route::InsideRequest, 1);
    report.number = -1;
    SequenceResult result;
    for (const Step &step : {onNull, stepOf(Kind::ChangeReceiver), refusing, texts, report,
                             stepOf(Kind::ReceiverDpiMinChanged), stepOf(Kind::DeliverQueuedCalls)})
        result.steps.push_back(std::make_shared<const Step>(step));
    result.isUnloaded = true;
    result.difference = Difference{{u"signal"_s}, {}, {u"[1] dpiMin: expected 100, seen 0"_s}};
    const QString expected =
        u"operations:\n"
        "  [1] createLogicalDevice(null)\n"
        "  [first receiver] changeReceiver(sane answers)\n"
        "  [second receiver] changeReceiver(batteryLevel=101, acceptsRequests=false, "
        "reportRateInfo={\"currentRate\": 333, \"supportedRates\": [125, 250, 500, 1000], \"unused\": "
        "65535})\n"
        "  [18446744073709551615] setDpiSlotValues([\"800\", \"\"]) from another thread\n"
        "  [2] setBatteryLevel(-1) inside the next request to the first receiver\n"
        "  [first receiver] dpiMinChanged(0)\n"
        "  deliverQueuedCalls()\n"
        "  the library is unloaded\n"
        "expected of the last one:\n"
        "  signal\n"
        "seen:\n"
        "  nothing\n"
        "getters after it:\n"
        "  [1] dpiMin: expected 100, seen 0\n"_s;
    QCOMPARE(result.text().split(u'\n'), expected.split(u'\n'));
}

void tst_Model::onlyASeedIsTakenFromTheParameters()
{
    QVERIFY(isSeedAlone(u"seed=18446744073709551615"_s));
    for (const QString &parameters :
         {u""_s, u"seed=-1"_s, u"seed=18446744073709551616"_s, u"max_size=5"_s, u"seed=1 max_success=1"_s})
        QVERIFY2(!isSeedAlone(parameters), qPrintable(parameters));
}

void tst_Model::whatWasNeverDrawnIsNamed()
{
    OtherThread otherThread;
    DrawnCounts counts;
    const qsizetype before = counts.missing().size();
    // A device is made and the library unloaded, nothing else.
    QVERIFY(!runSequence({}, otherThread, {}, &counts).difference);
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
    uint64_t seed = m_effort.seed;
    qint64 operations = 0;
    qint64 sequences = 0;
    DrawnCounts counts;
    QElapsedTimer timer;
    timer.start();
    const auto isEnough = [&] {
        return operations >= m_effort.operations &&
               timer.elapsed() >= m_effort.seconds * millisecondsPerSecond &&
               (operations >= operationsForAllCases || counts.missing().isEmpty());
    };
    for (; !isEnough(); ++seed) {
        // Before the round, so that it is known when the library crashes.
        print(parametersText(seed));
        const Round round = runRound(seed, {}, &counts);
        operations += round.operations;
        sequences += round.sequences;
        QVERIFY2(round.problem.isEmpty(), qPrintable(round.problem));
        if (round.shortest)
            QFAIL(qPrintable(u"library and model differ; %1 repeats it\n%2"_s.arg(parametersText(seed),
                                                                                  round.shortest->text())));
    }
    print(u"%1 operations in %2 sequences, %3 s"_s.arg(operations)
              .arg(sequences)
              .arg(static_cast<double>(timer.elapsed()) / millisecondsPerSecond));
    const QStringList missing = counts.missing();
    QVERIFY2(missing.isEmpty(), qPrintable(u"never occurred: "_s + missing.join(u", "_s)));
    print(casesText(counts));
}

int main(int argc, char **argv)
{
    const bool isTimeGiven = qEnvironmentVariableIsSet(secondsVariable);
    const std::optional<qint64> operations =
        positiveNumber(operationsVariable, isTimeGiven ? 0 : Effort().operations);
    const std::optional<qint64> seconds = positiveNumber(secondsVariable, 0);
    if (!operations || !seconds || !isSeedConfigured())
        return 2;
    // Qt Test must not end a long run.
    if (!qEnvironmentVariableIsSet("QTEST_FUNCTION_TIMEOUT"))
        qputenv("QTEST_FUNCTION_TIMEOUT", QByteArray::number(std::numeric_limits<int>::max()));
    const QCoreApplication application(argc, argv);
    tst_Model test({*operations, *seconds, configuredSeed()});
    return QTest::qExec(&test, argc, argv);
}

#include "tst_Model.moc"
