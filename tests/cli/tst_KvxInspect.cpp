#include "Kvx.h"
#include "PluginFixture.h"
#include "SmallLibraries.h"
#include "ThisSystem.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QHash>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

using Fields = QHash<QString, QString>;

// What kvx prints of a plugin; nothing unless it ends well and prints each field once.
Fields inspect(const QString &file)
{
    constexpr qsizetype nameWidth = 16;
    const KvxRun run = runKvx({u"inspect"_s, file});
    Fields fields;
    for (const QString &line : run.output)
        fields.insert(line.left(nameWidth).trimmed(), line.mid(nameWidth));
    const bool isSound = run.exitCode == 0 && run.errors.isEmpty() && fields.size() == run.output.size();
    return isSound ? fields : Fields();
}

QByteArray pluginBytes()
{
    QFile file(PluginFixture::builtPluginFile());
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

// The path of the new file; empty when it cannot be written.
QString written(const QTemporaryDir &folder, const QString &name, const QByteArray &bytes)
{
    QFile file(folder.filePath(name));
    return file.open(QFile::WriteOnly) && file.write(bytes) == bytes.size() ? file.fileName() : QString();
}

}  // namespace

class tst_KvxInspect : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void builtPluginLoadsHere();
    void renamedPluginIsNoted();
    void unusablePluginIsShown_data();
    void unusablePluginIsShown();
    void missingLibraryIsNamed();
    void pluginForAnotherSystemIsShown();
    void fileControlsNoTerminal();
    void otherFileIsRefused_data();
    void otherFileIsRefused();
};

void tst_KvxInspect::builtPluginLoadsHere()
{
    const Fields fields = inspect(PluginFixture::builtPluginFile());
    QCOMPARE(fields.value(u"file"_s), QFileInfo(PluginFixture::builtPluginFile()).absoluteFilePath());
    QCOMPARE(fields.value(u"format"_s),
             ThisSystem::isWindows ? u"Windows x86-64 DLL"_s : u"Linux x86-64 library"_s);
    QCOMPARE(fields.value(u"IID"_s), u"com.orvane.KVX.Plugin.LogicalDevice.RV418"_s);
    QCOMPARE(fields.value(u"class"_s), u"LogicalDevicePlugin"_s);
    QVERIFY2(fields.value(u"metadata header"_s).startsWith(u"1 6 "_s),
             qPrintable(fields.value(u"metadata header"_s)));
    QVERIFY2(
        fields.value(u"built with"_s).startsWith(u"Qt %1.%2, "_s.arg(QT_VERSION_MAJOR).arg(QT_VERSION_MINOR)),
        qPrintable(fields.value(u"built with"_s)));
    QCOMPARE(fields.value(u"entry points"_s), u"qt_plugin_instance, qt_plugin_query_metadata_v2"_s);
    QVERIFY(fields.value(u"needs"_s).contains(ThisSystem::qtCoreLibrary));
    QVERIFY2(fields.value(u"not found"_s).startsWith(u"none ("_s), qPrintable(fields.value(u"not found"_s)));
    QVERIFY(fields.value(u"loads here"_s).startsWith(u"yes"_s));
    QVERIFY(!fields.contains(u"note"_s));
}

void tst_KvxInspect::renamedPluginIsNoted()
{
    const QTemporaryDir folder;
    const Fields fields = inspect(written(folder, u"other.so"_s, pluginBytes()));
    QVERIFY2(fields.value(u"note"_s).startsWith(u"the file is named other.so; the host loads com.orvane."_s),
             qPrintable(fields.value(u"note"_s)));
}

void tst_KvxInspect::unusablePluginIsShown_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("iid");
    QTest::addColumn<QString>("refusal");
    QTest::newRow("foreign") << wrongLibrary(u"ForeignPlugin"_s) << u"org.example.Foreign"_s
                             << u"plugin of another kind (\"org.example.Foreign\"); give"_s;
    QTest::newRow("factoryless") << wrongLibrary(u"FactorylessPlugin"_s)
                                 << u"com.orvane.KVX.Plugin.LogicalDevice.Factoryless"_s
                                 << u"has no factory"_s;
}

