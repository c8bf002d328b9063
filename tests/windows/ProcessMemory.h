#pragma once

#include <QtCore/qtypes.h>

namespace ProcessMemory {

/// How many blocks are allocated in the heaps of the process.
qsizetype heapBlocks();

/// Makes isTouched() answer false for a page of the stack that nothing has been in yet.
void watchPage(void *page);
/// Whether something has used the page since.
bool isTouched(const void *page);

}  // namespace ProcessMemory
