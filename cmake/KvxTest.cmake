# kvx_add_test(tst_Name [SOURCES file...] [LIBRARIES target...] [NO_MEMCHECK])
#
# A Qt Test program from tst_Name.cpp: file, class, target and ctest name are the same word. It gets the path
# of the library under test, so that the same program can test any build of it, and writes its results to
# test-results/ in the build folder.
#
# ./dev valgrind runs it as tst_Name.memcheck.
function(kvx_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "NO_MEMCHECK" "" "SOURCES;LIBRARIES")
    add_executable(${name} ${name}.cpp ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE Qt6::Test test_support kvx_warnings ${arg_LIBRARIES})
    add_dependencies(${name} rv418_plugin)
    set(results ${PROJECT_BINARY_DIR}/test-results/${name})
    set(plainResults -)
    if(CMAKE_CROSSCOMPILING_EMULATOR)
        # Under Wine what Qt Test prints does not get out of the program.
        set(plainResults ${results}.txt)
        set_property(TARGET ${name} APPEND PROPERTY CROSSCOMPILING_EMULATOR --show ${plainResults})
    endif()
    add_test(NAME ${name} COMMAND ${name} -o ${results}.xml,junitxml -o ${plainResults},txt)
    set_tests_properties(${name} PROPERTIES TIMEOUT 300)
    if(NOT arg_NO_MEMCHECK)
        # The configuration keeps it out of every other run. What a plain build plays thousands of times it plays less
        # often.
        add_test(NAME ${name}.memcheck CONFIGURATIONS MemCheck COMMAND ${name})
        set_tests_properties(${name}.memcheck PROPERTIES
            LABELS memcheck
            ENVIRONMENT "KVX_MODEL_OPERATIONS=2000;KVX_LIFECYCLE_ROUNDS=20;QTEST_FUNCTION_TIMEOUT=3600000"
            TIMEOUT 3600)
    endif()
endfunction()
