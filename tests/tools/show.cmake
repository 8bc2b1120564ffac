# SPDX-License-Identifier: MIT
# show: lines of nodes and attributes, their values, and how long or hostile ones appear.
include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

write(tree.xml [[<nr>
<n n="Root" t="Folder"><a n="Count" t="3" v="5"/><a n="Ids" t="260"><v v="1"/><v v="2"/></a>
<a n="Title" v="abc"/><a n="Flag" t="7" v="1"/><a n="Key" t="12" v="HEX:CAFE"/><a n="None"/>
<a n="Id" t="13" v="00112233445566778899aabbccddeeff"/><a n="Words" t="258"><v v="x"/><v v=""/></a>
<a n="Nothing" t="259"/>
<n n="Leaf"/></n>
<n n="two words"/></nr>]])
set(tree [[Root : Folder
  @Count Int32 = 5
  @Flag Bool = True
  @Id Guid = {00112233-4455-6677-8899-AABBCCDDEEFF}
  @Ids UInt32[2] = 1, 2
  @Key Binary = HEX:cafe
  @None Empty
  @Nothing Int32[0]
  @Title StringA = "abc"
  @Words StringW[2] = "x", ""
  Leaf
"two words"
]])
treevault(show tree.xml)
expect_success()
expect_output("${tree}")
treevault(show - INPUT ${WORK}/tree.xml)
expect_success()
expect_output("${tree}")

# Nothing is coloured unless it is a terminal or asked for.
string(ASCII 27 escape)
write(one.xml [[<nr><n n="a" t="b"><a n="c" v="d"/></n></nr>]])
treevault(show one.xml --color always)
expect_success()
expect_output("${escape}[1ma${escape}[0m : ${escape}[36mb${escape}[0m
  @${escape}[32mc${escape}[0m ${escape}[36mStringA${escape}[0m = ${escape}[33m\"d\"${escape}[0m\n")
treevault(show one.xml --color never)
expect_output("a : b\n  @c StringA = \"d\"\n")
treevault(show one.xml --color sometimes)
expect_failure(2 "color")

# Controls and marks of direction reach no terminal; quotes and backslashes are told apart.
write(hostile.xml [[<nr><n n="a&#x1B;[2J"><a n="b&#x0A;" v='"\&#x09;&#x0D;&#x00;&#x9B;&#x202E;&#x1F333;'/></n></nr>]])
treevault(show hostile.xml)
expect_success()
expect_output([["a\u{1B}[2J"
  @"b\n" StringA = "\"\\\t\r\u{0}\u{9B}\u{202E}🌳"
]])

# Long values are cut, whole characters at a time, and shown whole on demand.
string(REPEAT "x" 119 x119)
write(long.xml "<nr><n n=\"a\"><a n=\"t\" v=\"${x119}&#x1F333;&#x1F333;\"/></n></nr>")
treevault(show long.xml)
expect_output("a\n  @t StringA = \"${x119}\"...\n")
treevault(show long.xml --full)
expect_output("a\n  @t StringA = \"${x119}🌳🌳\"\n")
set(elements "")
set(shown "0")
foreach(i RANGE 16)
    string(APPEND elements "<v v=\"${i}\"/>")
    if(i GREATER 0 AND i LESS 16)
        string(APPEND shown ", ${i}")
    endif()
endforeach()
write(array.xml "<nr><n n=\"a\"><a n=\"t\" t=\"259\">${elements}</a></n></nr>")
treevault(show array.xml)
expect_output("a\n  @t Int32[17] = ${shown}, ...\n")
treevault(show array.xml --full)
expect_output("a\n  @t Int32[17] = ${shown}, 16\n")

# A value that cannot have its type is text, and is shown as such.
write(text.xml [[<nr><n n="a"><a n="t" t="3" v="abc"/></n></nr>]])
treevault(show text.xml)
expect_success()
expect_output("a\n  @t StringA = \"abc\"\n")

write(empty.xml "<nr/>")
treevault(show empty.xml)
expect_success()
expect_output("")