void tst_KvxInspect::unusablePluginIsShown()
{
    QFETCH(const QString, file);
    QFETCH(const QString, iid);
    QFETCH(const QString, refusal);
    const Fields fields = inspect(file);
    QCOMPARE(fields.value(u"IID"_s), iid);
    QVERIFY2(fields.value(u"not found"_s).startsWith(u"none ("_s), qPrintable(fields.value(u"not found"_s)));
    const QString loading = fields.value(u"loads here"_s);
    QVERIFY2(loading.startsWith(u"no: \""_s + file) && loading.contains(refusal), qPrintable(loading));
}

void tst_KvxInspect::missingLibraryIsNamed()
{
    const QTemporaryDir folder;
    QByteArray bytes = pluginBytes();
    const QString missing = QString(ThisSystem::qtCoreLibrary).replace(u"Core"_s, u"Cure"_s);
    bytes.replace(QByteArray(ThisSystem::qtCoreLibrary.data()), missing.toLatin1());
    const Fields fields = inspect(written(folder, u"plugin.so"_s, bytes));
    QVERIFY(fields.value(u"needs"_s).contains(missing));
    QVERIFY2(fields.value(u"not found"_s).startsWith(missing + u" ("_s),
             qPrintable(fields.value(u"not found"_s)));
    QVERIFY2(fields.value(u"loads here"_s).startsWith(u"no: "_s), qPrintable(fields.value(u"loads here"_s)));
}

void tst_KvxInspect::pluginForAnotherSystemIsShown()
{
    const QTemporaryDir folder;
    const QString file =
        written(folder, u"plugin"_s, ThisSystem::isWindows ? smallLinuxLibrary() : smallWindowsLibrary());
    const QString core = ThisSystem::isWindows ? u"libQt6Core.so.6"_s : u"Qt6Core.dll"_s;
    const Fields fields = inspect(file);
    QCOMPARE(fields.value(u"format"_s),
             ThisSystem::isWindows ? u"Linux x86-64 library"_s : u"Windows x86-64 DLL"_s);
    QCOMPARE(fields.value(u"IID"_s), u"com.orvane.KVX.Plugin.LogicalDevice.X"_s);
    QCOMPARE(fields.value(u"class"_s), u"X"_s);
    QCOMPARE(fields.value(u"metadata header"_s), u"1 6 4 0"_s);
    QCOMPARE(fields.value(u"built with"_s), u"Qt 6.4, release"_s);
    QVERIFY(fields.value(u"entry points"_s).startsWith(u"qt_plugin_instance"_s));
    QCOMPARE(fields.value(u"needs"_s), core);
    QCOMPARE(fields.value(u"not found"_s), core + u" (searched: its folder)"_s);
    QVERIFY2(fields.value(u"loads here"_s).contains(u"cannot be loaded here"_s),
             qPrintable(fields.value(u"loads here"_s)));

    QVERIFY(!written(folder, core.toUpper(), "any").isEmpty());
    QCOMPARE(inspect(file).value(u"not found"_s), u"none (searched: its folder)"_s);
}

void tst_KvxInspect::fileControlsNoTerminal()
{
    const QTemporaryDir folder;
    QByteArray metadata = smallMetadata();
    metadata.replace("LogicalDevice", "Logical\nDe\x1b\n\r");
    const Fields fields = inspect(written(folder, u"plugin"_s, smallWindowsLibrary(metadata)));
    QCOMPARE(fields.value(u"IID"_s), u"com.orvane.KVX.Plugin.Logical De   .X"_s);
}

void tst_KvxInspect::otherFileIsRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("cause");
    QTest::newRow("empty") << QByteArray() << u"is empty"_s;
    QTest::newRow("text") << QByteArray("no library\n") << u"is no library"_s;
    QTest::newRow("half") << pluginBytes().first(pluginBytes().size() / 2) << u"is cut off"_s;
    QTest::newRow("no-plugin") << smallWindowsLibrary({}) << u"no Qt plugin"_s;
}

void tst_KvxInspect::otherFileIsRefused()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, cause);
    const QTemporaryDir folder;
    const QString file = written(folder, u"a file with blanks.so"_s, bytes);
    const KvxRun run = runKvx({u"inspect"_s, file});
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.output, QStringList());
    QCOMPARE(run.errors.size(), 1);
    QVERIFY2(run.errors.first().startsWith(u"kvx: \""_s + file + u"\" "_s) &&
                 run.errors.first().contains(cause),
             qPrintable(run.errors.first()));
}

QTEST_GUILESS_MAIN(tst_KvxInspect)
#include "tst_KvxInspect.moc"
