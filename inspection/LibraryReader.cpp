#include "LibraryReader.h"

using namespace Qt::StringLiterals;

LibraryFile LibraryReader::read()
{
    m_library.defect = readAll();
    if (!m_library.defect.isEmpty())
        m_library.pluginMetadata.clear();
    m_library.exports.sort();
    return m_library;
}

QString LibraryReader::architectureOf(quint16 machine)
{
    // The two formats share no number.
    if (machine == 62 || machine == 0x8664)
        return u"x86-64"_s;
    if (machine == 183 || machine == 0xaa64)
        return u"arm64"_s;
    return machine == 0x14c ? u"i386"_s : u"machine %1"_s.arg(machine);
}

bool LibraryReader::append(QStringList &names, std::optional<QByteArrayView> name)
{
    // Names may overlap in a file, so a small one can name much.
    constexpr qsizetype mostNames = qsizetype(1024) * 1024;
    constexpr qsizetype mostNameBytes = qsizetype(64) * 1024 * 1024;
    if (!name || names.size() >= mostNames || m_nameBytes + name->size() > mostNameBytes)
        return false;
    m_nameBytes += name->size();
    names.append(QString::fromUtf8(*name));
    return true;
}

void LibraryReader::takePluginMetadata(QByteArrayView section)
{
    // Qt writes the marker on Windows; older Qt 6 does so on Linux, newer ones write a note there: the sizes
    // of name and content, the type 0x74510001, the name.
    constexpr QByteArrayView marker("QTMETADATA !");
    constexpr QByteArrayView noteTypeAndName("\x01\x00\x51\x74qt-project!\0", 16);
    const ByteReader note(section);
    std::optional<QByteArrayView> metadata;
    if (section.startsWith(marker))
        metadata = section.sliced(marker.size());
    else if (note.range(8, 16) == noteTypeAndName)
        metadata = note.range(24, note.number<quint32>(4));
    if (metadata && m_library.pluginMetadata.isEmpty())
        m_library.pluginMetadata = metadata->toByteArray();
}
