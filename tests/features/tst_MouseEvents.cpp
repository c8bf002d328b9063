#include "HostTranslator.h"
#include "ILogicalDevicePlugin.h"
#include "PluginFixture.h"
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
bool isReleasedByTimer(PluginFixture &fixture)
{
    return QTest::qWaitFor([&] { return !fixture.timeline.lines().filter(ctrlLine(false)).isEmpty(); },
                           deadline);
}

// Waits until the timer's slot wrote its line, with this value of the flag.
bool isTimeoutWritten(PluginFixture &fixture, bool wasPressed)
{
    const QString line = timeoutLines(wasPressed).constFirst();
    return QTest::qWaitFor([&] { return fixture.timeline.lines().contains(line); }, deadline);
}

// The host reports these events from inside the first entry that reads so.
void reportInside(PluginFixture &fixture, HostedDevice &device, const QString &line,
                  const QList<quint8> &events)
{
    fixture.onceInside(line, [&device, events] {
        for (const quint8 event : events)
            device.device()->mouseEventCallBack(event);
    });
}

// The device whose constructor is running.
ILogicalDeviceGen3Mouse *deviceInConstruction(PluginFixture &fixture)
{
    return dynamic_cast<ILogicalDeviceGen3Mouse *>(fixture.host.root()->children().constLast());
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
    void initializeInsideAReport_data();
    void initializeInsideAReport();
    void timerIsConnectedBeforeTheConstructorsLastLine();
    void timerHasItsLengthAfterTheName();
    void timerRunsUntilTheDestructorStopsIt();
    void timerIsStoppedBeforeOthersAreRenumbered();
    void timerIsStoppedBeforeTheReleaseIsReported();
};

void tst_MouseEvents::heldButtonIsOnePressAndOneRelease()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.mouseEventCallBack(0x01);
    device.mouseEventCallBack(0x01);
    device.mouseEventCallBack(0x00);
    device.mouseEventCallBack(0x00);
    COMPARE_LINES(fixture.take(), report(1, {buttonLine(1, true)}) + report(1, {}) +
                                      report(0, {buttonLine(1, false)}) + report(0, {}));
}

void tst_MouseEvents::buttonsAreToldInOrder()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.mouseEventCallBack(0x1f);
    device.mouseEventCallBack(0x00);
    COMPARE_LINES(fixture.take(),
                  report(0x1f, {buttonLine(1, true), buttonLine(2, true), buttonLine(3, true),
                                buttonLine(4, true), buttonLine(5, true)}) +
                      report(0, {buttonLine(1, false), buttonLine(2, false), buttonLine(3, false),
                                 buttonLine(4, false), buttonLine(5, false)}));
}

void tst_MouseEvents::reportFromInsideAButtonEventCounts()
{
    // The host reports the third button from inside the event of the second: nothing is left to tell of it.
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    fixture.timeline.setObserver([&](const TimelineEntry &entry) {
        if (entry.name == u"buttonEvent" && entry.arguments.at(1).toInt() == 2)
            device.device()->mouseEventCallBack(0x07);
    });
    device.mouseEventCallBack(0x1f);
    fixture.timeline.setObserver({});
    COMPARE_LINES(fixture.take(), {u"call mouseEventCallBack(31)"_s, buttonLine(1, true), buttonLine(2, true),
                                   buttonLine(3, true), buttonLine(4, true), buttonLine(5, true)});
}

void tst_MouseEvents::buttonThatWasToldIsNotLookedAtAgain()
{
    // From inside the event of the second button the host reports that the first is up again.
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    reportInside(fixture, device, buttonLine(2, true), {0x02});
    device.mouseEventCallBack(0x03);
    COMPARE_LINES(fixture.take(), {u"call mouseEventCallBack(3)"_s, buttonLine(1, true), buttonLine(2, true),
                                   buttonLine(1, false)});
}

void tst_MouseEvents::keyIsDownBeforeTheHostHearsOfIt()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    reportInside(fixture, device, ctrlLine(true), {0x80});
    device.mouseEventCallBack(0x80);
    COMPARE_LINES(fixture.take(), {u"call mouseEventCallBack(128)"_s, ctrlLine(true)});
}

void tst_MouseEvents::tapThatEndsInsideItsPressLeavesTheTimer()
{
    // The timer is started when the host has heard of the press, and so after the report of the release.
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    reportInside(fixture, device, ctrlLine(true), {0x00});
    device.mouseEventCallBack(0x80);
    COMPARE_LINES(fixture.take(), {u"call mouseEventCallBack(128)"_s, ctrlLine(true), ctrlLine(false)});
    fixture.host.initialize(&fixture.hostServices, true, true, true);
    fixture.take();
    QVERIFY(isTimeoutWritten(fixture, false));
    COMPARE_LINES(fixture.take(), timeoutLines(false));
}

