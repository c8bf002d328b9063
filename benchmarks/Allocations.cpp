#include "Allocations.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdlib>

// The C library's own allocator, by the names under which it offers it to programs with a malloc of their
// own.
extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *block, std::size_t size);
void *__libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void *block);
}

namespace {

struct Block
{
    void *address = nullptr;
    std::size_t size = 0;
};

std::atomic<std::size_t> blocksAsked{0};

// Plain arrays, because whatever allocates would call itself.
thread_local bool isNoting = false;
std::array<Block, 4096> notedBlocks;
std::size_t notedCount = 0;

void note(void *address, std::size_t size)
{
    blocksAsked.fetch_add(1, std::memory_order_relaxed);
    if (!isNoting || !address)
        return;
    if (notedCount == notedBlocks.size())
        std::abort();
    notedBlocks.at(notedCount++) = {address, size};
}

void forget(const void *address)
{
    if (!isNoting || !address)
        return;
    auto *const end = notedBlocks.begin() + notedCount;
    auto *const found = std::find_if(notedBlocks.begin(), end,
                                     [address](const Block &block) { return block.address == address; });
    if (found != end)
        *found = notedBlocks.at(--notedCount);
}

}  // namespace

std::size_t Allocations::count()
{
    return blocksAsked.load(std::memory_order_relaxed);
}

void Allocations::startNoting()
{
    notedCount = 0;
    isNoting = true;
}

Allocations::Live Allocations::stopNoting()
{
    isNoting = false;
    Live live;
    for (std::size_t index = 0; index < notedCount; ++index) {
        ++live.blocks;
        live.bytes += notedBlocks.at(index).size;
    }
    return live;
}

extern "C" {

void *malloc(std::size_t size)
{
    void *block = __libc_malloc(size);
    note(block, size);
    return block;
}

void *calloc(std::size_t count, std::size_t size)
{
    void *block = __libc_calloc(count, size);
    note(block, count * size);
    return block;
}

void *realloc(void *old, std::size_t size)
{
    forget(old);
    void *block = __libc_realloc(old, size);
    note(block, size);
    return block;
}

void *memalign(std::size_t alignment, std::size_t size)
{
    void *block = __libc_memalign(alignment, size);
    note(block, size);
    return block;
}

void *aligned_alloc(std::size_t alignment, std::size_t size)
{
    return memalign(alignment, size);
}

int posix_memalign(void **result, std::size_t alignment, std::size_t size)
{
    void *block = memalign(alignment, size);
    if (!block)
        return ENOMEM;
    *result = block;
    return 0;
}

void free(void *block)
{
    forget(block);
    __libc_free(block);
}
}
