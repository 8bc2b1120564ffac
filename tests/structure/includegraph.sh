#!/bin/sh
# SPDX-License-Identifier: MIT
# Holds the includes against the rooms: each may include what lies below it, and nothing else.
#
#   includegraph.sh ROOT
#
# Prints each include that points elsewhere and ends with 1 if there is one.
set -eu
cd "$1"

folders=
for folder in include sources tools; do
    [ -d "$folder" ] && folders="$folders $folder"
done

# shellcheck disable=SC2086
find $folders -name '*.h' -o -name '*.cpp' -o -name '*.c' | sort | xargs awk '
# The room of a path, seen from the folder sources. Anything else is no room.
function Room(path) {
    if (path ~ /^platform\//) return "platform"
    if (path ~ /^common\/components\//) return "components"
    if (path ~ /^common\//) return "common"
    if (path ~ /^general\/treevault\/[a-z]+\//) {
        split(path, parts, "/")
        return parts[3]
    }
    return ""
}

BEGIN {
    below["platform"] = " platform "
    below["common"] = below["platform"] "common "
    below["components"] = below["common"] "components "
    below["values"] = below["common"] "values "
    below["nodes"] = below["components"] "values nodes "
    below["xml"] = below["nodes"] "xml "
    below["presentation"] = below["xml"] "presentation "
    below["storage"] = below["presentation"] "storage "
    below["exports"] = below["storage"] "exports "
}

function Complain(why) {
    printf "%s:%d: %s: %s\n", FILENAME, FNR, why, $0
    failures++
}

function IsThere(path,    line, found) {
    found = (getline line < path) >= 0
    close(path)
    return found
}

function CheckSources(path, quoted,    from, to, side) {
    from = Room(substr(FILENAME, 9))
    to = Room(path)
    if (from == "" || !(from in below)) {
        Complain("a file in no room")
    } else if (path ~ /^treevault\//) {
        if (quoted) Complain("public headers are included with <>")
    } else if (!quoted) {
        if (to != "") Complain("our own headers are included with \"\"")
    } else if (to == "" || !IsThere("sources/" path)) {
        Complain("not a path from the folder sources")
    } else if (!index(below[from], " " to " ")) {
        Complain("the room " from " may not include " to)
    } else if (match(path, /^platform\/(posix|windows)\//)) {
        side = substr(path, 1, RLENGTH)
        if (index(FILENAME, "sources/" side) != 1) Complain("a header of one platform")
    }
}

function CheckPublic(path, quoted) {
    if (quoted || Room(path) != "") Complain("a public header includes public headers alone")
}

function CheckTools(path, quoted,    folder) {
    folder = FILENAME
    sub(/^tools\//, "", folder)
    folder = "tools/" substr(folder, 1, index(folder, "/"))
    if (quoted && !IsThere(folder path) || path ~ /\.\.\// || Room(path) != "")
        Complain("a tool includes its own headers and the public ones")
}

/^[ \t]*#[ \t]*include/ {
    if (!match($0, /["<][^">]+[">]/)) {
        Complain("not a plain include")
        next
    }
    path = substr($0, RSTART + 1, RLENGTH - 2)
    quoted = substr($0, RSTART, 1) == "\""
    if (FILENAME ~ /^sources\//) CheckSources(path, quoted)
    else if (FILENAME ~ /^include\//) CheckPublic(path, quoted)
    else CheckTools(path, quoted)
}

END { exit failures > 0 }
'
