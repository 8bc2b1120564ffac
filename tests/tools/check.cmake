# SPDX-License-Identifier: MIT
# check: what it counts, and how it reports what is wrong and where.
include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

write(good.xml [[<nr><n n="a"><a n="x" t="3" v="5"/><a n="y"/><n n="b"><n n="c"/></n></n><n n="d"/></nr>]])
treevault(check good.xml)
expect_success()
expect_output("good.xml: 2 top-level nodes, 4 nodes, 2 attributes\n")
treevault(check - INPUT ${WORK}/good.xml)
expect_success()
expect_output("standard input: 2 top-level nodes, 4 nodes, 2 attributes\n")
write(one.xml [[<nr><n n="a"><a n="x" v=""/></n></nr>]])
treevault(check one.xml)
expect_output("one.xml: 1 top-level node, 1 node, 1 attribute\n")

# expect_refused(TEXT PATTERN): the document TEXT ends in status 1 and a message like PATTERN.
function(expect_refused text pattern)
    write(bad.xml "${text}")
    treevault(check bad.xml)
    expect_failure(1 "^treevault: bad.xml: ${pattern}")
    treevault(check - INPUT ${WORK}/bad.xml)
    expect_failure(1 "^treevault: standard input: ${pattern}")
endfunction()

expect_refused("" "0x80040209 The structure of the XML text is not that of a node document")
expect_refused("<nr" "0x80040208 The XML text is not well-formed \\(.+\\)")
expect_refused("<nx/>" "0x80040209 The structure of the XML text is not that of a node document")
expect_refused("<nr><n n=\"a\"/><x/></nr>" "top-level node 2: .*0x80040209")
expect_refused("<nr><n n=\"a\"><n n=\"b\"/><n n=\"b\"/></n></nr>" "top-level node 1: .*0x80040206")
expect_refused("<nr><n n=\"a\"/><n n=\"a\"/><n n=\"c\"><a n=\"x\" t=\"3\" v=\"abc\"/></n></nr>"
    "top-level node 3: 0x80040204 The value cannot be converted to the requested type")
expect_refused("<nr><n n=\"a\"><a n=\"x\" t=\"8\" v=\"1\"/></n></nr>" "top-level node 1: .*0x80040203")
expect_refused("<nr><n n=\"a\"><a n=\"x\" t=\"70000\" v=\"1\"/></n></nr>"
    "top-level node 1: 0x80070057")
expect_refused("<nr><n n=\"\\\\a\\\\\"/></nr>" "top-level node 1: .*0x80040201")

treevault(check missing.xml)
expect_failure(1 "missing.xml: cannot open: ")
treevault(check .)
expect_failure(1 "^treevault: .: cannot ")
