#include "StandardStreams.h"

#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <io.h>

#include <windows.h>

namespace {

// The console outlives the program, and its code pages are the user's. 0 where there is no console.
UINT outputCodePage = 0;
UINT inputCodePage = 0;

void restoreCodePages()
{
    if (outputCodePage != 0)
        SetConsoleOutputCP(outputCodePage);
    if (inputCodePage != 0)
        SetConsoleCP(inputCodePage);
}

}  // namespace

void unifyStandardStreams()
{
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    _setmode(_fileno(stderr), _O_BINARY);
    outputCodePage = GetConsoleOutputCP();
    inputCodePage = GetConsoleCP();
    SetConsoleOutputCP(CP_UTF8);
    SetConsoleCP(CP_UTF8);
    std::atexit(restoreCodePages);
}
