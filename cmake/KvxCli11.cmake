# CLI11::CLI11, which is headers only. A cross build takes the build machine's, without the other headers beside
# them, which are not for its system.
if(NOT CMAKE_CROSSCOMPILING)
    find_package(CLI11 REQUIRED)
else()
    find_path(KVX_CLI11_FOLDER CLI/CLI.hpp REQUIRED NO_CMAKE_FIND_ROOT_PATH)
    mark_as_advanced(KVX_CLI11_FOLDER)
    set(folder ${PROJECT_BINARY_DIR}/cli11)
    file(MAKE_DIRECTORY ${folder})
    file(CREATE_LINK ${KVX_CLI11_FOLDER}/CLI ${folder}/CLI SYMBOLIC)
    add_library(CLI11::CLI11 INTERFACE IMPORTED)
    target_include_directories(CLI11::CLI11 SYSTEM INTERFACE ${folder})
    # The libc++ of windows/ has no <filesystem>.
    target_compile_definitions(CLI11::CLI11 INTERFACE CLI11_HAS_FILESYSTEM=0)
endif()
