#include "LibraryReader.h"

#include <QtCore/QList>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

struct Section
{
    quint32 type = 0;
    quint32 link = 0;  // the section with the names
    QByteArrayView bytes;
};

class ElfReader final : public LibraryReader
{
public:
    explicit ElfReader(QByteArrayView bytes) : LibraryReader(bytes, LibraryFile::System::Linux) {}

private:
    QString readAll() override;
    bool readSections();
    bool readExports();
    bool readNeededLibraries();
    // The first of its type, which is the one that counts; an empty one when there is none.
    Section section(quint32 type) const;
    ByteReader namesOf(const Section &section) const;

    QList<Section> m_sections;
};

QString ElfReader::readAll()
{
    constexpr quint64 fileHeaderSize = 64;
    constexpr quint8 class64 = 2;
    constexpr quint8 littleEndian = 1;
    constexpr quint16 sharedObject = 3;
    if (!m_file.range(0, fileHeaderSize))
        return u"is cut off: it ends within the header of a library"_s;
    if (m_file.number<quint8>(4) != class64 || m_file.number<quint8>(5) != littleEndian)
        return u"is for another kind of processor (32-bit or big-endian), which kvx does not read"_s;
    m_library.architecture = architectureOf(m_file.number<quint16>(18));
    if (m_file.number<quint16>(16) != sharedObject)
        return u"is an ELF file, but no shared library"_s;
    if (!readSections())
        return u"is cut off or damaged: its headers point behind its end"_s;
    if (!readExports() || !readNeededLibraries())
        return u"is damaged: its symbol tables cannot be read"_s;
    return {};
}

bool ElfReader::readSections()
{
    constexpr quint64 headerSize = 64;
    constexpr quint32 withoutBytes = 8;
    const auto table = m_file.number<quint64>(40);
    const auto count = m_file.number<quint16>(60);
    if (!m_file.range(table, count * headerSize) || (count > 0 && m_file.number<quint16>(58) != headerSize))
        return false;
    for (quint64 header = table; header < table + count * headerSize; header += headerSize) {
        const auto type = m_file.number<quint32>(header + 4);
        const quint64 size = type == withoutBytes ? 0 : m_file.number<quint64>(header + 32);
        const auto bytes = m_file.range(size == 0 ? 0 : m_file.number<quint64>(header + 24), size);
        if (!bytes)
            return false;
        m_sections.append({type, m_file.number<quint32>(header + 40), *bytes});
        takePluginMetadata(*bytes);
    }
    return true;
}

Section ElfReader::section(quint32 type) const
{
    const auto found = std::find_if(m_sections.cbegin(), m_sections.cend(),
                                    [type](const Section &section) { return section.type == type; });
    return found == m_sections.cend() ? Section() : *found;
}

ByteReader ElfReader::namesOf(const Section &section) const
{
    return ByteReader(m_sections.value(section.link).bytes);
}

bool ElfReader::readExports()
{
    constexpr quint32 dynamicSymbols = 11;
    constexpr quint64 symbolSize = 24;
    constexpr int localBinding = 0;
    const Section section = this->section(dynamicSymbols);
    const ByteReader names = namesOf(section);
    const ByteReader symbols(section.bytes);
    // The first symbol is empty by definition.
    for (quint64 symbol = symbolSize; symbols.range(symbol, symbolSize); symbol += symbolSize) {
        const bool isDefined = symbols.number<quint16>(symbol + 6) != 0;
        if (!isDefined || symbols.number<quint8>(symbol + 4) >> 4 == localBinding)
            continue;
        if (!append(m_library.exports, names.text(symbols.number<quint32>(symbol))))
            return false;
    }
    return true;
}

bool ElfReader::readNeededLibraries()
{
    constexpr quint32 dynamicEntries = 6;
    constexpr quint64 entrySize = 16;
    constexpr quint64 neededTag = 1;
    const Section section = this->section(dynamicEntries);
    const ByteReader names = namesOf(section);
    const ByteReader entries(section.bytes);
    for (quint64 entry = 0; entries.range(entry, entrySize); entry += entrySize) {
        if (entries.number<quint64>(entry) != neededTag)
            continue;
        if (!append(m_library.neededLibraries, names.text(entries.number<quint64>(entry + 8))))
            return false;
    }
    return true;
}

}  // namespace

LibraryFile readElfFile(QByteArrayView bytes)
{
    return ElfReader(bytes).read();
}
