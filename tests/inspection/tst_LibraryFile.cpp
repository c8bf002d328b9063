#include "LibraryFile.h"
#include "PluginFixture.h"
#include "SmallLibraries.h"
#include "ThisSystem.h"

#include <QtCore/QFile>
#include <QtCore/QtEndian>
#include <QtTest/QTest>

#include <random>

using namespace Qt::StringLiterals;

namespace {

QByteArray pluginBytes()
{
    QFile file(PluginFixture::builtPluginFile());
    return file.open(QFile::ReadOnly) ? file.readAll() : QByteArray();
}

template <typename Number>
QByteArray changed(QByteArray bytes, qsizetype offset, Number value)
{
    qToLittleEndian(value, bytes.data() + offset);
    return bytes;
}

// Each of very many names begins within the same 4000 characters.
QByteArray overlappingNames()
{
    constexpr quint32 count = 200000;
    QByteArray bytes = smallWindowsLibrary();
    const auto names = static_cast<quint32>(bytes.size());
    const quint32 text = names + count * 4;
    for (quint32 index = 0; index < count; ++index)
        bytes.append(changed(QByteArray(4, '\0'), 0, text + 0x1000));
    bytes.append(QByteArray(4000, 'x')).append('\0');
    const auto size = static_cast<quint32>(bytes.size()) - 0x400;
    bytes = changed(changed(bytes, 0x200 + 24, count), 0x200 + 32, names + 0x1000);
    return changed(changed(bytes, 0x1b0 + 8, size), 0x1b0 + 16, size);
}

}  // namespace

class tst_LibraryFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void builtPluginIsRead();
    void libraryIsRead_data();
    void libraryIsRead();
    void damageIsReported_data();
    void damageIsReported();
    void everyCutIsADefect_data();
    void everyCutIsADefect();
    void anyBytesAreSurvived_data();
    void anyBytesAreSurvived();
};

void tst_LibraryFile::builtPluginIsRead()
{
    const LibraryFile library = readLibraryFile(pluginBytes());
    QCOMPARE(library.defect, QString());
    QVERIFY(library.isForThisSystem());
    QVERIFY(library.exports.contains(u"qt_plugin_instance"_s));
    QVERIFY(library.exports.contains(u"qt_plugin_query_metadata_v2"_s));
    QVERIFY(std::is_sorted(library.exports.begin(), library.exports.end()));
    // Symbols that it imports are no exports.
    QVERIFY(!library.exports.contains(u"_ZN7QObjectC2EPS_"_s));
    QVERIFY(library.neededLibraries.contains(ThisSystem::qtCoreLibrary));
    QCOMPARE(library.pluginMetadata.size(), 71);
    QCOMPARE(library.pluginMetadata.at(0), '\1');
    QCOMPARE(library.pluginMetadata.at(1), static_cast<char>(QT_VERSION_MAJOR));
    QCOMPARE(library.pluginMetadata.at(2), static_cast<char>(QT_VERSION_MINOR));
    QVERIFY(library.pluginMetadata.contains("com.orvane.KVX.Plugin.LogicalDevice.RV418"));
    QCOMPARE(library.pluginMetadata.back(), '\xff');
}

void tst_LibraryFile::libraryIsRead_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QStringList>("exports");
    QTest::addColumn<QString>("neededLibrary");
    const QStringList one{u"qt_plugin_instance"_s};
    const QStringList both{u"qt_plugin_instance"_s, u"qt_plugin_query_metadata_v2"_s};
    QByteArray marked = smallLinuxLibrary("!" + smallMetadata()).replace(0x8d, 12, "QTMETADATA !");
    marked = changed(changed(marked, 0x200 + 24, quint64{0x8d}), 0x200 + 32, quint64{12 + 49});
    const QString linuxCore = u"libQt6Core.so.6"_s;
    const QString windowsCore = u"Qt6Core.dll"_s;
    QTest::newRow("elf") << smallLinuxLibrary() << u"Linux x86-64 library"_s << one << linuxCore;
    QTest::newRow("elf-marker") << marked << u"Linux x86-64 library"_s << one << linuxCore;
    QTest::newRow("elf-arm") << changed(smallLinuxLibrary(), 18, quint16{183}) << u"Linux arm64 library"_s
                             << one << linuxCore;
    QTest::newRow("elf-rare") << changed(smallLinuxLibrary(), 18, quint16{243})
                              << u"Linux machine 243 library"_s << one << linuxCore;
    QTest::newRow("pe") << smallWindowsLibrary() << u"Windows x86-64 DLL"_s << both << windowsCore;
    QTest::newRow("pe-32-bit") << smallWindowsLibrary(smallMetadata(), false) << u"Windows i386 DLL"_s << both
                               << windowsCore;
    QTest::newRow("pe-arm") << changed(smallWindowsLibrary(), 0x84, quint16{0xaa64}) << u"Windows arm64 DLL"_s
                            << both << windowsCore;
}

void tst_LibraryFile::libraryIsRead()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, kind);
    QFETCH(const QStringList, exports);
    QFETCH(const QString, neededLibrary);
    const LibraryFile library = readLibraryFile(bytes);
    QCOMPARE(library.defect, QString());
    QCOMPARE(library.kind(), kind);
    QCOMPARE(library.isForThisSystem(), kind.startsWith(ThisSystem::name + u" x86-64"_s));
    QCOMPARE(library.exports, exports);
    QCOMPARE(library.neededLibraries, QStringList{neededLibrary});
    QCOMPARE(library.pluginMetadata, smallMetadata());
}

