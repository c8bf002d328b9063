#pragma once

/// Blocks of the C heap that are allocated and not freed, in the whole process, Qt and the loaded libraries included.
/// Exact while no other thread is running.
long outstandingBlocks();

/// The same in bytes, as the heap has them: a block may be a little larger than what was asked for.
long outstandingBytes();
