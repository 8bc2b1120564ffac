#!/bin/sh
# SPDX-License-Identifier: MIT
# The names that the Windows library exports are those of the list, aliases are one function, it
# needs nothing but Windows, and it carries its version.
#
#   windowsexports.sh OBJDUMP OBJCOPY LIBRARY LIST
#
# Prints each breach and ends with 1 if there is one.
set -eu
objdump=$1
objcopy=$2
library=$3
list=$4
status=0
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

sed -nE 's/^([A-Za-z_]+)$/\1/p' "$list" | sort >"$work/wanted"
"$objdump" -p "$library" >"$work/headers"

# Names by their place in the table of addresses.
awk '
/^Export Address Table/ { table = 1 }
/^\[Ordinal\/Name Pointer\] Table/ { table = 2 }
/^The / { table = 0 }
table == 1 && /Export RVA/ {
    match($0, /\[ *[0-9]+\]/)
    index_ = substr($0, RSTART + 1, RLENGTH - 2) + 0
    address[index_] = $(NF - 2)
}
table == 2 && /^[ \t]*\[ *[0-9]+\]/ {
    match($0, /\[ *[0-9]+\]/)
    print $NF, address[substr($0, RSTART + 1, RLENGTH - 2) + 0]
}' "$work/headers" | sort >"$work/symbols"
cut -d ' ' -f 1 "$work/symbols" >"$work/found"
if ! diff "$work/wanted" "$work/found" >"$work/difference"; then
    echo "$library: exported names (>) differ from the list (<):"
    grep '^[<>]' "$work/difference"
    status=1
fi
if awk '$2 == ""' "$work/symbols" | grep .; then
    echo "$library: no address found"
    status=1
fi

. "$(dirname "$0")/aliases.sh"
CheckAliases "$work/symbols" || status=1

# What every Windows has.
system='kernel32|user32|advapi32|ole32|oleaut32|rpcrt4|shlwapi|msvcrt|ntdll|crypt32|api-ms-win-core-.*'
if sed -nE 's/^[[:space:]]*DLL Name: //p' "$work/headers" | grep -viE "^($system)\.dll$"; then
    echo "$library: needs what is no part of Windows"
    status=1
fi
if ! grep -qi 'DLL Name: kernel32.dll' "$work/headers"; then
    echo "$library: its imports were not found"
    status=1
fi

"$objcopy" -O binary --only-section=.rsrc "$library" "$work/resources"
# The fixed part begins with its signature; version numbers stand two words behind.
version=$(od -An -v -tx4 "$work/resources" | tr -s ' \n' '\n\n' |
    awk '/feef04bd/ { found = NR } found && NR >= found + 2 && NR <= found + 5' | tr '\n' ' ')
if [ "$version" != '00050002 00d90000 00050002 00d90000 ' ]; then
    echo "$library: its version is: $version"
    status=1
fi
strings -el "$work/resources" >"$work/strings"
for field in 'FileDescription TreeVault64' 'FileVersion 5.2.217.0' 'ProductVersion 5.2.217.0'; do
    value=$(grep -x -A 1 "${field% *}" "$work/strings" | tail -n 1)
    if [ "$value" != "${field#* }" ]; then
        echo "$library: ${field% *} is $value"
        status=1
    fi
done
exit $status
