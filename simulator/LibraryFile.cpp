#include "LibraryFile.h"

#include "LibraryFileElf.h"
#include "LibraryFilePe.h"

using namespace Qt::StringLiterals;

LibraryFile readLibraryFile(QByteArrayView bytes)
{
    LibraryFile library;
    if (bytes.startsWith("\x7f"
                         "ELF"))
        library = readElfFile(bytes);
    else if (bytes.startsWith("MZ"))
        library = readPeFile(bytes);
    else
        library.defect = u"is no library"_s;
    library.exports.sort();
    return library;
}
