#include "Initializers.h"

#include <windows.h>

// Windows calls it when it loads and unloads the library.
extern "C" BOOL WINAPI _DllMainCRTStartup(HINSTANCE /*module*/, DWORD reason, void * /*reserved*/)
{
    if (reason == DLL_PROCESS_ATTACH) {
        if (!runInitializers())
            return FALSE;
        initializeThread();
    } else if (reason == DLL_PROCESS_DETACH) {
        endThread();
        runExitFunctions();
    }
    return TRUE;
}
