#include "LibraryFile.h"

#include "LibraryReader.h"

#include <QtCore/QSysInfo>

using namespace Qt::StringLiterals;

QString LibraryFile::kind() const
{
    return (system == System::Windows ? u"Windows %1 DLL"_s : u"Linux %1 library"_s).arg(architecture);
}

bool LibraryFile::isForThisSystem() const
{
    return system == ownSystem && architecture == QSysInfo::buildCpuArchitecture().replace(u'_', u'-');
}

LibraryFile readLibraryFile(QByteArrayView bytes)
{
    if (bytes.startsWith("\x7f"
                         "ELF"))
        return readElfFile(bytes);
    if (bytes.startsWith("MZ"))
        return readPeFile(bytes);
    LibraryFile library;
    library.defect = u"is no library"_s;
    return library;
}
