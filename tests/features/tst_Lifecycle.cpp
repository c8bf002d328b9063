#include "OtherThread.h"
#include "PlainPhysicalDevice.h"
#include "PluginFixture.h"
#include "TimelineText.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QMetaMethod>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

// Everything between "start enter" and "start exit" on the sane receiver, the report rates included.
QStringList wholeBinding()
{
    const QStringList calls = bindingLines();
    return calls.mid(0, calls.size() - 1) +
           QStringList{debugLine(u"got supported report rate :  125"_s),
                       debugLine(u"got supported report rate :  250"_s),
                       debugLine(u"got supported report rate :  500"_s),
                       debugLine(u"got current report rate :  500"_s),
                       debugLine(u"got supported report rate :  1000"_s)} +
           QStringList{calls.constLast()};
}

QStringList wholeStart(const QStringList &binding, const QString &announcement)
{
    return QStringList{u"call start() -> true"_s, debugLine(u"start enter"_s)} + binding +
           QStringList{announcement, debugLine(u"start exit"_s)};
}

/// A receiver that records what is connected to its signals.
class ConnectedReceiver : public FakeReceiver
{
public:
    using FakeReceiver::FakeReceiver;

protected:
    void connectNotify(const QMetaMethod &signal) override
    {
        timeline().recordVerdict(u"connected "_s + QString::fromLatin1(signal.methodSignature()));
    }
};

QString libraryName()
{
    return QFileInfo(PluginFixture::builtPluginFile()).fileName();
}

// A copy of the library under a path inside the folder; answers the whole path.
QString copiedLibrary(const QTemporaryDir &folder, const QString &path)
{
    const QString copy = folder.filePath(path);
    if (!QDir().mkpath(QFileInfo(copy).path()) || !QFile::copy(PluginFixture::builtPluginFile(), copy))
        qFatal("the library cannot be copied to \"%s\"", qPrintable(copy));
    return copy;
}

QString renamedLibrary(const QTemporaryDir &folder)
{
    return copiedLibrary(folder, u"renamed."_s + QFileInfo(libraryName()).suffix());
}

}  // namespace

class tst_Lifecycle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void startBindsTheReceiverInOrder();
    void startReadsTheValues();
    void everyOperationCarriesTheDeviceId();
    void startIgnoresTheAnswersOfTheStateRequests();
    void receiverWithoutBatteryIsNotAskedForItsLevel();
    void physicalDeviceThatIsNoReceiver();
    void noPhysicalDeviceAtAll();
    void noReceiverWarningNeedsItsSwitch();
    void receiverSignalsAreConnectedBetweenReadsAndRequests();
    void receiverSignalsAreConnectedBeforeTheStateIsRequested();
    void receiverSignalsFromAnotherThreadAreQueued();
    void secondStartConnectsTwice();
    void startFromAnotherThread();
    void stopSignalsTheDeviceItself();
    void stopLeavesEverythingElse();
    void stopBeforeStart();
    void stoppedIsEmittedOnTheCallingThread();
    void receiverDestroyedFirstDropsTheConnections();
    void deviceDestroyedFirstDropsTheConnections();
    void libraryUnderAnotherNameIsReported_data();
    void libraryUnderAnotherNameIsReported();
    void libraryUnderAnotherNameIsReportedBeforeTheEnd();
    void libraryUnderASimilarNameIsAnother_data();
    void libraryUnderASimilarNameIsAnother();
    void libraryInAFolderWithBlanksAndUmlauts();
};

void tst_Lifecycle::startBindsTheReceiverInOrder()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    QVERIFY(device.start());
    COMPARE_LINES(fixture.take(), wholeStart(wholeBinding(), u"signal instanceNumberChanged(0)"_s));
}

void tst_Lifecycle::startReadsTheValues()
{
    PluginFixture fixture;
    fixture.receiver.answers.firmwareVersion = 0xfedcba98U;
    fixture.receiver.answers.batteryLevel = -7;
    HostedDevice &device = fixture.started();
    QCOMPARE(device.device()->firmwareVersion(), 0xfedcba98U);
    QCOMPARE(device.device()->hasBatteryLevel(), true);
    QCOMPARE(device.device()->batteryLevel(), -7);
    QCOMPARE(device.device()->statusValue(), 31);
    QCOMPARE(device.device()->deviceValue(), 32);
    QCOMPARE(device.device()->levelValue(), 33);
    QCOMPARE(device.device()->isSmartPointerSupported(), true);
    QCOMPARE(device.device()->reportRate(), 500);
}

