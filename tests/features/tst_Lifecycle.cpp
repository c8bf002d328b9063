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

}  // namespace

class tst_Lifecycle : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void receiverSignalsAreConnectedBetweenReadsAndRequests();
    void secondStartConnectsTwice();
    void receiverDestroyedFirstDropsTheConnections();
    void deviceDestroyedFirstDropsTheConnections();
    void libraryUnderASimilarNameIsAnother_data();
    void libraryUnderASimilarNameIsAnother();
    void libraryInAFolderWithBlanksAndUmlauts();
};

void tst_Lifecycle::receiverSignalsAreConnectedBetweenReadsAndRequests()
{
    PluginFixture fixture;
    ConnectedReceiver receiver(fixture.timeline);
    HostedDevice &device = fixture.create(&receiver, PluginFixture::mouse);
    device.start();
    const QStringList lines = fixture.take();
    COMPARE_LINES(lines.mid(lines.indexOf(u"receiver getDeviceValue() -> 32"_s), 4),
                  {u"receiver getDeviceValue() -> 32"_s, u"verdict connected dpiMinChanged(int)"_s,
                   u"verdict connected dpiMaxChanged(int)"_s, u"receiver requestInitialState1() -> true"_s});
    // Before its receiver goes.
    fixture.destroy(device);
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

void tst_Lifecycle::libraryUnderASimilarNameIsAnother_data()
{
    QTest::addColumn<QString>("path");
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
