# SPDX-License-Identifier: MIT
# A disk that takes no more: the old file stays whole, nothing is left beside it, and it is told.
include(${CMAKE_CURRENT_LIST_DIR}/support.cmake)

string(REPEAT "<n n=\"abcdefgh\"/>" 20000 nodes)
write(in.xml "<nr>${nodes}</nr>")
write(out.xml "old")

function(run_shell script)
    execute_process(COMMAND sh -c "${script}" WORKING_DIRECTORY ${WORK}
        OUTPUT_VARIABLE out ERROR_VARIABLE err RESULT_VARIABLE status)
    drop_log_reports(err)
    set(out "${out}" PARENT_SCOPE)
    set(err "${err}" PARENT_SCOPE)
    set(status "${status}" PARENT_SCOPE)
    set(ran ": ${script}" PARENT_SCOPE)
endfunction()

# A file may hold 8 blocks of 512 bytes here.
run_shell("trap '' XFSZ; ulimit -f 8; '${PROGRAM}' rewrite in.xml -o out.xml")
expect_failure(1 "out.xml: cannot write: File too large")
expect_text(out.xml "old")
expect_files(in.xml out.xml)

if(EXISTS /dev/full)
    run_shell("'${PROGRAM}' rewrite in.xml -o /dev/full")
    expect_failure(1 "/dev/full: cannot write: No space left on device")
    run_shell("'${PROGRAM}' show in.xml > /dev/full")
    expect_failure(1 "standard output: cannot write: No space left on device")
endif()

# The same for a forest; and what cannot be told to who watches is not stored.
set(distinct "")
foreach(i RANGE 1000)
    string(APPEND distinct "<n n=\"${i}\"/>")
endforeach()
write(in.xml "<nr>${distinct}</nr>")
foreach(command "store in.xml in.xml" "select in.xml '\\' --children" "delete in.xml '\\1'")
    run_shell("trap '' XFSZ; ulimit -f 8; '${PROGRAM}' ${command} -o out.xml")
    expect_failure(1 "out.xml: cannot write: File too large")
    expect_text(out.xml "old")
endforeach()
expect_files(in.xml out.xml)
if(EXISTS /dev/full)
    run_shell("'${PROGRAM}' store in.xml in.xml --watch -o out.xml > /dev/full")
    expect_failure(1 "^treevault: standard output: cannot write: No space left on device\n$")
    run_shell("'${PROGRAM}' store in.xml in.xml --watch --no-atomicity > written.xml 2> /dev/full")
    expect_status(1)
    expect_text(written.xml "")
    expect_text(out.xml "old")
    file(REMOVE ${WORK}/written.xml)
endif()

# A link stays a link, and the file behind it keeps its permissions.
file(CREATE_LINK out.xml ${WORK}/link.xml SYMBOLIC)
run_shell("chmod 640 out.xml && '${PROGRAM}' rewrite in.xml -o link.xml && stat -c %a out.xml")
expect_status(0)
expect_output("640\n")
if(NOT IS_SYMLINK ${WORK}/link.xml)
    fail("the link was replaced")
endif()
expect_files(in.xml out.xml link.xml)
