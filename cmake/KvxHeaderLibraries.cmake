# kvx_find_headers(NAME FOLDER HEADER): NAME::NAME, a library of headers only, all in FOLDER, one of them HEADER. A cross
# build takes the build machine's, without the other headers beside the folder, which are not for its system.
function(kvx_find_headers name folder header)
    set(variable KVX_${name}_INCLUDE_DIR)
    if(NOT CMAKE_CROSSCOMPILING)
        find_path(${variable} ${folder}/${header} REQUIRED)
        set(includeFolder ${${variable}})
    else()
        find_path(${variable} ${folder}/${header} REQUIRED NO_CMAKE_FIND_ROOT_PATH)
        set(includeFolder ${PROJECT_BINARY_DIR}/headers/${name})
        file(MAKE_DIRECTORY ${includeFolder})
        file(CREATE_LINK ${${variable}}/${folder} ${includeFolder}/${folder} SYMBOLIC)
    endif()
    mark_as_advanced(${variable})
    add_library(${name}::${name} INTERFACE IMPORTED GLOBAL)
    target_include_directories(${name}::${name} SYSTEM INTERFACE ${includeFolder})
endfunction()

kvx_find_headers(CLI11 CLI CLI.hpp)
if(CMAKE_CROSSCOMPILING)
    # The libc++ of windows/ has no <filesystem>.
    target_compile_definitions(CLI11::CLI11 INTERFACE CLI11_HAS_FILESYSTEM=0)
endif()
kvx_find_headers(mustache kainjow mustache.hpp)
kvx_find_headers(tomlplusplus toml++ toml.h)
# Errors are values, and nothing writes TOML.
target_compile_definitions(tomlplusplus::tomlplusplus INTERFACE TOML_EXCEPTIONS=0 TOML_ENABLE_FORMATTERS=0)
