#include "OperationTable.h"
#include "OtherThread.h"
#include "PlainPhysicalDevice.h"
#include "PluginFixture.h"
#include "SignalHook.h"
#include "StepThread.h"
#include "TimelineText.h"

#include <QtCore/QFile>
#include <QtCore/QMetaMethod>
#include <QtCore/QRegularExpression>
#include <QtCore/QScopeGuard>
#include <QtCore/QThread>
#include <QtTest/QTest>

#include <functional>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr PluginFixture::LogSwitches warningsOnly{false, true, true};

// What of an operation's lines is seen at once when another thread calls it, and what waits for the device's
// thread.
struct Parts
{
    QStringList atOnce;
    QStringList delivered;
};

Parts fromAnotherThread(const QStringList &lines, SignalThread signalThread)
{
    Parts parts;
    for (const QString &line : lines) {
        const bool waits = line.startsWith(u"signal "_s) && signalThread == SignalThread::Device;
        if (waits)
            parts.delivered += line;
        else
            parts.atOnce += line + u" on thread 2"_s;
    }
    return parts;
}

void addRows()
{
    QTest::addColumn<Operation>("operation");
    for (const Operation &operation : everyOperation())
        QTest::newRow(operation.name) << operation;
}

// mouseEventCallBack alone must be called on the device's thread: it starts a timer.
void addRowsForAnyThread()
{
    QTest::addColumn<Operation>("operation");
    for (const Operation &operation : everyOperation()) {
        if (qstrcmp(operation.name, "mouseEventCallBack") != 0)
            QTest::newRow(operation.name) << operation;
    }
}

// Their thread is all that a move changes.
void addRowsWithSignals()
{
    QTest::addColumn<Operation>("operation");
    for (const Operation &operation : everyOperation()) {
        const bool isTiedToItsThread = qstrcmp(operation.name, "mouseEventCallBack") == 0;
        if (operation.whileRunning.contains(u"\nsignal "_s) && !isTiedToItsThread)
            QTest::newRow(operation.name) << operation;
    }
}

// Runs the function while the factory and its devices live on the other thread, which delivers nothing by
// itself.
void withFactoryOn(StepThread &other, PluginFixture &fixture, const std::function<void()> &function)
{
    QThread *here = QThread::currentThread();
    QObject *root = fixture.host.root();
    const auto moveBack = qScopeGuard([&] { other.run([&] { root->moveToThread(here); }); });
    QThread *there = nullptr;
    other.run([&] { there = QThread::currentThread(); });
    root->moveToThread(there);
    function();
}

// The names of the slots in a table of the interfaces.
QStringList slotsOfTable(const QString &interface)
{
    QFile file(u"" KVX_ABI_TABLES "/%1.txt"_s.arg(interface));
    if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
        qFatal("%s: %s", qPrintable(file.fileName()), qPrintable(file.errorString()));
    static const QRegularExpression slot(u"^\\d+ .*?\\w+::(~?\\w+)\\("_s);
    QStringList names;
    while (!file.atEnd()) {
        const QString line = QString::fromUtf8(file.readLine()).trimmed();
        const QRegularExpressionMatch match = slot.match(line);
        if (!match.hasMatch())
            qFatal("%s: this is no slot: '%s'", qPrintable(file.fileName()), qPrintable(line));
        names += match.captured(1);
    }
    return names;
}

// The names of a class's own methods of a kind.
QStringList methodsOf(const QMetaObject &metaObject, QMetaMethod::MethodType kind)
{
    QStringList names;
    for (int index = metaObject.methodOffset(); index < metaObject.methodCount(); ++index) {
        const QMetaMethod method = metaObject.method(index);
        if (method.methodType() == kind)
            names += QString::fromLatin1(method.name());
    }
    return names;
}

// All that a host, a receiver or a timer can call on a device.
QStringList callableOperations(const QMetaObject &device)
{
    QStringList names = slotsOfTable(u"ILogicalDeviceGen3Mouse"_s) + slotsOfTable(u"ILogicalDeviceGen3"_s) +
                        methodsOf(device, QMetaMethod::Slot);
    const QStringList ownSignals = methodsOf(device, QMetaMethod::Signal);
    for (const QString &signal : ownSignals)
        names.removeAll(signal);
    const QStringList signalsOfReceivers = methodsOf(ReceiverBase::staticMetaObject, QMetaMethod::Signal);
    for (const QString &signal : signalsOfReceivers)
        names += u"receiver::"_s + signal;
    return names;
}

// What is seen of two calls from another thread before and after the device's thread delivers what was
// queued.
void compareTwoCallsFromAnotherThread(PluginFixture &fixture, HostedDevice &device,
                                      const Operation &operation, const QString &first, const QString &second)
{
    const Parts once = fromAnotherThread(linesOf(first), operation.signalThread);
    const Parts again = fromAnotherThread(linesOf(second), operation.signalThread);
    OtherThread other;
    other.run([&] {
        operation.call(fixture, device);
        operation.call(fixture, device);
    });
    COMPARE_LINES(fixture.take(), once.atOnce + again.atOnce);
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), once.delivered + again.delivered);
}

}  // namespace

