# kvx_leave_out_test(name REASON): says at configuration that a test does not run in this build, and why. The count of
# tests is compared with those that are left out known by name (tools/check-test-count).
function(kvx_leave_out_test name reason)
    message(STATUS "${name} is left out: ${reason}")
    set_property(GLOBAL APPEND_STRING PROPERTY KVX_LEFT_OUT_TESTS "${name} ${reason}\n")
endfunction()

# Once, when all tests were added.
function(kvx_write_left_out_tests)
    get_property(tests GLOBAL PROPERTY KVX_LEFT_OUT_TESTS)
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/left-out-tests.txt CONTENT "${tests}")
endfunction()
