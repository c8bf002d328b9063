#include "OtherThread.h"
#include "PluginFixture.h"
#include "TimelineText.h"

#include <QtTest/QTest>

#include <algorithm>
#include <initializer_list>

using namespace Qt::StringLiterals;

namespace {

// A record as a receiver fills it; the first word is noise that nothing may read.
ReportRateInfo rateInfo(quint16 current, std::initializer_list<quint16> supported)
{
    ReportRateInfo info{0x5555, current, {0, 0, 0, 0}};
    std::copy(supported.begin(), supported.end(), info.supportedRates);
    return info;
}

QString supportedLine(int rate)
{
    return debugLine(u"got supported report rate :  "_s + QString::number(rate));
}

QString updatingLine(int rate)
{
    return debugLine(u"Updating new report rate :  "_s + QString::number(rate));
}

QString confirmedLine(int rate, int pending)
{
    return debugLine(u"reportRateConfirmed rate : %1 , reportRatePending : %2"_s.arg(rate).arg(pending));
}

// What a request that goes out from idle, and is accepted, leaves on the timeline.
QStringList acceptedRequest(int rate)
{
    return {updatingLine(rate), u"signal isReportRateChangePendingChanged(true)"_s,
            u"receiver setReportRate(%1) -> true"_s.arg(rate), u"signal reportRateChanged(%1)"_s.arg(rate)};
}

// What a pending request that is sent again leaves on the timeline.
QStringList repeatedRequest(int rate)
{
    return {updatingLine(rate), u"receiver setReportRate(%1) -> true"_s.arg(rate),
            u"signal reportRateChanged(%1)"_s.arg(rate)};
}

// The part of a start that deals with the rates.
QStringList ratesOfStart(const QStringList &lines)
{
    const auto isLine = [](const QString &text) {
        return [text](const QString &line) { return line.startsWith(text); };
    };
    const auto first = std::find_if(lines.cbegin(), lines.cend(), isLine(u"receiver getReportRateInfo"_s));
    const auto last = std::find_if(first, lines.cend(), isLine(u"receiver getLevelValue"_s));
    return QStringList(first, last);
}

/// A receiver that may leave the record as it finds it. Keeps the bytes that it finds.
class LazyReceiver : public FakeReceiver
{
public:
    using FakeReceiver::FakeReceiver;

    bool fillsRecord = false;
    QByteArrayList found;

    bool getReportRateInfo(DeviceId id, ReportRateInfo *info) override
    {
        found += QByteArray(reinterpret_cast<const char *>(info), sizeof *info);
        ReportRateInfo ignored{};
        return FakeReceiver::getReportRateInfo(id, fillsRecord ? info : &ignored);
    }
};

// Leaves bytes on the stack, which a record there then has unless it is cleared.
Q_NEVER_INLINE void dirtyTheStack()
{
    volatile char noise[4096];
    for (volatile char &byte : noise)
        byte = 0x55;
}

}  // namespace

Q_DECLARE_METATYPE(ReportRateInfo)

class tst_ReportRate : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void isSupportedInEveryState();
    void startReadsTheRates_data();
    void startReadsTheRates();
    void startWithoutRecordLeavesTheDefaults();
    void startLeavesThe125PreferenceToListedRates();
    void secondStartAppendsTheRatesAgain();
    void secondStartWithAnEmptyListRequestsItsFirstEntryZero();
    void setReportRateIgnoresTheCurrentRate();
    void setReportRateIsPendingUntilConfirmed();
    void setReportRateKeepsTheNewRateWhenTheReceiverRefuses();
    void requestIsKnownWhenItsFlagIsSignalled();
    void requestIsOverWhenItsFlagIsSignalled();
    void refusedRequestIsOverWhenItsFlagIsSignalled();
    void setReportRateWithoutReceiverTakesTheRateSilently();
    void setReportRateKeepsWaitingForTheFirstRequest();
    void secondRequestRefusedEndsTheFirst();
    void setReportRatePassesAnyNumber_data();
    void setReportRatePassesAnyNumber();
    void setReportRateZeroLeavesTheFlagWithNothingToWaitFor();
    void negativePendingRateIgnoresOtherConfirmations();
    void confirmationWithNothingPending_data();
    void confirmationWithNothingPending();
    void disagreeingConfirmationSendsThePendingRateAgain();
    void disagreeingConfirmationRepeatsWithoutLimit();
    void refusedRepeatEndsTheRequest();
    void reportReplacesTheListAndConfirms_data();
    void reportReplacesTheListAndConfirms();
    void reportOfAnUnlistedRateWithoutReceiver();
    void reportWhileARequestIsPending();
    void confirmationInsideTheRequest();
    void otherThreadChangesAtOnceAndSignalsLater();
    void otherThreadSignalsCarryTheValueAtDelivery();
    void otherThreadReportsTheListAtDelivery();
    void requestSurvivesStop();
    void logSwitchesChangeNothingElse_data();
    void logSwitchesChangeNothingElse();
    void rateChangedInsideTheFlagsSignal();
    void rateIsPendingUntilTheWarningIsWritten();
    void everyStartHasAnEmptyRecord();
};