Q_DECLARE_METATYPE(Operation)

// Each operation at each moment of a device's life, and from a thread that is not the device's.
class tst_OperationOrder : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyOperationHasOneRow();
    void beforeStart_data() { addRows(); }
    void beforeStart();
    void withoutReceiver_data() { addRows(); }
    void withoutReceiver();
    void twiceWhileRunning_data() { addRows(); }
    void twiceWhileRunning();
    void afterStop_data() { addRows(); }
    void afterStop();
    void fromASecondThread_data() { addRowsForAnyThread(); }
    void fromASecondThread();
    void fromASecondThreadBeforeStart_data() { addRowsForAnyThread(); }
    void fromASecondThreadBeforeStart();
    void onTheThreadThatTheFactoryMovedTo_data() { addRowsWithSignals(); }
    void onTheThreadThatTheFactoryMovedTo();
    void fromTheThreadThatTheFactoryLeft_data() { addRowsWithSignals(); }
    void fromTheThreadThatTheFactoryLeft();
    void insideAnAnnouncement_data() { addRows(); }
    void insideAnAnnouncement();
    void startTwice();
    void startAfterStop();
    void startTwiceFromASecondThread();
    void startTwiceWithoutReceiver();
};

void tst_OperationOrder::everyOperationHasOneRow()
{
    PluginFixture fixture;
    QStringList named;
    for (const Operation &operation : everyOperation())
        named += QString::fromLatin1(operation.name);
    for (const OperationWithoutRow &operation : operationsWithoutRow()) {
        QVERIFY2(qstrlen(operation.reason) > 0, operation.name);
        named += QString::fromLatin1(operation.name);
    }
    QStringList untold = callableOperations(*fixture.create().object()->metaObject());
    QStringList surplus;
    for (const QString &name : std::as_const(named)) {
        if (!untold.removeOne(name))
            surplus += name;
    }
    QCOMPARE(untold.join(u' '), QString());
    // Of no operation, or the second one of an operation.
    QCOMPARE(surplus.join(u' '), QString());
}

void tst_OperationOrder::beforeStart()
{
    QFETCH(const Operation, operation);
    PluginFixture fixture(warningsOnly);
    HostedDevice &device = fixture.create();
    operation.call(fixture, device);
    COMPARE_LINES(fixture.take(), linesOf(operation.unbound));
    operation.call(fixture, device);
    COMPARE_LINES(fixture.take(), linesOf(operation.unboundAgain));
}

void tst_OperationOrder::withoutReceiver()
{
    QFETCH(const Operation, operation);
    PluginFixture fixture(warningsOnly);
    PlainPhysicalDevice physicalDevice(fixture.timeline);
    physicalDevice.forwardedResult = 77;
    HostedDevice &device = fixture.create(&physicalDevice, PluginFixture::mouse);
    device.start();
    fixture.take();
    operation.call(fixture, device);
    COMPARE_LINES(fixture.take(), linesOf(operation.unbound));
    operation.call(fixture, device);
    COMPARE_LINES(fixture.take(), linesOf(operation.unboundAgain));
}

void tst_OperationOrder::twiceWhileRunning()
{
    QFETCH(const Operation, operation);
    PluginFixture fixture(warningsOnly);
    HostedDevice &device = runningDevice(fixture);
    operation.call(fixture, device);
    COMPARE_LINES(fixture.take(), linesOf(operation.whileRunning));
    operation.call(fixture, device);
    COMPARE_LINES(fixture.take(), linesOf(operation.again));
}

void tst_OperationOrder::afterStop()
{
    QFETCH(const Operation, operation);
    PluginFixture fixture(warningsOnly);
    HostedDevice &device = runningDevice(fixture);
    device.stop();
    fixture.take();
    operation.call(fixture, device);
    COMPARE_LINES(fixture.take(), linesOf(operation.whileRunning));
    operation.call(fixture, device);
    COMPARE_LINES(fixture.take(), linesOf(operation.again));
}

void tst_OperationOrder::fromASecondThread()
{
    QFETCH(const Operation, operation);
    PluginFixture fixture(warningsOnly);
    HostedDevice &device = runningDevice(fixture);
    compareTwoCallsFromAnotherThread(fixture, device, operation, operation.whileRunning, operation.again);
}

void tst_OperationOrder::fromASecondThreadBeforeStart()
{
    QFETCH(const Operation, operation);
    PluginFixture fixture(warningsOnly);
    HostedDevice &device = fixture.create();
    compareTwoCallsFromAnotherThread(fixture, device, operation, operation.unbound, operation.unboundAgain);
}

