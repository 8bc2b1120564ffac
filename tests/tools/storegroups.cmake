# SPDX-License-Identifier: MIT
# store: what a group that fails leaves, and the switches of the storage.
include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

write(base.xml [[<nr><n n="r"><a n="a" v="1"/></n></nr>]])
write(good.xml [[<nr><n n="g"/></nr>]])
# The third node has no parent: the first two are stored before it, the last is not.
write(orphan.xml [[<nr><n n="r"><a n="a" v="2"/></n><n n="t"/><n n="\x\y"/><n n="u"/></nr>]])
set(missing "cannot store: 0x80040303 The parent of the node is not in the storage")

treevault(store base.xml orphan.xml)
expect_success()
expect_output([[<nr><n n="r"><a n="a" v="2"/></n><n n="t"/><n n="u"/><n n="x"><n n="y"/></n></nr>]])

# Nothing is written, whether the group is the first or not.
write(out.xml "old")
treevault(store base.xml orphan.xml --no-build-parents)
expect_failure(1 "^treevault: orphan.xml: ${missing}\n$")
foreach(files orphan.xml\;good.xml good.xml\;orphan.xml)
    treevault(store base.xml ${files} --no-build-parents -o out.xml)
    expect_failure(1 "^treevault: orphan.xml: ${missing}")
    treevault(store base.xml ${files} --no-build-parents --one-group -o out.xml)
    expect_failure(1 "^treevault: the group: ${missing}")
endforeach()
expect_text(out.xml "old")

# A parent that is there is enough, whoever put it there.
write(parent.xml [[<nr><n n="x"/></nr>]])
foreach(group "" --one-group)
    treevault(store base.xml parent.xml orphan.xml --no-build-parents ${group})
    expect_success()
    expect_output([[<nr><n n="r"><a n="a" v="2"/></n><n n="t"/><n n="u"/><n n="x"><n n="y"/></n></nr>]])
endforeach()
# The same holds for the base, which is read with them.
write(deepbase.xml [[<nr><n n="\x\y"/></nr>]])
treevault(store deepbase.xml good.xml --no-build-parents)
expect_failure(1 "^treevault: deepbase.xml: ${missing}")
treevault(store deepbase.xml good.xml)
expect_success()
expect_output([[<nr><n n="g"/><n n="x"><n n="y"/></n></nr>]])

# Without atomicity the node that was added stays, the attribute gets its old value back, and the
# forest is written although the status tells of the failure. No later group is stored.
foreach(group "" --one-group)
    treevault(store base.xml orphan.xml --no-build-parents --no-atomicity ${group} -o out.xml)
    expect_failure(1 "${missing}")
    expect_text(out.xml [[<nr><n n="r"><a n="a" v="1"/></n><n n="t"/></nr>]])
    treevault(store base.xml orphan.xml good.xml --no-build-parents --no-atomicity ${group})
    expect_status(1)
    expect_output([[<nr><n n="r"><a n="a" v="1"/></n><n n="t"/></nr>]])
    treevault(store base.xml good.xml orphan.xml --no-build-parents --no-atomicity ${group})
    expect_status(1)
    expect_output([[<nr><n n="g"/><n n="r"><a n="a" v="1"/></n><n n="t"/></nr>]])
endforeach()
# It excuses nothing else.
write(bad.xml [[<nr><n n="v"/><n n="v"><a n="x" t="3" v="abc"/></n></nr>]])
write(out.xml "old")
treevault(store base.xml good.xml bad.xml --no-atomicity -o out.xml)
expect_failure(1 "^treevault: bad.xml: top-level node 2: ")
expect_text(out.xml "old")
# And it takes nothing from what succeeds.
treevault(store base.xml orphan.xml --no-atomicity)
expect_success()
expect_output([[<nr><n n="r"><a n="a" v="2"/></n><n n="t"/><n n="u"/><n n="x"><n n="y"/></n></nr>]])
expect_files(bad.xml base.xml deepbase.xml good.xml orphan.xml out.xml parent.xml)