void tst_ReportRate::isSupportedInEveryState()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    QVERIFY(device.device()->isReportRateSupported());
    QCOMPARE(device.device()->reportRate(), 0);
    COMPARE_LINES(device.device()->reportRateValues(), {});
    QVERIFY(!device.device()->isReportRateChangePending());
    device.start();
    QVERIFY(device.device()->isReportRateSupported());
    device.stop();
    QVERIFY(device.device()->isReportRateSupported());
}

void tst_ReportRate::startReadsTheRates_data()
{
    QTest::addColumn<ReportRateInfo>("info");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<QStringList>("rates");
    QTest::addColumn<int>("rate");
    QTest::addColumn<bool>("isPending");

    const QString unlisted = warningLine(u"current report rate not found in list :  "_s);
    QTest::newRow("current-listed-in-the-middle")
        << rateInfo(500, {125, 250, 500, 1000})
        << QStringList{supportedLine(125), supportedLine(250), supportedLine(500),
                       debugLine(u"got current report rate :  500"_s), supportedLine(1000)}
        << QStringList{u"125"_s, u"250"_s, u"500"_s, u"1000"_s} << 500 << false;
    QTest::newRow("list-ends-at-zero")
        << rateInfo(125, {125, 0, 500, 1000})
        << QStringList{supportedLine(125), debugLine(u"got current report rate :  125"_s)}
        << QStringList{u"125"_s} << 125 << false;
    QTest::newRow("current-behind-the-end-of-the-list")
        << rateInfo(500, {250, 0, 500, 125})
        << (QStringList{supportedLine(250), unlisted + u"500"_s} + acceptedRequest(250))
        << QStringList{u"250"_s} << 250 << true;
    QTest::newRow("current-listed-twice")
        << rateInfo(500, {500, 500})
        << QStringList{supportedLine(500), debugLine(u"got current report rate :  500"_s), supportedLine(500),
                       debugLine(u"got current report rate :  500"_s)}
        << QStringList{u"500"_s, u"500"_s} << 500 << false;
    QTest::newRow("unlisted-without-125-takes-the-first")
        << rateInfo(1000, {250, 500})
        << (QStringList{supportedLine(250), supportedLine(500), unlisted + u"1000"_s} + acceptedRequest(250))
        << QStringList{u"250"_s, u"500"_s} << 250 << true;
    QTest::newRow("unlisted-prefers-125")
        << rateInfo(1000, {500, 125})
        << (QStringList{supportedLine(500), supportedLine(125), unlisted + u"1000"_s} + acceptedRequest(125))
        << QStringList{u"500"_s, u"125"_s} << 125 << true;
    QTest::newRow("unlisted-prefers-125-wherever-it-is-listed")
        << rateInfo(1000, {500, 125, 250})
        << (QStringList{supportedLine(500), supportedLine(125), supportedLine(250), unlisted + u"1000"_s} +
            acceptedRequest(125))
        << QStringList{u"500"_s, u"125"_s, u"250"_s} << 125 << true;
    QTest::newRow("unlisted-zero-is-not-the-end-of-the-list")
        << rateInfo(0, {250, 0})
        << (QStringList{supportedLine(250), unlisted + u"0"_s} + acceptedRequest(250))
        << QStringList{u"250"_s} << 250 << true;
    QTest::newRow("empty-list") << rateInfo(500, {0, 125, 500, 1000})
                                << QStringList{unlisted + u"500"_s,
                                               warningLine(u"report rate not initialized"_s)}
                                << QStringList() << 0 << false;
    QTest::newRow("largest-words") << rateInfo(65535, {65534, 65535})
                                   << QStringList{supportedLine(65534), supportedLine(65535),
                                                  debugLine(u"got current report rate :  65535"_s)}
                                   << QStringList{u"65534"_s, u"65535"_s} << 65535 << false;
}

void tst_ReportRate::startReadsTheRates()
{
    QFETCH(const ReportRateInfo, info);
    QFETCH(const QStringList, expected);
    QFETCH(const QStringList, rates);
    QFETCH(const int, rate);
    QFETCH(const bool, isPending);

    PluginFixture fixture;
    fixture.receiver.answers.reportRateInfo = info;
    HostedDevice &device = fixture.create();
    QVERIFY(device.start());

    COMPARE_LINES(ratesOfStart(fixture.take()).mid(1), expected);
    QCOMPARE(device.device()->reportRateValues(), rates);
    QCOMPARE(device.device()->reportRate(), rate);
    QCOMPARE(device.device()->isReportRateChangePending(), isPending);
}

