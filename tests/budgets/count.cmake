# SPDX-License-Identifier: MIT
# Runs one workload 1,000 times and fails if each takes more than its budget and a tenth.
cmake_policy(VERSION 3.25)
set(times 1000)
execute_process(COMMAND ${VALGRIND} --tool=callgrind --toggle-collect=RunCounted
        --callgrind-out-file=${WORK}/${WORKLOAD}.callgrind ${PROGRAM} ${WORKLOAD} ${times}
    WORKING_DIRECTORY ${WORK} OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE status)
if(NOT status EQUAL 0 OR NOT err MATCHES "Collected : ([0-9]+)")
    message(FATAL_ERROR "${WORKLOAD} could not be counted:\n${out}${err}")
endif()
math(EXPR each "${CMAKE_MATCH_1} / ${times}")
math(EXPR most "${BUDGET} + ${BUDGET} / 10")
message("${WORKLOAD}: ${each} instructions, budget ${BUDGET}")
if(each GREATER most)
    message(FATAL_ERROR "${WORKLOAD} takes ${each} instructions, more than ${most}")
endif()