void tst_Lifecycle::everyOperationCarriesTheDeviceId()
{
    constexpr DeviceId largeId = 0xfedcba9876543210U;
    PluginFixture fixture;
    HostedDevice &device = fixture.create(largeId);
    device.start();
    device.setReportRate(250);
    device.query26(1, 2, 3);

    const QList<TimelineEntry> entries = fixture.timeline.entries();
    int receiverCalls = 0;
    for (const TimelineEntry &entry : entries) {
        if (entry.kind != TimelineEntry::Kind::Receiver)
            continue;
        ++receiverCalls;
        QCOMPARE(entry.device.value_or(0), largeId);
    }
    QCOMPARE(receiverCalls, 13);
}

void tst_Lifecycle::startIgnoresTheAnswersOfTheStateRequests()
{
    PluginFixture fixture;
    fixture.receiver.answers.acceptsRequests = false;
    HostedDevice &device = fixture.create();
    QVERIFY(device.start());
    QStringList binding = wholeBinding();
    binding.replaceInStrings(u"requestInitialState1() -> true"_s, u"requestInitialState1() -> false"_s);
    binding.replaceInStrings(u"requestInitialState2() -> true"_s, u"requestInitialState2() -> false"_s);
    binding.replaceInStrings(u"requestInitialState3() -> true"_s, u"requestInitialState3() -> false"_s);
    COMPARE_LINES(fixture.take(), wholeStart(binding, u"signal instanceNumberChanged(0)"_s));
}

void tst_Lifecycle::receiverWithoutBatteryIsNotAskedForItsLevel()
{
    PluginFixture fixture;
    fixture.receiver.answers.hasBatteryLevel = false;
    fixture.receiver.answers.isSmartPointerSupported = false;
    HostedDevice &device = fixture.create();
    device.start();
    QStringList binding = wholeBinding();
    binding.removeAll(u"receiver getBatteryLevel() -> 80"_s);
    binding.replaceInStrings(u"hasBatteryLevel() -> true"_s, u"hasBatteryLevel() -> false"_s);
    binding.replaceInStrings(u"isSmartPointerSupported() -> true"_s, u"isSmartPointerSupported() -> false"_s);
    COMPARE_LINES(fixture.take(), wholeStart(binding, u"signal instanceNumberChanged(0)"_s));
    QVERIFY(!device.device()->hasBatteryLevel());
    QCOMPARE(device.device()->batteryLevel(), -1);
    QVERIFY(!device.device()->isSmartPointerSupported());
}

void tst_Lifecycle::physicalDeviceThatIsNoReceiver()
{
    PluginFixture fixture;
    PlainPhysicalDevice physicalDevice(fixture.timeline);
    HostedDevice &device = fixture.create(&physicalDevice, PluginFixture::mouse);
    QVERIFY(device.start());
    COMPARE_LINES(fixture.take(),
                  wholeStart({warningLine(u"Unable to get IPhysicalDeviceDongle interface"_s)},
                             u"signal instanceNumberChanged(0)"_s));
    QCOMPARE(device.device()->firmwareVersion(), 0U);
    QCOMPARE(device.device()->hasBatteryLevel(), false);
    QCOMPARE(device.device()->batteryLevel(), -1);
    QCOMPARE(device.device()->statusValue(), 0);
    QCOMPARE(device.device()->deviceValue(), 0);
    QCOMPARE(device.device()->levelValue(), 0);
    QCOMPARE(device.device()->isSmartPointerSupported(), false);
    QCOMPARE(device.device()->reportRate(), 0);
    COMPARE_LINES(device.device()->reportRateValues(), {});
}

void tst_Lifecycle::noPhysicalDeviceAtAll()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create(nullptr, PluginFixture::mouse);
    QVERIFY(device.start());
    COMPARE_LINES(fixture.take(),
                  wholeStart({warningLine(u"Unable to get IPhysicalDeviceDongle interface"_s)},
                             u"signal instanceNumberChanged(0)"_s));
    QCOMPARE(device.device()->physicalDevice(), nullptr);
}

void tst_Lifecycle::noReceiverWarningNeedsItsSwitch()
{
    PluginFixture fixture({true, false, true});
    HostedDevice &device = fixture.create(nullptr, PluginFixture::mouse);
    device.start();
    COMPARE_LINES(fixture.take(), wholeStart({}, u"signal instanceNumberChanged(0)"_s));
}

void tst_Lifecycle::receiverSignalsAreConnectedBetweenReadsAndRequests()
{
    PluginFixture fixture;
    ConnectedReceiver receiver(fixture.timeline);
    HostedDevice &device = fixture.create(&receiver, PluginFixture::mouse);
    device.start();
    const qsizetype reads = 5;
    const QStringList binding = wholeBinding();
    COMPARE_LINES(fixture.take(), wholeStart(binding.mid(0, reads) +
                                                 QStringList{u"verdict connected dpiMinChanged(int)"_s,
                                                             u"verdict connected dpiMaxChanged(int)"_s} +
                                                 binding.mid(reads),
                                             u"signal instanceNumberChanged(0)"_s));
    // Before its receiver goes.
    fixture.destroy(device);
}

