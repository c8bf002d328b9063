#include "ProbeHost.h"
#include "runtime_probe.h"

#include <cstdint>

namespace {

struct Counter
{
    Counter() : noted("thread's first", "end of thread's first") {}
    const Noted noted;
    int value = 7;
};

struct UserOfAnother
{
    ~UserOfAnother() { useLocalOfThread(); }
    const Noted noted = {"thread's second", "end of thread's second"};
};

thread_local int constant = 5;
thread_local Counter counter;
thread_local UserOfAnother userOfAnother;
// Windows aligns a thread's copy as the variables ask for, Wine to 16 bytes at most.
thread_local char unaligned = 1;
alignas(16) thread_local char aligned = 1;

}  // namespace

int *threadConstant()
{
    return &constant;
}

int *threadConstructed()
{
    return &counter.value;
}

void useLocalOfThread()
{
    thread_local const Noted local("local of thread", "end of local of thread");
    static_cast<void>(local);
}

std::size_t addressOfAlignedLocal()
{
    ++unaligned;
    return reinterpret_cast<std::uintptr_t>(&aligned);
}
