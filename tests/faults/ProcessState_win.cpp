#include "ProcessState.h"

#include <windows.h>

bool isLibraryInProcess(const QString &fileName)
{
    return GetModuleHandleW(reinterpret_cast<const wchar_t *>(fileName.utf16())) != nullptr;
}

int openHandleCount()
{
    DWORD count = 0;
    GetProcessHandleCount(GetCurrentProcess(), &count);
    return static_cast<int>(count);
}
