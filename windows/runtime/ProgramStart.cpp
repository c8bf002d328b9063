#include "Initializers.h"

#include <corecrt_startup.h>
#include <stdlib.h>

int main(int argumentCount, char **arguments, char **environment);

namespace {

constexpr int cannotStart = 255;

void endProgram()
{
    endThread();
    runExitFunctions();
}

} // namespace

// Windows calls it to run the program.
extern "C" int mainCRTStartup()
{
    _set_app_type(_crt_console_app);
    const bool isReady = _configure_narrow_argv(_crt_argv_unexpanded_arguments) == 0
        && _initialize_narrow_environment() == 0 && _crt_atexit(endProgram) == 0 && runInitializers();
    if (!isReady)
        return cannotStart;
    initializeThread();
    exit(main(*__p___argc(), *__p___argv(), _get_initial_narrow_environment()));
}