void tst_Lifecycle::receiverSignalsAreConnectedBeforeTheStateIsRequested()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    fixture.receiver.duringRequest = [&](const QString &operation) {
        if (operation == u"requestInitialState1"_s) {
            Q_EMIT fixture.receiver.dpiMinChanged(100);
            Q_EMIT fixture.receiver.dpiMaxChanged(8000);
        }
    };
    device.start();
    QCOMPARE(device.device()->dpiMin(), 100);
    QCOMPARE(device.device()->dpiMax(), 8000);

    PluginFixture late;
    HostedDevice &other = late.create();
    Q_EMIT late.receiver.dpiMinChanged(100);
    QCOMPARE(other.device()->dpiMin(), 0);
}

void tst_Lifecycle::receiverSignalsFromAnotherThreadAreQueued()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    OtherThread other;
    other.run([&] { Q_EMIT fixture.receiver.dpiMinChanged(200); });
    QCOMPARE(device.device()->dpiMin(), 0);
    COMPARE_LINES(fixture.take(), {});
    deliverQueuedCalls();
    QCOMPARE(device.device()->dpiMin(), 200);
    COMPARE_LINES(fixture.take(), {debugLine(u"Updating dpiMin :  200"_s), u"signal dpiMinChanged(200)"_s});
}

void tst_Lifecycle::secondStartConnectsTwice()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    QCOMPARE(fixture.receiver.connectionCount("dpiMinChanged(int)"), 1);
    QCOMPARE(fixture.receiver.connectionCount("dpiMaxChanged(int)"), 1);
    device.start();
    QCOMPARE(fixture.receiver.connectionCount("dpiMinChanged(int)"), 2);
    QCOMPARE(fixture.receiver.connectionCount("dpiMaxChanged(int)"), 2);
    fixture.take();

    // The change arrives twice, and the second arrival finds nothing new.
    Q_EMIT fixture.receiver.dpiMaxChanged(3000);
    COMPARE_LINES(fixture.take(), {debugLine(u"Updating dpiMax :  3000"_s), u"signal dpiMaxChanged(3000)"_s});
}

void tst_Lifecycle::startFromAnotherThread()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    OtherThread other;
    other.run([&] { device.start(); });
    QStringList expected = wholeStart(wholeBinding(), QString());
    expected.removeAll(QString());
    for (QString &line : expected)
        line += u" on thread 2"_s;
    COMPARE_LINES(fixture.take(), expected);
    deliverQueuedCalls();
    COMPARE_LINES(fixture.take(), {u"signal instanceNumberChanged(0)"_s});
}

void tst_Lifecycle::stopSignalsTheDeviceItself()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    device.stop();
    COMPARE_LINES(fixture.take(), {u"call stop()"_s, debugLine(u"stop enter"_s),
                                   u"signal stopped(\"this\")"_s, debugLine(u"stop exit"_s)});
}

void tst_Lifecycle::stopLeavesEverythingElse()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    HostedDevice &second = fixture.started(7);
    device.stop();
    fixture.take();
    QCOMPARE(device.device()->instanceNumber(), 1);
    QCOMPARE(second.device()->instanceNumber(), 2);
    QCOMPARE(device.device()->firmwareVersion(), 258U);
    QCOMPARE(fixture.receiver.connectionCount("dpiMinChanged(int)"), 2);

    Q_EMIT fixture.receiver.dpiMinChanged(150);
    QCOMPARE(device.device()->dpiMin(), 150);
    fixture.take();
    device.setReportRate(250);
    QVERIFY(fixture.take().contains(u"receiver setReportRate(250) -> true"_s));
}

void tst_Lifecycle::stopBeforeStart()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.create();
    device.stop();
    device.stop();
    const QStringList once{u"call stop()"_s, debugLine(u"stop enter"_s), u"signal stopped(\"this\")"_s,
                           debugLine(u"stop exit"_s)};
    COMPARE_LINES(fixture.take(), once + once);
}

void tst_Lifecycle::stoppedIsEmittedOnTheCallingThread()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    OtherThread other;
    other.run([&] { device.stop(); });
    COMPARE_LINES(fixture.take(),
                  {u"call stop() on thread 2"_s, debugLine(u"stop enter on thread 2"_s),
                   u"signal stopped(\"this\") on thread 2"_s, debugLine(u"stop exit on thread 2"_s)});
}

