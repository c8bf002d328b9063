#pragma once

#include <cstddef>

/// What the whole process has asked of malloc, all threads and libraries counted. The program defines malloc and
/// its kin itself, in front of the C library's.
namespace Allocations {

/// How many blocks were asked for so far.
std::size_t count();

/// Sizes as asked for, without the allocator's own overhead.
struct Live
{
    std::size_t blocks = 0;
    std::size_t bytes = 0;
};

/// Forgets what was noted and notes each block from now on, of this thread only.
void startNoting();

/// Stops, and answers what was asked for since startNoting() and not yet freed.
Live stopNoting();

}  // namespace Allocations
