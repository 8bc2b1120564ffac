# SPDX-License-Identifier: MIT
# The samples of the README are the sources that are built and run, and what it shows of a store is
# what is printed.
file(READ ${README} readme)
foreach(sample c/hello.c cpp/hello.cpp)
    file(READ ${CMAKE_CURRENT_LIST_DIR}/${sample} source)
    string(FIND "${source}" "#include" start)
    string(SUBSTRING "${source}" ${start} -1 source)
    string(FIND "${readme}" "${source}" position)
    if(position EQUAL -1)
        message(SEND_ERROR "README.md does not hold ${sample} as it is")
    endif()
endforeach()
file(READ ${CMAKE_CURRENT_LIST_DIR}/expected/service-stored.txt lines)
string(FIND "${readme}" "```text\n${lines}```\n" position)
if(position EQUAL -1)
    message(SEND_ERROR "README.md does not hold the lines of a store")
endif()
