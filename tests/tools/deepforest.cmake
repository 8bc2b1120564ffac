# SPDX-License-Identifier: MIT
# store, select and delete with documents as deep as they can be read: depth costs no stack.
include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

set(levels 99998) # and the root, and an attribute at the bottom
string(REPEAT "<n n=\"d\">" ${levels} opening)
string(REPEAT "</n>" ${levels} closing)
string(REPEAT "\\d" ${levels} path)
write(deep.xml "<nr>${opening}${closing}</nr>")
write(leaf.xml "<nr>${opening}<a n=\"x\" v=\"1\"/>${closing}</nr>")

# Whole, the innermost node is an empty element or holds the attribute.
math(EXPR empty "${levels} * 13 - 3 + 9")
math(EXPR changed "${levels} * 13 + 16 + 9")

function(expect_size name expected)
    file(SIZE ${WORK}/${name} size)
    if(NOT size EQUAL expected)
        fail("${name} has ${size} bytes, not ${expected}")
    endif()
endfunction()

treevault(store deep.xml deep.xml --watch -o out.xml)
expect_success()
expect_output("start\npre-commit\nfinish: success\n")
expect_size(out.xml ${empty})
foreach(mode merge-all replace-all)
    treevault(store deep.xml leaf.xml --mode ${mode} --watch -o out.xml)
    expect_success()
    expect_output("start\n  changed ${path} @x\npre-commit\nfinish: success\n")
    expect_size(out.xml ${changed})
endforeach()
# A change at the very bottom is undone, and the node that is refused later stays.
write(refused.xml "<nr>${opening}<a n=\"x\" v=\"1\"/>${closing}<n n=\"z\"/></nr>")
treevault(store deep.xml refused.xml --veto "\\z" --no-atomicity -o out.xml)
expect_failure(1 "vetoed")
math(EXPR refused "${empty} + 10")
expect_size(out.xml ${refused})

string(REPEAT "\\d" 10000 path) # a command line holds no longer one on every platform
treevault(select leaf.xml "${path}" --depth 1)
expect_success()
expect_output("<nr><n n=\"${path}\"><n n=\"d\"/></n></nr>")
treevault(select deep.xml "\\d" -o out.xml)
expect_success()
math(EXPR named "${empty} + 1") # the name begins with a separator
expect_size(out.xml ${named})
treevault(delete deep.xml "\\d\\d" -o out.xml)
expect_success()
expect_text(out.xml "<nr><n n=\"d\"/></nr>")
