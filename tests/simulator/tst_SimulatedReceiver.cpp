#include "OtherThread.h"
#include "PluginFixture.h"
#include "SimulatedReceiver.h"
#include "TimelineText.h"
#include "TimelineWait.h"

#include <QtTest/QTest>

using namespace Qt::StringLiterals;
using Effect = ReceiverFault::Effect;

namespace {

constexpr std::chrono::seconds deadline{60};

ReceiverFault fault(const DeviceOperation &operation, Effect effect, int times = 1)
{
    ReceiverFault fault;
    fault.operation = &operation;
    fault.effect = effect;
    fault.times = times;
    return fault;
}

// A started device of the built library on a simulated receiver, without log lines.
struct Air
{
    static constexpr DeviceId mouse = 42;

    Timeline timeline;
    SimulatedHostServices hostServices{timeline};
    SimulatedReceiver receiver{timeline};
    PluginHost host{timeline};
    std::unique_ptr<HostedDevice> device;

    Air()
    {
        receiver.setMouse(mouse, SimulatedMouse());
        if (const std::optional<QString> reason = host.load(PluginFixture::builtPluginFile()))
            qFatal("%s", qPrintable(*reason));
        host.initialize(&hostServices, false, false, false);
        device = host.createDevice(&receiver, mouse);
        receiver.attach(mouse, device->device());
    }

    /// False when the air is not empty by the deadline.
    bool settle()
    {
        return waitForTimeline(timeline, [this] { return receiver.isIdle(); }, deadline);
    }

    QStringList takeSettled() { return settle() ? timeline.take() : QStringList{u"never settled"_s}; }

    /// Started and settled, with nothing on the timeline.
    void start()
    {
        device->start();
        if (!settle())
            qFatal("the receiver never settled");
        timeline.clear();
    }
};

}  // namespace

class tst_SimulatedReceiver : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsAreAnsweredFromTheMouse();
    void refusedRateRecordIsLeftAlone();
    void reservedOperationsAreJudged();
    void unknownMouseIsRefused();
    void initialStateIsReported();
    void answersComeThroughTheEventLoop();
    void requestsChangeTheMouse_data();
    void requestsChangeTheMouse();
    void faultsOnRequests_data();
    void faultsOnRequests();
    void faultsOnReports_data();
    void faultsOnReports();
    void faultsOnReads();
    void faultsAreCounted();
    void faultsHitTheirMouseOnly();
    void delayedReportIsOvertaken();
    void stormIsStopped();
    void agreementEndsTheCountOfRepetitions();
    void reportThatAsksNothingEndsTheCount();
    void stormOfSlotValuesIsStopped();
    void detachedDeviceHearsNothing();
    void destroyedDeviceHearsNothing();
    void twoMiceAreKeptApart();
    void requestFromAnotherThreadIsAnsweredHere();
    void requestsWithoutDelayKeepTheirOrder();
    void waitAsksAgainAfterEachEntry();
    void waitEndsAtTheDeadline();
};

void tst_SimulatedReceiver::readsAreAnsweredFromTheMouse()
{
    Timeline timeline;
    SimulatedReceiver receiver(timeline);
    SimulatedMouse mouse;
    mouse.firmwareVersion = 0xffffffffU;
    mouse.batteryLevel = -3;
    mouse.forwardedResult = 99;
    mouse.reportRate = 250;
    receiver.setMouse(1, mouse);
    QCOMPARE(receiver.getFirmwareVersion(1), 0xffffffffU);
    QCOMPARE(receiver.hasBatteryLevel(1), true);
    QCOMPARE(receiver.getBatteryLevel(1), -3);
    QCOMPARE(receiver.getStatusValue(1), 1);
    QCOMPARE(receiver.getDeviceValue(1), 2);
    QCOMPARE(receiver.getLevelValue(1), 3);
    QCOMPARE(receiver.isSmartPointerSupported(1), true);
    QCOMPARE(receiver.forwardedOperation(1, 2, 3), quintptr(99));
    QCOMPARE(receiver.forwardedCall(4, 5, 6), quintptr(4));
    ReportRateInfo info{};
    QCOMPARE(receiver.getReportRateInfo(1, &info), true);
    QCOMPARE(info.currentRate, 250);
    QCOMPARE(info.supportedRates[3], 1000);
    COMPARE_LINES(timeline.take(Timeline::Style::WithDevice),
                  {u"receiver [1] getFirmwareVersion() -> 4294967295"_s,
                   u"receiver [1] hasBatteryLevel() -> true"_s, u"receiver [1] getBatteryLevel() -> -3"_s,
                   u"receiver [1] getStatusValue() -> 1"_s, u"receiver [1] getDeviceValue() -> 2"_s,
                   u"receiver [1] getLevelValue() -> 3"_s,
                   u"receiver [1] isSmartPointerSupported() -> true"_s,
                   u"receiver [1] forwardedOperation(2, 3) -> 99"_s,
                   u"receiver forwardedCall(4, 5, 6) -> 4"_s, u"receiver [1] getReportRateInfo() -> true"_s});
}

