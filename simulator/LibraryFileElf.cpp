#include "LibraryFileElf.h"

#include "ByteReader.h"

#include <QtCore/QList>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr quint64 fileHeaderSize = 64;
constexpr quint64 sectionHeaderSize = 64;
constexpr quint64 programHeaderSize = 56;
constexpr quint64 symbolSize = 24;
constexpr quint64 dynamicEntrySize = 16;
constexpr quint64 noteHeaderSize = 12;
constexpr quint16 sharedObjectType = 3;
constexpr quint16 x86_64Machine = 62;
constexpr quint32 loadSegment = 1;
constexpr quint32 noteSegment = 4;
constexpr quint32 dynamicSection = 6;
constexpr quint32 noBitsSection = 8;
constexpr quint32 dynamicSymbolSection = 11;
constexpr quint64 neededTag = 1;
constexpr quint32 qtNoteType = 0x74510001;
constexpr QByteArrayView qtNoteName("qt-project!");
constexpr QByteArrayView sectionMagic("QTMETADATA !");
// Names may overlap in the string table, so a small file can name much: more than this is damage.
constexpr qsizetype mostNameBytes = qsizetype(64) * 1024 * 1024;
// Segments may overlap, too.
constexpr qsizetype mostNoteBytes = qsizetype(1024) * 1024;

struct Range
{
    quint32 type = 0;
    quint32 link = 0;       // sections only: the section with the strings
    quint32 name = 0;       // sections only
    quint64 alignment = 0;  // segments only
    QByteArrayView bytes;
};

// The file header has been checked for its size.
class ElfFile
{
public:
    explicit ElfFile(QByteArrayView bytes) : m_file(bytes) {}

    LibraryFile read();

private:
    bool readSegments();
    bool readSections();
    bool readExports();
    bool readNeededLibraries();
    void readMetadata();
    std::optional<QByteArrayView> nameAt(const ByteReader &names, quint64 offset);
    quint64 field(quint64 offset, int size) const;

    ByteReader m_file;
    QList<Range> m_noteSegments;
    QList<Range> m_sections;
    quint32 m_sectionNames = 0;
    qsizetype m_nameBytes = 0;
    LibraryFile m_library;
};

quint64 ElfFile::field(quint64 offset, int size) const
{
    if (size == 2)
        return m_file.numberOrZero<quint16>(offset);
    return size == 4 ? m_file.numberOrZero<quint32>(offset) : m_file.numberOrZero<quint64>(offset);
}

LibraryFile ElfFile::read()
{
    m_library.format = LibraryFile::Format::Elf;
    constexpr quint8 class64 = 2;
    constexpr quint8 littleEndian = 1;
    const bool isSupported = m_file.number<quint8>(4) == class64 && m_file.number<quint8>(5) == littleEndian;
    const quint64 machine = field(18, 2);
    if (!isSupported)
        m_library.architecture = u"32-bit or big-endian"_s;
    else if (machine == x86_64Machine)
        m_library.architecture = u"64-bit x86-64"_s;
    else
        m_library.architecture = u"64-bit, machine "_s + QString::number(machine);
    if (!isSupported)
        m_library.defect = u"is a library for another kind of processor (32-bit or big-endian)"_s;
    else if (field(16, 2) != sharedObjectType)
        m_library.defect = u"is an ELF file, but no shared library"_s;
    else if (!readSegments() || !readSections())
        m_library.defect = u"is cut off or damaged: its headers point behind its end"_s;
    else if (!readExports() || !readNeededLibraries())
        m_library.defect = u"is damaged: its symbol tables cannot be read"_s;
    else
        readMetadata();
    return m_library;
}

bool ElfFile::readSegments()
{
    const quint64 offset = field(32, 8);
    const quint64 count = field(56, 2);
    const std::optional<QByteArrayView> table = m_file.range(offset, count * programHeaderSize);
    if (!table || (count > 0 && field(54, 2) != programHeaderSize))
        return false;
    for (quint64 index = 0; index < count; ++index) {
        const quint64 header = offset + index * programHeaderSize;
        const auto type = static_cast<quint32>(field(header, 4));
        if (type != loadSegment && type != noteSegment)
            continue;
        const std::optional<QByteArrayView> bytes = m_file.range(field(header + 8, 8), field(header + 32, 8));
        if (!bytes)
            return false;
        if (type == noteSegment)
            m_noteSegments.append({type, 0, 0, field(header + 48, 8), *bytes});
    }
    return true;
}

bool ElfFile::readSections()
{
    const quint64 offset = field(40, 8);
    const quint64 count = field(60, 2);
    const std::optional<QByteArrayView> table = m_file.range(offset, count * sectionHeaderSize);
    if (!table || (count > 0 && field(58, 2) != sectionHeaderSize))
        return false;
    for (quint64 index = 0; index < count; ++index) {
        const quint64 header = offset + index * sectionHeaderSize;
        const auto type = static_cast<quint32>(field(header + 4, 4));
        const quint64 size = type == noBitsSection ? 0 : field(header + 32, 8);
        const std::optional<QByteArrayView> bytes =
            size == 0 ? QByteArrayView() : m_file.range(field(header + 24, 8), size);
        if (!bytes)
            return false;
        m_sections.append({type, static_cast<quint32>(field(header + 40, 4)),
                           static_cast<quint32>(field(header, 4)), 0, *bytes});
    }
    m_sectionNames = static_cast<quint32>(field(62, 2));
    return true;
}

