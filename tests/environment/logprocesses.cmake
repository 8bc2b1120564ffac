# SPDX-License-Identifier: MIT
# Four processes of four threads each write to one log file; every line is there, once and whole.
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})
set(write ${EMULATOR} ${PROGRAM} write ${WORK}/common.log)
# Commands of one call run at the same time.
execute_process(
    COMMAND ${write} 0 4 2000
    COMMAND ${write} 1 4 2000
    COMMAND ${write} 2 4 2000
    COMMAND ${write} 3 4 2000
    RESULTS_VARIABLE results)
if(NOT results STREQUAL "0;0;0;0")
    message(FATAL_ERROR "the processes ended with ${results}")
endif()
execute_process(COMMAND ${EMULATOR} ${PROGRAM} check ${WORK}/common.log 4 4 2000
    RESULT_VARIABLE result)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "lines are not whole")
endif()
