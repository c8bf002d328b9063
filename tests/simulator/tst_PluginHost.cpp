#include "ILogicalDevicePlugin.h"
#include "LogRecorder.h"
#include "PluginFixture.h"
#include "PluginHost.h"
#include "PluginInspection.h"
#include "TimelineText.h"

#include <QtCore/QFile>
#include <QtCore/QPluginLoader>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

QString wrongLibrary(const QString &name)
{
    return QStringLiteral(KVX_WRONG_LIBRARIES "/") + name + QStringLiteral(KVX_LIBRARY_SUFFIX);
}

bool isLibraryInProcess()
{
    return QFile::exists(u":/com.orvane.KVX.Plugin.LogicalDevice.RV418/DefaultProfile.json"_s);
}

}  // namespace

class tst_PluginHost : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void unusableFileIsRefused_data();
    void unusableFileIsRefused();
    void missingFactoryIsTold();
    void foreignPluginIsNeverRun();
    void loadGivesTheFactory();
    void unloadReallyUnloads();
    void unloadDeletesTheDevices();
    void loadsAgainAfterAFailure();
    void callsOfTheFactoryAreRecorded();
    void logRecordersNest();
};

void tst_PluginHost::unusableFileIsRefused_data()
{
    QTest::addColumn<QString>("file");
    QTest::newRow("missing") << u"/nowhere/x.so"_s;
    QTest::newRow("no-plugin") << wrongLibrary(u"NoPlugin"_s);
    QTest::newRow("foreign") << wrongLibrary(u"ForeignPlugin"_s);
}

void tst_PluginHost::unusableFileIsRefused()
{
    QFETCH(const QString, file);
    Timeline timeline;
    PluginHost host(timeline);
    const std::optional<QString> refusal = host.load(file);
    QVERIFY(refusal);
    QCOMPARE(*refusal, inspectPlugin(file).refusal);
    QVERIFY(!host.factory());
    COMPARE_LINES(timeline.take(), {});
}

void tst_PluginHost::missingFactoryIsTold()
{
    const QString file = wrongLibrary(u"FactorylessPlugin"_s);
    QVERIFY(inspectPlugin(file).refusal.isEmpty());
    Timeline timeline;
    PluginHost host(timeline);
    const QString reason = host.load(file).value_or(QString());
    QVERIFY2(reason.contains(u"has no factory"_s) && reason.contains(file), qPrintable(reason));
    QVERIFY(!host.factory());
}

void tst_PluginHost::foreignPluginIsNeverRun()
{
    Timeline timeline;
    PluginHost host(timeline);
    QVERIFY(host.load(wrongLibrary(u"ForeignPlugin"_s)).has_value());
    QVERIFY(!qEnvironmentVariableIsSet("KVX_FOREIGN_PLUGIN_RAN"));

    QPluginLoader loader(wrongLibrary(u"ForeignPlugin"_s));
    QVERIFY(loader.load());
    QVERIFY(qEnvironmentVariableIsSet("KVX_FOREIGN_PLUGIN_RAN"));
}

void tst_PluginHost::loadGivesTheFactory()
{
    Timeline timeline;
    PluginHost host(timeline);
    QVERIFY(!host.load(PluginFixture::builtPluginFile()).has_value());
    QVERIFY(host.factory());
    QVERIFY(host.root());
    QCOMPARE(host.fileName(), QFileInfo(PluginFixture::builtPluginFile()).absoluteFilePath());
}

void tst_PluginHost::unloadReallyUnloads()
{
    Timeline timeline;
    PluginHost host(timeline);
    QVERIFY(!isLibraryInProcess());
    for (int round = 0; round < 2; ++round) {
        QVERIFY(!host.load(PluginFixture::builtPluginFile()).has_value());
        QVERIFY(isLibraryInProcess());
        QVERIFY(host.unload());
        QVERIFY(!isLibraryInProcess());
        QVERIFY(!host.factory());
    }
    QVERIFY(!host.unload());
}

void tst_PluginHost::unloadDeletesTheDevices()
{
    Timeline timeline;
    PluginHost host(timeline);
    QVERIFY(!host.load(PluginFixture::builtPluginFile()).has_value());
    const std::unique_ptr<HostedDevice> device = host.createDevice(nullptr, 1);
    const QPointer<QObject> object = device->object();
    QVERIFY(object);
    host.unload();
    QVERIFY(!object);
}

void tst_PluginHost::loadsAgainAfterAFailure()
{
    Timeline timeline;
    PluginHost host(timeline);
    QVERIFY(host.load(wrongLibrary(u"FactorylessPlugin"_s)).has_value());
    QVERIFY(host.load(u"/nowhere"_s).has_value());
    QVERIFY(!host.load(PluginFixture::builtPluginFile()).has_value());
    QVERIFY(host.load(u"/nowhere"_s).has_value());
    QVERIFY(!host.factory());
}

void tst_PluginHost::callsOfTheFactoryAreRecorded()
{
    Timeline timeline;
    SimulatedHostServices hostServices(timeline);
    PluginHost host(timeline);
    QVERIFY(!host.load(PluginFixture::builtPluginFile()).has_value());
    host.initialize(&hostServices, false, false, true);
    std::unique_ptr<HostedDevice> device = host.createDevice(nullptr, 7);
    const QPointer<QObject> object = device->object();
    host.destroyDevice(std::move(device));
    QVERIFY(!object);
    COMPARE_LINES(timeline.take(Timeline::Style::WithDevice),
                  {u"call initialize(false, false, true)"_s, u"call [7] createLogicalDevice()"_s,
                   u"call [7] destroyDevice()"_s});
}

void tst_PluginHost::logRecordersNest()
{
    Timeline outerTimeline;
    Timeline innerTimeline;
    const LogRecorder outer(outerTimeline);
    qWarning("one");
    {
        const LogRecorder inner(innerTimeline);
        qCritical("two");
    }
    qInfo("three");
    COMPARE_LINES(outerTimeline.take(), {u"warning default: one"_s, u"info default: three"_s});
    COMPARE_LINES(innerTimeline.take(), {u"critical default: two"_s});
}

QTEST_GUILESS_MAIN(tst_PluginHost)
#include "tst_PluginHost.moc"
