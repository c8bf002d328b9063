#include "HostTranslator.h"
#include "ILogicalDevicePlugin.h"
#include "PluginFixture.h"
#include "TimelineText.h"

#include <QtCore/QCoreApplication>
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

// Far more than any machine takes.
constexpr int deadline = 60000;  // ms

// Waits until the timer of a tap has run out, however long the machine takes.
bool isReleasedByTimer(PluginFixture &fixture)
{
    return QTest::qWaitFor([&] { return !fixture.timeline.lines().filter(ctrlLine(false)).isEmpty(); },
                           deadline);
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

// What the scenarios of contract/ cannot say: the timer itself, event loops inside calls, and other host
// services.
class tst_MouseEvents : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void timerHasTheTapsLength();
    void latestHostServicesAreUsed();
    void iidNeedsNoAllocation();
    void initializeInsideAReport_data();
    void initializeInsideAReport();
    void timerIsConnectedBeforeTheConstructorsLastLine();
    void timerHasItsLengthAfterTheName();
    void timerRunsUntilTheDestructorStopsIt();
    void timerIsStoppedBeforeOthersAreRenumbered();
    void timerIsStoppedBeforeTheReleaseIsReported();
};

void tst_MouseEvents::timerHasTheTapsLength()
{
    PluginFixture fixture({false, false, false});
    HostedDevice &device = fixture.started();
    TimerWatch watch;
    device.mouseEventCallBack(0x80);
    QVERIFY(isReleasedByTimer(fixture));
    COMPARE_LINES(watch.seen, {u"interval 25 ms, repeating, no parent, on the device's thread"_s});
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
    COMPARE_LINES(fixture.take(), {u"call mouseEventCallBack(0)"_s, debugLine(u"mouseEventCallBack enter"_s),
                                   ctrlLine(false), debugLine(u"mouseEventCallBack exit"_s)});
}

QTEST_GUILESS_MAIN(tst_MouseEvents)
#include "tst_MouseEvents.moc"
