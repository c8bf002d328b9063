# What ./dev package makes of a build: the library with kvx beside it, the interfaces as a CMake package, scenarios to
# try. For Windows with the libraries that kvx needs to start.
include(CMakePackageConfigHelpers)

set(packageFolder lib/cmake/KvxInterfaces)
install(TARGETS rv418_plugin workbench_cli
    RUNTIME DESTINATION bin
    LIBRARY DESTINATION bin)
install(TARGETS kvx_interfaces EXPORT KvxInterfaces
    FILE_SET HEADERS DESTINATION include/kvx)
install(EXPORT KvxInterfaces NAMESPACE Kvx:: DESTINATION ${packageFolder} FILE KvxInterfacesTargets.cmake)
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/KvxInterfacesConfig.cmake.in
    ${PROJECT_BINARY_DIR}/KvxInterfacesConfig.cmake INSTALL_DESTINATION ${packageFolder}
    NO_SET_AND_CHECK_MACRO NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KvxInterfacesConfigVersion.cmake
    COMPATIBILITY SameMinorVersion ARCH_INDEPENDENT)
install(FILES ${PROJECT_BINARY_DIR}/KvxInterfacesConfig.cmake ${PROJECT_BINARY_DIR}/KvxInterfacesConfigVersion.cmake
    DESTINATION ${packageFolder})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION . FILES_MATCHING PATTERN *.kvx)
install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md DESTINATION .)

if(WIN32)
    set(system windows)
    set(archiveSuffix .zip)
    set(qtNote "Qt and the compiler's runtime lie in bin/.")
    set(kvxCommand "bin\\kvx.exe")
    install(FILES $<TARGET_FILE:Qt6::Core> DESTINATION bin)
    # Debug information makes them ten times as large. Visual Studio's runtime is installed by its own installer.
    foreach(dll IN LISTS KVX_RUNTIME_DLLS)
        cmake_path(GET dll FILENAME name)
        file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/package-files)
        # strip writes the present time into the header otherwise.
        set(stripped ${PROJECT_BINARY_DIR}/package-files/${name})
        execute_process(COMMAND ${CMAKE_COMMAND} -E env SOURCE_DATE_EPOCH=0 ${CMAKE_STRIP} -o ${stripped} ${dll}
            COMMAND_ERROR_IS_FATAL ANY)
        install(FILES ${stripped} DESTINATION bin)
    endforeach()
    install(FILES ${PROJECT_SOURCE_DIR}/cmake/THIRD-PARTY.md DESTINATION .)
else()
    set(system linux)
    set(archiveSuffix .tar.gz)
    set(qtNote "Qt 6.8 or newer must be installed (Debian: libqt6core6t64), for kvx also libedit (libedit2).")
    set(kvxCommand bin/kvx)
endif()
configure_file(${CMAKE_CURRENT_LIST_DIR}/PackageReadme.md.in ${PROJECT_BINARY_DIR}/package-files/README.md @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/package-files/README.md DESTINATION .)

# CPack's own archives have the files in the order of the file system, and their owners: other bytes on each machine.
find_program(KVX_PYTHON NAMES python3 python REQUIRED)
mark_as_advanced(KVX_PYTHON)
configure_file(${CMAKE_CURRENT_LIST_DIR}/KvxPackScript.cmake.in ${PROJECT_BINARY_DIR}/package-files/pack.cmake @ONLY)
set(CPACK_GENERATOR External)
set(CPACK_EXTERNAL_ENABLE_STAGING ON)
set(CPACK_EXTERNAL_PACKAGE_SCRIPT ${PROJECT_BINARY_DIR}/package-files/pack.cmake)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(KVX_PACKAGE_NAME ${PROJECT_NAME}-${PROJECT_VERSION}-${system}-x86_64)
set(CPACK_PACKAGE_FILE_NAME ${KVX_PACKAGE_NAME})
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/package)
set(CPACK_STRIP_FILES ON)
include(CPack)