void tst_MouseEvents::keyIsUpBeforeTheHostHearsOfTheTimer()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    device.mouseEventCallBack(0x80);
    reportInside(fixture, device, ctrlLine(false), {0x00});
    fixture.take();
    QVERIFY(isReleasedByTimer(fixture));
    COMPARE_LINES(fixture.take(), {ctrlLine(false)});
}

void tst_MouseEvents::timerIsStoppedBeforeItsLine()
{
    // A tap that starts from inside the line runs on: the timer fires once more, with nothing to release.
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.mouseEventCallBack(0x80);
    fixture.take();
    reportInside(fixture, device, timeoutLines(true).constFirst(), {0x00, 0x80});
    QVERIFY(isTimeoutWritten(fixture, false));
    // Qt keeps lines that are written from inside another from the recorder.
    COMPARE_LINES(fixture.take(), QStringList{timeoutLines(true).constFirst(), ctrlLine(false),
                                              ctrlLine(true), ctrlLine(false)} +
                                      timeoutLines(false));
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
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.mouseEventCallBack(static_cast<quint8>(event));
    COMPARE_LINES(fixture.take(), report(event, {buttonLine(button, true)}));
}

void tst_MouseEvents::releasesAndPressesOfOneReport()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.mouseEventCallBack(0x15);
    fixture.take();
    device.mouseEventCallBack(0x0b);
    COMPARE_LINES(fixture.take(), report(0x0b, {buttonLine(2, true), buttonLine(3, false),
                                                buttonLine(4, true), buttonLine(5, false)}));
}

void tst_MouseEvents::unusedBitsAreIgnored()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.mouseEventCallBack(0x60);
    device.mouseEventCallBack(0x20);
    device.mouseEventCallBack(0x41);
    COMPARE_LINES(fixture.take(), report(0x60, {}) + report(0x20, {}) + report(0x41, {buttonLine(1, true)}));
}

void tst_MouseEvents::buttonsNeedNoDiversionAndNoStart()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    device.mouseEventCallBack(0x02);
    COMPARE_LINES(fixture.take(), report(2, {buttonLine(2, true)}));
}

void tst_MouseEvents::ctrlTapEndsWithTheKey()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.mouseEventCallBack(0x80);
    device.mouseEventCallBack(0x00);
    COMPARE_LINES(fixture.take(), report(0x80, {ctrlLine(true)}) + report(0, {ctrlLine(false)}));
    // The timer was stopped: nothing comes, though many lengths of a tap go by.
    QTest::qWait(300);
    COMPARE_LINES(fixture.take(), {});
}

void tst_MouseEvents::ctrlTapEndsWithTheTimer()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.mouseEventCallBack(0x80);
    COMPARE_LINES(fixture.take(), report(0x80, {ctrlLine(true)}));
    QVERIFY(isReleasedByTimer(fixture));
    COMPARE_LINES(fixture.take(), timeoutLines(true));
    // Stopped by its own slot: it fires once.
    QTest::qWait(300);
    COMPARE_LINES(fixture.take(), {});
    device.mouseEventCallBack(0x00);
    COMPARE_LINES(fixture.take(), report(0, {}));
    device.mouseEventCallBack(0x80);
    COMPARE_LINES(fixture.take(), report(0x80, {ctrlLine(true)}));
}

void tst_MouseEvents::heldKeyPressesAgainAfterTheTimer()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.mouseEventCallBack(0x80);
    QVERIFY(isReleasedByTimer(fixture));
    fixture.take();
    device.mouseEventCallBack(0x80);
    COMPARE_LINES(fixture.take(), report(0x80, {ctrlLine(true)}));
    QVERIFY(isReleasedByTimer(fixture));
    COMPARE_LINES(fixture.take(), timeoutLines(true));
}

void tst_MouseEvents::timerIsNotRestartedWhileTheKeyIsHeld()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.mouseEventCallBack(0x80);
    fixture.take();
    // Reports keep coming faster than the timer runs: restarted by each of them, it would never run out.
    QElapsedTimer sinceThePress;
    sinceThePress.start();
    while (fixture.timeline.lines().filter(ctrlLine(false)).isEmpty() && sinceThePress.elapsed() < deadline) {
        fixture.take();
        device.mouseEventCallBack(0x80);
        COMPARE_LINES(fixture.timeline.lines().filter(ctrlLine(true)), {});
        QTest::qWait(1);
    }
    QVERIFY(!fixture.timeline.lines().filter(ctrlLine(false)).isEmpty());
}

