# The contents of the packages: library, kvx and its window, the interfaces and the simulator as a CMake package, the
# scenarios of the contract and the examples. For Windows a second package also has Qt, for machines without it.
include(CMakePackageConfigHelpers)

set(packageFolder lib/cmake/KvxInterfaces)
install(TARGETS rv418_plugin workbench_cli
    RUNTIME DESTINATION bin
    LIBRARY DESTINATION bin)
if(KVX_BUILD_WORKBENCH)
    install(TARGETS workbench_window RUNTIME DESTINATION bin)
endif()
if(KVX_BUILD_WORKBENCH AND CMAKE_SYSTEM_NAME STREQUAL "Linux")
    set(window ${PROJECT_SOURCE_DIR}/workbench/window)
    install(FILES ${window}/kvx-workbench.desktop DESTINATION share/applications)
    install(FILES ${window}/kvx-workbench.svg DESTINATION share/icons/hicolor/scalable/apps)
endif()
install(TARGETS kvx_interfaces EXPORT KvxInterfaces
    FILE_SET HEADERS DESTINATION include/kvx)
install(EXPORT KvxInterfaces NAMESPACE Kvx:: DESTINATION ${packageFolder} FILE KvxInterfacesTargets.cmake)

# The simulator is packed as sources: a static C++ library fits only the compiler and the C++ library that built it.
set(simulatorFiles)
foreach(target IN ITEMS receiver_simulator library_inspection)
    get_target_property(folder ${target} SOURCE_DIR)
    get_target_property(files ${target} SOURCES)
    cmake_path(GET folder FILENAME name)
    foreach(file IN LISTS files)
        set(destination share/kvx/${name})
        if(target STREQUAL receiver_simulator AND file MATCHES "\\.h$")
            set(destination include/kvx/${name})
        endif()
        install(FILES ${folder}/${file} DESTINATION ${destination})
        list(APPEND simulatorFiles ${destination}/${file})
    endforeach()
endforeach()
foreach(file IN ITEMS KvxSimulator.cmake KvxContractTests.cmake)
    configure_file(${CMAKE_CURRENT_LIST_DIR}/${file}.in ${PROJECT_BINARY_DIR}/${file} @ONLY)
    install(FILES ${PROJECT_BINARY_DIR}/${file} DESTINATION ${packageFolder})
endforeach()

configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/KvxInterfacesConfig.cmake.in
    ${PROJECT_BINARY_DIR}/KvxInterfacesConfig.cmake INSTALL_DESTINATION ${packageFolder} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/KvxInterfacesConfigVersion.cmake
    COMPATIBILITY SameMinorVersion ARCH_INDEPENDENT)
install(FILES ${PROJECT_BINARY_DIR}/KvxInterfacesConfig.cmake ${PROJECT_BINARY_DIR}/KvxInterfacesConfigVersion.cmake
    DESTINATION ${packageFolder})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples DESTINATION .)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/contract/ DESTINATION share/kvx/contract FILES_MATCHING PATTERN *.kvx)
install(FILES ${PROJECT_SOURCE_DIR}/workbench/check/check-report.schema.json DESTINATION share/kvx)
install(FILES ${PROJECT_SOURCE_DIR}/CHANGELOG.md ${PROJECT_SOURCE_DIR}/cmake/THIRD-PARTY.md DESTINATION .)

# kvx_write_package_readme(FILE): README.md of a package; qtNote says what must be installed for it.
function(kvx_write_package_readme file)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/PackageReadme.md.in ${file} @ONLY)
endfunction()

set(packageFiles ${PROJECT_BINARY_DIR}/package-files)
if(WIN32)
    set(system windows)
    set(archiveSuffix .zip)
    set(kvxCommand "bin\\kvx.exe")
    set(needed "Qt 6.8 for Visual Studio (MSVC 2022 64-bit) must be installed and its bin folder be in PATH")
    set(runtime "Microsoft's redistributable C++ runtime for Visual Studio 2022 (x64)")
    set(qtNote "${needed}, and ${runtime} must be installed.")
else()
    set(system linux)
    set(archiveSuffix .tar.gz)
    set(qtNote "Qt 6.8 or newer must be installed (Debian: libqt6core6t64, for the window libqt6widgets6 and libqt6svg6), \
for kvx also libedit (libedit2).")
    set(kvxCommand bin/kvx)
    set(menuNote "- `share/applications/`, `share/icons/`: the window's entry in the menu. Copy `bin/` and `share/` to \
`~/.local/` to see it there.\n")
endif()
kvx_write_package_readme(${packageFiles}/README.md)
install(FILES ${packageFiles}/README.md DESTINATION .)
if(WIN32 AND CMAKE_CROSSCOMPILING)
    set(qtNote "Qt is in bin/; ${runtime} must be installed.")
    kvx_write_package_readme(${packageFiles}/with-qt/README.md)
    # Qt's license refers to the text of the other one.
    set(qtFolder ${KVX_WINDOWS_LIBRARIES}/qt-${Qt6Core_VERSION})
    set(qtFiles $<TARGET_FILE:Qt6::Core>)
    if(KVX_BUILD_WORKBENCH)
        # Qt looks for the folders of plugins beside the program.
        file(GLOB qtPlugins ${qtFolder}/plugins/*)
        list(APPEND qtFiles $<TARGET_FILE:Qt6::Gui> $<TARGET_FILE:Qt6::Svg> $<TARGET_FILE:Qt6::Widgets> ${qtPlugins})
    endif()
    set(qtLicenses ${qtFolder}/LICENSE /usr/share/common-licenses/GPL-3)
endif()

# CPack's own archives have the files in the order of the file system, and their owners: other bytes on each machine.
find_program(KVX_PYTHON NAMES python3 python REQUIRED)
mark_as_advanced(KVX_PYTHON)
configure_file(${CMAKE_CURRENT_LIST_DIR}/KvxPackScript.cmake.in ${packageFiles}/pack.cmake.in @ONLY)
file(GENERATE OUTPUT ${packageFiles}/pack.cmake INPUT ${packageFiles}/pack.cmake.in)
set(CPACK_GENERATOR External)
set(CPACK_EXTERNAL_ENABLE_STAGING ON)
set(CPACK_EXTERNAL_PACKAGE_SCRIPT ${packageFiles}/pack.cmake)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(KVX_PACKAGE_NAME ${PROJECT_NAME}-${PROJECT_VERSION}-${system}-x86_64)
set(CPACK_PACKAGE_FILE_NAME ${KVX_PACKAGE_NAME})
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/package)
set(CPACK_STRIP_FILES ON)
include(CPack)
