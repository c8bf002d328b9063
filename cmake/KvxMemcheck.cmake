# What ctest -T memcheck runs; ./dev valgrind calls it. The exit code makes ctest's fail: definite and possible leaks are
# errors, what is still reachable at the end is Qt's.
set(MEMORYCHECK_COMMAND_OPTIONS "--error-exitcode=99 --leak-check=full --errors-for-leak-kinds=definite,possible \
--fair-sched=try --num-callers=40")
set(MEMORYCHECK_SUPPRESSIONS_FILE ${PROJECT_SOURCE_DIR}/tests/faults/valgrind-suppressions.txt)
# CTest's targets that send results to a server are none of ours.
set(CTEST_TARGETS_ADDED 1)