void tst_ReportRate::startWithoutRecordLeavesTheDefaults()
{
    PluginFixture fixture;
    fixture.receiver.answers.hasReportRateInfo = false;
    HostedDevice &device = fixture.create();
    device.start();

    COMPARE_LINES(ratesOfStart(fixture.take()), {u"receiver getReportRateInfo() -> false"_s});
    QCOMPARE(device.device()->reportRate(), 0);
    COMPARE_LINES(device.device()->reportRateValues(), {});
}

void tst_ReportRate::startLeavesThe125PreferenceToListedRates()
{
    PluginFixture fixture;
    fixture.receiver.answers.reportRateInfo = rateInfo(1000, {250, 0, 125});
    HostedDevice &device = fixture.create();
    device.start();

    QCOMPARE(device.device()->reportRate(), 250);
}

void tst_ReportRate::secondStartAppendsTheRatesAgain()
{
    PluginFixture fixture;
    fixture.receiver.answers.reportRateInfo = rateInfo(250, {125, 250});
    HostedDevice &device = fixture.started();
    device.start();

    COMPARE_LINES(device.device()->reportRateValues(), {u"125"_s, u"250"_s, u"125"_s, u"250"_s});
}

void tst_ReportRate::secondStartWithAnEmptyListRequestsItsFirstEntryZero()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    fixture.receiver.answers.reportRateInfo = rateInfo(500, {0, 125});
    device.start();

    COMPARE_LINES(ratesOfStart(fixture.take()).mid(1),
                  QStringList{warningLine(u"current report rate not found in list :  500"_s)} +
                      acceptedRequest(0));
    QCOMPARE(device.device()->reportRate(), 0);
    COMPARE_LINES(device.device()->reportRateValues(), {u"125"_s, u"250"_s, u"500"_s, u"1000"_s});
}

void tst_ReportRate::setReportRateIgnoresTheCurrentRate()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setReportRate(500);

    COMPARE_LINES(fixture.take(), {u"call setReportRate(500)"_s});
}

void tst_ReportRate::setReportRateIsPendingUntilConfirmed()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setReportRate(1000);

    COMPARE_LINES(fixture.take(), QStringList{u"call setReportRate(1000)"_s} + acceptedRequest(1000));
    QCOMPARE(device.device()->reportRate(), 1000);
    QVERIFY(device.device()->isReportRateChangePending());

    device.reportRateConfirmed(1000);

    COMPARE_LINES(fixture.take(), {u"call reportRateConfirmed(1000)"_s, confirmedLine(1000, 1000),
                                   u"signal isReportRateChangePendingChanged(false)"_s});
    QCOMPARE(device.device()->reportRate(), 1000);
    QVERIFY(!device.device()->isReportRateChangePending());

    // Nothing is pending any more: the same confirmation again is a report of the current rate.
    device.reportRateConfirmed(1000);
    COMPARE_LINES(fixture.take(), {u"call reportRateConfirmed(1000)"_s, confirmedLine(1000, 0)});
}

void tst_ReportRate::setReportRateKeepsTheNewRateWhenTheReceiverRefuses()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    fixture.receiver.answers.acceptsRequests = false;
    device.setReportRate(1000);

    COMPARE_LINES(fixture.take(),
                  {u"call setReportRate(1000)"_s, updatingLine(1000),
                   u"signal isReportRateChangePendingChanged(true)"_s,
                   u"receiver setReportRate(1000) -> false"_s,
                   warningLine(u"Dongle set report rate failed"_s),
                   u"signal isReportRateChangePendingChanged(false)"_s, u"signal reportRateChanged(1000)"_s});
    QCOMPARE(device.device()->reportRate(), 1000);
    QVERIFY(!device.device()->isReportRateChangePending());

    // The request left nothing pending: another rate is taken as the mouse's own.
    device.reportRateConfirmed(500);
    COMPARE_LINES(fixture.take(), {u"call reportRateConfirmed(500)"_s, confirmedLine(500, 0),
                                   u"signal reportRateChanged(500)"_s});
}

