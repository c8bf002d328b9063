#include "ProcessState.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <link.h>

namespace {

struct Search
{
    QString fileName;
    bool isFound = false;
};

int compareName(dl_phdr_info *library, std::size_t /*size*/, void *data)
{
    auto *search = static_cast<Search *>(data);
    search->isFound = QFileInfo(QFile::decodeName(library->dlpi_name)).fileName() == search->fileName;
    return search->isFound ? 1 : 0;
}

}  // namespace

bool isLibraryInProcess(const QString &fileName)
{
    Search search{fileName};
    dl_iterate_phdr(compareName, &search);
    return search.isFound;
}

int openHandleCount()
{
    // Each is a link to what is open, a file, a folder, a pipe or nothing that has a name. The listing itself
    // holds one of them, in every count.
    constexpr QDir::Filters everyEntry =
        QDir::AllEntries | QDir::System | QDir::Hidden | QDir::NoDotAndDotDot;
    return static_cast<int>(QDir(QStringLiteral("/proc/self/fd")).entryList(everyEntry).size());
}
