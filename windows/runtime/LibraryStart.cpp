#include "Initializers.h"

#include <windows.h>

namespace {

// An exception must not go on into Windows' loader. It refuses the library, as an initializer does that
// reports a failure.
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

// Windows calls it when it loads the library, where FALSE refuses that, and when it unloads it: at the end of
// the process, too, and right after a refusal, when only a part of the library has been initialized. Threads
// that begin and end are ThreadLocals.cpp's matter.
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
