# SPDX-License-Identifier: MIT
# On a terminal: colours unless they are refused, and a line of progress for a large file.
include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)
find_program(SCRIPT_PROGRAM script)
if(NOT SCRIPT_PROGRAM)
    message(STATUS "there is no program to make a terminal with")
    return()
endif()

# on_terminal(ENVIRONMENT COMMAND): `out` is what the terminal sees.
function(on_terminal environment command)
    execute_process(COMMAND env -u NO_COLOR TERM=xterm ${environment}
        ${SCRIPT_PROGRAM} -qec "${PROGRAM} ${command}" /dev/null
        WORKING_DIRECTORY ${WORK} OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE status)
    string(REPLACE "\r\n" "\n" out "${out}") # a terminal's line ends
    drop_log_reports(out) # the terminal shows both streams
    set(out "${out}" PARENT_SCOPE)
    set(err "${err}" PARENT_SCOPE)
    set(status "${status}" PARENT_SCOPE)
    set(ran " ${command}" PARENT_SCOPE)
endfunction()

string(ASCII 27 escape)
write(one.xml [[<nr><n n="a"/></nr>]])
on_terminal("" "show one.xml")
expect_status(0)
expect_output("${escape}[1ma${escape}[0m\n")
on_terminal("NO_COLOR=" "show one.xml")
expect_output("${escape}[1ma${escape}[0m\n")
on_terminal("NO_COLOR=1" "show one.xml")
expect_output("a\n")
on_terminal("TERM=dumb" "show one.xml")
expect_output("a\n")

# Small files pass without a word; the line of a large one is wiped out at the end.
on_terminal("" "check one.xml")
expect_output("one.xml: 1 top-level node, 1 node, 0 attributes\n")
string(REPEAT "<n n=\"abcdefgh\"/>" 400000 nodes)
write(large.xml "<nr>${nodes}</nr>")
on_terminal("" "rewrite large.xml -o out.xml")
expect_status(0)
expect_output_matches("^\rreading large.xml: 1 MiB of 6 MiB${escape}.K")
expect_output_matches("${escape}.K$")
on_terminal("" "rewrite large.xml -o out.xml 2> err.txt")
expect_output("")
file(READ ${WORK}/err.txt progress)
drop_log_reports(progress)
if(NOT progress STREQUAL "")
    fail("progress went to a file")
endif()
