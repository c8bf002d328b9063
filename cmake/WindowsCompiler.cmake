# The cross compiler for Windows x86-64 with the universal C runtime, which Windows 10 and later bring along.
# KVX_WINDOWS_QT, the folder of a Qt that was built with it, is found by ./dev build windows.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32ucrt-gcc)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32ucrt-g++)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32ucrt-windres)

# Programs are the build machine's; all else is for Windows.
set(CMAKE_FIND_ROOT_PATH ${KVX_WINDOWS_QT} /usr/x86_64-w64-mingw32ucrt)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KVX_WINDOWS_QT)

# The compiler's own start-up code brings debug information along, of no use without its sources.
string(APPEND CMAKE_EXE_LINKER_FLAGS_RELEASE_INIT " -s")
string(APPEND CMAKE_SHARED_LINKER_FLAGS_RELEASE_INIT " -s")
string(APPEND CMAKE_MODULE_LINKER_FLAGS_RELEASE_INIT " -s")

# Two builds of the same sources have the same bytes.
string(APPEND CMAKE_EXE_LINKER_FLAGS_INIT " -Wl,--no-insert-timestamp")
string(APPEND CMAKE_SHARED_LINKER_FLAGS_INIT " -Wl,--no-insert-timestamp")
string(APPEND CMAKE_MODULE_LINKER_FLAGS_INIT " -Wl,--no-insert-timestamp")
