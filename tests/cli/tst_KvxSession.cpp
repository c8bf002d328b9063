#include "Kvx.h"
#include "PluginFixture.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

class tst_KvxSession : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sessionPasses();
    void jsonHoldsTheTimelineOnly();
    void defaultPluginLiesBesideTheProgram();
    void pathMayHoldAnyLetters();
    void differenceIsReported();
    void unusablePlugin_data();
    void unusablePlugin();
    void badUsage_data();
    void badUsage();
    void helpAndVersion_data();
    void helpAndVersion();
};

void tst_KvxSession::sessionPasses()
{
    const KvxRun run = runKvx({u"session"_s, u"--plugin"_s, PluginFixture::builtPluginFile()});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
    QVERIFY(QRegularExpression(u"^session: all \\d+ checks passed$"_s).match(run.output.last()).hasMatch());
    for (const QString &line :
         {u"> setReportRate 1000"_s, u"call setReportRate(1000)"_s, u"report reportRateConfirmed(125)"_s,
          u"warning RV418.LogicalDevice: Dongle set report rate failed"_s, u"signal stopped(\"this\")"_s,
          u"debug RV418.LogicalDevicePlugin: ~LogicalDevicePlugin"_s,
          u"  modelCode                           RV418"_s})
        QVERIFY2(run.output.contains(line), qPrintable(line));
}

void tst_KvxSession::jsonHoldsTheTimelineOnly()
{
    const KvxRun run = runKvx({u"session"_s, u"--json"_s, u"--plugin"_s, PluginFixture::builtPluginFile()});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);
    QCOMPARE(run.output.value(0), u"{\"schemaVersion\":1}"_s);
    QVERIFY(run.output.size() > 50);
    for (qsizetype index = 1; index < run.output.size(); ++index) {
        const QJsonDocument document = QJsonDocument::fromJson(run.output.at(index).toUtf8());
        QVERIFY2(document.isObject(), qPrintable(run.output.at(index)));
        QCOMPARE(document.object().value("sequence"_L1).toInt(), static_cast<int>(index));
    }
}

void tst_KvxSession::defaultPluginLiesBesideTheProgram()
{
    const QTemporaryDir folder;
    const QString program = folder.filePath(u"kvx"_s);
    QVERIFY(QFile::copy(QStringLiteral(KVX_COMMAND), program));
    const KvxRun without = runProgram(program, {u"session"_s});
    QCOMPARE(without.exitCode, 2);
    QCOMPARE(without.errors.size(), 1);
    QVERIFY2(without.errors.first().contains(folder.path()), qPrintable(without.errors.first()));

    const QString library =
        u"com.orvane.KVX.Plugin.LogicalDevice.RV418"_s + QStringLiteral(KVX_LIBRARY_SUFFIX);
    QVERIFY(QFile::copy(PluginFixture::builtPluginFile(), folder.filePath(library)));
    QCOMPARE(runProgram(program, {u"session"_s}).exitCode, 0);
}

void tst_KvxSession::pathMayHoldAnyLetters()
{
    const QTemporaryDir folder;
    const QString name = u"Geräte Ωμέγα"_s;
    QVERIFY(QDir(folder.path()).mkdir(name));
    const QString library =
        folder.filePath(name + u'/' + QFileInfo(PluginFixture::builtPluginFile()).fileName());
    QVERIFY(QFile::copy(PluginFixture::builtPluginFile(), library));
    const KvxRun run = runKvx({u"session"_s, u"--plugin"_s, library});
    QCOMPARE(run.errors, QStringList());
    QCOMPARE(run.exitCode, 0);

    const KvxRun inspection = runKvx({u"inspect"_s, library});
    QCOMPARE(inspection.exitCode, 0);
    QCOMPARE(inspection.output.filter(QFileInfo(library).absoluteFilePath()).size(), 1);
    // Words that are no paths come back whole, too.
    QCOMPARE(runKvx({name}).errors.filter(name).size(), 1);
}

