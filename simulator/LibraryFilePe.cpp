#include "LibraryFilePe.h"

#include "ByteReader.h"

#include <QtCore/QCborValue>
#include <QtCore/QList>

using namespace Qt::StringLiterals;

namespace {

constexpr quint64 fileHeaderSize = 24;  // with the signature before it
constexpr quint64 sectionHeaderSize = 40;
constexpr quint64 importDescriptorSize = 20;
constexpr quint16 x86_64Machine = 0x8664;
constexpr quint16 libraryFlag = 0x2000;
constexpr quint16 plusMagic = 0x20b;  // an optional header of the 64-bit kind
constexpr QByteArrayView sectionMagic("QTMETADATA !");
// A section header has room for 8 characters of the name.
constexpr QByteArrayView metadataSectionName(".qtmetad");
constexpr qsizetype metadataHeaderSize = 4;
constexpr qsizetype mostNameBytes = qsizetype(64) * 1024 * 1024;
constexpr quint32 mostNames = 1024U * 1024U;
// Windows loads no more either.
constexpr quint16 mostSections = 96;
// Read, it takes many times the room.
constexpr qsizetype mostMetadata = qsizetype(1024) * 1024;

struct Section
{
    quint32 address = 0;
    QByteArrayView name;
    QByteArrayView bytes;
};

class PeFile
{
public:
    explicit PeFile(QByteArrayView bytes) : m_file(bytes) {}

    LibraryFile read();

private:
    bool readSections();
    bool readExports();
    bool readImports();
    void readMetadata();
    /// Where the bytes lie in their section that are loaded at this address.
    std::optional<QByteArrayView> loadedAt(quint32 address) const;
    std::optional<QByteArrayView> nameAt(quint32 address);
    std::optional<quint32> directoryAddress(quint64 index) const;

