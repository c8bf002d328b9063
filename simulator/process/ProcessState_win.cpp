#include "ProcessState.h"

#include <array>

#include <windows.h>

bool isLibraryInProcess(const QString &fileName)
{
    return GetModuleHandleW(reinterpret_cast<const wchar_t *>(fileName.utf16())) != nullptr;
}

int openHandleCount()
{
    // Each is asked for, because Wine's GetProcessHandleCount() answers 0.
    constexpr quintptr step = 4;
    constexpr quintptr last = 0x10000;
    int count = 0;
    for (quintptr handle = step; handle < last; handle += step) {
        DWORD flags = 0;
        if (GetHandleInformation(reinterpret_cast<HANDLE>(handle), &flags))
            ++count;
    }
    return count;
}

std::optional<qint64> heapInUse()
{
    constexpr DWORD mostHeaps = 64;
    std::array<HANDLE, mostHeaps> heaps{};
    const DWORD count = GetProcessHeaps(mostHeaps, heaps.data());
    if (count == 0 || count > mostHeaps)
        return std::nullopt;
    qint64 bytes = 0;
    for (DWORD index = 0; index < count; ++index) {
        HANDLE heap = heaps[index];
        if (!HeapLock(heap))
            return std::nullopt;
        PROCESS_HEAP_ENTRY entry{};
        while (HeapWalk(heap, &entry)) {
            if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0)
                bytes += entry.cbData;
        }
        HeapUnlock(heap);
    }
    return bytes;
}

void fillCacheOfFreedBlocks() {}
