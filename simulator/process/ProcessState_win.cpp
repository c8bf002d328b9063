#include "ProcessState.h"

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
    // HeapWalk() shows a region of small blocks as one block in use, however many of them are.
    return std::nullopt;
}

void fillCacheOfFreedBlocks() {}
