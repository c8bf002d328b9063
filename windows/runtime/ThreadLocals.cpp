// Thread-local variables. Windows gives each thread a copy of the module's template, the section .tls. The
// module itself runs constructors and destructors when Windows reports that a thread starts or ends.

#include "Initializers.h"

#include <corecrt_startup.h>

#include <windows.h>

#pragma section(".tls", long, read, write)
#pragma section(".tls$ZZZ", long, read, write)
#pragma section(".CRT$XDA", long, read)
#pragma section(".CRT$XDZ", long, read)
#pragma section(".CRT$XLA", long, read)
#pragma section(".CRT$XLC", long, read)
#pragma section(".CRT$XLZ", long, read)
#pragma section(".rdata$T", long, read)

extern "C" void NTAPI __dyn_tls_init(void *module, DWORD reason, void *reserved);

namespace {

// One object whose destructor the thread still has to run. On the heap of the process, which is there for
// longer than the C runtime's.
struct PendingDestructor
{
    _PVFV destroy;
    PendingDestructor *next;
};

thread_local PendingDestructor *pendingDestructors = nullptr;

__declspec(allocate(".CRT$XDA")) const _PVFV firstThreadInitializer = nullptr;
__declspec(allocate(".CRT$XDZ")) const _PVFV lastThreadInitializer = nullptr;
__declspec(allocate(".CRT$XLA")) const PIMAGE_TLS_CALLBACK firstCallback = nullptr;
[[gnu::used]] __declspec(allocate(".CRT$XLC")) const PIMAGE_TLS_CALLBACK callback = __dyn_tls_init;
[[gnu::used]] __declspec(allocate(".CRT$XLZ")) const PIMAGE_TLS_CALLBACK lastCallback = nullptr;

}  // namespace

extern "C" {

ULONG _tls_index = 0;
__declspec(allocate(".tls")) char _tls_start = 0;
__declspec(allocate(".tls$ZZZ")) char _tls_end = 0;

// The linker looks for it by this name and makes it known to the loader.
extern const IMAGE_TLS_DIRECTORY64 _tls_used;
__declspec(allocate(".rdata$T")) const IMAGE_TLS_DIRECTORY64 _tls_used = {
    reinterpret_cast<ULONGLONG>(&_tls_start),
    reinterpret_cast<ULONGLONG>(&_tls_end),
    reinterpret_cast<ULONGLONG>(&_tls_index),
    reinterpret_cast<ULONGLONG>(&firstCallback + 1),
    0,
    0,
};

// Windows calls it when a thread begins or ends. An object that has a thread-local variable with an
// initializer makes the linker look for it by this name.
void NTAPI __dyn_tls_init(void * /*module*/, DWORD reason, void * /*reserved*/)
{
    if (reason == DLL_THREAD_ATTACH)
        initializeThread();
    else if (reason == DLL_THREAD_DETACH)
        endThread();
}

// Whether the thread's initializers ran. The compiler asks before it touches a variable that needs them.
thread_local bool __tls_guard = false;

// A thread that was there before the module was loaded comes here from its first use of a variable.
void __dyn_tls_on_demand_init() noexcept
{
    initializeThread();
}

// The compiler calls it for each thread-local object that it has constructed.
int __tlregdtor(_PVFV destroy)
{
    auto *pending =
        static_cast<PendingDestructor *>(HeapAlloc(GetProcessHeap(), 0, sizeof(PendingDestructor)));
    if (!pending)
        return -1;
    *pending = {destroy, pendingDestructors};
    pendingDestructors = pending;
    return 0;
}

}  // extern "C"

void initializeThread() noexcept
{
    if (__tls_guard)
        return;
    __tls_guard = true;
    for (auto each = hidden(&firstThreadInitializer); each != hidden(&lastThreadInitializer); ++each) {
        if (*each)
            (*each)();
    }
}

void endThread() noexcept
{
    // A destructor may construct another object.
    while (PendingDestructor *pending = pendingDestructors) {
        pendingDestructors = pending->next;
        pending->destroy();
        HeapFree(GetProcessHeap(), 0, pending);
    }
}
