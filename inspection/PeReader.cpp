#include "LibraryReader.h"

#include <QtCore/QList>

using namespace Qt::StringLiterals;

namespace {

struct Section
{
    quint32 address = 0;  // where it is loaded; all addresses in the file count from there
    QByteArrayView bytes;
};

class PeReader final : public LibraryReader
{
public:
    explicit PeReader(QByteArrayView bytes) : LibraryReader(bytes, LibraryFile::System::Windows) {}

private:
    QString readAll() override;
    bool readSections(quint64 table, quint16 count);
    bool readExports(quint32 address);
    bool readImports(quint32 address);
    // From the address to the end of its section; empty when it is in none.
    ByteReader loadedAt(quint32 address) const;

    QList<Section> m_sections;
};

QString PeReader::readAll()
{
    constexpr quint64 fileHeaderSize = 24;  // with the signature before it
    constexpr quint16 libraryFlag = 0x2000;
    const quint64 header = m_file.number<quint32>(0x3c);
    const quint64 optionalHeader = header + fileHeaderSize;
    const auto magic = m_file.number<quint16>(optionalHeader);
    const bool is64Bit = magic == 0x20b;
    if (m_file.range(header, 4) != QByteArrayView("PE\0\0", 4) || (!is64Bit && magic != 0x10b))
        return u"is cut off or no Windows library: it has no header of one"_s;
    m_library.architecture = architectureOf(m_file.number<quint16>(header + 4));
    if (!(m_file.number<quint16>(header + 22) & libraryFlag))
        return u"is a Windows program, but no library"_s;
    if (!readSections(optionalHeader + m_file.number<quint16>(header + 20),
                      m_file.number<quint16>(header + 6)))
        return u"is cut off or damaged: its headers point behind its end"_s;
    const quint64 directories = optionalHeader + (is64Bit ? 112 : 96);
    const auto directoryCount = m_file.number<quint32>(directories - 4);
    const auto directory = [&](quint32 index) {
        return index < directoryCount ? m_file.number<quint32>(directories + quint64{index} * 8) : 0;
    };
    if (!readExports(directory(0)) || !readImports(directory(1)))
        return u"is damaged: its export or import table cannot be read"_s;
    return {};
}

bool PeReader::readSections(quint64 table, quint16 count)
{
    constexpr quint64 headerSize = 40;
    constexpr quint16 mostSections = 96;  // Windows loads no more either
    if (count > mostSections || !m_file.range(table, count * headerSize))
        return false;
    for (quint64 header = table; header < table + count * headerSize; header += headerSize) {
        const auto size = m_file.number<quint32>(header + 8);
        const auto sizeInFile = m_file.number<quint32>(header + 16);
        const auto bytes = m_file.range(m_file.number<quint32>(header + 20), sizeInFile);
        if (!bytes)
            return false;
        // Without what fills the section up in the file.
        m_sections.append({m_file.number<quint32>(header + 12), bytes->first(qMin(size, sizeInFile))});
        takePluginMetadata(m_sections.constLast().bytes);
    }
    return true;
}

ByteReader PeReader::loadedAt(quint32 address) const
{
    for (const Section &section : m_sections) {
        if (address >= section.address && address - section.address < section.bytes.size())
            return ByteReader(section.bytes.sliced(address - section.address));
    }
    return ByteReader({});
}

bool PeReader::readExports(quint32 address)
{
    if (address == 0)
        return true;
    const ByteReader table = loadedAt(address);
    if (!table.range(0, 40))
        return false;
    const quint64 size = quint64{table.number<quint32>(24)} * 4;
    const ByteReader names = loadedAt(table.number<quint32>(32));
    if (!names.range(0, size))
        return false;
    for (quint64 name = 0; name < size; name += 4) {
        if (!append(m_library.exports, loadedAt(names.number<quint32>(name)).text(0)))
            return false;
    }
    return true;
}

bool PeReader::readImports(quint32 address)
{
    if (address == 0)
        return true;
    constexpr quint64 descriptorSize = 20;
    const ByteReader table = loadedAt(address);
    for (quint64 descriptor = 0; table.range(descriptor, descriptorSize); descriptor += descriptorSize) {
        const auto name = table.number<quint32>(descriptor + 12);
        if (name == 0)
            return true;
        if (!append(m_library.neededLibraries, loadedAt(name).text(0)))
            return false;
    }
    return false;
}

}  // namespace

LibraryFile readPeFile(QByteArrayView bytes)
{
    return PeReader(bytes).read();
}