void tst_LibraryFile::damageIsReported_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("defect");
    const QByteArray elf = smallLinuxLibrary();
    const QByteArray pe = smallWindowsLibrary();
    const QString otherProcessor = u"another kind of processor"_s;
    const QString cutOff = u"cut off or damaged"_s;
    const QString damaged = u"table cannot be read"_s;
    QTest::newRow("nothing") << QByteArray() << u"is no library"_s;
    QTest::newRow("text") << QByteArray("#!/bin/sh\n") << u"is no library"_s;
    QTest::newRow("elf-32-bit") << changed(elf, 4, quint8{1}) << otherProcessor;
    QTest::newRow("elf-big-endian") << changed(elf, 5, quint8{2}) << otherProcessor;
    QTest::newRow("elf-program") << changed(elf, 16, quint16{2}) << u"no shared library"_s;
    QTest::newRow("elf-sections-far-away") << changed(elf, 40, ~quint64{0} - 8) << cutOff;
    QTest::newRow("elf-section-far-away") << changed(elf, 0x240 + 24, ~quint64{0}) << cutOff;
    QTest::newRow("elf-odd-section-size") << changed(elf, 58, quint16{1}) << cutOff;
    QTest::newRow("elf-export-name-nowhere")
        << changed(elf, 0x158 + 24, quint32{0x9999}) << u"tables cannot be read"_s;
    QTest::newRow("elf-needed-without-names")
        << changed(elf, 0x280 + 40, quint32{4}) << u"tables cannot be read"_s;
    QTest::newRow("pe-header-far-away") << changed(pe, 0x3c, ~quint32{0}) << u"cut off or no Windows"_s;
    QTest::newRow("pe-odd-header") << changed(pe, 0x98, quint16{0x107}) << u"cut off or no Windows"_s;
    QTest::newRow("pe-program") << changed(pe, 0x96, quint16{0}) << u"no library"_s;
    QTest::newRow("pe-many-sections") << changed(pe, 0x86, quint16{0xffff}) << cutOff;
    QTest::newRow("pe-section-far-away") << changed(pe, 0x188 + 20, ~quint32{0}) << cutOff;
    QTest::newRow("pe-many-exports") << changed(pe, 0x200 + 24, quint32{0xffffff}) << damaged;
    QTest::newRow("pe-export-name-nowhere") << changed(pe, 0x240, quint32{0x9999}) << damaged;
    QTest::newRow("pe-imports-nowhere") << changed(pe, 0x98 + 120, quint32{0x9999}) << damaged;
    QTest::newRow("pe-overlapping-names") << overlappingNames() << damaged;
}

void tst_LibraryFile::damageIsReported()
{
    QFETCH(const QByteArray, bytes);
    QFETCH(const QString, defect);
    const LibraryFile library = readLibraryFile(bytes);
    QVERIFY2(library.defect.contains(defect), qPrintable(library.defect));
    QVERIFY(library.pluginMetadata.isEmpty());
}

void tst_LibraryFile::everyCutIsADefect_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("built-plugin") << pluginBytes();
    QTest::newRow("elf") << smallLinuxLibrary();
    QTest::newRow("pe") << smallWindowsLibrary();
}

void tst_LibraryFile::everyCutIsADefect()
{
    QFETCH(const QByteArray, bytes);
    const qsizetype step = bytes.size() / 1000 + 1;
    for (qsizetype size = 0; size < bytes.size(); size += step)
        QVERIFY2(!readLibraryFile(bytes.first(size)).defect.isEmpty(), qPrintable(QString::number(size)));
    QVERIFY(!readLibraryFile(bytes.chopped(1)).defect.isEmpty());
}

void tst_LibraryFile::anyBytesAreSurvived_data()
{
    everyCutIsADefect_data();
}

void tst_LibraryFile::anyBytesAreSurvived()
{
    QFETCH(const QByteArray, bytes);
    constexpr quint32 seed = 418;
    constexpr int rounds = 2000;
    // Headers and tables lie at both ends; a change in the code between them would show nothing.
    const int interesting = static_cast<int>(qMin<qsizetype>(bytes.size(), 4096));
    std::mt19937 random(seed);
    // At most the bound less one, the same on every system.
    const auto number = [&random](int bound) {
        return static_cast<int>(random() % static_cast<uint>(bound));
    };
    int soundCount = 0;
    for (int round = 0; round < rounds; ++round) {
        QByteArray damaged = bytes;
        for (int change = 1 + number(8); change > 0; --change) {
            const int offset = 4 + number(interesting - 4);
            const bool isFromEnd = number(2) == 1;
            damaged[isFromEnd ? damaged.size() - offset : qsizetype{offset}] = static_cast<char>(number(256));
        }
        const LibraryFile library = readLibraryFile(damaged);
        soundCount += library.defect.isEmpty() ? 1 : 0;
        QVERIFY(library.pluginMetadata.size() <= damaged.size());
    }
    // Both ways must have been gone, or the changes miss what matters.
    QVERIFY(soundCount > 0);
    QVERIFY(soundCount < rounds);
}

QTEST_GUILESS_MAIN(tst_LibraryFile)
#include "tst_LibraryFile.moc"
