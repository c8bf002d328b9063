#include "Bench.h"
#include "TimelineText.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtCore/QEvent>
#include <QtCore/QTimer>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

QString buttonLine(int button, bool isPressed)
{
    return u"host buttonEvent(\"com.orvane.KVX.Plugin.LogicalDevice.RV418\", %1, %2)"_s.arg(button).arg(
        isPressed ? u"true"_s : u"false"_s);
}

QString ctrlLine(bool isPressed)
{
    return u"host setCtrlKeyPressed(%1)"_s.arg(isPressed ? u"true"_s : u"false"_s);
}

// A report with what it does between its enter and exit lines.
QStringList report(int event, const QStringList &inner)
{
    return QStringList{u"call mouseEventCallBack(%1)"_s.arg(event),
                       debugLine(u"mouseEventCallBack enter"_s)} +
           inner + QStringList{debugLine(u"mouseEventCallBack exit"_s)};
}

QStringList timeoutLines(bool wasPressed)
{
    const QString line = u"onSmartPointerCtrReleaseTimerTimeout,  isSmartPointerCtrPressed %1"_s;
    QStringList lines{debugLine(line.arg(wasPressed ? u"true"_s : u"false"_s))};
    if (wasPressed)
        lines += ctrlLine(false);
    return lines;
}

// Far more than any machine takes.
constexpr int deadline = 60000;  // ms

// Waits until the timer of a tap has run out, however long the machine takes.
bool isReleasedByTimer(Bench &bench)
{
    return QTest::qWaitFor([&] { return !bench.timeline.lines().filter(ctrlLine(false)).isEmpty(); },
                           deadline);
}

// Waits until the timer's slot wrote its line, with this value of the flag.
bool isTimeoutWritten(Bench &bench, bool wasPressed)
{
    const QString line = timeoutLines(wasPressed).constFirst();
    return QTest::qWaitFor([&] { return bench.timeline.lines().contains(line); }, deadline);
}

// The host reports these events from inside the first entry that reads so.
void reportInside(Bench &bench, HostedDevice &device, const QString &line, const QList<quint8> &events)
{
    bench.timeline.setObserver([&bench, &device, line, events](const TimelineEntry &entry) {
        if (Timeline::line(entry, Timeline::Style::Plain) != line)
            return;
        bench.timeline.setObserver({});
        for (const quint8 event : events)
            device.device()->mouseEventCallBack(event);
    });
}

/// Writes down the timers that run out while it lives. Filters all events of the process.
class TimerWatch : public QObject
{
public:
    TimerWatch() { QCoreApplication::instance()->installEventFilter(this); }

    QStringList seen;

    bool eventFilter(QObject *watched, QEvent *event) override
    {
        const auto *timer = qobject_cast<QTimer *>(watched);
        if (timer && event->type() == QEvent::Timer) {
            seen += u"interval %1 ms, %2, %3, %4"_s.arg(timer->interval())
                        .arg(timer->isSingleShot() ? u"once"_s : u"repeating"_s,
                             timer->parent() ? u"with a parent"_s : u"no parent"_s,
                             timer->thread() == thread() ? u"on the device's thread"_s : u"elsewhere"_s);
        }
        return false;
    }
};

}  // namespace

class tst_MouseEvents : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void heldButtonIsOnePressAndOneRelease();
    void buttonsAreToldInOrder();
    void reportFromInsideAButtonEventCounts();
    void buttonThatWasToldIsNotLookedAtAgain();
    void keyIsDownBeforeTheHostHearsOfIt();
    void tapThatEndsInsideItsPressLeavesTheTimer();
    void keyIsUpBeforeTheHostHearsOfTheTimer();
    void timerIsStoppedBeforeItsLine();
    void everyButtonHasItsBit_data();
    void everyButtonHasItsBit();
    void releasesAndPressesOfOneReport();
    void unusedBitsAreIgnored();
    void buttonsNeedNoDiversionAndNoStart();
    void ctrlTapEndsWithTheKey();
    void ctrlTapEndsWithTheTimer();
    void heldKeyPressesAgainAfterTheTimer();
    void timerIsNotRestartedWhileTheKeyIsHeld();
    void timerHasTheTapsLength();
    void lateTimerFindsNothingToDo();
    void ctrlComesBeforeTheButtons();
    void smartPointerSupportIsNotAsked();
    void stopKeepsTheStates();
    void destructionReleasesNothing();
    void devicesHaveTheirOwnStates();
    void latestHostServicesAreUsed();
    void iidNeedsNoAllocation();
    void switchesOff();
};

