# SPDX-License-Identifier: MIT
# store --watch and --veto: the lines, where they go, and what a veto leaves.
include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

write(base.xml [[<nr><n n="r" t="k"><a n="a" t="3" v="1"/><a n="b" v="x"/><n n="c"><n n="d"/></n>
<n n="e"/></n></nr>]])
write(changes.xml [[<nr><n n="r" t="k"><a n="b" v="y"/><a n="two words" v=""/><n n="c"/><n n="f"><n n="g"/></n></n>
<n n="\r\p\q"/><n n="s"/></nr>]])

# frame(VARIABLE END LINE...): the lines of one group, with its frame.
function(frame variable end)
    list(JOIN ARGN "\n  " lines)
    set(${variable} "start\n  ${lines}\n${end}\n" PARENT_SCOPE)
endfunction()

set(tail "created \\r\\p" "added below \\r" "created \\r\\p\\q" "added below \\r\\p" "created \\s")
frame(merged "pre-commit\nfinish: success"
    "changed \\r @b @\"two words\"" "created \\r\\f" "added below \\r" ${tail})
# Attributes in the order of the given ones, then those that go; children as they are given, then
# those that go, in the order of their names.
frame(replaced "pre-commit\nfinish: success"
    "changed \\r @b @\"two words\" @a" "deleted \\r\\c\\d" "removed below \\r\\c" "created \\r\\f"
    "deleted \\r\\e" "added and removed below \\r" ${tail})

# The base is there before anyone watches. The forest is a file: the lines are the output.
treevault(store base.xml changes.xml --watch -o out.xml)
expect_success()
expect_output("${merged}")
treevault(store base.xml changes.xml --watch --mode replace-all -o out.xml)
expect_success()
expect_output("${replaced}")
expect_text(out.xml [[<nr><n n="r" t="k"><a n="b" v="y"/><a n="two words" v=""/><n n="c"/><n n="f"><n n="g"/></n><n n="p"><n n="q"/></n></n><n n="s"/></nr>]])
# The forest is the output: the lines are not in it.
foreach(target "" -o\;-)
    treevault(store base.xml changes.xml --watch ${target})
    expect_status(0)
    expect_output_matches("^<nr><n n=\"r\" t=\"k\">.*</nr>$")
    if(NOT err STREQUAL merged)
        fail("standard error does not hold the lines")
    endif()
endforeach()

# Equal nodes and a type alone are not told. Each file has its frame, one group has one.
write(type.xml [[<nr><n n="r" t="other"><a n="b" v="x"/></n></nr>]])
write(empty.xml "<nr/>")
set(silent "start\npre-commit\nfinish: success\n")
treevault(store base.xml type.xml base.xml empty.xml --watch -o out.xml)
expect_success()
expect_output("${silent}${silent}${silent}")
treevault(store base.xml type.xml base.xml empty.xml --watch --one-group -o out.xml)
expect_success()
expect_output("${silent}")

# Nothing in a name can steer a terminal or pass for another line.
write(hostile.xml [[<nr><n n="a&#x0A;finish: success"/><n n="r"><a n="&#x1B;[2J" v=""/></n></nr>]])
treevault(store base.xml hostile.xml --watch -o out.xml)
frame(hostile "pre-commit\nfinish: success"
    [[created "\\a\nfinish: success"]] [[changed \r @"\u{1B}[2J"]])
expect_output("${hostile}")

# A veto undoes the group: nothing is written.
write(out.xml "old")
write(first.xml [[<nr><n n="t"/></nr>]])
frame(first "pre-commit\nfinish: success" "created \\t")
frame(vetoed "finish: failure" "changed \\r @b @\"two words\"" "created \\r\\f" "veto \\r\\f")
treevault(store base.xml first.xml changes.xml --watch --veto "\\r\\f" -o out.xml)
expect_status(1)
expect_output("${first}${vetoed}")
if(NOT err MATCHES "^treevault: changes.xml: vetoed: 0x80004004[^\n]*\n$")
    fail("the message does not tell of the veto")
endif()
treevault(store base.xml changes.xml --one-group --veto "\\\\r\\\\f" -o out.xml)
expect_failure(1 "^treevault: the group: vetoed: 0x80004004")
expect_text(out.xml "old")
# What nobody tells of is not refused, nor is what was there before.
treevault(store base.xml first.xml --veto "\\r\\f")
expect_success()
treevault(store base.xml first.xml --veto "\\r")
expect_success()
treevault(store base.xml changes.xml --veto r)
expect_failure(2 "is no path")

# Without atomicity what was added before the veto stays, and attributes get their old values.
treevault(store base.xml changes.xml --no-atomicity --veto "\\r\\p" -o out.xml)
expect_failure(1 "vetoed")
expect_text(out.xml [[<nr><n n="r" t="k"><a n="a" t="3" v="1"/><a n="b" v="x"/><n n="c"><n n="d"/></n><n n="e"/><n n="f"><n n="g"/></n><n n="p"/></n></nr>]])
expect_files(base.xml changes.xml empty.xml first.xml hostile.xml out.xml type.xml)
