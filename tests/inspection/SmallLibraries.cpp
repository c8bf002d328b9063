#include "SmallLibraries.h"

#include <QtCore/QtEndian>

namespace {

template <typename Number>
void put(QByteArray &bytes, qsizetype offset, Number value)
{
    qToLittleEndian(value, bytes.data() + offset);
}

void putText(QByteArray &bytes, qsizetype offset, const QByteArray &text)
{
    bytes.replace(offset, text.size(), text);
}

void putSection(QByteArray &bytes, qsizetype header, quint32 type, quint64 offset, quint64 size)
{
    put(bytes, header + 4, type);
    put(bytes, header + 24, offset);
    put(bytes, header + 32, size);
    put<quint32>(bytes, header + 40, 3);  // the section with the strings
}

}  // namespace

QByteArray smallMetadata()
{
    // A map without a size, as Qt writes it.
    return QByteArray("\1\6\4\0\xbf\2\x78\x25"
                      "com.orvane.KVX.Plugin.LogicalDevice.X\3\x61X\xff",
                      49);
}

QByteArray smallLinuxLibrary(const QByteArray &metadata)
{
    QByteArray bytes(0x300, '\0');
    putText(bytes, 0,
            QByteArray("\x7f"
                       "ELF\2\1\1",
                       7));
    put<quint16>(bytes, 16, 3);   // a shared object
    put<quint16>(bytes, 18, 62);  // x86-64
    put<quint64>(bytes, 40, 0x200);
    put<quint16>(bytes, 58, 64);
    put<quint16>(bytes, 60, 4);
    // The metadata, as a note.
    const auto metadataSize = static_cast<quint32>(metadata.size());
    put<quint32>(bytes, 0x80, 12);
    put<quint32>(bytes, 0x84, metadataSize);
    put<quint32>(bytes, 0x88, 0x74510001);
    putText(bytes, 0x8c, "qt-project!");
    putText(bytes, 0x98, metadata);
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
    putSection(bytes, 0x200, 7, 0x80, 24 + metadataSize);
    putSection(bytes, 0x240, 11, 0x158, 72);
    putSection(bytes, 0x280, 6, 0x1b0, 16);
    putSection(bytes, 0x2c0, 3, 0x100, 0x50);
    return bytes;
}

QByteArray smallWindowsLibrary(const QByteArray &metadata, bool is64Bit)
{
    const qsizetype directories = 0x98 + (is64Bit ? 112 : 96);
    QByteArray bytes(0x600, '\0');
    putText(bytes, 0, "MZ");
    put<quint32>(bytes, 0x3c, 0x80);
    putText(bytes, 0x80, QByteArray("PE\0\0", 4));
    put<quint16>(bytes, 0x84, is64Bit ? 0x8664 : 0x14c);
    put<quint16>(bytes, 0x86, 2);       // sections
    put<quint16>(bytes, 0x94, 0xf0);    // size of the optional header
    put<quint16>(bytes, 0x96, 0x2000);  // a library
    put<quint16>(bytes, 0x98, is64Bit ? 0x20b : 0x10b);
    put<quint32>(bytes, directories - 4, 16);
    put<quint32>(bytes, directories, 0x1200);
    put<quint32>(bytes, directories + 8, 0x1300);
    putText(bytes, 0x188, ".rdata");
    put<quint32>(bytes, 0x188 + 8, 0x200);
    put<quint32>(bytes, 0x188 + 12, 0x1200);
    put<quint32>(bytes, 0x188 + 16, 0x200);
    put<quint32>(bytes, 0x188 + 20, 0x200);
    putText(bytes, 0x1b0, ".qtmetad");
    put<quint32>(bytes, 0x1b0 + 8, 12 + static_cast<quint32>(metadata.size()));
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
    putText(bytes, 0x400, "QTMETADATA !" + metadata);
    return bytes;
}
