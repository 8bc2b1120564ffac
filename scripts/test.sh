#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds everything and runs every test: on Linux as released and under the sanitizers, and against
# the DLL under Wine. The last line counts the tests of all suites.
set -uo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh || exit 1

# Wine keeps its own folder, away from the user's.
export WINEPREFIX="$PWD/build/wine" WINEDLLOVERRIDES="mscoree,mshtml="
export ASAN_OPTIONS="detect_leaks=1:allocator_may_return_null=1"
export UBSAN_OPTIONS="print_stacktrace=1:halt_on_error=1"
export TSAN_OPTIONS="halt_on_error=1:second_deadlock_stack=1"
logs="$PWD/build/logs"
mkdir -p "$logs" "$WINEPREFIX"

passed=0
failed=0

count() { # PASSED FAILED
    passed=$((passed + $1))
    failed=$((failed + $2))
}

# The cases of each program where it tells them, and the program itself where it does not.
count_cases() { # LOG
    awk '
        match($0, /^[0-9]+: \[  PASSED  \] [0-9]+ test/) { split($0, w, /[ :]+/); ok[$1 + 0] += $5; told[$1 + 0] = 1 }
        /^[0-9]+: \[  FAILED  \] [0-9]+ test.*listed below/ { bad[$1 + 0] += $5; told[$1 + 0] = 1 }
        /^ *[0-9]+\/[0-9]+ Test +#[0-9]+:/ {
            sub(/.*Test +#/, ""); number = $0 + 0; state[number] = / Passed / ? "ok" : "bad"
        }
        END {
            for (n in state) {
                if (told[n]) { p += ok[n]; f += bad[n]; if (state[n] == "bad" && !bad[n]) f++ }
                else if (state[n] == "ok") p++; else f++
            }
            print p + 0, f + 0
        }' "$1"
}

run_suite() { # PRESET
    local preset=$1 log="$logs/$1.log"
    echo "== $preset: building"
    if ! cmake --preset "$preset" >"$logs/$preset-configure.log" 2>&1; then
        tail -n 30 "$logs/$preset-configure.log"
        count 0 1
        return
    fi
    local target=all
    [ "$preset" != tsan ] || target=concurrency_tests
    if ! cmake --build --preset "$preset" --target "$target" >"$logs/$preset-build.log" 2>&1; then
        grep -E -A8 "error|FAILED" "$logs/$preset-build.log" | head -n 60
        count 0 1
        return
    fi
    echo "== $preset: testing"
    ctest --preset "$preset" -V -j "$(nproc)" --no-tests=error >"$log" 2>&1
    local result=$?
    read -r p f < <(count_cases "$log")
    # A suite that fails without a failed case has not run as it should.
    [ "$result" -eq 0 ] || [ "$f" -ne 0 ] || f=1
    if [ "$f" -ne 0 ]; then
        grep -E "\[  FAILED  \]|Failure$|\*\*\*|ERROR: |runtime error|WARNING: Thread" "$log" | head -n 40
        sed -n '/The following tests FAILED/,$p' "$log"
    fi
    echo "== $preset: $p passed, $f failed"
    count "$p" "$f"
}

# What the program writes is the same on both platforms, byte for byte.
compare_platforms() {
    if [ -d build/release/examples-out ] && diff -r build/release/examples-out build/windows/examples-out; then
        count 1 0
    else
        echo "== the outputs of the two platforms differ"
        count 0 1
    fi
}

run_suite release
run_suite asan
run_suite tsan
# Wine takes seconds to start and to stop its services; one idle program keeps them for all tests.
wine=$(command -v wine64 || command -v /usr/lib/wine/wine64)
WINEDEBUG=-all "$wine" wineboot -i >"$logs/wineboot.log" 2>&1
set -m
(sleep 3600 | WINEDEBUG=-all "$wine" cmd) >/dev/null 2>&1 </dev/null &
keeper=$!
set +m
run_suite windows
kill -- -"$keeper" 2>/dev/null
compare_platforms

echo "$passed passed, $failed failed"
[ "$failed" -eq 0 ]
