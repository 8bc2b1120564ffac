# SPDX-License-Identifier: MIT
# Depth of a document costs no stack: the deepest one that can be read, and one that is deeper.
include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

function(write_deep name levels)
    string(REPEAT "<n n=\"d\">" ${levels} opening)
    string(REPEAT "</n>" ${levels} closing)
    write(${name} "<nr>${opening}${closing}</nr>")
endfunction()

write_deep(deep.xml 99999) # and the root
treevault(check deep.xml)
expect_success()
expect_output("deep.xml: 1 top-level node, 99999 nodes, 0 attributes\n")
treevault(rewrite deep.xml -o out.xml)
expect_success()
file(SIZE ${WORK}/out.xml size)
math(EXPR expected "2 * 4 + 1 + 99998 * 13 + 10") # the innermost node is an empty element
if(NOT size EQUAL expected)
    message(SEND_ERROR "out.xml has ${size} bytes, not ${expected}")
endif()

# Lines further in than forty levels stand no further in.
treevault(show deep.xml)
expect_success()
string(REPEAT " " 80 clamped)
string(LENGTH "${out}" length)
string(FIND "${out}" "\n${clamped}d\n${clamped}[41] d\n${clamped}[42] d\n" position)
if(position EQUAL -1)
    fail("level 41 is not marked")
endif()
expect_output_matches("\n${clamped}.99998. d\n$")

write_deep(deeper.xml 100000)
treevault(check deeper.xml)
expect_failure(1 "deeper.xml: 0x80040208 The XML text is not well-formed \\(nesting too deep\\)")
