# Windows programs run under Wine. By hand: ./dev exec build/windows/wine-run build/windows/kvx.exe session
set(dllFolders $<TARGET_FILE_DIR:Qt6::Core>)
foreach(dll IN ITEMS libstdc++-6.dll libgcc_s_seh-1.dll libwinpthread-1.dll)
    execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-file-name=${dll}
        OUTPUT_VARIABLE path OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    if(NOT IS_ABSOLUTE ${path})
        message(FATAL_ERROR "the compiler ${CMAKE_CXX_COMPILER} has no ${dll} for its programs to run with")
    endif()
    file(REAL_PATH ${path} path)
    list(APPEND KVX_RUNTIME_DLLS ${path})
    cmake_path(GET path PARENT_PATH folder)
    list(APPEND dllFolders ${folder})
endforeach()
list(REMOVE_DUPLICATES dllFolders)
list(TRANSFORM dllFolders REPLACE "(.+)" "--dlls '\\1'")
list(JOIN dllFolders " " dllFolders)

file(GENERATE OUTPUT ${PROJECT_BINARY_DIR}/wine-run
    CONTENT "#!/bin/sh
exec '${PROJECT_SOURCE_DIR}/tools/wine-run' ${dllFolders} \"$@\"
"
    FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CMAKE_CROSSCOMPILING_EMULATOR ${PROJECT_BINARY_DIR}/wine-run)
