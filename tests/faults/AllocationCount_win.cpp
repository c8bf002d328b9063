#include "AllocationCount.h"

#include <atomic>
#include <cstring>

#include <windows.h>

// The C runtime takes all blocks from Windows. Its imported functions for that are replaced by ones that
// count, whoever in the process calls malloc() and whenever it was loaded. Walking the heap would not do:
// Wine shows many small blocks as one.

namespace {

std::atomic<long> outstanding{0};
std::atomic<long> outstandingSize{0};

decltype(&HeapAlloc) systemAlloc = nullptr;
decltype(&HeapReAlloc) systemReAlloc = nullptr;
decltype(&HeapFree) systemFree = nullptr;

long sizeOf(HANDLE heap, const void *block)
{
    return static_cast<long>(HeapSize(heap, 0, block));
}

void *WINAPI countedAlloc(HANDLE heap, DWORD flags, SIZE_T size)
{
    void *block = systemAlloc(heap, flags, size);
    if (block) {
        ++outstanding;
        outstandingSize += sizeOf(heap, block);
    }
    return block;
}

void *WINAPI countedReAlloc(HANDLE heap, DWORD flags, void *block, SIZE_T size)
{
    const long before = sizeOf(heap, block);
    void *moved = systemReAlloc(heap, flags, block, size);
    if (moved)
        outstandingSize += sizeOf(heap, moved) - before;
    return moved;
}

BOOL WINAPI countedFree(HANDLE heap, DWORD flags, void *block)
{
    if (block) {
        --outstanding;
        outstandingSize -= sizeOf(heap, block);
    }
    return systemFree(heap, flags, block);
}

template <typename Function>
void replace(ULONGLONG &entry, Function &original, Function replacement)
{
    DWORD protection = 0;
    VirtualProtect(&entry, sizeof(entry), PAGE_READWRITE, &protection);
    original = reinterpret_cast<Function>(entry);
    entry = reinterpret_cast<ULONGLONG>(replacement);
    VirtualProtect(&entry, sizeof(entry), protection, &protection);
}

void replaceByName(const char *name, ULONGLONG &entry)
{
    if (std::strcmp(name, "HeapAlloc") == 0)
        replace(entry, systemAlloc, countedAlloc);
    else if (std::strcmp(name, "HeapReAlloc") == 0)
        replace(entry, systemReAlloc, countedReAlloc);
    else if (std::strcmp(name, "HeapFree") == 0)
        replace(entry, systemFree, countedFree);
}

template <typename Type>
Type *at(HMODULE module, ULONGLONG offset)
{
    return reinterpret_cast<Type *>(reinterpret_cast<char *>(module) + offset);
}

bool replaceImports(HMODULE module)
{
    const auto *dos = at<const IMAGE_DOS_HEADER>(module, 0);
    const auto *headers = at<const IMAGE_NT_HEADERS64>(module, static_cast<ULONGLONG>(dos->e_lfanew));
    const auto &directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const auto *library = at<const IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress);
    for (; library->Name != 0; ++library) {
        const auto *names = at<const IMAGE_THUNK_DATA64>(module, library->OriginalFirstThunk);
        auto *entries = at<IMAGE_THUNK_DATA64>(module, library->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++entries) {
            if (!IMAGE_SNAP_BY_ORDINAL64(names->u1.Ordinal))
                replaceByName(at<const IMAGE_IMPORT_BY_NAME>(module, names->u1.AddressOfData)->Name,
                              entries->u1.Function);
        }
    }
    return systemAlloc && systemReAlloc && systemFree;
}

const bool isCounting = replaceImports(GetModuleHandleW(L"ucrtbase.dll"));

}  // namespace

long outstandingBlocks()
{
    return isCounting ? outstanding.load() : 0;
}

long outstandingBytes()
{
    return isCounting ? outstandingSize.load() : 0;
}