void tst_MouseEvents::timerHasTheTapsLength()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    TimerWatch watch;
    device.mouseEventCallBack(0x80);
    QVERIFY(isReleasedByTimer(fixture));
    COMPARE_LINES(watch.seen, {u"interval 25 ms, repeating, no parent, on the device's thread"_s});
}

void tst_MouseEvents::lateTimerFindsNothingToDo()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    QVERIFY(QMetaObject::invokeMethod(device.object(), "onSmartPointerCtrReleaseTimerTimeout"));
    COMPARE_LINES(fixture.take(), timeoutLines(false));
}

void tst_MouseEvents::ctrlComesBeforeTheButtons()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.mouseEventCallBack(0x81);
    device.mouseEventCallBack(0x00);
    COMPARE_LINES(fixture.take(), report(0x81, {ctrlLine(true), buttonLine(1, true)}) +
                                      report(0, {ctrlLine(false), buttonLine(1, false)}));
}

void tst_MouseEvents::smartPointerSupportIsNotAsked()
{
    PluginFixture fixture;
    fixture.receiver.answers.isSmartPointerSupported = false;
    HostedDevice &device = fixture.started();
    QVERIFY(!device.device()->isSmartPointerSupported());
    device.mouseEventCallBack(0x80);
    COMPARE_LINES(fixture.take(), report(0x80, {ctrlLine(true)}));
}

void tst_MouseEvents::stopKeepsTheStates()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    device.mouseEventCallBack(0x81);
    device.stop();
    fixture.take();
    device.mouseEventCallBack(0x81);
    COMPARE_LINES(fixture.take(), {u"call mouseEventCallBack(129)"_s});
    // The timer runs on.
    QVERIFY(isReleasedByTimer(fixture));
    COMPARE_LINES(fixture.take(), {ctrlLine(false)});
    device.mouseEventCallBack(0x00);
    COMPARE_LINES(fixture.take(), {u"call mouseEventCallBack(0)"_s, buttonLine(1, false)});
}

void tst_MouseEvents::destructionReleasesNothing()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    device.mouseEventCallBack(0x83);
    fixture.take();
    fixture.destroy(device);
    QTest::qWait(100);
    COMPARE_LINES(fixture.take(), {u"call destroyDevice()"_s});
}

void tst_MouseEvents::devicesHaveTheirOwnStates()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &first = fixture.started(1);
    HostedDevice &second = fixture.started(2);
    fixture.take();
    first.mouseEventCallBack(0x01);
    second.mouseEventCallBack(0x01);
    first.mouseEventCallBack(0x00);
    COMPARE_LINES(fixture.take(Timeline::Style::WithDevice),
                  {u"call [1] mouseEventCallBack(1)"_s, buttonLine(1, true),
                   u"call [2] mouseEventCallBack(1)"_s, buttonLine(1, true),
                   u"call [1] mouseEventCallBack(0)"_s, buttonLine(1, false)});
}

void tst_MouseEvents::latestHostServicesAreUsed()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    Timeline otherTimeline;
    SimulatedHostServices otherServices(otherTimeline);
    device.mouseEventCallBack(0x80);
    fixture.host.initialize(&otherServices, false, false, false);
    fixture.take();
    device.mouseEventCallBack(0x81);
    COMPARE_LINES(fixture.take(), {u"call mouseEventCallBack(129)"_s});
    COMPARE_LINES(otherTimeline.take(), {buttonLine(1, true)});
    QVERIFY(QTest::qWaitFor([&] { return !otherTimeline.lines().isEmpty(); }, deadline));
    COMPARE_LINES(otherTimeline.lines(), {ctrlLine(false)});
    fixture.host.initialize(&fixture.hostServices, false, false, false);
}

void tst_MouseEvents::iidNeedsNoAllocation()
{
    // A report comes for every movement of a diverted button. A text in the library's data has no memory
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
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    fixture.host.initialize(&services, false, false, false);
    device.mouseEventCallBack(0x03);
    device.mouseEventCallBack(0x00);
    QCOMPARE(services.capacities, QList<qsizetype>({0, 0, 0, 0}));
    fixture.host.initialize(&fixture.hostServices, false, false, false);
}

void tst_MouseEvents::switchesOff()
{
    PluginFixture fixture({false, true, true});
    HostedDevice &device = fixture.started();
    device.mouseEventCallBack(0x81);
    device.mouseEventCallBack(0x00);
    QMetaObject::invokeMethod(device.object(), "onSmartPointerCtrReleaseTimerTimeout");
    COMPARE_LINES(fixture.take(), {u"call mouseEventCallBack(129)"_s, ctrlLine(true), buttonLine(1, true),
                                   u"call mouseEventCallBack(0)"_s, ctrlLine(false), buttonLine(1, false)});
}

