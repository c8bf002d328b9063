#include "FuzzTarget.h"
#include "PluginMetadata.h"

using namespace Qt::StringLiterals;

namespace {

bool isLoadable(const PluginMetadata &metadata, const HostQt &qt)
{
    const QString refusal = refusalOf(metadata, qt);
    mustHold(isOneLine(refusal), "the refusal is one line");
    const bool isForeign = !metadata.iid.startsWith(u"com.orvane.KVX.Plugin.LogicalDevice."_s);
    mustHold(!isForeign || refusal.contains(u"of another kind"_s), "the IID decides what is a device plugin");
    return refusal.isEmpty();
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size)
{
    constexpr int olderQt = 0x060402;
    constexpr int newerQt = 0x060802;
    const std::optional<PluginMetadata> metadata =
        PluginMetadata::decode({reinterpret_cast<const char *>(data), static_cast<qsizetype>(size)});
    if (!metadata)
        return 0;
    const bool loadsInNewer = isLoadable(*metadata, {newerQt, false, false});
    const bool loadsInOlder = isLoadable(*metadata, {olderQt, false, false});
    mustHold(loadsInNewer || !loadsInOlder, "a newer Qt loads what an older one does");

    const bool loadsInRelease = isLoadable(*metadata, {newerQt, false, true});
    const bool loadsInDebug = isLoadable(*metadata, {newerQt, true, true});
    mustHold(!loadsInRelease || !loadsInDebug, "no plugin is both a debug and a release build");
    mustHold((loadsInRelease || loadsInDebug) == loadsInNewer, "every plugin is one of the two");
    return 0;
}