void tst_ReportRate::requestIsKnownWhenItsFlagIsSignalled()
{
    // A slot of the flag's signal that has the mouse's answer already ends the request with it.
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    fixture.timeline.setObserver([&](const TimelineEntry &entry) {
        if (entry.name == u"isReportRateChangePendingChanged" && device.device()->isReportRateChangePending())
            device.device()->reportRateConfirmed(1000);
    });
    device.setReportRate(1000);
    fixture.timeline.setObserver({});
    COMPARE_LINES(fixture.take(),
                  {u"call setReportRate(1000)"_s, u"signal isReportRateChangePendingChanged(true)"_s,
                   u"signal isReportRateChangePendingChanged(false)"_s,
                   u"receiver setReportRate(1000) -> true"_s, u"signal reportRateChanged(1000)"_s});
    QVERIFY(!device.device()->isReportRateChangePending());
}

void tst_ReportRate::requestIsOverWhenItsFlagIsSignalled()
{
    // A slot of the flag's signal already meets a device that waits for nothing: what it reports is stored.
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    device.setReportRate(1000);
    fixture.take();
    fixture.timeline.setObserver([&](const TimelineEntry &entry) {
        if (entry.name == u"isReportRateChangePendingChanged")
            device.device()->reportRateConfirmed(250);
    });
    device.reportRateConfirmed(1000);
    fixture.timeline.setObserver({});
    COMPARE_LINES(fixture.take(),
                  {u"call reportRateConfirmed(1000)"_s, u"signal isReportRateChangePendingChanged(false)"_s,
                   u"signal reportRateChanged(250)"_s, u"signal reportRateChanged(1000)"_s});
}

void tst_ReportRate::refusedRequestIsOverWhenItsFlagIsSignalled()
{
    // A slot of the flag's signal already meets a device that waits for nothing: what it reports is stored.
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    fixture.receiver.answers.acceptsRequests = false;
    fixture.timeline.setObserver([&](const TimelineEntry &entry) {
        if (entry.name == u"isReportRateChangePendingChanged" &&
            !device.device()->isReportRateChangePending())
            device.device()->reportRateConfirmed(250);
    });
    device.setReportRate(1000);
    fixture.timeline.setObserver({});
    COMPARE_LINES(fixture.take(),
                  {u"call setReportRate(1000)"_s, u"signal isReportRateChangePendingChanged(true)"_s,
                   u"receiver setReportRate(1000) -> false"_s,
                   u"signal isReportRateChangePendingChanged(false)"_s, u"signal reportRateChanged(250)"_s,
                   u"signal reportRateChanged(250)"_s});
}

void tst_ReportRate::setReportRateWithoutReceiverTakesTheRateSilently()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    device.setReportRate(1000);

    COMPARE_LINES(fixture.take(), {u"call setReportRate(1000)"_s, updatingLine(1000),
                                   warningLine(u"Unknown IPhysicalDevice interface"_s)});
    QCOMPARE(device.device()->reportRate(), 1000);
    QVERIFY(!device.device()->isReportRateChangePending());
}

void tst_ReportRate::setReportRateKeepsWaitingForTheFirstRequest()
{
    PluginFixture fixture;
    fixture.receiver.answers.reportRateInfo = rateInfo(125, {125, 500, 1000});
    HostedDevice &device = fixture.started();
    device.setReportRate(500);
    fixture.take();
    device.setReportRate(1000);

    COMPARE_LINES(fixture.take(), QStringList{u"call setReportRate(1000)"_s} + repeatedRequest(1000));

    device.reportRateConfirmed(1000);
    COMPARE_LINES(fixture.take(), {u"call reportRateConfirmed(1000)"_s, confirmedLine(1000, 500)});
    QVERIFY(device.device()->isReportRateChangePending());

    device.reportRateConfirmed(500);
    COMPARE_LINES(fixture.take(),
                  {u"call reportRateConfirmed(500)"_s, confirmedLine(500, 500),
                   u"signal isReportRateChangePendingChanged(false)"_s, u"signal reportRateChanged(500)"_s});
    QCOMPARE(device.device()->reportRate(), 500);
}

void tst_ReportRate::secondRequestRefusedEndsTheFirst()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setReportRate(1000);
    fixture.take();
    fixture.receiver.answers.acceptsRequests = false;
    device.setReportRate(250);

    COMPARE_LINES(fixture.take(),
                  {u"call setReportRate(250)"_s, updatingLine(250), u"receiver setReportRate(250) -> false"_s,
                   warningLine(u"Dongle set report rate failed"_s),
                   u"signal isReportRateChangePendingChanged(false)"_s, u"signal reportRateChanged(250)"_s});
    device.reportRateConfirmed(1000);
    COMPARE_LINES(fixture.take(), {u"call reportRateConfirmed(1000)"_s, confirmedLine(1000, 0),
                                   u"signal reportRateChanged(1000)"_s});
}