void tst_SimulatedReceiver::refusedRateRecordIsLeftAlone()
{
    Timeline timeline;
    SimulatedReceiver receiver(timeline);
    SimulatedMouse mouse;
    mouse.knowsReportRates = false;
    receiver.setMouse(1, mouse);
    ReportRateInfo info{1, 2, {3, 4, 5, 6}};
    QCOMPARE(receiver.getReportRateInfo(1, &info), false);
    QCOMPARE(info.currentRate, 2);
}

void tst_SimulatedReceiver::reservedOperationsAreJudged()
{
    Timeline timeline;
    SimulatedReceiver receiver(timeline);
    receiver.reserved0();
    receiver.reserved64();
    COMPARE_LINES(timeline.take(),
                  {u"receiver reserved0()"_s, u"verdict a plugin must not call reserved0 of the receiver"_s,
                   u"receiver reserved64()"_s,
                   u"verdict a plugin must not call reserved64 of the receiver"_s});
    SimulatedHostServices hostServices(timeline);
    hostServices.reserved1();
    COMPARE_LINES(timeline.take(), {u"host reserved1()"_s,
                                    u"verdict a plugin must not call reserved1 of the host services"_s});
}

void tst_SimulatedReceiver::unknownMouseIsRefused()
{
    Timeline timeline;
    SimulatedReceiver receiver(timeline);
    const QString verdict = u"verdict [5] the receiver knows no mouse with the id 5"_s;
    QCOMPARE(receiver.setReportRate(5, 500), false);
    QCOMPARE(receiver.getFirmwareVersion(5), 0U);
    COMPARE_LINES(timeline.take(Timeline::Style::WithDevice),
                  {u"receiver [5] setReportRate(500) -> false"_s, verdict,
                   u"receiver [5] getFirmwareVersion() -> 0"_s, verdict});
    QVERIFY(receiver.isIdle());
    QVERIFY(!receiver.changeMouse(5, [](SimulatedMouse &) {}));
    receiver.setMouse(5, SimulatedMouse());
    QCOMPARE(receiver.setReportRate(5, 500), true);
    receiver.removeMouse(5);
    QCOMPARE(receiver.setReportRate(5, 500), false);
}

void tst_SimulatedReceiver::initialStateIsReported()
{
    Air air;
    air.timeline.clear();
    air.receiver.requestInitialState1(Air::mouse);
    air.receiver.requestInitialState2(Air::mouse);
    air.receiver.requestInitialState3(Air::mouse);
    QVERIFY(air.settle());
    const QStringList reports = air.timeline.lines().filter(u"report "_s);
    COMPARE_LINES(
        reports, {u"report dpiMinChanged(100)"_s, u"report dpiMaxChanged(8000)"_s,
                  u"report dpiSlotValuesChangedCallBack([800, 1600, 2400, 3200, 4000])"_s,
                  u"report activeDpiSlotIndexChangedCallBack(2)"_s, u"report dpiButtonIdChangedCallBack(6)"_s,
                  u"report dpiValueChangedCallBack(1600)"_s, u"report ppidChangedCallBack(\"RV418-0001\")"_s,
                  u"report reportRateChangedCallBack({\"currentRate\": 500, \"supportedRates\": "
                  "[125, 250, 500, 1000], \"unused\": 0})"_s});
    QCOMPARE(air.device->device()->reportRateValues().size(), 4);
}

