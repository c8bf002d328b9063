#include "PluginFixture.h"
#include "LibraryFile.h"
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
void put(QByteArray &bytes, qsizetype offset, Number value)
{
    qToLittleEndian(value, bytes.data() + offset);
}

void putText(QByteArray &bytes, qsizetype offset, const QByteArray &text)
{
    bytes.replace(offset, text.size(), text);
}

// Header and one entry, as Qt writes them for its plugin loader.
QByteArray metadata()
{
    return QByteArray("\1\6\10\0", 4) + QByteArray("\xbf\2\x63IID\xff", 7);
}

void putSection(QByteArray &bytes, qsizetype header, quint32 type, quint64 offset, quint64 size)
{
    put(bytes, header + 4, type);
    put(bytes, header + 24, offset);
    put(bytes, header + 32, size);
    put<quint32>(bytes, header + 40, 3);  // the section with the strings
}

// The smallest Linux library that has everything: a segment with the metadata as a note, and sections with
// symbols, needed libraries and their strings.
QByteArray linuxLibrary()
{
    QByteArray bytes(0x300, '\0');
    putText(bytes, 0,
            QByteArray("\x7f"
                       "ELF\2\1\1",
                       7));
    put<quint16>(bytes, 16, 3);   // a shared object
    put<quint16>(bytes, 18, 62);  // x86-64
    put<quint64>(bytes, 32, 0x40);
    put<quint64>(bytes, 40, 0x200);
    put<quint16>(bytes, 54, 56);
    put<quint16>(bytes, 56, 1);
    put<quint16>(bytes, 58, 64);
    put<quint16>(bytes, 60, 4);
    // A segment of notes.
    put<quint32>(bytes, 0x40, 4);
    put<quint64>(bytes, 0x40 + 8, 0x80);
    put<quint64>(bytes, 0x40 + 32, 0x24);
    put<quint64>(bytes, 0x40 + 48, 4);
    put<quint32>(bytes, 0x80, 12);
    put<quint32>(bytes, 0x84, static_cast<quint32>(metadata().size()));
    put<quint32>(bytes, 0x88, 0x74510001);
    putText(bytes, 0x8c, "qt-project!");
    putText(bytes, 0x98, metadata());
    putText(bytes, 0x101, "qt_plugin_instance");
    putText(bytes, 0x120, "_ZN7QObjectC2EPS_");
    putText(bytes, 0x13a, "libQt6Core.so.6");
    // Symbols: the empty one, an exported one, an imported one.
    put<quint32>(bytes, 0x158 + 24, 1);
    put<quint8>(bytes, 0x158 + 28, 0x10);
    put<quint16>(bytes, 0x158 + 30, 7);
    put<quint32>(bytes, 0x158 + 48, 0x20);
    put<quint8>(bytes, 0x158 + 52, 0x10);
    // Needed: one library.
    put<quint64>(bytes, 0x1b0, 1);
    put<quint64>(bytes, 0x1b8, 0x3a);
    putSection(bytes, 0x240, 11, 0x158, 72);
    putSection(bytes, 0x280, 6, 0x1b0, 16);
    putSection(bytes, 0x2c0, 3, 0x100, 0x50);
    return bytes;
}

// The smallest Windows library that has everything: one section with export and import tables, one with the
// metadata. Addresses are file offsets plus 0x1000.
QByteArray windowsLibrary()
{
    QByteArray bytes(0x600, '\0');
    putText(bytes, 0, "MZ");
    put<quint32>(bytes, 0x3c, 0x80);
    putText(bytes, 0x80, QByteArray("PE\0\0", 4));
    put<quint16>(bytes, 0x84, 0x8664);
    put<quint16>(bytes, 0x86, 2);       // sections
    put<quint16>(bytes, 0x94, 0xf0);    // size of the optional header
    put<quint16>(bytes, 0x96, 0x2000);  // a library
    put<quint16>(bytes, 0x98, 0x20b);
    put<quint32>(bytes, 0x98 + 108, 16);  // table directories
    put<quint32>(bytes, 0x98 + 112, 0x1200);
    put<quint32>(bytes, 0x98 + 120, 0x1300);
    putText(bytes, 0x188, ".rdata");
    put<quint32>(bytes, 0x188 + 12, 0x1200);
    put<quint32>(bytes, 0x188 + 16, 0x200);
    put<quint32>(bytes, 0x188 + 20, 0x200);
    putText(bytes, 0x1b0, ".qtmetad");
    put<quint32>(bytes, 0x1b0 + 12, 0x1400);
    put<quint32>(bytes, 0x1b0 + 16, 0x200);
    put<quint32>(bytes, 0x1b0 + 20, 0x400);
    // Exports: two names.
    put<quint32>(bytes, 0x200 + 24, 2);
    put<quint32>(bytes, 0x200 + 32, 0x1240);
    put<quint32>(bytes, 0x240, 0x1250);
    put<quint32>(bytes, 0x244, 0x1280);
    putText(bytes, 0x250, "qt_plugin_query_metadata_v2");
    putText(bytes, 0x280, "qt_plugin_instance");
    // Imports: one library, and the empty descriptor that ends the table.
    put<quint32>(bytes, 0x300 + 12, 0x1340);
    putText(bytes, 0x340, "Qt6Core.dll");
    putText(bytes, 0x400, "QTMETADATA !" + metadata());
    return bytes;
}

}  // namespace