void tst_KvxSession::differenceIsReported()
{
    // Under another file name the plugin does not find its own library, and start answers false.
    const QTemporaryDir folder;
    const QString renamed = folder.filePath(u"renamed"_s + QStringLiteral(KVX_LIBRARY_SUFFIX));
    QVERIFY(QFile::copy(PluginFixture::builtPluginFile(), renamed));
    const KvxRun run = runKvx({u"session"_s, u"--plugin"_s, renamed});
    QCOMPARE(run.exitCode, 1);
    QCOMPARE(run.errors.size(), 1);
    QVERIFY2(QRegularExpression(u"^kvx: session.kvx:\\d+: start: expected true, seen false$"_s)
                 .match(run.errors.first())
                 .hasMatch(),
             qPrintable(run.errors.first()));
    // Nothing is played behind the difference.
    QVERIFY(run.output.contains(u"> start"_s));
    QVERIFY(!run.output.contains(u"> setReportRate 1000"_s));
    QVERIFY(run.output.filter(u"checks passed"_s).isEmpty());
}

void tst_KvxSession::unusablePlugin_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("cause");
    QTest::newRow("missing") << u"/nowhere/x.so"_s << u"does not exist"_s;
    QTest::newRow("directory") << u"/"_s << u"is a directory"_s;
    QTest::newRow("foreign") << wrongLibrary(u"ForeignPlugin"_s) << u"plugin of another kind"_s;
    QTest::newRow("no-plugin") << wrongLibrary(u"NoPlugin"_s) << u"no Qt plugin"_s;
    QTest::newRow("no-factory") << wrongLibrary(u"FactorylessPlugin"_s) << u"no factory"_s;
}

void tst_KvxSession::unusablePlugin()
{
    QFETCH(const QString, file);
    QFETCH(const QString, cause);
    const KvxRun run = runKvx({u"session"_s, u"--plugin"_s, file});
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.output, QStringList());
    QCOMPARE(run.errors.size(), 1);
    QVERIFY2(run.errors.first().startsWith(u"kvx: "_s) && run.errors.first().contains(cause),
             qPrintable(run.errors.first()));
}

void tst_KvxSession::badUsage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("word");
    QTest::addColumn<QString>("help");
    const QString ofSession = u"see kvx session --help"_s;
    QTest::newRow("unknown-command") << QStringList{u"frobnicate"_s} << u"frobnicate"_s
                                     << u"see kvx --help"_s;
    QTest::newRow("unknown-option") << QStringList{u"session"_s, u"--loud"_s} << u"--loud"_s << ofSession;
    QTest::newRow("option-without-value")
        << QStringList{u"session"_s, u"--plugin"_s} << u"--plugin"_s << ofSession;
    QTest::newRow("extra-word") << QStringList{u"session"_s, u"more"_s} << u"more"_s << ofSession;
    QTest::newRow("inspect-nothing") << QStringList{u"inspect"_s} << u"FILE"_s << u"see kvx inspect --help"_s;
    QTest::newRow("two-commands") << QStringList{u"session"_s, u"inspect"_s, u"x"_s} << u"inspect"_s
                                  << ofSession;
}

void tst_KvxSession::badUsage()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const QString, word);
    QFETCH(const QString, help);
    const KvxRun run = runKvx(arguments);
    QCOMPARE(run.exitCode, 2);
    QCOMPARE(run.output, QStringList());
    QCOMPARE(run.errors.size(), 1);
    QVERIFY2(run.errors.first().startsWith(u"kvx: "_s) && run.errors.first().contains(word) &&
                 run.errors.first().endsWith(help),
             qPrintable(run.errors.first()));
}

void tst_KvxSession::helpAndVersion_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("exitCode");
    QTest::addColumn<QString>("word");
    QTest::newRow("nothing") << QStringList() << 2 << u"session"_s;
    QTest::newRow("help") << QStringList{u"--help"_s} << 0 << u"session"_s;
    QTest::newRow("session-help") << QStringList{u"session"_s, u"--help"_s} << 0 << u"--plugin"_s;
    QTest::newRow("inspect-help") << QStringList{u"inspect"_s, u"--help"_s} << 0 << u"FILE"_s;
    QTest::newRow("version") << QStringList{u"--version"_s} << 0 << u"kvx " KVX_VERSION ""_s;
}

void tst_KvxSession::helpAndVersion()
{
    QFETCH(const QStringList, arguments);
    QFETCH(const int, exitCode);
    QFETCH(const QString, word);
    const KvxRun run = runKvx(arguments);
    QCOMPARE(run.exitCode, exitCode);
    const QStringList &text = exitCode == 0 ? run.output : run.errors;
    const QStringList &other = exitCode == 0 ? run.errors : run.output;
    QVERIFY2(!text.filter(word).isEmpty(), qPrintable(text.join(u'\n')));
    QCOMPARE(other, QStringList());
}

QTEST_GUILESS_MAIN(tst_KvxSession)
#include "tst_KvxSession.moc"