// Counts the null byte as well, so that empty names come to an end.
std::optional<QByteArrayView> ElfFile::nameAt(const ByteReader &names, quint64 offset)
{
    const std::optional<QByteArrayView> name = names.text(offset);
    if (name)
        m_nameBytes += name->size() + 1;
    return m_nameBytes > mostNameBytes ? std::nullopt : name;
}

bool ElfFile::readExports()
{
    bool isFirst = true;
    for (const Range &section : std::as_const(m_sections)) {
        if (section.type != dynamicSymbolSection)
            continue;
        // A library has one; several over the same bytes would be a small file that names much.
        if (!std::exchange(isFirst, false) || section.link >= m_sections.size())
            return false;
        const ByteReader symbols(section.bytes);
        const ByteReader names(m_sections.at(section.link).bytes);
        // The first entry is empty by definition.
        const quint64 count = static_cast<quint64>(section.bytes.size()) / symbolSize;
        for (quint64 index = 1; index < count; ++index) {
            const quint64 symbol = index * symbolSize;
            const auto binding = symbols.numberOrZero<quint8>(symbol + 4) >> 4;
            const bool isDefined = symbols.numberOrZero<quint16>(symbol + 6) != 0;
            constexpr quint8 localBinding = 0;
            if (!isDefined || binding == localBinding)
                continue;
            const std::optional<QByteArrayView> name = nameAt(names, symbols.numberOrZero<quint32>(symbol));
            if (!name)
                return false;
            m_library.exports.append(QString::fromUtf8(*name));
        }
    }
    return true;
}

bool ElfFile::readNeededLibraries()
{
    bool isFirst = true;
    for (const Range &section : std::as_const(m_sections)) {
        if (section.type != dynamicSection)
            continue;
        if (!std::exchange(isFirst, false) || section.link >= m_sections.size())
            return false;
        const ByteReader entries(section.bytes);
        const ByteReader names(m_sections.at(section.link).bytes);
        for (quint64 entry = 0; entries.range(entry, dynamicEntrySize); entry += dynamicEntrySize) {
            if (entries.numberOrZero<quint64>(entry) != neededTag)
                continue;
            const std::optional<QByteArrayView> name =
                nameAt(names, entries.numberOrZero<quint64>(entry + 8));
            if (!name)
                return false;
            m_library.neededLibraries.append(QString::fromUtf8(*name));
        }
    }
    return true;
}

QByteArray metadataOfNotes(const Range &segment)
{
    const ByteReader reader(segment.bytes);
    const quint64 alignment = segment.alignment == 8 ? 8 : 4;
    const auto padded = [alignment](quint64 size) { return (size + alignment - 1) / alignment * alignment; };
    for (quint64 offset = 0; reader.range(offset, noteHeaderSize);) {
        const auto nameSize = reader.numberOrZero<quint32>(offset);
        const auto contentSize = reader.numberOrZero<quint32>(offset + 4);
        const auto type = reader.numberOrZero<quint32>(offset + 8);
        const quint64 name = offset + noteHeaderSize;
        const quint64 content = padded(name + nameSize);
        if (type == qtNoteType && reader.text(name) == qtNoteName) {
            const std::optional<QByteArrayView> bytes = reader.range(content, contentSize);
            return bytes ? bytes->toByteArray() : QByteArray();
        }
        offset = padded(content + contentSize);
    }
    return {};
}

void ElfFile::readMetadata()
{
    qsizetype noteBytes = 0;
    for (const Range &segment : std::as_const(m_noteSegments)) {
        noteBytes += segment.bytes.size();
        if (noteBytes > mostNoteBytes)
            return;
        m_library.pluginMetadata = metadataOfNotes(segment);
        if (!m_library.pluginMetadata.isEmpty())
            return;
    }
    // Older Qt 6 wrote a section with a marker in place of the note.
    if (m_sectionNames >= m_sections.size())
        return;
    const ByteReader names(m_sections.at(m_sectionNames).bytes);
    for (const Range &section : std::as_const(m_sections)) {
        if (names.text(section.name) == QByteArrayView(".qtmetadata") &&
            section.bytes.startsWith(sectionMagic)) {
            m_library.pluginMetadata = section.bytes.sliced(sectionMagic.size()).toByteArray();
            return;
        }
    }
}

}  // namespace

LibraryFile readElfFile(QByteArrayView bytes)
{
    if (static_cast<quint64>(bytes.size()) < fileHeaderSize) {
        LibraryFile library;
        library.format = LibraryFile::Format::Elf;
        library.defect = u"is cut off: it ends within the header of a library"_s;
        return library;
    }
    return ElfFile(bytes).read();
}