    ByteReader m_file;
    quint64 m_header = 0;
    QList<Section> m_sections;
    qsizetype m_nameBytes = 0;
    LibraryFile m_library;
};

LibraryFile PeFile::read()
{
    m_library.format = LibraryFile::Format::PortableExecutable;
    m_header = m_file.numberOrZero<quint32>(0x3c);
    const std::optional<QByteArrayView> header = m_file.range(m_header, fileHeaderSize);
    if (!header || !header->startsWith(QByteArrayView("PE\0\0", 4))) {
        m_library.defect = u"is cut off or no Windows library: it has no header of one"_s;
        return m_library;
    }
    const auto machine = m_file.numberOrZero<quint16>(m_header + 4);
    const bool isPlus = m_file.number<quint16>(m_header + fileHeaderSize) == plusMagic;
    m_library.architecture =
        machine == x86_64Machine ? u"64-bit x86-64"_s : u"machine 0x"_s + QString::number(machine, 16);
    if (!isPlus)
        m_library.defect = u"is a library for another kind of processor (not 64-bit)"_s;
    else if (!(m_file.numberOrZero<quint16>(m_header + 22) & libraryFlag))
        m_library.defect = u"is a Windows program, but no library"_s;
    else if (!readSections())
        m_library.defect = u"is cut off or damaged: its headers point behind its end"_s;
    else if (!readExports() || !readImports())
        m_library.defect = u"is damaged: its export or import table cannot be read"_s;
    else
        readMetadata();
    return m_library;
}

bool PeFile::readSections()
{
    const auto count = m_file.numberOrZero<quint16>(m_header + 6);
    const quint64 table = m_header + fileHeaderSize + m_file.numberOrZero<quint16>(m_header + 20);
    if (count > mostSections)
        return false;
    for (quint16 index = 0; index < count; ++index) {
        const quint64 header = table + index * sectionHeaderSize;
        const std::optional<QByteArrayView> name = m_file.range(header, 8);
        if (!m_file.range(header, sectionHeaderSize))
            return false;
        const std::optional<QByteArrayView> bytes = m_file.range(m_file.numberOrZero<quint32>(header + 20),
                                                                 m_file.numberOrZero<quint32>(header + 16));
        if (!bytes)
            return false;
        m_sections.append({m_file.numberOrZero<quint32>(header + 12), *name, *bytes});
    }
    return true;
}

std::optional<QByteArrayView> PeFile::loadedAt(quint32 address) const
{
    for (const Section &section : m_sections) {
        if (address >= section.address &&
            address - section.address < static_cast<quint64>(section.bytes.size()))
            return section.bytes.sliced(address - section.address);
    }
    return {};
}

std::optional<QByteArrayView> PeFile::nameAt(quint32 address)
{
    const std::optional<QByteArrayView> bytes = loadedAt(address);
    const std::optional<QByteArrayView> name = bytes ? ByteReader(*bytes).text(0) : std::nullopt;
    // With the null byte, so that empty names come to an end.
    if (name)
        m_nameBytes += name->size() + 1;
    return m_nameBytes > mostNameBytes ? std::nullopt : name;
}

// No value where the library has no such table.
std::optional<quint32> PeFile::directoryAddress(quint64 index) const
{
    const quint64 directories = m_header + fileHeaderSize + 112;
    const auto count = m_file.numberOrZero<quint32>(directories - 4);
    const auto address = m_file.numberOrZero<quint32>(directories + index * 8);
    if (index >= count || address == 0)
        return {};
    return address;
}

bool PeFile::readExports()
{
    const std::optional<quint32> address = directoryAddress(0);
    if (!address)
        return true;
    const std::optional<QByteArrayView> table = loadedAt(*address);
    const ByteReader reader(table.value_or(QByteArrayView()));
    const std::optional<quint32> count = reader.number<quint32>(24);
    const std::optional<quint32> namesAddress = reader.number<quint32>(32);
    if (!count || !namesAddress || *count > mostNames)
        return false;
    const ByteReader names(loadedAt(*namesAddress).value_or(QByteArrayView()));
    for (quint32 index = 0; index < *count; ++index) {
        const std::optional<quint32> nameAddress = names.number<quint32>(quint64{index} * 4);
        const std::optional<QByteArrayView> name = nameAddress ? nameAt(*nameAddress) : std::nullopt;
        if (!name)
            return false;
        m_library.exports.append(QString::fromUtf8(*name));
    }
    return true;
}

bool PeFile::readImports()
{
    const std::optional<quint32> address = directoryAddress(1);
    if (!address)
        return true;
    const ByteReader reader(loadedAt(*address).value_or(QByteArrayView()));
    for (quint64 descriptor = 0;; descriptor += importDescriptorSize) {
        const std::optional<quint32> nameAddress = reader.number<quint32>(descriptor + 12);
        if (!nameAddress)
            return false;
        if (*nameAddress == 0)
            return true;
        const std::optional<QByteArrayView> name = nameAt(*nameAddress);
        if (!name || m_library.neededLibraries.size() >= mostNames)
            return false;
        m_library.neededLibraries.append(QString::fromUtf8(*name));
    }
}

// The bytes without what fills the section up behind them.
QByteArray withoutPadding(const QByteArray &metadata)
{
    if (metadata.size() < metadataHeaderSize || metadata.size() > mostMetadata)
        return metadata;
    QCborParserError end;
    static_cast<void>(QCborValue::fromCbor(metadata.sliced(metadataHeaderSize), &end));
    return end.error == QCborError::NoError ? metadata.first(metadataHeaderSize + end.offset) : metadata;
}

void PeFile::readMetadata()
{
    for (const Section &section : std::as_const(m_sections)) {
        if (section.name.startsWith(metadataSectionName) && section.bytes.startsWith(sectionMagic)) {
            m_library.pluginMetadata =
                withoutPadding(section.bytes.sliced(sectionMagic.size()).toByteArray());
            return;
        }
    }
}

}  // namespace

LibraryFile readPeFile(QByteArrayView bytes)
{
    return PeFile(bytes).read();
}
