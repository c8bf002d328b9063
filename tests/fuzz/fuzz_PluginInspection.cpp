#include "FuzzTarget.h"
#include "PluginInspection.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

// What the table entry of a name takes at least, in bytes: in a Windows library the address of an exported
// name, in a Linux library the entry of a needed library.
constexpr qsizetype exportSize = 4;
constexpr qsizetype neededLibrarySize = 16;

void checkContents(const LibraryFile &library, QByteArrayView bytes)
{
    const bool isKnown = library.system != LibraryFile::System::Unknown;
    const bool hasMagic = bytes.startsWith("\x7f"
                                           "ELF") ||
                          bytes.startsWith("MZ");
    mustHold(isKnown == hasMagic, "the first bytes decide the system");
    mustHold(isKnown || !library.defect.isEmpty(), "a file for no known system has a defect");
    mustHold(!library.defect.isEmpty() || !library.architecture.isEmpty(),
             "a sound library has an architecture");
    mustHold(library.defect.isEmpty() || library.pluginMetadata.isEmpty(), "a defect means no metadata");
    mustHold(library.pluginMetadata.isEmpty() || bytes.contains(library.pluginMetadata),
             "metadata is a part of the file");
    mustHold(std::is_sorted(library.exports.cbegin(), library.exports.cend()), "exports are sorted");
    mustHold(library.exports.size() <= bytes.size() / exportSize, "no entry is more than one export");
    mustHold(library.neededLibraries.size() <= bytes.size() / neededLibrarySize,
             "no entry is more than one needed library");
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    const QByteArrayView bytes(data, static_cast<qsizetype>(size));
    const PluginInspection inspection = inspectPlugin(u"library"_s, bytes);
    const QString &refusal = inspection.refusal;
    checkContents(inspection.contents, bytes);
    mustHold(refusal.isEmpty() || refusal.startsWith(u"\"library\" "_s), "the refusal names the file");
    mustHold(isOneLine(refusal), "the refusal is one line");
    mustHold(!inspection.metadata || inspection.contents.defect.isEmpty(), "a plugin is a sound library");
    mustHold(!refusal.isEmpty() || (inspection.metadata && inspection.contents.isForThisSystem()),
             "what is no plugin for this system is refused");
    return 0;
}
