#include "Initializers.h"

#include <windows.h>

namespace {

// An exception must not reach Windows' loader; the library is refused, as when an initializer fails.
bool start() noexcept
{
    try {
        if (!runInitializers())
            return false;
    } catch (...) {
        return false;
    }
    initializeThread();
    return true;
}

}  // namespace

// Windows calls it when it loads the library (FALSE refuses it) and when it unloads it. It is also called at
// the end of the process and right after a refusal, when the library is only partly initialized.
// ThreadLocals.cpp handles the start and end of threads.
extern "C" BOOL WINAPI _DllMainCRTStartup(HINSTANCE /*module*/, DWORD reason, void * /*reserved*/)
{
    if (reason == DLL_PROCESS_ATTACH)
        return start();
    if (reason == DLL_PROCESS_DETACH) {
        endThread();
        runExitFunctions();
    }
    return TRUE;
}
