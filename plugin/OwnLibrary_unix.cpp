#include "OwnLibrary.h"
#include "PluginIid.h"

#include <string_view>

#include <link.h>

namespace {

constexpr std::string_view ownLibraryName = RV418_PLUGIN_IID ".so";

// What Windows answers for a module that is not loaded; hosts know the code from there.
constexpr quint32 moduleNotFound = 0x7e;

int stopAtOwnLibrary(dl_phdr_info *info, std::size_t /*size*/, void * /*data*/)
{
    const std::string_view path(info->dlpi_name);
    // npos + 1 is 0: a name without a slash is compared whole.
    return path.substr(path.rfind('/') + 1) == ownLibraryName ? 1 : 0;
}

}  // namespace

std::optional<OwnLibraryFailure> locateOwnLibrary()
{
    if (dl_iterate_phdr(stopAtOwnLibrary, nullptr) == 0)
        return OwnLibraryFailure{"GetModuleHandleA failed, gle :", moduleNotFound};
    return std::nullopt;
}