void tst_MouseEvents::heldButtonIsOnePressAndOneRelease()
{
    Bench bench;
    HostedDevice &device = bench.started();
    device.mouseEventCallBack(0x01);
    device.mouseEventCallBack(0x01);
    device.mouseEventCallBack(0x00);
    device.mouseEventCallBack(0x00);
    QCOMPARE(bench.take(), timelineText(report(1, {buttonLine(1, true)}) + report(1, {}) +
                                        report(0, {buttonLine(1, false)}) + report(0, {})));
}

void tst_MouseEvents::buttonsAreToldInOrder()
{
    Bench bench;
    HostedDevice &device = bench.started();
    device.mouseEventCallBack(0x1f);
    device.mouseEventCallBack(0x00);
    QCOMPARE(bench.take(),
             timelineText(report(0x1f, {buttonLine(1, true), buttonLine(2, true), buttonLine(3, true),
                                        buttonLine(4, true), buttonLine(5, true)}) +
                          report(0, {buttonLine(1, false), buttonLine(2, false), buttonLine(3, false),
                                     buttonLine(4, false), buttonLine(5, false)})));
}

void tst_MouseEvents::reportFromInsideAButtonEventCounts()
{
    // The host reports the third button from inside the event of the second: nothing is left to tell of it.
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    bench.timeline.setObserver([&](const TimelineEntry &entry) {
        if (entry.name == u"buttonEvent" && entry.arguments.at(1).toInt() == 2)
            device.device()->mouseEventCallBack(0x07);
    });
    device.mouseEventCallBack(0x1f);
    bench.timeline.setObserver({});
    QCOMPARE(bench.take(),
             timelineText({u"call mouseEventCallBack(31)"_s, buttonLine(1, true), buttonLine(2, true),
                           buttonLine(3, true), buttonLine(4, true), buttonLine(5, true)}));
}

void tst_MouseEvents::buttonThatWasToldIsNotLookedAtAgain()
{
    // From inside the event of the second button the host reports that the first is up again.
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    reportInside(bench, device, buttonLine(2, true), {0x02});
    device.mouseEventCallBack(0x03);
    QCOMPARE(bench.take(), timelineText({u"call mouseEventCallBack(3)"_s, buttonLine(1, true),
                                         buttonLine(2, true), buttonLine(1, false)}));
}

void tst_MouseEvents::keyIsDownBeforeTheHostHearsOfIt()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    reportInside(bench, device, ctrlLine(true), {0x80});
    device.mouseEventCallBack(0x80);
    QCOMPARE(bench.take(), timelineText({u"call mouseEventCallBack(128)"_s, ctrlLine(true)}));
}

void tst_MouseEvents::tapThatEndsInsideItsPressLeavesTheTimer()
{
    // The timer is started when the host has heard of the press, and so after the report of the release.
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    reportInside(bench, device, ctrlLine(true), {0x00});
    device.mouseEventCallBack(0x80);
    QCOMPARE(bench.take(),
             timelineText({u"call mouseEventCallBack(128)"_s, ctrlLine(true), ctrlLine(false)}));
    bench.host.initialize(&bench.hostServices, true, true, true);
    bench.take();
    QVERIFY(isTimeoutWritten(bench, false));
    QCOMPARE(bench.take(), timelineText(timeoutLines(false)));
}

void tst_MouseEvents::keyIsUpBeforeTheHostHearsOfTheTimer()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    device.mouseEventCallBack(0x80);
    reportInside(bench, device, ctrlLine(false), {0x00});
    bench.take();
    QVERIFY(isReleasedByTimer(bench));
    QCOMPARE(bench.take(), ctrlLine(false));
}

void tst_MouseEvents::timerIsStoppedBeforeItsLine()
{
    // A tap that starts from inside the line runs on: the timer fires once more, with nothing to release.
    Bench bench;
    HostedDevice &device = bench.started();
    device.mouseEventCallBack(0x80);
    bench.take();
    reportInside(bench, device, timeoutLines(true).constFirst(), {0x00, 0x80});
    QVERIFY(isTimeoutWritten(bench, false));
    // Qt keeps lines that are written from inside another from the recorder.
    QCOMPARE(bench.take(), timelineText(QStringList{timeoutLines(true).constFirst(), ctrlLine(false),
                                                    ctrlLine(true), ctrlLine(false)} +
                                        timeoutLines(false)));
}

void tst_MouseEvents::everyButtonHasItsBit_data()
{
    QTest::addColumn<int>("event");
    QTest::addColumn<int>("button");
    QTest::newRow("first") << 0x01 << 1;
    QTest::newRow("second") << 0x02 << 2;
    QTest::newRow("third") << 0x04 << 3;
    QTest::newRow("fourth") << 0x08 << 4;
    QTest::newRow("fifth") << 0x10 << 5;
}

void tst_MouseEvents::everyButtonHasItsBit()
{
    QFETCH(const int, event);
    QFETCH(const int, button);
    Bench bench;
    HostedDevice &device = bench.started();
    device.mouseEventCallBack(static_cast<quint8>(event));
    QCOMPARE(bench.take(), timelineText(report(event, {buttonLine(button, true)})));
}