void tst_Lifecycle::receiverDestroyedFirstDropsTheConnections()
{
    PluginFixture fixture;
    auto receiver = std::make_unique<FakeReceiver>(fixture.timeline);
    HostedDevice &device = fixture.create(receiver.get(), PluginFixture::mouse);
    device.start();
    receiver.reset();
    fixture.take();
    QCOMPARE(device.device()->firmwareVersion(), 258U);
    fixture.destroy(device);
    COMPARE_LINES(fixture.take(), {u"call destroyDevice()"_s, debugLine(u"~LogicalDevice enter"_s),
                                   debugLine(u"~LogicalDevice exit"_s)});
}

void tst_Lifecycle::deviceDestroyedFirstDropsTheConnections()
{
    PluginFixture fixture;
    HostedDevice &device = fixture.started();
    fixture.destroy(device);
    QCOMPARE(fixture.receiver.connectionCount("dpiMinChanged(int)"), 0);
    QCOMPARE(fixture.receiver.connectionCount("dpiMaxChanged(int)"), 0);
    fixture.take();
    Q_EMIT fixture.receiver.dpiMinChanged(100);
    COMPARE_LINES(fixture.take(), {});
}

void tst_Lifecycle::libraryUnderAnotherNameIsReported_data()
{
    QTest::addColumn<bool>("isCriticalEnabled");
    QTest::newRow("critical-on") << true;
    QTest::newRow("critical-off") << false;
}

void tst_Lifecycle::libraryUnderAnotherNameIsReported()
{
    QFETCH(const bool, isCriticalEnabled);
    const QTemporaryDir folder;
    PluginFixture fixture({false, false, isCriticalEnabled}, renamedLibrary(folder));
    HostedDevice &device = fixture.create();
    QVERIFY(!device.start());

    // Bound and registered all the same.
    QStringList expected = QStringList{u"call start() -> false"_s} + wholeBinding() +
                           QStringList{u"signal instanceNumberChanged(0)"_s};
    expected.erase(std::remove_if(expected.begin(), expected.end(),
                                  [](const QString &line) { return line.startsWith(u"debug"); }),
                   expected.end());
    if (isCriticalEnabled)
        expected += criticalLine(u"GetModuleHandleA failed, gle : \"0x7e\""_s);
    COMPARE_LINES(fixture.take(), expected);
    QCOMPARE(device.device()->firmwareVersion(), 258U);
    QCOMPARE(device.device()->instanceNumber(), 0);
}

void tst_Lifecycle::libraryUnderAnotherNameIsReportedBeforeTheEnd()
{
    const QTemporaryDir folder;
    PluginFixture fixture({true, true, true}, renamedLibrary(folder));
    fixture.create(nullptr, 1).start();
    COMPARE_LINES(fixture.take(),
                  {u"call start() -> false"_s, debugLine(u"start enter"_s),
                   warningLine(u"Unable to get IPhysicalDeviceDongle interface"_s),
                   u"signal instanceNumberChanged(0)"_s,
                   criticalLine(u"GetModuleHandleA failed, gle : \"0x7e\""_s), debugLine(u"start exit"_s)});
    fixture.host.initialize(&fixture.hostServices, true, true, false);
    fixture.create(nullptr, 2).start();
    COMPARE_LINES(fixture.take(), {u"call start() -> false"_s, debugLine(u"start enter"_s),
                                   warningLine(u"Unable to get IPhysicalDeviceDongle interface"_s),
                                   u"signal instanceNumberChanged(1)"_s, u"signal instanceNumberChanged(2)"_s,
                                   debugLine(u"start exit"_s)});
}

void tst_Lifecycle::libraryUnderASimilarNameIsAnother_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("longer-in-front") << u'x' + libraryName();
    QTest::newRow("longer-at-the-end") << libraryName() + u".1"_s;
    QTest::newRow("folder-of-that-name")
        << libraryName() + u"/renamed."_s + QFileInfo(libraryName()).suffix();
}

void tst_Lifecycle::libraryUnderASimilarNameIsAnother()
{
    QFETCH(const QString, path);
    const QTemporaryDir folder;
    PluginFixture fixture({false, false, true}, copiedLibrary(folder, path));
    QVERIFY(!fixture.create(nullptr, PluginFixture::mouse).start());
    COMPARE_LINES(fixture.take(), {u"call start() -> false"_s, u"signal instanceNumberChanged(0)"_s,
                                   criticalLine(u"GetModuleHandleA failed, gle : \"0x7e\""_s)});
}

void tst_Lifecycle::libraryInAFolderWithBlanksAndUmlauts()
{
    const QTemporaryDir folder;
    PluginFixture fixture({true, true, true}, copiedLibrary(folder, u"Geräte Ordner Ω/"_s + libraryName()));
    QVERIFY(fixture.create().start());
}

QTEST_GUILESS_MAIN(tst_Lifecycle)
#include "tst_Lifecycle.moc"
