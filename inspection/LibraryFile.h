#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QByteArrayView>
#include <QtCore/QOperatingSystemVersion>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// What the bytes of a library file say about it, without loading it.
struct LibraryFile
{
    enum class System {
        Unknown,
        Linux,
        Windows,
    };
    static constexpr System ownSystem =
        QOperatingSystemVersion::currentType() == QOperatingSystemVersion::Windows ? System::Windows
                                                                                   : System::Linux;

    System system = System::Unknown;
    /// "x86-64" and the like.
    QString architecture;
    /// Why the file cannot be used as a library, as the end of a sentence that begins with its name; empty
    /// for a sound one.
    QString defect;
    /// Symbols that the library exports, sorted.
    QStringList exports;
    /// File names of the libraries that it needs.
    QStringList neededLibraries;
    /// The bytes that Qt wrote for its plugin loader, 4 of header and a CBOR map; empty when there are none.
    QByteArray pluginMetadata;

    /// "Linux x86-64 library" or "Windows x86-64 DLL".
    QString kind() const;
    /// Whether system and architecture are those of this program.
    bool isForThisSystem() const;
};

/// Reads the format from the bytes of a whole file. Any bytes will do: what cannot be read ends in a defect.
LibraryFile readLibraryFile(QByteArrayView bytes);
