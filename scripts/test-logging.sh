#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Sees that the log is never the cause of a failure: builds both platforms and runs every test with
# each line of the log made, first into files, then with a folder for the log that cannot be made.
# "scripts/test-logging.sh release" or "windows" does so for one platform. It takes many minutes and
# some gigabytes, which it gives back.
set -uo pipefail
cd "$(dirname "$0")/.." || exit 1

scripts/setup.sh || exit 1

export GS_Logger_MaxSeverity=DBG3
export WINEPREFIX="$PWD/build/wine" WINEDLLOVERRIDES="mscoree,mshtml=" WINEDEBUG=-all
# Fewer steps of the random tests than usual: each of them writes many lines.
export TREEVAULT_TEST_STEPS=${TREEVAULT_TEST_STEPS:-20000}
logs="$PWD/build/logs"
mkdir -p "$logs" "$WINEPREFIX"
failed=0

remove_logs() { # PRESET
    rm -rf "build/$1/bin/Logs" "build/$1/lib/Logs"
}

# Runs a command, and shows what failed.
check() { # TITLE LOG COMMAND...
    if "${@:3}" >"$2" 2>&1; then
        echo "== $1: passed"
    else
        echo "== $1: FAILED"
        grep -E "\[  FAILED  \]|Failure$|\*\*\*|\(Failed\)|\(Timeout\)" "$2" | head -n 40
        failed=1
    fi
}

run_suite() { # PRESET TITLE
    remove_logs "$1"
    check "$1, $2" "$logs/$1-logging-${2// /-}.log" \
        ctest --preset "$1" -j "$(nproc)" --no-tests=error
    # As one of the suite it writes few lines.
    check "$1, $2, many threads" "$logs/$1-stress-${2// /-}.log" run_stress "$1"
    remove_logs "$1"
}

run_stress() { # PRESET
    case $1 in
    windows) "$wine" build/windows/bin/stress_tests.exe ;;
    *) "build/$1/bin/stress_tests" ;;
    esac
}

test_platform() { # PRESET FOLDER
    if ! { cmake --preset "$1" && cmake --build --preset "$1"; } >"$logs/$1-build.log" 2>&1; then
        tail -n 30 "$logs/$1-build.log"
        failed=1
        return
    fi
    run_suite "$1" "all lines written"
    GS_Logger_Path=$2 run_suite "$1" "no folder for the log"
}

platforms=${1:-release windows}
case " $platforms " in *" release "*)
    test_platform release /proc/nowhere/ ;;
esac
case " $platforms " in *" windows "*)
    # Wine takes seconds to start and to stop its services; one idle program keeps them.
    wine=$(command -v wine64 || command -v /usr/lib/wine/wine64)
    "$wine" wineboot -i >"$logs/wineboot.log" 2>&1
    set -m
    (sleep 7200 | "$wine" cmd) >/dev/null 2>&1 </dev/null &
    keeper=$!
    set +m
    test_platform windows 'Z:\proc\nowhere\'
    kill -- -"$keeper" 2>/dev/null ;;
esac

[ "$failed" -eq 0 ]
