#include "ProcessMemory.h"

#include <QtCore/QVarLengthArray>

#include <windows.h>

qsizetype ProcessMemory::heapBlocks()
{
    QVarLengthArray<HANDLE, 32> heaps(qsizetype(GetProcessHeaps(0, nullptr)));
    const DWORD count = GetProcessHeaps(DWORD(heaps.size()), heaps.data());
    heaps.resize(qMin(qsizetype(count), heaps.size()));
    qsizetype blocks = 0;
    for (const HANDLE heap : std::as_const(heaps)) {
        HeapLock(heap);
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heap, &entry)) {
            if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY)
                ++blocks;
        }
        HeapUnlock(heap);
    }
    return blocks;
}

// Windows gives memory to a page of a stack when it is used, if the page above has some. Where it has given
// it at once, as Wine does, a guard is put on the page, which its first use takes away.
void ProcessMemory::watchPage(void *page)
{
    DWORD former = 0;
    VirtualProtect(page, 1, PAGE_READWRITE | PAGE_GUARD, &former);
}

bool ProcessMemory::isTouched(const void *page)
{
    MEMORY_BASIC_INFORMATION information{};
    VirtualQuery(page, &information, sizeof(information));
    return information.State == MEM_COMMIT && (information.Protect & PAGE_GUARD) == 0;
}
