#!/bin/sh
# SPDX-License-Identifier: MIT
# Sees the check of a library's exports fail for a list that lacks a name or has one too many, and
# the check of aliases for addresses that are wrong.
#
#   exportsselftest.sh LIST CHECK ARGUMENT...
#
# `CHECK ARGUMENT...` is the whole command, in which the word @LIST@ stands for the list.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
list=$1
shift
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
failures=0

RunWith() {
    changed=$1
    shift
    for argument; do
        shift
        [ "$argument" = @LIST@ ] && argument=$changed
        set -- "$@" "$argument"
    done
    sh "$@" >"$work/output" 2>&1
}

Fails() {
    what=$1
    name=$2
    shift 2
    if RunWith "$work/list" "$@" || ! grep -q "$name" "$work/output"; then
        echo "not seen: $what"
        cat "$work/output"
        failures=$((failures + 1))
    fi
}

if ! RunWith "$list" "$@"; then
    echo "fails with the right list"
    cat "$work/output"
    exit 1
fi
grep -v '^AcnAddChild$' "$list" >"$work/list"
Fails 'a name that is exported and not in the list' AcnAddChild "$@"
{ cat "$list" && echo AcnNothing; } >"$work/list"
Fails 'a name in the list that is not exported' AcnNothing "$@"

. "$here/aliases.sh"
Addresses() {
    printf '%s\n' "AcnAddChild $1" "AcnCloseDeserializationContext $2" "AcnCloseNodeHandle $3" \
        "AcnCloseSerializationContext $4" "AcnDeserializeNodes $5" "AcnSerializeNodes $6" \
        >"$work/symbols"
    CheckAliases "$work/symbols" >"$work/output"
}
Aliases() {
    wanted=$1
    shift
    result=fail
    Addresses "$@" && result=hold
    if [ $result != "$wanted" ]; then
        echo "addresses $* do not $wanted"
        failures=$((failures + 1))
    fi
}
Aliases hold 1 2 2 2 3 3
Aliases fail 1 2 4 2 3 3
Aliases fail 1 2 2 4 3 3
Aliases fail 1 4 2 2 3 3
Aliases fail 1 2 2 2 3 4
Aliases fail 2 2 2 2 3 3
Aliases fail 1 2 2 2 2 2

[ $failures -eq 0 ]
