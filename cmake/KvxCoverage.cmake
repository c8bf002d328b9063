# KVX_COVERAGE: the library alone is counted; the programs that load it are not. Without optimization, so that each line
# and each branch of the sources is one of the program. The counts of threads must not be lost to each other.
if(KVX_COVERAGE)
    target_compile_options(rv418_plugin PRIVATE -O0 --coverage -fprofile-update=atomic)
    target_link_options(rv418_plugin PRIVATE --coverage)
    # The notes of a compilation name its folder, which in the cache may be another checkout's.
    set_target_properties(rv418_plugin PROPERTIES CXX_COMPILER_LAUNCHER "")
endif()
