# Windows programs run under Wine. By hand: ./dev exec build/windows/wine-run build/windows/kvx.exe session
file(GENERATE OUTPUT ${PROJECT_BINARY_DIR}/wine-run
    CONTENT "#!/bin/sh
exec '${PROJECT_SOURCE_DIR}/tools/wine-run' --runtime '${KVX_WINDOWS_LIBRARIES}/microsoft-runtime' \
    --dlls '$<TARGET_FILE_DIR:Qt6::Core>' \"$@\"
"
    FILE_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CMAKE_CROSSCOMPILING_EMULATOR ${PROJECT_BINARY_DIR}/wine-run)
