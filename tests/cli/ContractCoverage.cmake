# cmake -DKVX=command -DCONTRACT=folder -DTIMELINES=folder -DCOVERAGE=command -P ContractCoverage.cmake
#
# Plays each scenario of the contract and fails when together they miss a part of it. TIMELINES is emptied first.
file(REMOVE_RECURSE ${TIMELINES})
file(MAKE_DIRECTORY ${TIMELINES})
set(ENV{KVX_TIMELINE_FOLDER} ${TIMELINES})
file(GLOB_RECURSE scenarios ${CONTRACT}/*.kvx)
foreach(scenario IN LISTS scenarios)
    execute_process(COMMAND ${KVX} run --steps ${scenario} OUTPUT_QUIET RESULT_VARIABLE code)
    if(NOT code EQUAL 0)
        message(FATAL_ERROR "${scenario} ends with ${code}; run it without --steps to see why")
    endif()
endforeach()
execute_process(COMMAND ${COVERAGE} ${TIMELINES} COMMAND_ERROR_IS_FATAL ANY)