class tst_LibraryFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void builtPluginIsRead();
    void linuxLibraryIsRead();
    void windowsLibraryIsRead();
    void damageIsTold_data();
    void damageIsTold();
    void everyCutIsADefect_data();
    void everyCutIsADefect();
    void anyBytesAreSurvived_data();
    void anyBytesAreSurvived();
    void overlappingNamesCannotFillTheMemory();
};

void tst_LibraryFile::builtPluginIsRead()
{
    const LibraryFile library = readLibraryFile(pluginBytes());
    QCOMPARE(library.format,
             ThisSystem::isWindows ? LibraryFile::Format::PortableExecutable : LibraryFile::Format::Elf);
    QCOMPARE(library.defect, QString());
    QCOMPARE(library.architecture, u"64-bit x86-64"_s);
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

void tst_LibraryFile::linuxLibraryIsRead()
{
    const LibraryFile library = readLibraryFile(linuxLibrary());
    QCOMPARE(library.format, LibraryFile::Format::Elf);
    QCOMPARE(library.defect, QString());
    QCOMPARE(library.architecture, u"64-bit x86-64"_s);
    QCOMPARE(library.exports, QStringList{u"qt_plugin_instance"_s});
    QCOMPARE(library.neededLibraries, QStringList{u"libQt6Core.so.6"_s});
    QCOMPARE(library.pluginMetadata, metadata());
}

void tst_LibraryFile::windowsLibraryIsRead()
{
    const LibraryFile library = readLibraryFile(windowsLibrary());
    QCOMPARE(library.format, LibraryFile::Format::PortableExecutable);
    QCOMPARE(library.defect, QString());
    QCOMPARE(library.architecture, u"64-bit x86-64"_s);
    QCOMPARE(library.exports, QStringList({u"qt_plugin_instance"_s, u"qt_plugin_query_metadata_v2"_s}));
    QCOMPARE(library.neededLibraries, QStringList{u"Qt6Core.dll"_s});
    // Without the bytes that fill its section up.
    QCOMPARE(library.pluginMetadata, metadata());
}

void tst_LibraryFile::damageIsTold_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("defect");
    const QByteArray elf = linuxLibrary();
    const QByteArray pe = windowsLibrary();
    const auto changed = [](QByteArray bytes, qsizetype offset, auto value) {
        put(bytes, offset, value);
        return bytes;
    };
    QTest::newRow("nothing") << QByteArray() << u"is no library"_s;
    QTest::newRow("text") << QByteArray("#!/bin/sh\n") << u"is no library"_s;
    QTest::newRow("elf-32-bit") << changed(elf, 4, quint8{1}) << u"another kind of processor"_s;
    QTest::newRow("elf-big-endian") << changed(elf, 5, quint8{2}) << u"another kind of processor"_s;
    QTest::newRow("elf-program") << changed(elf, 16, quint16{2}) << u"no shared library"_s;
    QTest::newRow("elf-segments-far-away") << changed(elf, 32, ~quint64{0}) << u"cut off or damaged"_s;
    QTest::newRow("elf-sections-far-away") << changed(elf, 40, ~quint64{0} - 8) << u"cut off or damaged"_s;
    QTest::newRow("elf-odd-section-size") << changed(elf, 58, quint16{1}) << u"cut off or damaged"_s;
    QTest::newRow("pe-header-far-away") << changed(pe, 0x3c, ~quint32{0}) << u"cut off or no Windows"_s;
    QTest::newRow("pe-32-bit") << changed(pe, 0x98, quint16{0x10b}) << u"another kind of processor"_s;
    QTest::newRow("pe-program") << changed(pe, 0x96, quint16{0}) << u"no library"_s;
    QTest::newRow("pe-many-sections") << changed(pe, 0x86, quint16{0xffff}) << u"cut off or damaged"_s;
    QTest::newRow("pe-many-exports") << changed(pe, 0x200 + 24, quint32{0xffffff})
                                     << u"table cannot be read"_s;
    QTest::newRow("pe-export-name-nowhere")
        << changed(pe, 0x240, quint32{0x9999}) << u"table cannot be read"_s;
    QTest::newRow("pe-imports-nowhere")
        << changed(pe, 0x98 + 120, quint32{0x9999}) << u"table cannot be read"_s;
}

void tst_LibraryFile::damageIsTold()
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
    QTest::newRow("elf") << linuxLibrary();
    QTest::newRow("pe") << windowsLibrary();
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

void tst_LibraryFile::overlappingNamesCannotFillTheMemory()
{
    QByteArray bytes = windowsLibrary();
    constexpr quint32 count = 200000;
    // Every name begins within the same 4000 characters.
    const auto names = static_cast<quint32>(bytes.size());
    bytes.append(qsizetype{count} * 4, '\0');
    const auto text = static_cast<quint32>(bytes.size());
    bytes.append(QByteArray(4000, 'x')).append('\0');
    for (quint32 index = 0; index < count; ++index)
        put<quint32>(bytes, names + qsizetype{index} * 4, text + 0x1000);
    put<quint32>(bytes, 0x200 + 24, count);
    put<quint32>(bytes, 0x200 + 32, names + 0x1000);
    put<quint32>(bytes, 0x1b0 + 16, static_cast<quint32>(bytes.size()) - 0x400);
    const LibraryFile library = readLibraryFile(bytes);
    QVERIFY2(library.defect.contains(u"damaged"_s), qPrintable(library.defect));
}

QTEST_GUILESS_MAIN(tst_LibraryFile)
#include "tst_LibraryFile.moc"
