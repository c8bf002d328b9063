#pragma once

#include "ByteReader.h"
#include "LibraryFile.h"

/// What the readers of both formats share.
class LibraryReader
{
public:
    virtual ~LibraryReader() = default;
    Q_DISABLE_COPY_MOVE(LibraryReader)

    LibraryFile read();

protected:
    LibraryReader(QByteArrayView bytes, LibraryFile::System system) : m_file(bytes)
    {
        m_library.system = system;
    }

    /// Answers the defect.
    virtual QString readAll() = 0;

    static QString architectureOf(quint16 machine);
    /// False when there is no name, or when all names together are more than any library has.
    bool append(QStringList &names, std::optional<QByteArrayView> name);
    /// Keeps Qt's metadata when this is the section with it.
    void takePluginMetadata(QByteArrayView section);

    ByteReader m_file;
    LibraryFile m_library;

private:
    qsizetype m_nameBytes = 0;
};

/// Reads a Linux library of 64 bits.
LibraryFile readElfFile(QByteArrayView bytes);
/// Reads a Windows library.
LibraryFile readPeFile(QByteArrayView bytes);
