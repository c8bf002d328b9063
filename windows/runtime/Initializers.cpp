#include "Initializers.h"

#include <atomic>
#include <corecrt_startup.h>

// The linker sorts what the compiler puts into .CRT by the letters behind the $: the addresses of C's
// initializers are between XIA and XIZ, those of C++ between XCA and XCZ. Between them may be zeros, which
// fill up to a section's end.
#pragma section(".CRT$XIA", long, read)
#pragma section(".CRT$XIZ", long, read)
#pragma section(".CRT$XCA", long, read)
#pragma section(".CRT$XCZ", long, read)

namespace {

__declspec(allocate(".CRT$XIA")) const _PIFV firstCInitializer = nullptr;
__declspec(allocate(".CRT$XIZ")) const _PIFV lastCInitializer = nullptr;
__declspec(allocate(".CRT$XCA")) const _PVFV firstInitializer = nullptr;
__declspec(allocate(".CRT$XCZ")) const _PVFV lastInitializer = nullptr;

_onexit_table_t exitFunctions;
std::atomic<bool> haveExitFunctions = false;

}  // namespace

bool runInitializers()
{
    if (_initialize_onexit_table(&exitFunctions) != 0)
        return false;
    for (auto each = hidden(&firstCInitializer); each != hidden(&lastCInitializer); ++each) {
        if (*each && (*each)() != 0)
            return false;
    }
    for (auto each = hidden(&firstInitializer); each != hidden(&lastInitializer); ++each) {
        if (*each)
            (*each)();
    }
    return true;
}

void runExitFunctions() noexcept
{
    // One of them may give another to atexit(), which Wine's C library does not run in the same go.
    while (haveExitFunctions.exchange(false))
        _execute_onexit_table(&exitFunctions);
}

// The compiler calls it for each static object that has a destructor. The functions belong to the module: a
// library's run when it is unloaded.
extern "C" int __cdecl atexit(void(__cdecl *function)())
{
    const int answer = _register_onexit_function(&exitFunctions, reinterpret_cast<_onexit_t>(function));
    haveExitFunctions = true;
    return answer;
}