void tst_ReportRate::setReportRatePassesAnyNumber_data()
{
    QTest::addColumn<int>("rate");
    QTest::newRow("not-on-offer") << 333;
    QTest::newRow("negative") << -1;
    QTest::newRow("above-a-word") << 65536;
    QTest::newRow("largest") << std::numeric_limits<int>::max();
    QTest::newRow("smallest") << std::numeric_limits<int>::min();
}

void tst_ReportRate::setReportRatePassesAnyNumber()
{
    QFETCH(const int, rate);
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setReportRate(rate);

    COMPARE_LINES(fixture.take(), QStringList{u"call setReportRate(%1)"_s.arg(rate)} + acceptedRequest(rate));
    device.reportRateConfirmed(rate);
    COMPARE_LINES(fixture.take(), {u"call reportRateConfirmed(%1)"_s.arg(rate), confirmedLine(rate, rate),
                                   u"signal isReportRateChangePendingChanged(false)"_s});
    QCOMPARE(device.device()->reportRate(), rate);
}

void tst_ReportRate::setReportRateZeroLeavesTheFlagWithNothingToWaitFor()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setReportRate(0);
    COMPARE_LINES(fixture.take(), QStringList{u"call setReportRate(0)"_s} + acceptedRequest(0));

    device.reportRateConfirmed(250);
    COMPARE_LINES(fixture.take(), {u"call reportRateConfirmed(250)"_s, confirmedLine(250, 0),
                                   u"signal reportRateChanged(250)"_s});
    QVERIFY(device.device()->isReportRateChangePending());

    device.reportRateConfirmed(0);
    COMPARE_LINES(fixture.take(),
                  {u"call reportRateConfirmed(0)"_s, confirmedLine(0, 0),
                   u"signal isReportRateChangePendingChanged(false)"_s, u"signal reportRateChanged(0)"_s});
    QCOMPARE(device.device()->reportRate(), 0);
}

void tst_ReportRate::negativePendingRateIgnoresOtherConfirmations()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setReportRate(-125);
    fixture.take();
    device.reportRateConfirmed(250);

    COMPARE_LINES(fixture.take(), {u"call reportRateConfirmed(250)"_s, confirmedLine(250, -125)});
    QCOMPARE(device.device()->reportRate(), -125);
    QVERIFY(device.device()->isReportRateChangePending());
}

void tst_ReportRate::confirmationWithNothingPending_data()
{
    QTest::addColumn<int>("rate");
    QTest::addColumn<QStringList>("expected");
    QTest::newRow("current-rate") << 500 << QStringList{confirmedLine(500, 0)};
    QTest::newRow("another-rate") << 250
                                  << QStringList{confirmedLine(250, 0), u"signal reportRateChanged(250)"_s};
    QTest::newRow("zero") << 0 << QStringList{confirmedLine(0, 0), u"signal reportRateChanged(0)"_s};
    QTest::newRow("negative") << -2 << QStringList{confirmedLine(-2, 0), u"signal reportRateChanged(-2)"_s};
}

void tst_ReportRate::confirmationWithNothingPending()
{
    QFETCH(const int, rate);
    QFETCH(const QStringList, expected);
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.reportRateConfirmed(rate);

    COMPARE_LINES(fixture.take(), QStringList{u"call reportRateConfirmed(%1)"_s.arg(rate)} + expected);
    QCOMPARE(device.device()->reportRate(), rate);
    QVERIFY(!device.device()->isReportRateChangePending());
}

void tst_ReportRate::disagreeingConfirmationSendsThePendingRateAgain()
{
    PluginFixture fixture;
    fixture.receiver.answers.reportRateInfo = rateInfo(125, {125, 250, 500});
    HostedDevice &device = fixture.started();
    device.setReportRate(500);
    fixture.take();
    int rateDuringRequest = -1;
    fixture.receiver.duringRequest = [&](const QString &) {
        rateDuringRequest = device.device()->reportRate();
    };
    device.reportRateConfirmed(250);

    COMPARE_LINES(fixture.take(), QStringList{u"call reportRateConfirmed(250)"_s, confirmedLine(250, 500)} +
                                      repeatedRequest(500));
    QCOMPARE(rateDuringRequest, 500);
    QCOMPARE(device.device()->reportRate(), 500);
    QVERIFY(device.device()->isReportRateChangePending());

    device.reportRateConfirmed(500);
    COMPARE_LINES(fixture.take(), {u"call reportRateConfirmed(500)"_s, confirmedLine(500, 500),
                                   u"signal isReportRateChangePendingChanged(false)"_s});
}