void tst_MouseEvents::releasesAndPressesOfOneReport()
{
    Bench bench;
    HostedDevice &device = bench.started();
    device.mouseEventCallBack(0x15);
    bench.take();
    device.mouseEventCallBack(0x0b);
    QCOMPARE(bench.take(), timelineText(report(0x0b, {buttonLine(2, true), buttonLine(3, false),
                                                      buttonLine(4, true), buttonLine(5, false)})));
}

void tst_MouseEvents::unusedBitsAreIgnored()
{
    Bench bench;
    HostedDevice &device = bench.started();
    device.mouseEventCallBack(0x60);
    device.mouseEventCallBack(0x20);
    device.mouseEventCallBack(0x41);
    QCOMPARE(bench.take(),
             timelineText(report(0x60, {}) + report(0x20, {}) + report(0x41, {buttonLine(1, true)})));
}

void tst_MouseEvents::buttonsNeedNoDiversionAndNoStart()
{
    Bench bench;
    HostedDevice &device = bench.create();
    device.mouseEventCallBack(0x02);
    QCOMPARE(bench.take(), timelineText(report(2, {buttonLine(2, true)})));
}

void tst_MouseEvents::ctrlTapEndsWithTheKey()
{
    Bench bench;
    HostedDevice &device = bench.started();
    device.mouseEventCallBack(0x80);
    device.mouseEventCallBack(0x00);
    QCOMPARE(bench.take(), timelineText(report(0x80, {ctrlLine(true)}) + report(0, {ctrlLine(false)})));
    // The timer was stopped: nothing comes, though many lengths of a tap go by.
    QTest::qWait(300);
    QCOMPARE(bench.take(), QString());
}

void tst_MouseEvents::ctrlTapEndsWithTheTimer()
{
    Bench bench;
    HostedDevice &device = bench.started();
    device.mouseEventCallBack(0x80);
    QCOMPARE(bench.take(), timelineText(report(0x80, {ctrlLine(true)})));
    QVERIFY(isReleasedByTimer(bench));
    QCOMPARE(bench.take(), timelineText(timeoutLines(true)));
    // Stopped by its own slot: it fires once.
    QTest::qWait(300);
    QCOMPARE(bench.take(), QString());
    device.mouseEventCallBack(0x00);
    QCOMPARE(bench.take(), timelineText(report(0, {})));
    device.mouseEventCallBack(0x80);
    QCOMPARE(bench.take(), timelineText(report(0x80, {ctrlLine(true)})));
}

void tst_MouseEvents::heldKeyPressesAgainAfterTheTimer()
{
    Bench bench;
    HostedDevice &device = bench.started();
    device.mouseEventCallBack(0x80);
    QVERIFY(isReleasedByTimer(bench));
    bench.take();
    device.mouseEventCallBack(0x80);
    QCOMPARE(bench.take(), timelineText(report(0x80, {ctrlLine(true)})));
    QVERIFY(isReleasedByTimer(bench));
    QCOMPARE(bench.take(), timelineText(timeoutLines(true)));
}

void tst_MouseEvents::timerIsNotRestartedWhileTheKeyIsHeld()
{
    Bench bench;
    HostedDevice &device = bench.started();
    device.mouseEventCallBack(0x80);
    bench.take();
    // Reports keep coming faster than the timer runs: restarted by each of them, it would never run out.
    QElapsedTimer sinceThePress;
    sinceThePress.start();
    while (bench.timeline.lines().filter(ctrlLine(false)).isEmpty() && sinceThePress.elapsed() < deadline) {
        bench.take();
        device.mouseEventCallBack(0x80);
        QCOMPARE(bench.timeline.lines().filter(ctrlLine(true)), QStringList());
        QTest::qWait(1);
    }
    QVERIFY(!bench.timeline.lines().filter(ctrlLine(false)).isEmpty());
}

void tst_MouseEvents::timerHasTheTapsLength()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    TimerWatch watch;
    device.mouseEventCallBack(0x80);
    QVERIFY(isReleasedByTimer(bench));
    QCOMPARE(watch.seen, QStringList{u"interval 25 ms, repeating, no parent, on the device's thread"_s});
}

void tst_MouseEvents::lateTimerFindsNothingToDo()
{
    Bench bench;
    HostedDevice &device = bench.started();
    QVERIFY(QMetaObject::invokeMethod(device.object(), "onSmartPointerCtrReleaseTimerTimeout"));
    QCOMPARE(bench.take(), timelineText(timeoutLines(false)));
}

