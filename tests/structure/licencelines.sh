#!/bin/sh
# SPDX-License-Identifier: MIT
# Every source names its licence in its first line, or in the second behind "#!".
#
#   licencelines.sh ROOT
#
# Prints each file that does not and ends with 1 if there is one.
set -eu
cd "$1"

find . \( -path ./.git -o -path ./build \) -prune -o -type f \
    \( -name '*.h' -o -name '*.hpp' -o -name '*.c' -o -name '*.cpp' -o -name '*.cmake' \
    -o -name 'CMakeLists.txt' -o -name '*.sh' -o -name '*.rc.in' -o -name '*.cmake.in' -o -name '*.list' \) -print | sort |
    while read -r file; do
        line=$(head -n 1 "$file")
        case $line in '#!'*) line=$(sed -n 2p "$file") ;; esac
        case $line in
        '// SPDX-License-Identifier: MIT' | '# SPDX-License-Identifier: MIT') ;;
        '/* SPDX-License-Identifier: MIT' | '/* SPDX-License-Identifier: MIT */') ;;
        *) echo "$file: no licence line: $line" ;;
        esac
    done | { ! grep .; }
