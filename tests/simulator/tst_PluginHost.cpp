#include "ILogicalDevicePlugin.h"
#include "LogRecorder.h"
#include "PluginFixture.h"
#include "PluginHost.h"
#include "PluginInspection.h"
#include "ThisSystem.h"
#include "TimelineText.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QPluginLoader>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;
using Outcome = PluginJudgement::Outcome;

namespace {

QString wrongLibrary(const QString &name)
{
    return QStringLiteral(KVX_WRONG_LIBRARIES "/") + name + QStringLiteral(KVX_LIBRARY_SUFFIX);
}

QByteArray pluginBytes()
{
    QFile file(PluginFixture::builtPluginFile());
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

QString written(const QTemporaryDir &folder, const QByteArray &bytes)
{
    QFile file(folder.filePath(u"library.so"_s));
    return file.open(QFile::WriteOnly) && file.write(bytes) == bytes.size() ? file.fileName() : QString();
}

QJsonObject metaData(int version, bool isDebug)
{
    return {{u"IID"_s, u"com.orvane.KVX.Plugin.LogicalDevice.RV418"_s},
            {u"version"_s, version},
            {u"debug"_s, isDebug}};
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
    void unusableFiles_data();
    void unusableFiles();
    void hugeFileIsRefusedUnread();
    void missingFactoryIsTold();
    void foreignPluginIsNeverRun();
    void metadataIsJudged_data();
    void metadataIsJudged();
    void ownDemandsAcceptTheBuiltPlugin();
    void loadGivesTheFactory();
    void unloadReallyUnloads();
    void unloadDeletesTheDevices();
    void loadsAgainAfterAFailure();
    void callsOfTheFactoryAreRecorded();
    void logRecordersNest();
};

void tst_PluginHost::unusableFiles_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QByteArray>("bytes");  // written to a file when there is no name
    QTest::addColumn<Outcome>("outcome");
    QTest::addColumn<QString>("cause");
    const QByteArray plugin = pluginBytes();
    const QByteArray noBytes;
    QTest::newRow("missing") << u"/nowhere/x.so"_s << noBytes << Outcome::MissingFile << u"does not exist"_s;
    QTest::newRow("empty") << QString() << noBytes << Outcome::MissingFile << u"is empty"_s;
    QTest::newRow("directory") << QDir::tempPath() << noBytes << Outcome::MissingFile << u"is a directory"_s;
    QTest::newRow("text") << QString() << QByteArray("hello, world\n") << Outcome::NotALibrary
                          << u"is no library"_s;
    QTest::newRow("four-bytes") << QString() << plugin.first(4) << Outcome::NotALibrary << u"is cut off"_s;
    QTest::newRow("half") << QString() << plugin.first(plugin.size() / 2) << Outcome::NotALibrary
                          << u"is cut off"_s;
    QTest::newRow("last-byte-missing")
        << QString() << plugin.chopped(1) << Outcome::NotALibrary << u"is cut off"_s;
    QTest::newRow("other-system") << QString() << ThisSystem::otherLibraryStart() << Outcome::NotALibrary
                                  << u"another system (%1)"_s.arg(ThisSystem::otherName);
    // On Linux its code can lie at any address, which leaves nothing to tell it from a library.
    QTest::newRow("program") << QCoreApplication::applicationFilePath() << noBytes
                             << (ThisSystem::isWindows ? Outcome::NotALibrary : Outcome::NotAPlugin)
                             << (ThisSystem::isWindows ? u"is a Windows program"_s : u"no plugin metadata"_s);
    QTest::newRow("no-plugin") << wrongLibrary(u"NoPlugin"_s) << noBytes << Outcome::NotAPlugin
                               << u"no plugin metadata"_s;
    QTest::newRow("foreign") << wrongLibrary(u"ForeignPlugin"_s) << noBytes << Outcome::ForeignIid
                             << u"\"org.example.Foreign\""_s;
}

void tst_PluginHost::unusableFiles()
{
    QFETCH(QString, file);
    QFETCH(const QByteArray, bytes);
    QFETCH(const Outcome, outcome);
    QFETCH(const QString, cause);
    const QTemporaryDir folder;
    if (file.isEmpty())
        file = written(folder, bytes);
    QVERIFY(!file.isEmpty());

    const PluginInspection inspection = inspectPlugin(file);
    QCOMPARE(inspection.judgement.outcome, outcome);
    Timeline timeline;
    PluginHost host(timeline);
    const QString reason = host.load(file).value_or(QString());
    QCOMPARE(reason, inspection.judgement.reason);
    QVERIFY2(reason.startsWith(u'"' + file + u'"'), qPrintable(reason));
    QVERIFY2(reason.contains(cause), qPrintable(reason));
    QVERIFY2(!reason.contains(u'\n'), qPrintable(reason));
    QVERIFY(!host.factory());
    COMPARE_LINES(timeline.take(), {});
}

void tst_PluginHost::hugeFileIsRefusedUnread()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"huge.so"_s));
    QVERIFY(file.open(QFile::WriteOnly));
    QVERIFY(file.resize(qint64{256} * 1024 * 1024 + 1));
    const PluginInspection inspection = inspectPlugin(file.fileName());
    QCOMPARE(inspection.judgement.outcome, Outcome::NotALibrary);
    QVERIFY2(inspection.judgement.reason.contains(u"larger than 256 MiB"_s),
             qPrintable(inspection.judgement.reason));
}