void tst_ReportRate::disagreeingConfirmationRepeatsWithoutLimit()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setReportRate(1000);
    fixture.take();
    for (int i = 0; i < 1000; ++i) {
        device.reportRateConfirmed(250);
        COMPARE_LINES(fixture.take(),
                      QStringList{u"call reportRateConfirmed(250)"_s, confirmedLine(250, 1000)} +
                          repeatedRequest(1000));
    }
}

void tst_ReportRate::refusedRepeatEndsTheRequest()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setReportRate(1000);
    fixture.take();
    fixture.receiver.answers.acceptsRequests = false;
    device.reportRateConfirmed(250);

    COMPARE_LINES(fixture.take(),
                  {u"call reportRateConfirmed(250)"_s, confirmedLine(250, 1000), updatingLine(1000),
                   u"receiver setReportRate(1000) -> false"_s,
                   warningLine(u"Dongle set report rate failed"_s),
                   u"signal isReportRateChangePendingChanged(false)"_s, u"signal reportRateChanged(1000)"_s});
    QCOMPARE(device.device()->reportRate(), 1000);
}

void tst_ReportRate::reportReplacesTheListAndConfirms_data()
{
    QTest::addColumn<ReportRateInfo>("info");
    QTest::addColumn<QStringList>("expected");
    QTest::addColumn<QStringList>("rates");
    QTest::addColumn<int>("rate");

    QTest::newRow("unchanged-list") << rateInfo(500, {125, 250, 500, 1000})
                                    << QStringList{supportedLine(125), supportedLine(250), supportedLine(500),
                                                   supportedLine(1000), confirmedLine(500, 0)}
                                    << QStringList{u"125"_s, u"250"_s, u"500"_s, u"1000"_s} << 500;
    QTest::newRow("unchanged-list-another-rate")
        << rateInfo(1000, {125, 250, 500, 1000})
        << QStringList{supportedLine(125),  supportedLine(250),     supportedLine(500),
                       supportedLine(1000), confirmedLine(1000, 0), u"signal reportRateChanged(1000)"_s}
        << QStringList{u"125"_s, u"250"_s, u"500"_s, u"1000"_s} << 1000;
    QTest::newRow("shorter-list") << rateInfo(500, {125, 500, 0, 1000})
                                  << QStringList{supportedLine(125), supportedLine(500),
                                                 u"signal reportRateValuesChanged([\"125\", \"500\"])"_s,
                                                 confirmedLine(500, 0)}
                                  << QStringList{u"125"_s, u"500"_s} << 500;
    QTest::newRow("another-order")
        << rateInfo(500, {1000, 500, 250, 125})
        << QStringList{supportedLine(1000),
                       supportedLine(500),
                       supportedLine(250),
                       supportedLine(125),
                       u"signal reportRateValuesChanged([\"1000\", \"500\", \"250\", \"125\"])"_s,
                       confirmedLine(500, 0)}
        << QStringList{u"1000"_s, u"500"_s, u"250"_s, u"125"_s} << 500;
    QTest::newRow("unlisted-without-125-takes-the-first")
        << rateInfo(500, {250, 1000})
        << (QStringList{supportedLine(250), supportedLine(1000),
                        u"signal reportRateValuesChanged([\"250\", \"1000\"])"_s} +
            acceptedRequest(250))
        << QStringList{u"250"_s, u"1000"_s} << 250;
    QTest::newRow("unlisted-prefers-125")
        << rateInfo(500, {250, 125})
        << (QStringList{supportedLine(250), supportedLine(125),
                        u"signal reportRateValuesChanged([\"250\", \"125\"])"_s} +
            acceptedRequest(125))
        << QStringList{u"250"_s, u"125"_s} << 125;
    QTest::newRow("unlisted-prefers-125-wherever-it-is-listed")
        << rateInfo(500, {250, 125, 1000})
        << (QStringList{supportedLine(250), supportedLine(125), supportedLine(1000),
                        u"signal reportRateValuesChanged([\"250\", \"125\", \"1000\"])"_s} +
            acceptedRequest(125))
        << QStringList{u"250"_s, u"125"_s, u"1000"_s} << 125;
    QTest::newRow("unlisted-but-the-fallback-is-current")
        << rateInfo(1000, {500, 250})
        << QStringList{supportedLine(500), supportedLine(250),
                       u"signal reportRateValuesChanged([\"500\", \"250\"])"_s}
        << QStringList{u"500"_s, u"250"_s} << 500;
    QTest::newRow("empty-list") << rateInfo(500, {0, 500, 125})
                                << QStringList{u"signal reportRateValuesChanged([])"_s,
                                               warningLine(u"report rate not initialized"_s)}
                                << QStringList() << 500;
}

