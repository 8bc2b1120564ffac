# SPDX-License-Identifier: MIT
# Stores the changes of the example service in its configuration, or takes something out of it, and
# compares the lines and the document with those that are expected.
set(base ${CMAKE_CURRENT_LIST_DIR}/service-configuration.xml)
set(changes ${CMAKE_CURRENT_LIST_DIR}/service-changes.xml)
set(listeners ${CMAKE_CURRENT_LIST_DIR}/service-listeners.xml)
set(name service-${STEP})
file(MAKE_DIRECTORY ${OUT})
file(REMOVE ${OUT}/${name}.xml)

set(status_expected 0)
if(STEP STREQUAL stored)
    set(arguments store ${base} ${changes} --watch)
elseif(STEP STREQUAL replaced)
    set(arguments store ${base} ${listeners} --mode replace-all --watch)
elseif(STEP STREQUAL vetoed)
    set(arguments store ${base} ${changes} --watch --veto "\\orders\\limits")
    set(status_expected 1)
elseif(STEP STREQUAL selected)
    set(arguments select ${base} "\\orders\\listeners" --children --depth 0)
else()
    set(arguments delete ${base} "\\orders\\listeners")
endif()

execute_process(COMMAND ${EMULATOR} ${PROGRAM} ${arguments} --indent -o ${OUT}/${name}.xml
    OUTPUT_VARIABLE lines ERROR_VARIABLE errors RESULT_VARIABLE status)
if(NOT status EQUAL status_expected)
    message(FATAL_ERROR "${arguments}: exit status ${status}\n${errors}")
endif()

set(expected "")
if(EXISTS ${EXPECTED}/${name}.txt)
    file(READ ${EXPECTED}/${name}.txt expected)
    file(WRITE ${OUT}/${name}.txt "${lines}")
endif()
if(NOT lines STREQUAL expected)
    message(FATAL_ERROR "${arguments}: expected:\n${expected}\ngot:\n${lines}")
endif()

if(status EQUAL 0)
    execute_process(
        COMMAND ${CMAKE_COMMAND} -E compare_files ${OUT}/${name}.xml ${EXPECTED}/${name}.xml
        RESULT_VARIABLE difference)
    if(NOT difference EQUAL 0)
        message(FATAL_ERROR "${arguments}: ${name}.xml is not what is expected")
    endif()
elseif(EXISTS ${OUT}/${name}.xml)
    message(FATAL_ERROR "${arguments}: a group that failed was written")
endif()