void tst_SimulatedReceiver::answersComeThroughTheEventLoop()
{
    Air air;
    air.start();
    air.receiver.setAnswerDelay(std::chrono::milliseconds::zero());
    air.device->setReportRate(1000);
    const QStringList request{u"call setReportRate(1000)"_s,
                              u"signal isReportRateChangePendingChanged(true)"_s,
                              u"receiver setReportRate(1000) -> true"_s, u"signal reportRateChanged(1000)"_s};
    COMPARE_LINES(air.timeline.take(), request);
    QVERIFY(!air.receiver.isIdle());
    QCOMPARE(air.receiver.mouse(Air::mouse).reportRate, 500);
    COMPARE_LINES(air.takeSettled(), {u"report reportRateConfirmed(1000)"_s,
                                      u"signal isReportRateChangePendingChanged(false)"_s});
    QCOMPARE(air.receiver.mouse(Air::mouse).reportRate, 1000);
}

void tst_SimulatedReceiver::requestsChangeTheMouse_data()
{
    QTest::addColumn<const DeviceOperation *>("operation");
    QTest::addColumn<QJsonArray>("arguments");
    QTest::addColumn<QStringList>("reports");
    const auto operation = [](const DeviceOperation &known) { return &known; };
    const auto confirmed = [](const QString &values) {
        return u"dpiSlotValuesConfirmed([%1])"_s.arg(values);
    };
    QTest::newRow("rate") << operation(requests::setReportRate) << QJsonArray{250}
                          << QStringList{u"reportRateConfirmed(250)"_s};
    QTest::newRow("rate-not-offered") << operation(requests::setReportRate) << QJsonArray{333}
                                      << QStringList{u"reportRateConfirmed(500)"_s};
    QTest::newRow("rate-0") << operation(requests::setReportRate) << QJsonArray{0}
                            << QStringList{u"reportRateConfirmed(500)"_s};
    QTest::newRow("button-only") << operation(requests::setDpiButtonAndActiveSlot) << QJsonArray{4, 0}
                                 << QStringList{u"dpiButtonIdConfirmed(4)"_s};
    QTest::newRow("slot") << operation(requests::setDpiButtonAndActiveSlot) << QJsonArray{4, 5}
                          << QStringList{u"activeDpiSlotIndexConfirmed(5)"_s,
                                         u"dpiValueChangedCallBack(4000)"_s};
    QTest::newRow("slot-in-force") << operation(requests::setDpiButtonAndActiveSlot) << QJsonArray{4, 2}
                                   << QStringList{u"activeDpiSlotIndexConfirmed(2)"_s};
    QTest::newRow("slot-6") << operation(requests::setDpiButtonAndActiveSlot) << QJsonArray{4, 6}
                            << QStringList{u"activeDpiSlotIndexConfirmed(2)"_s};
    QTest::newRow("slot-negative") << operation(requests::setDpiButtonAndActiveSlot) << QJsonArray{4, -1}
                                   << QStringList{u"activeDpiSlotIndexConfirmed(2)"_s};
    QTest::newRow("slot-values") << operation(requests::setDpiSlotValues)
                                 << QJsonArray{QJsonArray{100, 1600, 300, 400, 65535}, 6, 2}
                                 << QStringList{confirmed(u"100, 1600, 300, 400, 65535"_s)};
    QTest::newRow("slot-value-0-keeps")
        << operation(requests::setDpiSlotValues) << QJsonArray{QJsonArray{0, 0, 0, 0, 900}, 6, 2}
        << QStringList{confirmed(u"800, 1600, 2400, 3200, 900"_s)};
    QTest::newRow("active-slot-value")
        << operation(requests::setDpiSlotValues) << QJsonArray{QJsonArray{800, 1650, 2400, 3200, 4000}, 6, 2}
        << QStringList{confirmed(u"800, 1650, 2400, 3200, 4000"_s), u"dpiValueChangedCallBack(1650)"_s};
    QTest::newRow("mask") << operation(requests::setDisabledButtonsOrKeysMask) << QJsonArray{21}
                          << QStringList();
}