void tst_PluginHost::missingFactoryIsTold()
{
    const QString file = wrongLibrary(u"FactorylessPlugin"_s);
    QVERIFY(inspectPlugin(file).judgement.isLoadable());
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

void tst_PluginHost::metadataIsJudged_data()
{
    QTest::addColumn<QJsonObject>("metaData");
    QTest::addColumn<bool>("mustMatchBuildType");
    QTest::addColumn<Outcome>("outcome");
    QTest::newRow("same-qt") << metaData(0x060800, false) << true << Outcome::Loadable;
    QTest::newRow("older-minor") << metaData(0x060400, false) << true << Outcome::Loadable;
    QTest::newRow("newer-minor") << metaData(0x060900, false) << true << Outcome::OtherQtVersion;
    QTest::newRow("older-major") << metaData(0x050f00, false) << true << Outcome::OtherQtVersion;
    QTest::newRow("newer-major") << metaData(0x070000, false) << true << Outcome::OtherQtVersion;
    QTest::newRow("no-version") << QJsonObject{{u"IID"_s, u"com.orvane.KVX.Plugin.LogicalDevice.X"_s}} << true
                                << Outcome::OtherQtVersion;
    QTest::newRow("debug-where-it-matters") << metaData(0x060800, true) << true << Outcome::OtherBuildType;
    QTest::newRow("debug-where-it-does-not") << metaData(0x060800, true) << false << Outcome::Loadable;
    QTest::newRow("no-iid") << QJsonObject{{u"version"_s, 0x060800}} << true << Outcome::ForeignIid;
}

void tst_PluginHost::metadataIsJudged()
{
    QFETCH(const QJsonObject, metaData);
    QFETCH(const bool, mustMatchBuildType);
    QFETCH(const Outcome, outcome);
    const PluginDemands demands{u"com.orvane.KVX.Plugin.LogicalDevice."_s, 0x060802, false,
                                mustMatchBuildType};
    const PluginJudgement judgement = judgeMetadata(u"f.so"_s, metaData, demands);
    QCOMPARE(judgement.outcome, outcome);
    QCOMPARE(judgement.reason.isEmpty(), outcome == Outcome::Loadable);
    QVERIFY(judgement.isLoadable() || judgement.reason.startsWith(u"\"f.so\" "_s));
}

void tst_PluginHost::ownDemandsAcceptTheBuiltPlugin()
{
    const PluginInspection inspection = inspectPlugin(PluginFixture::builtPluginFile());
    QCOMPARE(inspection.judgement.reason, QString());
    QCOMPARE(inspection.metaData.value("className"_L1).toString(), u"LogicalDevicePlugin"_s);
    QCOMPARE(PluginDemands::own().qtVersion >> 8, QT_VERSION >> 8);
    QCOMPARE(qtVersionText(0x060802), u"6.8.2"_s);
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
