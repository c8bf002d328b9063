#include "ProbeHost.h"
#include "runtime_probe.h"

#include <cstdint>
#include <new>

namespace {

struct alignas(256) OverAligned
{
    char bytes[256];
};

// Behind those of runtime_probe.cpp in the link, and yet before them in time.
[[gnu::init_priority(200)]] const Noted early("early object", "end of early object");

struct LastObject
{
    LastObject() : noted("object of the second unit", "end of object of the second unit")
    {
        if (isWished(Wish::throwInCpp))
            throw CodeError{1};
    }
    const Noted noted;
};

const LastObject last;

}  // namespace

void *allocate(std::size_t size)
{
    return ::operator new(size);
}

void *allocateOrNull(std::size_t size)
{
    return ::operator new(size, std::nothrow);
}

std::size_t addressOfOverAligned()
{
    const auto *object = new OverAligned;
    const auto address = reinterpret_cast<std::uintptr_t>(object);
    delete object;
    return address;
}

void useBigFrame()
{
    volatile char frame[bytesOfBigFrame];
    frame[0] = 1;
}
