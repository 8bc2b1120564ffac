# SPDX-License-Identifier: MIT
# select: a node or its children, how deep, and that they can be stored where they were.
include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

write(tree.xml [[<nr><n n="b"/><n n="a" t="k"><a n="x" t="3" v="1"/><n n="d"><n n="e"><n n="f"/></n></n><n n="c"/></n>
<n n="\far\away"/></nr>]])

# expect_selected(OUTPUT ARGUMENT...)
function(expect_selected expected)
    treevault(select tree.xml ${ARGN})
    expect_success()
    expect_output("${expected}")
endfunction()

set(d [[<n n="d"><n n="e"><n n="f"/></n></n>]])
set(pathd [[<n n="\a\d"><n n="e"><n n="f"/></n></n>]])
expect_selected("<nr>${pathd}</nr>" "\\a\\d")
expect_selected("<nr>${pathd}</nr>" "\\\\a\\\\d")
expect_selected("<nr><n n=\"\\a\" t=\"k\"><a n=\"x\" t=\"3\" v=\"1\"/>${d}<n n=\"c\"/></n></nr>" "\\a")
expect_selected([[<nr><n n="\far"><n n="away"/></n></nr>]] "\\far")

# Children in their order, roots in the order of their names.
expect_selected("<nr>${pathd}<n n=\"\\a\\c\"/></nr>" "\\a" --children)
treevault(select tree.xml "\\" --children --depth 0)
expect_success()
expect_output([[<nr><n n="\a" t="k"><a n="x" t="3" v="1"/></n><n n="\b"/><n n="\far"/></nr>]])
expect_selected("<nr/>" "\\a\\c" --children)

# The depth counts below each node that is written.
expect_selected([[<nr><n n="\a\d"/></nr>]] "\\a\\d" --depth 0)
expect_selected([[<nr><n n="\a\d"><n n="e"/></n></nr>]] "\\a\\d" --depth 1)
expect_selected([[<nr><n n="\a\d"><n n="e"/></n><n n="\a\c"/></nr>]] "\\a" --children --depth 1)
foreach(depth 2 3 4294967294 4294967295)
    expect_selected("<nr>${pathd}</nr>" "\\a\\d" --depth ${depth})
endforeach()
foreach(depth -1 x 4294967296)
    treevault(select tree.xml "\\a" --depth ${depth})
    expect_failure(2 "depth")
endforeach()

# More nodes than are handed out at a time.
set(many "")
set(selected "")
foreach(i RANGE 100 299)
    string(APPEND many "<n n=\"${i}\"/>")
    string(APPEND selected "<n n=\"\\m\\${i}\"/>")
endforeach()
write(many.xml "<nr><n n=\"m\">${many}</n></nr>")
treevault(select many.xml "\\m" --children)
expect_success()
expect_output("<nr>${selected}</nr>")

# Stored again, it is where it was.
treevault(select tree.xml "\\a\\d\\e" --indent -o part.xml)
expect_success()
expect_output("")
string(HEX "<nr>\r\n\t<n n=\"\\a\\d\\e\">\r\n\t\t<n n=\"f\"/>\r\n\t</n>\r\n</nr>\r\n" lines)
expect_hex(part.xml ${lines})
write(empty.xml "<nr/>")
treevault(store empty.xml part.xml)
expect_output("<nr><n n=\"a\">${d}</n></nr>")
treevault(select - "\\b" INPUT ${WORK}/tree.xml)
expect_success()
expect_output([[<nr><n n="\b"/></nr>]])

# What is not there is told, and nothing is written.
write(part.xml "old")
foreach(path "\\x" "\\A" "\\a\\x" "\\away")
    foreach(children "" --children)
        treevault(select tree.xml "${path}" ${children} -o part.xml)
        string(REPLACE "\\" "\\\\" pattern "${path}")
        expect_failure(1 "^treevault: tree.xml: there is no node ${pattern}\n$")
    endforeach()
endforeach()
treevault(select tree.xml "\\" -o part.xml)
expect_failure(1 "cannot select .: 0x80040304 The path of the filter is not valid")
treevault(select missing.xml "\\a" -o part.xml)
expect_failure(1 "missing.xml: cannot open")
foreach(path "a" "a\\b" "\\a\\" "")
    treevault(select tree.xml "${path}")
    expect_failure(2 "is no path")
endforeach()
expect_text(part.xml "old")
