#include "Bench.h"
#include "LibraryFile.h"

#include <QtCore/QFile>
#include <QtCore/QRandomGenerator>
#include <QtCore/QtEndian>
#include <QtTest/QTest>

using namespace Qt::StringLiterals;

namespace {

QByteArray pluginBytes()
{
    QFile file(Bench::builtPluginFile());
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
    putText(bytes, 0x400, QByteArray("QTMETADATA !\1\6\10\0", 16));
    return bytes;
}

}  // namespace

class tst_LibraryFile : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void builtPluginIsRead();
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
    QCOMPARE(library.format, LibraryFile::Format::Elf);
    QCOMPARE(library.defect, QString());
    QCOMPARE(library.architecture, u"64-bit x86-64"_s);
    QVERIFY(library.exports.contains(u"qt_plugin_instance"_s));
    QVERIFY(library.exports.contains(u"qt_plugin_query_metadata_v2"_s));
    QVERIFY(std::is_sorted(library.exports.begin(), library.exports.end()));
    // Symbols that it imports are no exports.
    QVERIFY(!library.exports.contains(u"_ZN7QObjectC2EPS_"_s));
    QVERIFY(library.neededLibraries.contains(u"libQt6Core.so.6"_s));
    QCOMPARE(library.pluginMetadata.size(), 71);
    QCOMPARE(library.pluginMetadata.at(0), '\1');
    QCOMPARE(library.pluginMetadata.at(1), static_cast<char>(QT_VERSION_MAJOR));
    QCOMPARE(library.pluginMetadata.at(2), static_cast<char>(QT_VERSION_MINOR));
    QVERIFY(library.pluginMetadata.contains("com.orvane.KVX.Plugin.LogicalDevice.RV418"));
    QCOMPARE(library.pluginMetadata.back(), '\xff');
}

void tst_LibraryFile::windowsLibraryIsRead()
{
    const LibraryFile library = readLibraryFile(windowsLibrary());
    QCOMPARE(library.format, LibraryFile::Format::PortableExecutable);
    QCOMPARE(library.defect, QString());
    QCOMPARE(library.architecture, u"64-bit x86-64"_s);
    QCOMPARE(library.exports, QStringList({u"qt_plugin_instance"_s, u"qt_plugin_query_metadata_v2"_s}));
    QCOMPARE(library.neededLibraries, QStringList{u"Qt6Core.dll"_s});
    QVERIFY(library.pluginMetadata.startsWith(QByteArray("\1\6\10\0", 4)));
}

void tst_LibraryFile::damageIsTold_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("defect");
    const QByteArray elf = pluginBytes();
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
    QTest::newRow("elf") << pluginBytes();
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
    QRandomGenerator random(seed);
    int soundCount = 0;
    for (int round = 0; round < rounds; ++round) {
        QByteArray damaged = bytes;
        for (int change = random.bounded(1, 9); change > 0; --change) {
            const int offset = random.bounded(4, interesting);
            const bool isFromEnd = random.bounded(2) == 1;
            damaged[isFromEnd ? damaged.size() - offset : qsizetype{offset}] =
                static_cast<char>(random.bounded(256));
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