void tst_MouseEvents::ctrlComesBeforeTheButtons()
{
    Bench bench;
    HostedDevice &device = bench.started();
    device.mouseEventCallBack(0x81);
    device.mouseEventCallBack(0x00);
    QCOMPARE(bench.take(), timelineText(report(0x81, {ctrlLine(true), buttonLine(1, true)}) +
                                        report(0, {ctrlLine(false), buttonLine(1, false)})));
}

void tst_MouseEvents::smartPointerSupportIsNotAsked()
{
    Bench bench;
    bench.receiver.answers.isSmartPointerSupported = false;
    HostedDevice &device = bench.started();
    QVERIFY(!device.device()->isSmartPointerSupported());
    device.mouseEventCallBack(0x80);
    QCOMPARE(bench.take(), timelineText(report(0x80, {ctrlLine(true)})));
}

void tst_MouseEvents::stopKeepsTheStates()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    device.mouseEventCallBack(0x81);
    device.stop();
    bench.take();
    device.mouseEventCallBack(0x81);
    QCOMPARE(bench.take(), u"call mouseEventCallBack(129)"_s);
    // The timer runs on.
    QVERIFY(isReleasedByTimer(bench));
    QCOMPARE(bench.take(), ctrlLine(false));
    device.mouseEventCallBack(0x00);
    QCOMPARE(bench.take(), timelineText({u"call mouseEventCallBack(0)"_s, buttonLine(1, false)}));
}

void tst_MouseEvents::destructionReleasesNothing()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    device.mouseEventCallBack(0x83);
    bench.take();
    bench.destroy(device);
    QTest::qWait(100);
    QCOMPARE(bench.take(), u"call destroyDevice()"_s);
}

void tst_MouseEvents::devicesHaveTheirOwnStates()
{
    Bench bench({false, false, false});
    HostedDevice &first = bench.started(1);
    HostedDevice &second = bench.started(2);
    bench.take();
    first.mouseEventCallBack(0x01);
    second.mouseEventCallBack(0x01);
    first.mouseEventCallBack(0x00);
    QCOMPARE(bench.take(Timeline::Style::WithDevice),
             timelineText({u"call [1] mouseEventCallBack(1)"_s, buttonLine(1, true),
                           u"call [2] mouseEventCallBack(1)"_s, buttonLine(1, true),
                           u"call [1] mouseEventCallBack(0)"_s, buttonLine(1, false)}));
}

void tst_MouseEvents::latestHostServicesAreUsed()
{
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    Timeline otherTimeline;
    SimulatedHostServices otherServices(otherTimeline);
    device.mouseEventCallBack(0x80);
    bench.host.initialize(&otherServices, false, false, false);
    bench.take();
    device.mouseEventCallBack(0x81);
    QCOMPARE(bench.take(), u"call mouseEventCallBack(129)"_s);
    QCOMPARE(otherTimeline.take(), buttonLine(1, true));
    QVERIFY(QTest::qWaitFor([&] { return !otherTimeline.lines().isEmpty(); }, deadline));
    QCOMPARE(otherTimeline.lines(), QStringList{ctrlLine(false)});
    bench.host.initialize(&bench.hostServices, false, false, false);
}

void tst_MouseEvents::iidNeedsNoAllocation()
{
    // A report comes for every movement of a diverted button. A text that lies in the library has no memory
    // of its own, and so no capacity.
    class Services : public IHostServices
    {
    public:
        void reserved0() override {}
        void reserved1() override {}
        void reserved2() override {}
        void buttonEvent(const QString &pluginIid, int /*buttonNumber*/, bool /*isPressed*/) override
        {
            capacities.append(pluginIid.capacity());
        }
        void setCtrlKeyPressed(bool /*isPressed*/) override {}

        QList<qsizetype> capacities;
    };
    Services services;
    Bench bench({false, false, false});
    HostedDevice &device = bench.started();
    bench.host.initialize(&services, false, false, false);
    device.mouseEventCallBack(0x03);
    device.mouseEventCallBack(0x00);
    QCOMPARE(services.capacities, QList<qsizetype>({0, 0, 0, 0}));
    bench.host.initialize(&bench.hostServices, false, false, false);
}

void tst_MouseEvents::switchesOff()
{
    Bench bench({false, true, true});
    HostedDevice &device = bench.started();
    device.mouseEventCallBack(0x81);
    device.mouseEventCallBack(0x00);
    QMetaObject::invokeMethod(device.object(), "onSmartPointerCtrReleaseTimerTimeout");
    QCOMPARE(bench.take(),
             timelineText({u"call mouseEventCallBack(129)"_s, ctrlLine(true), buttonLine(1, true),
                           u"call mouseEventCallBack(0)"_s, ctrlLine(false), buttonLine(1, false)}));
}

QTEST_GUILESS_MAIN(tst_MouseEvents)
#include "tst_MouseEvents.moc"
