#include "FuzzTarget.h"
#include "LibraryFile.h"

#include <algorithm>

namespace {

// What the table entry of a name takes at least, in bytes: in a Windows library the address of an exported
// name, in a Linux library the entry of a needed library.
constexpr qsizetype exportSize = 4;
constexpr qsizetype neededLibrarySize = 16;

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    const LibraryFile library = readLibraryFile(bytes);

    const bool isKnown = library.format != LibraryFile::Format::Unknown;
    const bool hasMagic = bytes.startsWith("\x7f"
                                           "ELF") ||
                          bytes.startsWith("MZ");
    mustHold(isKnown == hasMagic, "the first bytes tell the format");
    mustHold(isKnown || !library.defect.isEmpty(), "a file of no known format has a defect");
    mustHold(!library.defect.isEmpty() || !library.architecture.isEmpty(),
             "a sound library has an architecture");
    mustHold(isOneLine(library.defect), "a defect is one line");
    mustHold(library.defect.isEmpty() || library.pluginMetadata.isEmpty(), "a defect means no metadata");
    mustHold(library.pluginMetadata.isEmpty() || bytes.contains(library.pluginMetadata),
             "metadata is a part of the file");

    mustHold(std::is_sorted(library.exports.cbegin(), library.exports.cend()), "exports are sorted");
    mustHold(library.exports.size() <= bytes.size() / exportSize, "no entry is more than one export");
    mustHold(library.neededLibraries.size() <= bytes.size() / neededLibrarySize,
             "no entry is more than one needed library");
    return 0;
}