void tst_ReportRate::reportReplacesTheListAndConfirms()
{
    QFETCH(const ReportRateInfo, info);
    QFETCH(const QStringList, expected);
    QFETCH(const QStringList, rates);
    QFETCH(const int, rate);

    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.reportRateChangedCallBack(&info);

    COMPARE_LINES(fixture.take().mid(1), expected);
    QCOMPARE(device.device()->reportRateValues(), rates);
    QCOMPARE(device.device()->reportRate(), rate);
}

void tst_ReportRate::reportOfAnUnlistedRateWithoutReceiver()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    const ReportRateInfo info = rateInfo(1000, {500, 125});
    device.reportRateChangedCallBack(&info);

    // Without a receiver 125 is not preferred: the first listed rate is taken, and cannot be sent.
    COMPARE_LINES(fixture.take().mid(1),
                  {supportedLine(500), supportedLine(125),
                   u"signal reportRateValuesChanged([\"500\", \"125\"])"_s, updatingLine(500),
                   warningLine(u"Unknown IPhysicalDevice interface"_s)});
    QCOMPARE(device.device()->reportRate(), 500);
}

void tst_ReportRate::reportWhileARequestIsPending()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setReportRate(1000);
    fixture.take();
    const ReportRateInfo info = rateInfo(250, {250, 1000});
    device.reportRateChangedCallBack(&info);

    COMPARE_LINES(
        fixture.take().mid(1),
        QStringList({supportedLine(250), supportedLine(1000),
                     u"signal reportRateValuesChanged([\"250\", \"1000\"])"_s, confirmedLine(250, 1000)}) +
            repeatedRequest(1000));
}

void tst_ReportRate::confirmationInsideTheRequest()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    fixture.receiver.duringRequest = [&](const QString &) { device.reportRateConfirmed(1000); };
    device.setReportRate(1000);

    COMPARE_LINES(fixture.take(),
                  {u"call setReportRate(1000)"_s, updatingLine(1000),
                   u"signal isReportRateChangePendingChanged(true)"_s,
                   u"receiver setReportRate(1000) -> true"_s, u"call reportRateConfirmed(1000)"_s,
                   confirmedLine(1000, 1000), u"signal isReportRateChangePendingChanged(false)"_s,
                   u"signal reportRateChanged(1000)"_s});
    QVERIFY(!device.device()->isReportRateChangePending());
}

void tst_ReportRate::otherThreadChangesAtOnceAndSignalsLater()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    OtherThread other;
    other.run([&] { device.setReportRate(1000); });

    QCOMPARE(device.device()->reportRate(), 1000);
    QVERIFY(device.device()->isReportRateChangePending());
    COMPARE_LINES(fixture.take(),
                  {u"call setReportRate(1000) on thread 2"_s, updatingLine(1000) + u" on thread 2"_s,
                   u"receiver setReportRate(1000) -> true on thread 2"_s});
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(),
                  {u"signal isReportRateChangePendingChanged(true)"_s, u"signal reportRateChanged(1000)"_s});

    other.run([&] { device.reportRateConfirmed(1000); });
    QVERIFY(!device.device()->isReportRateChangePending());
    fixture.take();
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {u"signal isReportRateChangePendingChanged(false)"_s});
}

void tst_ReportRate::otherThreadSignalsCarryTheValueAtDelivery()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    OtherThread other;
    other.run([&] {
        device.reportRateConfirmed(250);
        device.reportRateConfirmed(1000);
    });
    fixture.take();
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {u"signal reportRateChanged(1000)"_s, u"signal reportRateChanged(1000)"_s});

    other.run([&] {
        device.setReportRate(125);
        device.reportRateConfirmed(125);
    });
    fixture.take();
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(),
                  {u"signal isReportRateChangePendingChanged(false)"_s, u"signal reportRateChanged(125)"_s,
                   u"signal isReportRateChangePendingChanged(false)"_s});
}

void tst_ReportRate::otherThreadReportsTheListAtDelivery()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    OtherThread other;
    other.run([&] {
        const ReportRateInfo first = rateInfo(500, {500});
        device.reportRateChangedCallBack(&first);
        const ReportRateInfo second = rateInfo(500, {500, 125});
        device.reportRateChangedCallBack(&second);
    });
    COMPARE_LINES(device.device()->reportRateValues(), {u"500"_s, u"125"_s});
    fixture.take();
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {u"signal reportRateValuesChanged([\"500\", \"125\"])"_s,
                                   u"signal reportRateValuesChanged([\"500\", \"125\"])"_s});
}

void tst_ReportRate::requestSurvivesStop()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.setReportRate(1000);
    device.stop();
    QVERIFY(device.device()->isReportRateChangePending());
    fixture.take();
    device.reportRateConfirmed(1000);
    COMPARE_LINES(fixture.take(), {u"call reportRateConfirmed(1000)"_s, confirmedLine(1000, 1000),
                                   u"signal isReportRateChangePendingChanged(false)"_s});
}

