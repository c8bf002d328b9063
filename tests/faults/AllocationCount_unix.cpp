#include "AllocationCount.h"

#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <malloc.h>

// The program has allocation functions of its own, which count and call those of the C library. These are
// under the names that it keeps for programs with functions of their own.
extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *block, std::size_t size);
void *__libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void *block);
}

namespace {

std::atomic<long> outstanding{0};
std::atomic<long> outstandingSize{0};

long sizeOf(void *block)
{
    return static_cast<long>(malloc_usable_size(block));
}

void *counted(void *block)
{
    if (block) {
        outstanding.fetch_add(1, std::memory_order_relaxed);
        outstandingSize.fetch_add(sizeOf(block), std::memory_order_relaxed);
    }
    return block;
}

}  // namespace

long outstandingBlocks()
{
    return outstanding.load(std::memory_order_relaxed);
}

long outstandingBytes()
{
    return outstandingSize.load(std::memory_order_relaxed);
}

extern "C" {

[[gnu::visibility("default")]] void *malloc(std::size_t size) noexcept
{
    return counted(__libc_malloc(size));
}

[[gnu::visibility("default")]] void *calloc(std::size_t count, std::size_t size) noexcept
{
    return counted(__libc_calloc(count, size));
}

[[gnu::visibility("default")]] void *realloc(void *block, std::size_t size) noexcept
{
    if (!block)
        return malloc(size);
    if (size == 0) {
        free(block);
        return nullptr;
    }
    const long before = sizeOf(block);
    void *moved = __libc_realloc(block, size);
    if (moved)
        outstandingSize.fetch_add(sizeOf(moved) - before, std::memory_order_relaxed);
    return moved;
}

[[gnu::visibility("default")]] void free(void *block) noexcept
{
    if (!block)
        return;
    outstanding.fetch_sub(1, std::memory_order_relaxed);
    outstandingSize.fetch_sub(sizeOf(block), std::memory_order_relaxed);
    __libc_free(block);
}

[[gnu::visibility("default")]] void *memalign(std::size_t alignment, std::size_t size) noexcept
{
    return counted(__libc_memalign(alignment, size));
}

[[gnu::visibility("default")]] void *aligned_alloc(std::size_t alignment, std::size_t size) noexcept
{
    return counted(__libc_memalign(alignment, size));
}

[[gnu::visibility("default")]] int posix_memalign(void **block, std::size_t alignment,
                                                  std::size_t size) noexcept
{
    *block = counted(__libc_memalign(alignment, size));
    return *block ? 0 : ENOMEM;
}

}  // extern "C"
