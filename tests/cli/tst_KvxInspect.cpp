#include "Kvx.h"
#include "PluginFixture.h"
#include "ThisSystem.h"

#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

class tst_KvxInspect : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void builtPluginLoadsHere();
    void foreignPluginIsShownAndRefused();
    void pluginWithoutFactoryIsShownAndRefused();
    void unusableFile_data();
    void unusableFile();
};

void tst_KvxInspect::builtPluginLoadsHere()
{
    const KvxRun run = runKvx({u"inspect"_s, PluginFixture::builtPluginFile()});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
    const auto field = [&](const QString &name) {
        const QStringList lines = run.output.filter(QRegularExpression(u'^' + name + u" "_s));
        return lines.size() == 1 ? lines.first().mid(16) : u"%1 lines"_s.arg(lines.size());
    };
    QCOMPARE(field(u"file"_s), QFileInfo(PluginFixture::builtPluginFile()).absoluteFilePath());
    QCOMPARE(field(u"format"_s), ThisSystem::name + u" library, 64-bit x86-64"_s);
    QCOMPARE(field(u"IID"_s), u"com.orvane.KVX.Plugin.LogicalDevice.RV418"_s);
    QCOMPARE(field(u"class"_s), u"LogicalDevicePlugin"_s);
    QVERIFY2(field(u"metadata header"_s).startsWith(u"1 6 "_s), qPrintable(field(u"metadata header"_s)));
    QVERIFY2(field(u"built with"_s).startsWith(u"Qt %1.%2, "_s.arg(QT_VERSION_MAJOR).arg(QT_VERSION_MINOR)),
             qPrintable(field(u"built with"_s)));
    QCOMPARE(field(u"entry points"_s), u"qt_plugin_instance, qt_plugin_query_metadata_v2"_s);
    QVERIFY(field(u"needs"_s).contains(ThisSystem::qtCoreLibrary));
    QVERIFY(field(u"loads here"_s).startsWith(u"yes"_s));
}

void tst_KvxInspect::foreignPluginIsShownAndRefused()
{
    const KvxRun run = runKvx({u"inspect"_s, wrongLibrary(u"ForeignPlugin"_s)});
    QCOMPARE(run.exitCode, 2);
    QVERIFY(run.output.contains(u"IID             org.example.Foreign"_s));
    QVERIFY(run.output.filter(u"loads here"_s).isEmpty());
    QCOMPARE(run.errors.size(), 1);
    QVERIFY2(run.errors.first().contains(u"plugin of another kind (\"org.example.Foreign\"); give"_s),
             qPrintable(run.errors.first()));
}

void tst_KvxInspect::pluginWithoutFactoryIsShownAndRefused()
{
    const KvxRun run = runKvx({u"inspect"_s, wrongLibrary(u"FactorylessPlugin"_s)});
    QCOMPARE(run.exitCode, 2);
    QVERIFY(run.output.contains(u"class           FactorylessPlugin"_s));
    QCOMPARE(run.errors.size(), 1);
    QVERIFY2(run.errors.first().contains(u"has no factory"_s), qPrintable(run.errors.first()));
}

void tst_KvxInspect::unusableFile_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("cause");
    QFile plugin(PluginFixture::builtPluginFile());
    QVERIFY(plugin.open(QFile::ReadOnly));
    const QByteArray whole = plugin.readAll();
    QTest::newRow("empty") << QByteArray() << u"is empty"_s;
    QTest::newRow("text") << QByteArray("no library\n") << u"is no library"_s;
    QTest::newRow("header-only") << whole.first(20) << u"is cut off"_s;
    QTest::newRow("half") << whole.first(whole.size() / 2) << u"is cut off"_s;
    QTest::newRow("other-system") << ThisSystem::otherLibraryStart() << u"another system"_s;
}

void tst_KvxInspect::unusableFile()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, cause);
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"a file with blanks.so"_s));
    QVERIFY(file.open(QFile::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
    file.close();
    const KvxRun run = runKvx({u"inspect"_s, file.fileName()});
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.output, QStringList());
    QCOMPARE(run.errors.size(), 1);
    QVERIFY2(run.errors.first().startsWith(u"kvx: \""_s + file.fileName() + u"\" "_s) &&
                 run.errors.first().contains(cause),
             qPrintable(run.errors.first()));
}

QTEST_GUILESS_MAIN(tst_KvxInspect)
#include "tst_KvxInspect.moc"
