# clang-cl and lld-link, for Windows x86-64 with Microsoft's ABI: CMake takes the branches of Visual Studio (MSVC is
# true). The headers of the C library and of Windows are Wine's, those of the C++ library LLVM's. KVX_WINDOWS_LIBRARIES,
# the folder with Qt, libc++ and the import libraries, is found by ./dev build windows.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR AMD64)
set(CMAKE_C_COMPILER clang-cl-19)
set(CMAKE_CXX_COMPILER clang-cl-19)
set(CMAKE_LINKER lld-link-19)
set(CMAKE_AR llvm-lib-19)
set(CMAKE_RC_COMPILER llvm-rc-19)
set(CMAKE_MT llvm-mt-19)
set(CMAKE_C_COMPILER_TARGET x86_64-pc-windows-msvc)
set(CMAKE_CXX_COMPILER_TARGET x86_64-pc-windows-msvc)
set(CMAKE_MSVC_RUNTIME_LIBRARY MultiThreadedDLL)
set(CMAKE_MSVC_DEBUG_INFORMATION_FORMAT "")

list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES KVX_WINDOWS_LIBRARIES)
# The libraries that a program needs are built with this file, too.
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

# Programs are the build machine's; all else is for Windows.
set(CMAKE_FIND_ROOT_PATH ${KVX_WINDOWS_LIBRARIES})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(Qt6_DIR ${CMAKE_CURRENT_LIST_DIR}/Qt6 CACHE PATH "Qt for Windows, in CMake's words")

set(wine /usr/include/wine/wine)
set(llvm /usr/lib/llvm-19)
set(cFolders ${CMAKE_CURRENT_LIST_DIR}/include ${llvm}/lib/clang/19/include ${wine}/msvcrt ${wine}/windows)
list(TRANSFORM cFolders REPLACE "(.+)" "-imsvc \"\\1\"")
list(JOIN cFolders " " cFolders)

# WINE_UNICODE_NATIVE makes WCHAR a wchar_t. Stack cookies need start-up code that windows/runtime/ leaves out.
set(common "/X -nobuiltininc -fms-compatibility-version=19.40 /GS- /Brepro")
string(APPEND common " -D_UCRT -DWINE_UNICODE_NATIVE -DUNICODE -D_UNICODE")
set(CMAKE_C_FLAGS_INIT "${common} ${cFolders}")
set(CMAKE_CXX_FLAGS_INIT "${common} -D_LIBCPP_NO_VCRUNTIME -D_LIBCPP_DISABLE_VISIBILITY_ANNOTATIONS")
string(APPEND CMAKE_CXX_FLAGS_INIT " -D_LIBCPP_NO_AUTO_LINK -imsvc ${llvm}/include/c++/v1 ${cFolders}")

set(CMAKE_RC_FLAGS_INIT "-I ${wine}/windows -I ${wine}/msvcrt")

# /Brepro: two builds of the same sources have the same bytes.
set(linking "/nodefaultlib /Brepro \"/libpath:${KVX_WINDOWS_LIBRARIES}/lib\"")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${linking}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${linking}")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "${linking}")
# For C as well: the runtime ends a program by std::terminate().
set(CMAKE_CXX_STANDARD_LIBRARIES "kvx_runtime.lib libc++.lib MSVCP140.lib VCRUNTIME140.lib ucrtbase.lib KERNEL32.lib")
set(CMAKE_C_STANDARD_LIBRARIES "${CMAKE_CXX_STANDARD_LIBRARIES}")