void tst_ReportRate::logSwitchesChangeNothingElse_data()
{
    QTest::addColumn<bool>("debug");
    QTest::addColumn<bool>("warning");
    QTest::newRow("none") << false << false;
    QTest::newRow("debug-only") << true << false;
    QTest::newRow("warning-only") << false << true;
}

void tst_ReportRate::logSwitchesChangeNothingElse()
{
    QFETCH(const bool, debug);
    QFETCH(const bool, warning);
    PluginFixture fixture({debug, warning, false});
    HostedDevice &device = fixture.started();
    fixture.receiver.answers.acceptsRequests = false;
    device.setReportRate(1000);

    QStringList expected{u"call setReportRate(1000)"_s};
    if (debug)
        expected += updatingLine(1000);
    expected +=
        {u"signal isReportRateChangePendingChanged(true)"_s, u"receiver setReportRate(1000) -> false"_s};
    if (warning)
        expected += warningLine(u"Dongle set report rate failed"_s);
    expected += {u"signal isReportRateChangePendingChanged(false)"_s, u"signal reportRateChanged(1000)"_s};
    COMPARE_LINES(fixture.take(), expected);
}

void tst_ReportRate::rateChangedInsideTheFlagsSignal()
{
    // The outer request goes out as it was made, after the inner one; the signal has the rate in force.
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    fixture.onceInside(u"signal isReportRateChangePendingChanged(true)"_s,
                       [&] { device.setReportRate(250); });
    device.setReportRate(1000);
    COMPARE_LINES(fixture.take(),
                  {u"call setReportRate(1000)"_s, u"signal isReportRateChangePendingChanged(true)"_s,
                   u"call setReportRate(250)"_s, u"receiver setReportRate(250) -> true"_s,
                   u"signal reportRateChanged(250)"_s, u"receiver setReportRate(1000) -> true"_s,
                   u"signal reportRateChanged(250)"_s});
    device.reportRateConfirmed(1000);
    COMPARE_LINES(fixture.take(),
                  {u"call reportRateConfirmed(1000)"_s, u"signal isReportRateChangePendingChanged(false)"_s,
                   u"signal reportRateChanged(1000)"_s});
}

void tst_ReportRate::rateIsPendingUntilTheWarningIsWritten()
{
    // From inside the warning the mouse reports another rate: the request is sent again.
    PluginFixture fixture({false, true, false});
    HostedDevice &device = fixture.started();
    const QString warning = warningLine(u"Dongle set report rate failed"_s);
    fixture.receiver.answers.acceptsRequests = false;
    fixture.onceInside(warning, [&] {
        fixture.receiver.answers.acceptsRequests = true;
        device.reportRateConfirmed(250);
    });
    device.setReportRate(1000);
    COMPARE_LINES(fixture.take(),
                  {u"call setReportRate(1000)"_s, u"signal isReportRateChangePendingChanged(true)"_s,
                   u"receiver setReportRate(1000) -> false"_s, warning, u"call reportRateConfirmed(250)"_s,
                   u"receiver setReportRate(1000) -> true"_s, u"signal reportRateChanged(1000)"_s,
                   u"signal isReportRateChangePendingChanged(false)"_s, u"signal reportRateChanged(1000)"_s});
}

void tst_ReportRate::everyStartHasAnEmptyRecord()
{
    PluginFixture fixture({false, true, false});
    LazyReceiver receiver(fixture.timeline);
    HostedDevice &device = fixture.create(&receiver, PluginFixture::mouse);
    const QByteArray empty(sizeof(ReportRateInfo), '\0');
    const QString notFound = warningLine(u"current report rate not found in list :  0"_s);
    const QString asked = u"receiver getReportRateInfo() -> true"_s;

    dirtyTheStack();
    device.device()->start();
    COMPARE_LINES(ratesOfStart(fixture.take()),
                  {asked, notFound, warningLine(u"report rate not initialized"_s)});

    receiver.fillsRecord = true;
    device.device()->start();
    fixture.take();

    receiver.fillsRecord = false;
    dirtyTheStack();
    device.device()->start();
    COMPARE_LINES(ratesOfStart(fixture.take()),
                  {asked, notFound, u"signal isReportRateChangePendingChanged(true)"_s,
                   u"receiver setReportRate(0) -> true"_s, u"signal reportRateChanged(0)"_s});
    QCOMPARE(receiver.found, QByteArrayList({empty, empty, empty}));
    fixture.destroy(device);
}

QTEST_GUILESS_MAIN(tst_ReportRate)
#include "tst_ReportRate.moc"
