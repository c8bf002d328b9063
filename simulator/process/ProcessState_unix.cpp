#include "ProcessState.h"

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

#include <cstddef>
#include <cstdlib>
#include <malloc.h>
#include <vector>

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

qint64 countedBytes()
{
    const struct mallinfo2 heap = mallinfo2();
    // The blocks that the heap has from its arenas, and those that it has from the system one by one.
    return static_cast<qint64>(heap.uordblks) + static_cast<qint64>(heap.hblkhd);
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

std::optional<qint64> heapInUse()
{
    constexpr qsizetype probe = 100000;
    const qint64 before = countedBytes();
    QByteArray block;
    block.reserve(probe);
    return countedBytes() >= before + probe ? std::optional<qint64>(before) : std::nullopt;
}

void fillCacheOfFreedBlocks()
{
    constexpr std::size_t largest = 1032;
    constexpr std::size_t step = 16;
    constexpr int mostOfASize = 16;
    std::vector<void *> blocks;
    blocks.reserve(mostOfASize * (largest / step + 1));
    for (std::size_t size = step + step / 2; size <= largest; size += step) {
        for (int count = 0; count < mostOfASize; ++count)
            blocks.push_back(std::malloc(size));
    }
    for (void *block : blocks)
        std::free(block);
}