void tst_SimulatedReceiver::requestsChangeTheMouse()
{
    QFETCH(const DeviceOperation *const, operation);
    QFETCH(const QJsonArray, arguments);
    QFETCH(const QStringList, reports);
    SimulatedMouse mouse;
    const QList<MouseMessage> answers = mouse.take({operation, arguments});
    QStringList lines;
    for (const MouseMessage &answer : answers) {
        TimelineEntry entry;
        entry.thread = 1;
        entry.kind = TimelineEntry::Kind::Report;
        entry.name = answer.operation->text();
        entry.arguments = answer.arguments;
        lines.append(Timeline::line(entry, Timeline::Style::Plain).mid(7));
    }
    QCOMPARE(lines, reports);
    if (operation == &requests::setDisabledButtonsOrKeysMask)
        QCOMPARE(mouse.disabledButtonsOrKeysMask, 21);
    // The button travels with an active slot, and changes with index 0 only.
    const bool isButtonRequest =
        operation == &requests::setDpiButtonAndActiveSlot && arguments.at(1).toInt() == 0;
    QCOMPARE(mouse.dpiButtonId, isButtonRequest ? 4 : 6);
}

void tst_SimulatedReceiver::faultsOnRequests_data()
{
    QTest::addColumn<ReceiverFault>("fault");
    QTest::addColumn<QString>("note");
    QTest::addColumn<bool>("isAccepted");
    QTest::addColumn<QStringList>("reports");
    QTest::addColumn<int>("rate");  // of the mouse afterwards
    const DeviceOperation &operation = requests::setReportRate;
    ReceiverFault altered = fault(operation, Effect::Alter);
    altered.arguments = {1000};
    ReceiverFault repeated = fault(operation, Effect::Repeat);
    repeated.repeats = 2;
    const QString confirmed = u"report reportRateConfirmed(250)"_s;
    QTest::newRow("refuse") << fault(operation, Effect::Refuse) << u"refuse"_s << false << QStringList()
                            << 500;
    QTest::newRow("delay") << fault(operation, Effect::Delay) << u"delay"_s << true << QStringList{confirmed}
                           << 250;
    QTest::newRow("drop") << fault(operation, Effect::Drop) << u"drop"_s << true << QStringList() << 500;
    QTest::newRow("repeat") << repeated << u"repeat"_s << true << QStringList{confirmed, confirmed, confirmed}
                            << 250;
    QTest::newRow("alter") << altered << u"alter"_s << true
                           << QStringList{u"report reportRateConfirmed(1000)"_s} << 1000;
}

void tst_SimulatedReceiver::faultsOnRequests()
{
    QFETCH(const ReceiverFault, fault);
    QFETCH(const QString, note);
    QFETCH(const bool, isAccepted);
    QFETCH(const QStringList, reports);
    QFETCH(const int, rate);
    Air air;
    air.start();
    air.receiver.addFault(fault);
    QCOMPARE(air.receiver.setReportRate(Air::mouse, 250), isAccepted);
    COMPARE_LINES(air.timeline.take(),
                  {u"receiver setReportRate(250) -> %1"_s.arg(isAccepted ? u"true"_s : u"false"_s),
                   u"verdict fault on setReportRate: "_s + note});
    QVERIFY(air.settle());
    QCOMPARE(air.timeline.lines().filter(u"report "_s), reports);
    QCOMPARE(air.receiver.mouse(Air::mouse).reportRate, rate);
    QVERIFY(air.receiver.faults().isEmpty());
}

void tst_SimulatedReceiver::faultsOnReports_data()
{
    QTest::addColumn<ReceiverFault>("fault");
    QTest::addColumn<QStringList>("lines");
    const DeviceOperation &operation = reports::reportRateConfirmed;
    const auto note = [](const QString &effect) {
        return u"verdict fault on reportRateConfirmed: "_s + effect;
    };
    ReceiverFault altered = fault(operation, Effect::Alter);
    altered.arguments = {125};
    const QString confirmed = u"report reportRateConfirmed(500)"_s;
    QTest::newRow("refuse") << fault(operation, Effect::Refuse) << QStringList{note(u"refuse"_s)};
    QTest::newRow("delay") << fault(operation, Effect::Delay) << QStringList{note(u"delay"_s), confirmed};
    QTest::newRow("drop") << fault(operation, Effect::Drop) << QStringList{note(u"drop"_s)};
    QTest::newRow("repeat") << fault(operation, Effect::Repeat)
                            << QStringList{note(u"repeat"_s), confirmed, confirmed};
    QTest::newRow("alter") << altered
                           << QStringList{note(u"alter"_s), u"report reportRateConfirmed(125)"_s,
                                          u"signal reportRateChanged(125)"_s};
}

