#include "Allocations.h"

#include <atomic>
#include <cstdlib>
#include <malloc.h>

// The C library's own allocator, by the names under which it offers it to programs with a malloc of their
// own.
extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *block, std::size_t size);
void __libc_free(void *block);
}

namespace {

std::atomic<qint64> made{0};
std::atomic<qint64> blocks{0};
std::atomic<qint64> bytes{0};

void *noted(void *block)
{
    made.fetch_add(1, std::memory_order_relaxed);
    blocks.fetch_add(1, std::memory_order_relaxed);
    bytes.fetch_add(static_cast<qint64>(malloc_usable_size(block)), std::memory_order_relaxed);
    return block;
}

void forget(void *block)
{
    if (!block)
        return;
    blocks.fetch_sub(1, std::memory_order_relaxed);
    bytes.fetch_sub(static_cast<qint64>(malloc_usable_size(block)), std::memory_order_relaxed);
}

}  // namespace

Allocations::Count Allocations::count()
{
    return {made.load(), blocks.load(), bytes.load()};
}

extern "C" {

void *malloc(std::size_t size)
{
    return noted(__libc_malloc(size));
}

void *calloc(std::size_t count, std::size_t size)
{
    return noted(__libc_calloc(count, size));
}

void *realloc(void *old, std::size_t size)
{
    forget(old);
    return noted(__libc_realloc(old, size));
}

void free(void *block)
{
    forget(block);
    __libc_free(block);
}
}
