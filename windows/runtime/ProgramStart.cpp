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

}  // namespace

// Windows calls it to run the program.
extern "C" int mainCRTStartup()
{
    SetUnhandledExceptionFilter(onUncaught);
    _set_app_type(_crt_console_app);
    const bool isReady = _configure_narrow_argv(_crt_argv_unexpanded_arguments) == 0 &&
                         _initialize_narrow_environment() == 0 && _crt_atexit(endProgram) == 0 &&
                         runInitializers();
    if (!isReady)
        exit(cannotStart);
    initializeThread();
    exit(main(*__p___argc(), *__p___argv(), _get_initial_narrow_environment()));
}
