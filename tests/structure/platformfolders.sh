#!/bin/sh
# SPDX-License-Identifier: MIT
# Holds the platforms apart: the folders posix and windows beside each other have files of the same
# names, nothing else asks for the platform, and no other file includes headers of one.
#
#   platformfolders.sh ROOT
#
# Prints each breach and ends with 1 if there is one.
set -eu
cd "$1"
status=0

# What only one platform needs, because the other one has it as its own.
exceptions='
sources/platform/posix/bstr.cpp
sources/platform/posix/errorrecord.cpp
sources/platform/posix/filepath.h
sources/platform/posix/messagefile.cpp
sources/platform/posix/messagefile.h
sources/platform/posix/peimage.cpp
sources/platform/posix/peimage.h
sources/platform/posix/readfile.cpp
sources/platform/posix/readfile.h
sources/platform/posix/systemcode.h
sources/platform/posix/withheldsignal.h
sources/platform/windows/formatmessage.h
'

pairs=$(find sources tools -type d \
    \( -name posix -o -name windows \) 2>/dev/null | sed 's,/[^/]*$,,' | sort -u || true)
for pair in $pairs; do
    for side in posix windows; do
        other=posix
        [ $side = posix ] && other=windows
        [ -d "$pair/$side" ] || continue
        for file in "$pair/$side"/*; do
            [ -e "$file" ] || continue
            [ -e "$pair/$other/${file##*/}" ] && continue
            case "$exceptions" in *"
$file
"*) continue ;; esac
            echo "$file: there is no ${file##*/} in $pair/$other"
            status=1
        done
    done
done

files=$(find include sources tools tests examples benchmarks -name '*.h' -o -name '*.hpp' \
    -o -name '*.c' -o -name '*.cpp' 2>/dev/null |
    grep -v -e '^sources/platform/' -e '^include/treevault/platform\.h$' | sort || true)

macros='_WIN32|_WIN64|WIN32|__linux__|__linux|__unix__|__APPLE__|__MINGW32__|__MINGW64__'
macros="$macros|__CYGWIN__|_MSC_VER|__GLIBC__|__GLIBCXX__"
asks="^[[:space:]]*#[[:space:]]*(if|ifdef|ifndef|elif|elifdef)[^a-z].*($macros)"
headers='windows\.h|unistd\.h|dlfcn\.h|pthread\.h|fcntl\.h|io\.h|sys/[a-z]+\.h|objbase\.h|uuid/uuid\.h'
includes="^[[:space:]]*#[[:space:]]*include[[:space:]]*<($headers)>"
Report() {
    if [ -s "$work/found" ]; then
        sed "s,^,$1: ," "$work/found"
        status=1
    fi
}

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
echo "$files" >"$work/files"
grep -v -e '/posix/' -e '/windows/' "$work/files" >"$work/common" || true
xargs grep -nHE "$asks" <"$work/files" >"$work/found" || true
Report 'asks for the platform'
xargs grep -nHE "$includes" <"$work/common" >"$work/found" || true
Report 'a header of one platform'
exit $status
