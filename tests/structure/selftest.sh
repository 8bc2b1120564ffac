#!/bin/sh
# SPDX-License-Identifier: MIT
# Sees every check of the sources fail where its rule is broken, and hold where it is not.
#
#   selftest.sh
set -eu
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

# A small tree that keeps all rules.
NewTree() {
    rm -rf "$work/tree"
    mkdir -p "$work/tree"
    cd "$work/tree"
    Put include/treevault/platform.h '#ifdef _WIN32' '#include <windows.h>' '#endif'
    Put include/treevault/nodes.h '#include <treevault/platform.h>' '#include <stdint.h>'
    Put sources/platform/clock.h '#include <treevault/platform.h>' '#include <cstdint>'
    Put sources/platform/posix/clock.cpp '#include "platform/clock.h"' '#include <unistd.h>'
    Put sources/platform/windows/clock.cpp '#include "platform/clock.h"'
    Put sources/platform/posix/bstr.cpp '#include <treevault/platform.h>'
    Put sources/common/log.h '#include "platform/clock.h"'
    Put sources/common/components/weak.h '#include "common/log.h"'
    Put sources/general/treevault/values/value.h '#include "common/log.h"'
    Put sources/general/treevault/nodes/node.h '#include "general/treevault/values/value.h"' \
        '#include "common/components/weak.h"'
    Put sources/general/treevault/xml/text.h '#include "general/treevault/nodes/node.h"'
    Put sources/general/treevault/exports/exports.cpp '#include "general/treevault/xml/text.h"'
    Put tools/treevault/main.cpp '#include "own.h"' '#include <treevault/nodes.h>' \
        '#include "posix/own.h"'
    Put tools/treevault/own.h '#include <string>'
    Put tools/treevault/posix/own.h '#include <unistd.h>'
    Put tools/treevault/windows/own.h '#include <io.h>'
}

# Writes a file of the lines given, behind a licence line.
Put() {
    mkdir -p "$(dirname "$1")"
    written=$1
    shift
    printf '%s\n' '// SPDX-License-Identifier: MIT' "$@" >"$written"
}

Holds() {
    if ! sh "$here/$1" "$work/tree" >"$work/output" 2>&1; then
        echo "$1 complains where nothing is wrong:"
        cat "$work/output"
        failures=$((failures + 1))
    fi
}

# The check must fail and name the file.
Fails() {
    if sh "$here/$1" "$work/tree" >"$work/output" 2>&1; then
        echo "$1 does not see: $2: $3"
        failures=$((failures + 1))
    elif ! grep -q "$2" "$work/output"; then
        echo "$1 fails, but not for $2: $3"
        cat "$work/output"
        failures=$((failures + 1))
    fi
}

# Each include alone breaks the graph.
Refused() {
    NewTree
    Put "$1" "$2"
    Fails includegraph.sh "$1" "$2"
}

NewTree
Holds includegraph.sh
Holds platformfolders.sh
Holds licencelines.sh

Refused include/treevault/extra.h '#include "common/log.h"'
Refused include/treevault/extra.h '#include <common/log.h>'
Refused include/treevault/extra.h '#include "treevault/nodes.h"'
Refused sources/platform/extra.h '#include "common/log.h"'
Refused sources/platform/posix/extra.cpp '#include "common/log.h"'
Refused sources/common/extra.cpp '#include "common/components/weak.h"'
Refused sources/common/extra.cpp '#include "general/treevault/values/value.h"'
Refused sources/common/extra.cpp '  #  include "general/treevault/values/value.h"'
Refused sources/common/extra.cpp '#include "log.h"'
Refused sources/common/extra.cpp '#include "../platform/clock.h"'
Refused sources/common/extra.cpp '#include <platform/clock.h>'
Refused sources/common/extra.cpp '#include "platform/missing.h"'
Refused sources/common/extra.cpp '#include "platform/posix/clock.cpp"'
Refused sources/common/extra.cpp '#include "treevault/nodes.h"'
Refused sources/common/extra.cpp '#include NAME'
Refused sources/common/components/extra.cpp '#include "general/treevault/nodes/node.h"'
Refused sources/general/treevault/values/extra.cpp '#include "common/components/weak.h"'
Refused sources/general/treevault/values/extra.cpp '#include "general/treevault/nodes/node.h"'
Refused sources/general/treevault/nodes/extra.cpp '#include "general/treevault/xml/text.h"'
Refused sources/general/treevault/xml/extra.cpp '#include "general/treevault/exports/exports.cpp"'
Refused sources/general/treevault/elsewhere/extra.cpp '#include <string>'
Refused sources/extra.cpp '#include <string>'
Refused tools/treevault/extra.cpp '#include "common/log.h"'
Refused tools/treevault/extra.cpp '#include <common/log.h>'
Refused tools/treevault/extra.cpp '#include "../../sources/common/log.h"'

NewTree
Put sources/platform/posix/extra.cpp
Fails platformfolders.sh posix/extra.cpp 'no counterpart on Windows'
NewTree
Put sources/platform/windows/extra.cpp
Fails platformfolders.sh windows/extra.cpp 'no counterpart elsewhere'
NewTree
Put tools/treevault/windows/extra.cpp
Fails platformfolders.sh windows/extra.cpp 'no counterpart in the tool'

# Each line alone breaks the rule, in a source, a public header and a test.
for line in '#ifdef _WIN32' '#ifndef _WIN32' '#if defined(__linux__)' '#  if !defined _MSC_VER' \
    '#if 0' '#elif defined(__MINGW32__)' '#if _WIN64' '#include <windows.h>' \
    '#include <sys/stat.h>'; do
    for file in sources/common/extra.cpp include/treevault/nodes.h tests/common/extra.cpp; do
        NewTree
        Put "$file" "$line"
        case $line in
        '#if 0') Holds platformfolders.sh ;;
        *) Fails platformfolders.sh "$file" "$line" ;;
        esac
    done
done

for file in sources/common/extra.cpp tests/extra.sh cmake/Extra.cmake tools/CMakeLists.txt; do
    NewTree
    mkdir -p "$(dirname "$file")"
    echo 'int x;' >"$file"
    Fails licencelines.sh "$file" 'no licence'
done
NewTree
printf '%s\n' '#!/bin/sh' '# SPDX-License-Identifier: MIT' >script.sh
Holds licencelines.sh
printf '%s\n' '#!/bin/sh' 'true' '# SPDX-License-Identifier: MIT' >script.sh
Fails licencelines.sh script.sh 'too late'

[ $failures -eq 0 ] && echo "every check fails where it must"
[ $failures -eq 0 ]