void tst_SimulatedReceiver::faultsOnReports()
{
    QFETCH(const ReceiverFault, fault);
    QFETCH(const QStringList, lines);
    Air air;
    air.start();
    air.receiver.addFault(fault);
    air.receiver.report(Air::mouse, {&reports::reportRateConfirmed, {500}});
    COMPARE_LINES(air.timeline.take(), {});
    COMPARE_LINES(air.takeSettled(), lines);
    QVERIFY(air.receiver.faults().isEmpty());
}

void tst_SimulatedReceiver::faultsOnReads()
{
    Timeline timeline;
    SimulatedReceiver receiver(timeline);
    receiver.setMouse(1, SimulatedMouse());
    receiver.addFault(fault(reads::getBatteryLevel, Effect::Refuse));
    ReceiverFault altered = fault(reads::getBatteryLevel, Effect::Alter);
    altered.arguments = {-1};
    receiver.addFault(altered);
    QCOMPARE(receiver.getBatteryLevel(1), 0);
    QCOMPARE(receiver.getBatteryLevel(1), -1);
    QCOMPARE(receiver.getBatteryLevel(1), 80);
    altered = fault(reads::hasBatteryLevel, Effect::Alter);
    altered.arguments = {false};
    receiver.addFault(altered);
    QCOMPARE(receiver.hasBatteryLevel(1), false);
}

void tst_SimulatedReceiver::faultsAreCounted()
{
    Timeline timeline;
    SimulatedReceiver receiver(timeline);
    receiver.setMouse(1, SimulatedMouse());
    receiver.addFault(fault(requests::setReportRate, Effect::Refuse, 2));
    QVERIFY(!receiver.setReportRate(1, 250));
    QVERIFY(receiver.setDisabledButtonsOrKeysMask(1, 1));
    QVERIFY(!receiver.setReportRate(1, 250));
    QVERIFY(receiver.setReportRate(1, 250));

    receiver.addFault(fault(requests::setReportRate, Effect::Refuse, ReceiverFault::always));
    receiver.addFault(fault(requests::setReportRate, Effect::Drop, 0));
    for (int round = 0; round < 10; ++round)
        QVERIFY(!receiver.setReportRate(1, 250));
    QCOMPARE(receiver.faults().constFirst().times, ReceiverFault::always);
    QCOMPARE(receiver.faults().size(), 1);
    receiver.clearFaults();
    QVERIFY(receiver.setReportRate(1, 250));
}

void tst_SimulatedReceiver::faultsHitTheirMouseOnly()
{
    Timeline timeline;
    SimulatedReceiver receiver(timeline);
    receiver.setMouse(1, SimulatedMouse());
    receiver.setMouse(2, SimulatedMouse());
    ReceiverFault ofSecond = fault(requests::setReportRate, Effect::Refuse);
    ofSecond.device = 2;
    receiver.addFault(ofSecond);
    QVERIFY(receiver.setReportRate(1, 250));
    QVERIFY(!receiver.setReportRate(2, 250));
    QVERIFY(receiver.setReportRate(2, 250));
}

void tst_SimulatedReceiver::delayedReportIsOvertaken()
{
    Air air;
    air.start();
    ReceiverFault delay = fault(reports::reportRateConfirmed, Effect::Delay);
    delay.delay = std::chrono::milliseconds(200);
    air.receiver.addFault(delay);
    air.receiver.setAnswerDelay(std::chrono::milliseconds::zero());
    air.receiver.report(Air::mouse, {&reports::reportRateConfirmed, {500}});
    air.receiver.report(Air::mouse, {&reports::dpiValueChangedCallBack, {1600}});
    QVERIFY(air.settle());
    const QList<TimelineEntry> entries = air.timeline.entries();
    COMPARE_LINES(air.timeline.take(),
                  {u"verdict fault on reportRateConfirmed: delay"_s,
                   u"report dpiValueChangedCallBack(1600)"_s, u"report reportRateConfirmed(500)"_s});
    QVERIFY(entries.last().time - entries.first().time >= delay.delay);
}

