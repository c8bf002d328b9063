#include "OwnLibrary.h"
#include "PluginIid.h"

#include <QtCore/QFileInfo>
#include <QtCore/QString>

#include <array>

#include <windows.h>

std::optional<OwnLibraryFailure> locateOwnLibrary()
{
    const HMODULE module = GetModuleHandleA(RV418_PLUGIN_IID ".dll");
    if (!module)
        return OwnLibraryFailure{"GetModuleHandleA failed, gle :", GetLastError()};

    std::array<wchar_t, 520> path{};
    // The size given is that of the buffer in bytes, not in characters: kept as it is.
    if (GetModuleFileNameW(module, path.data(), sizeof(path)) == 0)
        return OwnLibraryFailure{"GetModuleFileName failed, gle :", GetLastError()};

    // Built and dropped, kept as it is: only that there is a path counts.
    static_cast<void>(QFileInfo(QString::fromWCharArray(path.data(), -1)));
    return std::nullopt;
}
