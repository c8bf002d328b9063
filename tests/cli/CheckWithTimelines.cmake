# cmake -DTIMELINES=folder -DKVX=command -DLIBRARY=file -P CheckWithTimelines.cmake
#
# Runs kvx check. The folder is emptied first; then the timelines of all scenarios are in it.
file(REMOVE_RECURSE ${TIMELINES})
file(MAKE_DIRECTORY ${TIMELINES})
set(ENV{KVX_TIMELINE_FOLDER} ${TIMELINES})
# Most of a scenario is waiting.
execute_process(COMMAND ${KVX} check ${LIBRARY} --jobs 4 COMMAND_ERROR_IS_FATAL ANY)