void tst_SimulatedReceiver::stormIsStopped()
{
    Air air;
    air.start();
    air.receiver.setResendLimit(3);
    air.receiver.setAnswerDelay(std::chrono::milliseconds::zero());
    // Not offered by the mouse: it confirms what is in force, for ever.
    air.device->setReportRate(333);
    QVERIFY(air.settle());
    const QStringList lines = air.timeline.lines();
    QCOMPARE(lines.filter(u"receiver setReportRate(333) -> true"_s).size(), 4);
    QCOMPARE(lines.filter(u"report reportRateConfirmed(500)"_s).size(), 3);
    COMPARE_LINES(lines.filter(u"verdict"_s),
                  {u"verdict setReportRate was sent again 3 times without an agreeing confirmation; it gets "
                   "no more answers"_s});

    // The host's next request is answered again, and may be repeated as often.
    air.timeline.clear();
    air.device->setReportRate(444);
    QVERIFY(air.settle());
    QCOMPARE(air.timeline.lines().filter(u"report reportRateConfirmed(500)"_s).size(), 3);
    air.timeline.clear();
    air.device->setReportRate(250);
    QVERIFY(air.settle());
    QVERIFY(!air.timeline.lines().filter(u"report reportRateConfirmed(250)"_s).isEmpty());
}

void tst_SimulatedReceiver::agreementEndsTheCountOfRepetitions()
{
    Air air;
    air.start();
    air.receiver.setResendLimit(2);
    air.receiver.setAnswerDelay(std::chrono::milliseconds::zero());
    ReceiverFault disagreement = fault(reports::reportRateConfirmed, Effect::Alter);
    disagreement.arguments = {125};
    for (const int rate : {250, 1000, 250, 1000}) {
        air.receiver.addFault(disagreement);
        air.device->setReportRate(rate);
        QVERIFY(air.settle());
        QCOMPARE(air.device->device()->isReportRateChangePending(), false);
        QCOMPARE(air.device->device()->reportRate(), rate);
    }
    QVERIFY(air.timeline.lines().filter(u"sent again"_s).isEmpty());
}

void tst_SimulatedReceiver::reportThatAsksNothingEndsTheCount()
{
    Air air;
    air.start();
    air.receiver.setResendLimit(2);
    const auto rates = [](int current) {
        const ReportRateInfo info{0, static_cast<quint16>(current), {125, 500, 0, 0}};
        return MouseMessage{&reports::reportRateChangedCallBack, {timelineValue(&info)}};
    };
    for (int round = 0; round < 4; ++round) {
        // A rate in force that is not listed makes the plugin ask for another one at once.
        air.receiver.report(Air::mouse, rates(1000));
        QVERIFY(air.settle());
        air.receiver.report(Air::mouse, rates(500));
        QVERIFY(air.settle());
    }
    QVERIFY(air.timeline.lines().filter(u"receiver setReportRate(125) -> true"_s).size() >= 4);
    QVERIFY(air.timeline.lines().filter(u"sent again"_s).isEmpty());
}

void tst_SimulatedReceiver::stormOfSlotValuesIsStopped()
{
    Air air;
    air.start();
    air.receiver.setResendLimit(5);
    // Each confirmation is followed by another report that is answered by nothing.
    ReceiverFault disagreement = fault(reports::dpiSlotValuesConfirmed, Effect::Alter, ReceiverFault::always);
    disagreement.arguments = {QJsonValue(QJsonArray{1, 2, 3, 4, 5})};
    air.receiver.addFault(disagreement);
    air.device->setDpiSlotValues({u"800"_s, u"1650"_s, u"2400"_s, u"3200"_s, u"4000"_s});
    QVERIFY(air.settle());
    QCOMPARE(air.timeline.lines().filter(u"receiver setDpiSlotValues"_s).size(), 6);
    QCOMPARE(air.timeline.lines().filter(u"sent again 5 times"_s).size(), 1);
}

void tst_SimulatedReceiver::detachedDeviceHearsNothing()
{
    Air air;
    air.start();
    air.receiver.setReportRate(Air::mouse, 1000);
    air.receiver.detach(Air::mouse);
    air.receiver.requestInitialState1(Air::mouse);
    air.timeline.clear();
    COMPARE_LINES(air.takeSettled(), {});
    QCOMPARE(air.receiver.mouse(Air::mouse).reportRate, 1000);
    QCOMPARE(air.device->device()->reportRate(), 500);
}

