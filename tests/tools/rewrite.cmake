# SPDX-License-Identifier: MIT
# rewrite: each option, where the text goes, and what is left when it fails.
include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

write(in.xml [[<nr> <n n='\p\a' t="k"><n n="c"/> <a n="y" t="0x3" v="0x10"/><a n="x" v="a&#xA;b"/>
<a n="w" t="263"><v v="1"/></a></n></nr>]])
set(attributes [[<a n="w" t="263"><v v="True"/></a><a n="x" v="a&#x0A;b"/><a n="y" t="3" v="16"/>]])
set(plain "<nr><n n=\"a\" t=\"k\">${attributes}<n n=\"c\"/></n></nr>")

treevault(rewrite in.xml)
expect_success()
expect_output("${plain}")
treevault(rewrite - -o - INPUT ${WORK}/in.xml)
expect_success()
expect_output("${plain}")
treevault(rewrite in.xml -o out.xml)
expect_success()
expect_output("")
expect_text(out.xml "${plain}")
treevault(rewrite in.xml --no-types -o out.xml)
expect_text(out.xml [[<nr><n n="a" t="k"><a n="w"><v v="True"/></a><a n="x" v="a&#x0A;b"/><a n="y" v="16"/><n n="c"/></n></nr>]])
treevault(rewrite in.xml --full-path -o out.xml)
expect_text(out.xml "<nr><n n=\"\\p\\a\" t=\"k\">${attributes}<n n=\"c\"/></n></nr>")
expect_files(in.xml out.xml)

# Line ends and the byte order mark are the same bytes on every platform.
write(small.xml [[<nr><n n="a"><n n="b"/></n></nr>]])
treevault(rewrite small.xml --indent --bom -o out.xml)
string(HEX "<nr>\r\n\t<n n=\"a\">\r\n\t\t<n n=\"b\"/>\r\n\t</n>\r\n</nr>\r\n" lines)
expect_hex(out.xml "efbbbf${lines}")
execute_process(COMMAND ${EMULATOR} ${PROGRAM} rewrite small.xml --indent --bom
    WORKING_DIRECTORY ${WORK} OUTPUT_FILE ${WORK}/stdout.xml)
expect_hex(stdout.xml "efbbbf${lines}")

# In place, and under a name that is not ASCII.
file(COPY_FILE ${WORK}/in.xml ${WORK}/place.xml)
treevault(rewrite place.xml -o place.xml)
expect_success()
expect_text(place.xml "${plain}")
treevault(rewrite in.xml -o "ü🌳.xml")
expect_success()
expect_text("ü🌳.xml" "${plain}")
file(REMOVE "${WORK}/ü🌳.xml" ${WORK}/place.xml ${WORK}/stdout.xml)

# A failure leaves the old file, and nothing beside it. A value without its type would be lost.
write(out.xml "old")
write(bad.xml [[<nr><n n="a"/><n n="b"><a n="x" t="3" v="abc"/></n></nr>]])
treevault(rewrite bad.xml -o out.xml)
expect_failure(1 "bad.xml: top-level node 2: .*0x80040204")
expect_text(out.xml "old")
treevault(rewrite missing.xml -o out.xml)
expect_failure(1 "missing.xml: cannot open")
treevault(rewrite in.xml -o missing/out.xml)
expect_failure(1 "missing/out.xml: cannot create: ")
treevault(rewrite in.xml -o .)
expect_failure(1 "^treevault: .: cannot ")
expect_files(in.xml out.xml small.xml bad.xml)
expect_text(out.xml "old")
