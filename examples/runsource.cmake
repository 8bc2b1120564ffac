# SPDX-License-Identifier: MIT
# Runs one of the example sources and looks at its output. Behind a code in the last line may stand
# the text of the error, which is the platform's.
execute_process(COMMAND ${EMULATOR} ${PROGRAM}
    OUTPUT_VARIABLE output ERROR_VARIABLE errors RESULT_VARIABLE status)
if(NOT status EQUAL 0)
    message(FATAL_ERROR "exit status ${status}\n${errors}")
endif()
file(READ ${EXPECTED}/${NAME}.txt expected)
string(REPLACE "\r" "" output "${output}")
string(STRIP "${expected}" expected)
string(LENGTH "${expected}" length)
string(FIND "${output}" "${expected}" position)
if(position EQUAL 0)
    string(SUBSTRING "${output}" ${length} -1 rest)
endif()
if(NOT position EQUAL 0 OR NOT rest MATCHES "^( [^\n]+)?\n?$")
    message(FATAL_ERROR "expected:\n${expected}\ngot:\n${output}")
endif()
