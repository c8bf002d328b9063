#include "runtime_probe.h"

#include "ProbeHost.h"

#include <corecrt_startup.h>
#include <cstdlib>

#include <windows.h>

namespace {

template <typename Function>
Function *programs(const char *name)
{
    return reinterpret_cast<Function *>(
        reinterpret_cast<void *>(GetProcAddress(GetModuleHandleW(nullptr), name)));
}

}  // namespace

// Initializers run before anybody could tell the probe an address, so it asks for them.
void note(const char *event)
{
    programs<void(const char *)>("noteEvent")(event);
}

bool isWished(const char *wish)
{
    return programs<bool(const char *)>("isWishedOfProbe")(wish);
}

namespace {

int initializeInC()
{
    note("C's initializer");
    return isWished(Wish::failInC) ? 1 : 0;
}

#pragma section(".CRT$XIU", long, read)
[[gnu::used]] __declspec(allocate(".CRT$XIU")) const _PIFV cInitializer = initializeInC;

void registerAnother()
{
    if (isWished(Wish::registerAtExit))
        std::atexit([] { note("another exit function"); });
}

[[maybe_unused]] const int registered = std::atexit(registerAnother);
const Noted first("first object", "end of first object");
const Noted second("second object", "end of second object");

struct Slow
{
    explicit Slow(Callback initializing)
    {
        initializing();
        value = 42;
    }
    ~Slow() { value = 0; }
    int value = 0;
};

}  // namespace

void registerExitFunctions()
{
    std::atexit([] { note("first exit function"); });
    std::atexit([] { note("second exit function"); });
}

const int *localStatic(Callback initializing)
{
    static const Slow slow(initializing);
    return &slow.value;
}

const int *retriedStatic(Callback initializing)
{
    static const Slow slow(initializing);
    return &slow.value;
}
