#include "PluginFixture.h"
#include "PluginInspection.h"
#include "SmallLibraries.h"
#include "ThisSystem.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QTemporaryDir>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

QByteArray pluginBytes()
{
    QFile file(PluginFixture::builtPluginFile());
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray smallLibrary(const QByteArray &metadata)
{
    return ThisSystem::isWindows ? smallWindowsLibrary(metadata) : smallLinuxLibrary(metadata);
}

QByteArray otherLibrary()
{
    return ThisSystem::isWindows ? smallLinuxLibrary() : smallWindowsLibrary();
}

}  // namespace

class tst_PluginInspection : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void builtPluginIsNotRefused();
    void unusableFileIsRefused_data();
    void unusableFileIsRefused();
    void hugeFileIsRefusedUnread();
    void unusableBytesAreRefused_data();
    void unusableBytesAreRefused();
    void metadataIsDecoded_data();
    void metadataIsDecoded();
    void hostRefusesMetadata_data();
    void hostRefusesMetadata();
};

void tst_PluginInspection::builtPluginIsNotRefused()
{
    const PluginInspection inspection = inspectPlugin(PluginFixture::builtPluginFile());
    QCOMPARE(inspection.refusal, QString());
    QCOMPARE(inspection.file, QFileInfo(PluginFixture::builtPluginFile()).absoluteFilePath());
    QVERIFY(inspection.metadata);
    QCOMPARE(inspection.metadata->className, u"LogicalDevicePlugin"_s);
    QCOMPARE(qtVersionText(inspection.metadata->qtVersion), qtVersionText(QT_VERSION));
    QCOMPARE(qtVersionText(0x060802), u"6.8"_s);
}

void tst_PluginInspection::unusableFileIsRefused_data()
{
    QTest::addColumn<QString>("file");
    QTest::addColumn<QString>("cause");
    QTest::newRow("missing") << u"/nowhere/x.so"_s << u"does not exist"_s;
    QTest::newRow("directory") << QDir::tempPath() << u"is a directory"_s;
    // Windows has no such files.
    QTest::newRow("endless-device") << (ThisSystem::isWindows ? QDir::tempPath() : u"/dev/zero"_s)
                                    << (ThisSystem::isWindows ? u"is a directory"_s : u"no regular file"_s);
    // On Linux its code can be at any address, so nothing distinguishes it from a library.
    QTest::newRow("program") << QCoreApplication::applicationFilePath()
                             << (ThisSystem::isWindows ? u"is a Windows program"_s : u"no plugin metadata"_s);
}

void tst_PluginInspection::unusableFileIsRefused()
{
    QFETCH(const QString, file);
    QFETCH(const QString, cause);
    const PluginInspection inspection = inspectPlugin(file);
    QVERIFY(!inspection.metadata);
    QVERIFY2(inspection.refusal.startsWith(u'"' + file + u"\" "_s), qPrintable(inspection.refusal));
    QVERIFY2(inspection.refusal.contains(cause), qPrintable(inspection.refusal));
}

void tst_PluginInspection::hugeFileIsRefusedUnread()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"huge.so"_s));
    QVERIFY(file.open(QFile::WriteOnly));
    QVERIFY(file.resize(qint64{256} * 1024 * 1024 + 1));
    const QString refusal = inspectPlugin(file.fileName()).refusal;
    QVERIFY2(refusal.contains(u"larger than 256 MiB"_s), qPrintable(refusal));
}

void tst_PluginInspection::unusableBytesAreRefused_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<bool>("isPlugin");
    QTest::addColumn<QString>("cause");
    const QByteArray plugin = pluginBytes();
    const QByteArray foreign = QByteArray("\1\6\4\0\xa1\2\x64", 7) + "a\nb\n";
    QTest::newRow("empty") << QByteArray() << false << u"is empty"_s;
    QTest::newRow("text") << QByteArray("hello, world\n") << false << u"is no library"_s;
    QTest::newRow("four-bytes") << plugin.first(4) << false << u"is cut off"_s;
    QTest::newRow("half") << plugin.first(plugin.size() / 2) << false << u"is cut off"_s;
    QTest::newRow("last-byte-missing") << plugin.chopped(1) << false << u"is cut off"_s;
    QTest::newRow("no-metadata") << smallLibrary({}) << false << u"no plugin metadata"_s;
    QTest::newRow("damaged-metadata")
        << smallLibrary(smallMetadata().chopped(1)) << false << u"damaged plugin metadata"_s;
    QTest::newRow("foreign") << smallLibrary(foreign) << true << u"another kind (\"a b\")"_s;
    QTest::newRow("other-system") << otherLibrary() << true
                                  << u"is a %1 x86-64 "_s.arg(ThisSystem::otherName);
}

