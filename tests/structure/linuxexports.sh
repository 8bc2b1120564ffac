#!/bin/sh
# SPDX-License-Identifier: MIT
# The names that the Linux library exports are those of the list, aliases are one function, and the
# library carries its name and version.
#
#   linuxexports.sh LIBRARY LIST SONAME FILENAME
#
# Prints each breach and ends with 1 if there is one.
set -eu
library=$1
list=$2
status=0
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

sed -nE 's/^(posix +)?([A-Za-z_]+)$/\2/p' "$list" | sort >"$work/wanted"
nm -D --defined-only "$library" | awk '{ print $3, $1, $2 }' | sort >"$work/symbols"
cut -d ' ' -f 1 "$work/symbols" >"$work/found"
if ! diff "$work/wanted" "$work/found" >"$work/difference"; then
    echo "$library: exported names (>) differ from the list (<):"
    grep '^[<>]' "$work/difference"
    status=1
fi
if awk '$3 != "T"' "$work/symbols" | grep .; then
    echo "$library: exports something that is no function"
    status=1
fi

. "$(dirname "$0")/aliases.sh"
CheckAliases "$work/symbols" || status=1

soname=$(objdump -p "$library" | awk '$1 == "SONAME" { print $2 }')
if [ "$soname" != "$3" ]; then
    echo "$library: its name is $soname in place of $3"
    status=1
fi
file=$(readlink -f "$library")
if [ "${file##*/}" != "$4" ]; then
    echo "$library: its file is ${file##*/} in place of $4"
    status=1
fi
exit $status