void tst_MouseEvents::initializeInsideAReport_data()
{
    QTest::addColumn<QString>("line");
    QTest::newRow("inside-the-key") << ctrlLine(true);
    QTest::newRow("inside-a-button") << buttonLine(2, true);
}

void tst_MouseEvents::initializeInsideAReport()
{
    // The whole report goes to the service object that was there when it began.
    QFETCH(const QString, line);
    Timeline otherTimeline;
    SimulatedHostServices otherServices(otherTimeline);
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    fixture.onceInside(line,
                       [&] { fixture.host.factory()->initialize(&otherServices, false, false, false); });
    device.mouseEventCallBack(0x9f);
    COMPARE_LINES(fixture.take(),
                  {u"call mouseEventCallBack(159)"_s, ctrlLine(true), buttonLine(1, true),
                   buttonLine(2, true), buttonLine(3, true), buttonLine(4, true), buttonLine(5, true)});
    COMPARE_LINES(otherTimeline.take(), {});

    device.mouseEventCallBack(0x00);
    COMPARE_LINES(fixture.take(), {u"call mouseEventCallBack(0)"_s});
    COMPARE_LINES(otherTimeline.take(), {ctrlLine(false), buttonLine(1, false), buttonLine(2, false),
                                         buttonLine(3, false), buttonLine(4, false), buttonLine(5, false)});
}

void tst_MouseEvents::timerIsConnectedBeforeTheConstructorsLastLine()
{
    // The log handler finds the device through its parent and waits there until its timer has run out.
    PluginFixture fixture;
    TimerWatch watch;
    fixture.onceInside(debugLine(u"LogicalDevice exit"_s), [&] {
        deviceInConstruction(fixture)->mouseEventCallBack(0x80);
        QVERIFY(QTest::qWaitFor([&] { return !watch.seen.isEmpty(); }, deadline));
    });
    fixture.createRecorded(PluginFixture::mouse);
    QCOMPARE(fixture.take().filter(u"host "_s), QStringList({ctrlLine(true), ctrlLine(false)}));
}

void tst_MouseEvents::timerHasItsLengthAfterTheName()
{
    // The name comes through the host's translator, which meets a timer without a length.
    PluginFixture fixture({false, false, false});
    TimerWatch watch;
    const HostTranslator translator([&] {
        deviceInConstruction(fixture)->mouseEventCallBack(0x80);
        QVERIFY(QTest::qWaitFor([&] { return !watch.seen.isEmpty(); }, deadline));
    });
    fixture.create();
    QCOMPARE(watch.seen.value(0), u"interval 0 ms, repeating, no parent, on the device's thread"_s);
    watch.seen.clear();
    QVERIFY(isReleasedByTimer(fixture));
    QCOMPARE(watch.seen.value(0), u"interval 25 ms, repeating, no parent, on the device's thread"_s);
}

void tst_MouseEvents::timerRunsUntilTheDestructorStopsIt()
{
    // A log handler that runs an event loop inside the destructor's first line still gets the release.
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.mouseEventCallBack(0x80);
    fixture.take();
    bool isReleased = false;
    fixture.onceInside(debugLine(u"~LogicalDevice enter"_s),
                       [&] { isReleased = isReleasedByTimer(fixture); });
    fixture.destroy(device);
    QVERIFY(isReleased);
}

void tst_MouseEvents::timerIsStoppedBeforeOthersAreRenumbered()
{
    // A slot of another device runs an event loop while the first one goes.
    PluginFixture fixture({false, false, false});
    HostedDevice &going = fixture.started(1);
    fixture.started(2);
    going.mouseEventCallBack(0x80);
    fixture.take();
    fixture.onceInside(u"signal instanceNumberChanged(0)"_s, [] { QTest::qWait(300); });
    fixture.destroy(going);
    COMPARE_LINES(fixture.take(), {u"call destroyDevice()"_s, u"signal instanceNumberChanged(0)"_s});
}

void tst_MouseEvents::timerIsStoppedBeforeTheReleaseIsReported()
{
    // The host runs an event loop while it releases Ctrl.
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.mouseEventCallBack(0x80);
    fixture.take();
    fixture.onceInside(ctrlLine(false), [] { QTest::qWait(300); });
    device.mouseEventCallBack(0);
    COMPARE_LINES(fixture.take(), report(0, {ctrlLine(false)}));
}

QTEST_GUILESS_MAIN(tst_MouseEvents)
#include "tst_MouseEvents.moc"