void tst_PluginInspection::unusableBytesAreRefused()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const bool, isPlugin);
    QFETCH(const QString, cause);
    const QTemporaryDir folder;
    QFile file(folder.filePath(u"a library"_s));
    QVERIFY(file.open(QFile::WriteOnly));
    QCOMPARE(file.write(bytes), bytes.size());
    file.close();
    const PluginInspection inspection = inspectPlugin(file.fileName());
    QCOMPARE(inspection.metadata.has_value(), isPlugin);
    QVERIFY2(inspection.refusal.startsWith(u'"' + file.fileName() + u"\" "_s),
             qPrintable(inspection.refusal));
    QVERIFY2(inspection.refusal.contains(cause), qPrintable(inspection.refusal));
    QVERIFY2(!inspection.refusal.contains(u'\n'), qPrintable(inspection.refusal));
}

void tst_PluginInspection::metadataIsDecoded_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("decoded");
    const QByteArray map = smallMetadata().sliced(4);
    const auto bytes = [&map](char format, char qtMinor, char build) {
        return QByteArray(1, format) + '\6' + qtMinor + build + map;
    };
    const QString device = u"com.orvane.KVX.Plugin.LogicalDevice.X X 6.%1 %2"_s;
    QTest::newRow("release") << bytes('\1', '\4', '\1') << device.arg(u"4"_s, u"release"_s);
    QTest::newRow("debug") << bytes('\1', '\10', '\x81') << device.arg(u"8"_s, u"debug"_s);
    QTest::newRow("first-format-release") << bytes('\0', '\2', '\6') << device.arg(u"2"_s, u"release"_s);
    QTest::newRow("first-format-debug") << bytes('\0', '\2', '\1') << device.arg(u"2"_s, u"debug"_s);
    QTest::newRow("nameless") << QByteArray("\1\6\4\0\xa0", 5) << u"  6.4 release"_s;
    QTest::newRow("unknown-format") << bytes('\2', '\4', '\0') << QString();
    QTest::newRow("nothing") << QByteArray() << QString();
    QTest::newRow("header-only") << smallMetadata().first(4) << QString();
    QTest::newRow("breaks-off") << smallMetadata().chopped(1) << QString();
    QTest::newRow("no-map") << QByteArray("\1\6\4\0\x80", 5) << QString();
    QTest::newRow("no-utf-8") << QByteArray("\1\6\4\0\xa1\2\x61\xff", 8) << QString();
    QTest::newRow("huge") << smallMetadata() + QByteArray(qsizetype{1024} * 1024, '\0') << QString();
}

void tst_PluginInspection::metadataIsDecoded()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, decoded);
    const std::optional<PluginMetadata> metadata = PluginMetadata::decode(bytes);
    QCOMPARE(metadata.has_value(), !decoded.isEmpty());
    const PluginMetadata value = metadata.value_or(PluginMetadata());
    const QStringList words{value.iid, value.className, qtVersionText(value.qtVersion),
                            value.isDebug ? u"debug"_s : u"release"_s};
    QVERIFY2(!metadata || words.join(u' ') == decoded, qPrintable(words.join(u' ')));
}

void tst_PluginInspection::hostRefusesMetadata_data()
{
    QTest::addColumn<QString>("iid");
    QTest::addColumn<int>("version");
    QTest::addColumn<bool>("isDebug");
    QTest::addColumn<bool>("mustMatchBuildType");
    QTest::addColumn<QString>("cause");
    const QString device = u"com.orvane.KVX.Plugin.LogicalDevice.RV418"_s;
    const QString otherQt = u"was built with Qt"_s;
    QTest::newRow("same-qt") << device << 0x060800 << false << true << QString();
    QTest::newRow("older-minor") << device << 0x060400 << false << true << QString();
    QTest::newRow("newer-minor") << device << 0x060900 << false << true << otherQt;
    QTest::newRow("older-major") << device << 0x050f00 << false << true << otherQt;
    QTest::newRow("newer-major") << device << 0x070000 << false << true << otherQt;
    QTest::newRow("debug-where-it-matters") << device << 0x060800 << true << true << u"debug build"_s;
    QTest::newRow("debug-where-it-does-not") << device << 0x060800 << true << false << QString();
    QTest::newRow("no-iid") << QString() << 0x060800 << false << true << u"another kind"_s;
}

void tst_PluginInspection::hostRefusesMetadata()
{
    QFETCH(const QString, iid);
    QFETCH(const int, version);
    QFETCH(const bool, isDebug);
    QFETCH(const bool, mustMatchBuildType);
    QFETCH(const QString, cause);
    const QString refusal = refusalOf({iid, u"X"_s, version, isDebug}, {0x060802, false, mustMatchBuildType});
    QVERIFY2(refusal.contains(cause), qPrintable(refusal));
    QCOMPARE(refusal.isEmpty(), cause.isEmpty());
}

QTEST_GUILESS_MAIN(tst_PluginInspection)
#include "tst_PluginInspection.moc"
