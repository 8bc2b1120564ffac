#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds the library and the program treevault, and shows what they do with the documents in
# examples/: first of all, changing a forest.
set -euo pipefail
cd "$(dirname "$0")/.."

heading() {
    printf '\n== %s\n' "$1"
}

run() {
    printf '$ treevault'
    printf ' %q' "$@"
    printf '\n'
    "$treevault" "$@"
}

# Of a command that is meant to fail, the message is what is to be seen.
run_failing() {
    local status=0
    run "$@" 2>&1 || status=$?
    echo "(exit status $status)"
    [ "$status" -ne 0 ]
}

heading "Installing what is missing"
scripts/setup.sh linux

heading "Building"
mkdir -p build/demo
cmake --preset release -B build/demo -DTREEVAULT_BUILD_TESTS=OFF >build/demo/configure.log ||
    { cat build/demo/configure.log; exit 1; }
cmake --build build/demo
treevault=$PWD/build/demo/bin/treevault
work=build/demo/work
rm -rf "$work"
mkdir -p "$work"
service=examples/service-configuration.xml

heading "Storing changes as one group, and watching"
run store "$service" examples/service-changes.xml --watch -o "$work/orders.xml"
run show "$work/orders.xml" --path '\orders\listeners\admin'
run show "$work/orders.xml" --path '\orders\limits'
heading "Storing what is to be there, and nothing else"
run store "$service" examples/service-listeners.xml --mode replace-all --watch -o "$work/replaced.xml"
heading "An observer refuses a change: the group is undone, and nothing is written"
run_failing store "$service" examples/service-changes.xml --watch --veto '\orders\limits' \
    -o "$work/refused.xml"
[ ! -e "$work/refused.xml" ]
heading "What a path selects, and what is left without it"
run select "$work/orders.xml" '\orders\listeners' --children --depth 0 --indent
run delete "$work/orders.xml" '\orders' --indent

heading "A service configuration as a tree"
run show "$service"
heading "One node of it, without what is below"
run show "$service" --path '\orders\listeners' --depth 0

heading "Arrays, identifiers and binary data"
run show examples/device-inventory.xml
heading "Hostile text reaches no terminal as it is"
run show examples/hostile-text.xml

heading "Are the documents sound?"
for document in examples/*.xml; do
    run check "$document"
done
printf '<nr><n n="a"/><n n="b"><a n="size" t="3" v="many"/></n></nr>' >"$work/broken.xml"
run_failing check "$work/broken.xml"

heading "Rewriting: what is rewritten twice no longer changes"
for document in examples/*.xml; do
    name=$(basename "$document" .xml)
    run rewrite "$document" --indent -o "$work/$name.xml"
    run rewrite "$work/$name.xml" --indent -o "$work/$name-again.xml"
    cmp "$work/$name.xml" "$work/$name-again.xml"
done
head -n 12 "$work/device-inventory.xml"

heading "Converting values"
run convert StringA 0xFF Int32
run convert Int32 -1 UInt64
run convert 'StringA[]' 1 2 3 'Bool[]'
run convert StringA B64:VHJlZVZhdWx0IQ== Binary
run_failing convert StringA many Int32

heading "What does a code mean?"
run error 0x80070057
run error 0x80040204

heading "The library from C and from C++"
for sample in hello_c hello_cpp roundtrip cloning watching storing; do
    echo "\$ example_$sample"
    "build/demo/bin/example_$sample"
    echo
done
