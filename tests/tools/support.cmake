# SPDX-License-Identifier: MIT
# How the tests of the program run it and look at the outcome. Each script works in a folder of its
# own, which is empty at the start.
cmake_policy(VERSION 3.25)
file(REMOVE_RECURSE ${WORK})
file(MAKE_DIRECTORY ${WORK})

# drop_log_reports(VARIABLE): what the log tells of its own file is no word of the program's.
function(drop_log_reports variable)
    string(REGEX REPLACE "FileLogger: [^\n]*\n" "" text "${${variable}}")
    set(${variable} "${text}" PARENT_SCOPE)
endfunction()

# treevault(ARGUMENT... [INPUT FILE]): runs the program; `out`, `err` and `status` tell the outcome.
function(treevault)
    set(arguments "")
    set(input "")
    foreach(index RANGE 1 ${ARGC})
        math(EXPR index "${index} - 1")
        if("${ARGV${index}}" STREQUAL "INPUT")
            math(EXPR next "${index} + 1")
            set(input INPUT_FILE "${ARGV${next}}")
            break()
        endif()
        string(APPEND arguments " [==[${ARGV${index}}]==]")
    endforeach()
    # Evaluated, because a list loses empty arguments and takes semicolons for separators.
    cmake_language(EVAL CODE "
        execute_process(COMMAND ${EMULATOR_COMMAND} [==[${PROGRAM}]==] ${arguments} ${input}
            WORKING_DIRECTORY [==[${WORK}]==]
            OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE status)")
    drop_log_reports(err)
    set(out "${out}" PARENT_SCOPE)
    set(err "${err}" PARENT_SCOPE)
    set(status "${status}" PARENT_SCOPE)
    set(ran "${arguments}" PARENT_SCOPE)
endfunction()
string(REPLACE ";" " " EMULATOR_COMMAND "${EMULATOR}")

function(fail what)
    message(SEND_ERROR "treevault${ran}: ${what}\nstatus ${status}\nout:\n${out}\nerr:\n${err}")
endfunction()

function(expect_status expected)
    if(NOT "${status}" STREQUAL "${expected}")
        fail("the status is not ${expected}")
    endif()
endfunction()

function(expect_output expected)
    if(NOT "${out}" STREQUAL "${expected}")
        fail("the output is not:\n${expected}")
    endif()
endfunction()

function(expect_output_matches pattern)
    if(NOT "${out}" MATCHES "${pattern}")
        fail("the output does not match: ${pattern}")
    endif()
endfunction()

# A failure says something on standard error, and nothing on standard output.
function(expect_failure expected pattern)
    expect_status(${expected})
    if(NOT "${err}" MATCHES "${pattern}")
        fail("the message does not match: ${pattern}")
    endif()
    expect_output("")
endfunction()

function(expect_success)
    expect_status(0)
    if(NOT "${err}" STREQUAL "")
        fail("there is a message")
    endif()
endfunction()

# The bytes of a file of the folder, as hexadecimal digits or as text.
function(expect_hex name expected)
    file(READ ${WORK}/${name} bytes HEX)
    if(NOT bytes STREQUAL "${expected}")
        fail("${name} holds ${bytes}, not ${expected}")
    endif()
endfunction()

function(expect_text name expected)
    string(HEX "${expected}" hex)
    expect_hex(${name} "${hex}")
endfunction()

# Nothing but these files is in the folder.
function(expect_files)
    file(GLOB names RELATIVE ${WORK} ${WORK}/*)
    list(SORT names)
    set(expected ${ARGN})
    list(SORT expected)
    if(NOT "${names}" STREQUAL "${expected}")
        fail("the folder holds ${names}, not ${expected}")
    endif()
endfunction()

function(write name text)
    file(WRITE ${WORK}/${name} "${text}")
endfunction()
