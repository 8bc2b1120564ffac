# SPDX-License-Identifier: MIT
# show --path and --depth, and names of files.
include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

write(tree.xml [[<nr><n n="a"><a n="x" v=""/><n n="b"><n n="c"/><n n="d"/></n><n n="e"><n n="f"/></n></n>
<n n="a"><n n="b"/></n><n n="\deep\down"><n n="b"/></n></nr>]])

treevault(show tree.xml --depth 1)
expect_success()
expect_output([[a
  @x StringA = ""
  b  (2 children)
  e  (1 child)
a
  b
\deep\down
  b
]])
treevault(show tree.xml --depth 0 --path "\\deep\\down")
expect_output("\\deep\\down  (1 child)\n")

# Every node of that path, also where two trees have the same name.
treevault(show tree.xml --path "\\a\\b")
expect_success()
expect_output("\\a\\b\n  c\n  d\n\\a\\b\n")
treevault(show tree.xml --path "\\\\a\\\\e")
expect_output("\\a\\e\n  f\n")
treevault(show tree.xml --path "\\deep\\down\\b")
expect_output("\\deep\\down\\b\n")

foreach(path "\\A" "\\a\\c" "\\deep" "\\a\\b\\" "a\\b" "")
    treevault(show tree.xml --path "${path}")
    if(path MATCHES "^\\\\.*[^\\\\]$")
        expect_failure(1 "there is no node")
    else()
        expect_failure(2 "is no path")
    endif()
endforeach()
treevault(show tree.xml --path "\\" --depth 0)
expect_success()
expect_output_matches("^a  .2 children")
treevault(show tree.xml --depth -1)
expect_failure(2 "depth")
treevault(show tree.xml --depth x)
expect_failure(2 "depth")

# Names of files are UTF-8 on every platform.
write("Süden 名前 🌳.xml" "<nr><n n=\"ü\"/></nr>")
treevault(show "Süden 名前 🌳.xml")
expect_success()
expect_output("ü\n")
# An absolute one begins with a slash here, which is no sign of an option.
treevault(show ${WORK}/tree.xml --depth 0 --path "\\deep\\down")
expect_success()