void tst_SimulatedReceiver::destroyedDeviceHearsNothing()
{
    Air air;
    air.start();
    air.device->setReportRate(1000);
    air.host.destroyDevice(std::move(air.device));
    air.timeline.clear();
    COMPARE_LINES(air.takeSettled(), {});
    QCOMPARE(air.receiver.mouse(Air::mouse).reportRate, 1000);
}

void tst_SimulatedReceiver::twoMiceAreKeptApart()
{
    Air air;
    air.start();
    SimulatedMouse slow;
    slow.reportRate = 125;
    air.receiver.setMouse(7, slow);
    const std::unique_ptr<HostedDevice> second = air.host.createDevice(&air.receiver, 7);
    air.receiver.attach(7, second->device());
    second->start();
    QVERIFY(air.settle());
    QCOMPARE(second->device()->reportRate(), 125);
    second->setReportRate(1000);
    air.device->setReportRate(250);
    QVERIFY(air.settle());
    QCOMPARE(second->device()->reportRate(), 1000);
    QCOMPARE(air.device->device()->reportRate(), 250);
    QCOMPARE(air.receiver.mouse(7).reportRate, 1000);
    QCOMPARE(air.receiver.mouse(Air::mouse).reportRate, 250);
    air.host.unload();
}

void tst_SimulatedReceiver::requestFromAnotherThreadIsAnsweredHere()
{
    Air air;
    air.start();
    OtherThread other;
    other.run([&] { air.device->setReportRate(1000); });
    QVERIFY(air.settle());
    const QStringList lines = air.timeline.lines();
    QVERIFY(lines.contains(u"receiver setReportRate(1000) -> true on thread 2"_s));
    QVERIFY(lines.contains(u"report reportRateConfirmed(1000)"_s));
    QCOMPARE(air.device->device()->isReportRateChangePending(), false);
}

void tst_SimulatedReceiver::requestsWithoutDelayKeepTheirOrder()
{
    Air air;
    air.start();
    air.receiver.setAnswerDelay(std::chrono::milliseconds::zero());
    QStringList expected;
    for (int number = 1; number <= 50; ++number) {
        air.receiver.setDpiButtonAndActiveSlot(Air::mouse, number, 0);
        expected.append(u"report dpiButtonIdConfirmed(%1)"_s.arg(number));
    }
    QVERIFY(air.settle());
    QCOMPARE(air.timeline.lines().filter(u"report "_s), expected);
}

void tst_SimulatedReceiver::waitAsksAgainAfterEachEntry()
{
    constexpr int entryCount = 100;
    Timeline timeline;
    QObject context;
    int asked = 0;
    int askedWithinOneRound = 0;
    const auto record = [&] {
        for (int entry = 0; entry < entryCount; ++entry)
            timeline.recordVerdict(u"v"_s);
        // Behind the questions that the entries have queued.
        QMetaObject::invokeMethod(&context, [&] { askedWithinOneRound = asked; }, Qt::QueuedConnection);
    };
    QMetaObject::invokeMethod(&context, record, Qt::QueuedConnection);
    QVERIFY(waitForTimeline(
        timeline,
        [&] {
            ++asked;
            return askedWithinOneRound > 0;
        },
        deadline));
    QVERIFY(askedWithinOneRound >= entryCount);
}

void tst_SimulatedReceiver::waitEndsAtTheDeadline()
{
    Timeline timeline;
    int asked = 0;
    QVERIFY(!waitForTimeline(
        timeline,
        [&] {
            ++asked;
            return false;
        },
        std::chrono::milliseconds(20)));
    QVERIFY(asked >= 1);
    // Entries of other threads wake it, too.
    OtherThread other;
    bool isRecorded = false;
    QObject context;
    context.moveToThread(other.thread());
    QMetaObject::invokeMethod(&context, [&] { timeline.recordVerdict(u"v"_s); }, Qt::QueuedConnection);
    isRecorded = waitForTimeline(timeline, [&] { return timeline.lastSequence() == 1; }, deadline);
    QVERIFY(isRecorded);
    other.run([&] { context.moveToThread(QCoreApplication::instance()->thread()); });
}

QTEST_GUILESS_MAIN(tst_SimulatedReceiver)
#include "tst_SimulatedReceiver.moc"
