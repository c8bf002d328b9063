#include "Initializers.h"

#include <corecrt_startup.h>
#include <exception>
#include <stdlib.h>

#include <windows.h>

int main(int argumentCount, char **arguments, char **environment);

namespace {

constexpr int cannotStart = 255;
constexpr DWORD codeOfExceptions = 0xE06D7363;

// Without it Windows ends the process with the code as its exit code, and nobody calls the terminate handler.
LONG WINAPI onUncaught(EXCEPTION_POINTERS *pointers)
{
    if (pointers->ExceptionRecord->ExceptionCode == codeOfExceptions)
        std::terminate();
    return EXCEPTION_CONTINUE_SEARCH;
}

void endProgram()
{
    endThread();
    runExitFunctions();
}

[[noreturn]] void runProgram(_crt_app_type type)
{
    SetUnhandledExceptionFilter(onUncaught);
    _set_app_type(type);
    const bool isReady = _configure_narrow_argv(_crt_argv_unexpanded_arguments) == 0 &&
                         _initialize_narrow_environment() == 0 && _crt_atexit(endProgram) == 0 &&
                         runInitializers();
    if (!isReady)
        exit(cannotStart);
    initializeThread();
    exit(main(*__p___argc(), *__p___argv(), _get_initial_narrow_environment()));
}

}  // namespace

// Windows calls the first to run a program of the console, the second for one with windows.

extern "C" void mainCRTStartup()
{
    runProgram(_crt_console_app);
}

extern "C" void WinMainCRTStartup()
{
    runProgram(_crt_gui_app);
}