void tst_OperationOrder::onTheThreadThatTheFactoryMovedTo()
{
    QFETCH(const Operation, operation);
    PluginFixture fixture(warningsOnly);
    HostedDevice &device = runningDevice(fixture);
    StepThread other;
    withFactoryOn(other, fixture, [&] { other.run([&] { operation.call(fixture, device); }); });
    QStringList expected = linesOf(operation.whileRunning);
    for (QString &line : expected)
        line += u" on thread 2"_s;
    COMPARE_LINES(fixture.take(), expected);
}

void tst_OperationOrder::fromTheThreadThatTheFactoryLeft()
{
    QFETCH(const Operation, operation);
    PluginFixture fixture(warningsOnly);
    HostedDevice &device = runningDevice(fixture);
    StepThread other;
    QStringList atOnce;
    withFactoryOn(other, fixture, [&] {
        operation.call(fixture, device);
        atOnce = fixture.take();
        other.run(deliverQueuedCalls);
    });
    QStringList expectedAtOnce;
    QStringList expectedThere;
    const QStringList lines = linesOf(operation.whileRunning);
    for (const QString &line : lines) {
        const bool waits = line.startsWith(u"signal "_s) && operation.signalThread == SignalThread::Device;
        if (waits)
            expectedThere += line + u" on thread 2"_s;
        else
            expectedAtOnce += line;
    }
    COMPARE_LINES(atOnce, expectedAtOnce);
    COMPARE_LINES(fixture.take(), expectedThere);
}

// The registry is locked meanwhile. What has no row takes the lock and would wait for ever: start,
// instanceNumber and the destructors.
void tst_OperationOrder::insideAnAnnouncement()
{
    QFETCH(const Operation, operation);
    PluginFixture fixture(warningsOnly);
    HostedDevice &device = runningDevice(fixture);
    HostedDevice &another = fixture.create(nullptr, 7);
    QStringList seen;
    SignalHook hook([&] {
        fixture.take();
        operation.call(fixture, device);
        seen = fixture.take();
    });
    QVERIFY(connect(device.object(), SIGNAL(instanceNumberChanged(int)), &hook, SLOT(run())));
    another.start();
    COMPARE_LINES(seen, linesOf(operation.whileRunning));
}

void tst_OperationOrder::startTwice()
{
    PluginFixture fixture(warningsOnly);
    HostedDevice &device = fixture.create();
    device.start();
    COMPARE_LINES(fixture.take(), QStringList{u"call start() -> true"_s} + bindingLines() +
                                      QStringList{u"signal instanceNumberChanged(0)"_s});
    device.start();
    // Registered twice, it is announced twice, with the number of its last entry.
    COMPARE_LINES(fixture.take(), QStringList{u"call start() -> true"_s} + bindingLines() +
                                      QStringList{u"signal instanceNumberChanged(2)"_s,
                                                  u"signal instanceNumberChanged(2)"_s});
    QCOMPARE(device.device()->reportRateValues().join(u' '), u"125 250 500 1000 125 250 500 1000"_s);
}

void tst_OperationOrder::startAfterStop()
{
    PluginFixture fixture(warningsOnly);
    HostedDevice &device = fixture.create();
    device.stop();
    fixture.take();
    device.start();
    COMPARE_LINES(fixture.take(), QStringList{u"call start() -> true"_s} + bindingLines() +
                                      QStringList{u"signal instanceNumberChanged(0)"_s});
}

void tst_OperationOrder::startTwiceFromASecondThread()
{
    PluginFixture fixture(warningsOnly);
    HostedDevice &device = fixture.create();
    OtherThread other;
    other.run([&] {
        device.start();
        device.start();
    });
    QStringList once = QStringList{u"call start() -> true"_s} + bindingLines();
    for (QString &line : once)
        line += u" on thread 2"_s;
    COMPARE_LINES(fixture.take(), once + once);
    deliverQueuedCalls();
    // One of the first start and two of the second, each with the number in force now.
    const QString announcement = u"signal instanceNumberChanged(2)"_s;
    COMPARE_LINES(fixture.take(), {announcement, announcement, announcement});
}

void tst_OperationOrder::startTwiceWithoutReceiver()
{
    PluginFixture fixture(warningsOnly);
    HostedDevice &device = fixture.create(nullptr, PluginFixture::mouse);
    device.start();
    device.start();
    const QStringList once{u"call start() -> true"_s,
                           warningLine(u"Unable to get IPhysicalDeviceDongle interface"_s)};
    COMPARE_LINES(fixture.take(), once + QStringList{u"signal instanceNumberChanged(0)"_s} + once +
                                      QStringList{u"signal instanceNumberChanged(2)"_s,
                                                  u"signal instanceNumberChanged(2)"_s});
}

QTEST_GUILESS_MAIN(tst_OperationOrder)
#include "tst_OperationOrder.moc"
