#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds and runs the benchmarks and prints one table: for each workload the time of TreeVault and
# of each reference for one item, and how many times the reference TreeVault takes. Arguments go to
# the programs, for instance --benchmark_filter=Xml; BENCH_REPETITIONS is 5 unless set.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh linux
results=build/benchmark/results
mkdir -p "$results"
rm -f "$results"/*.json

# Silent unless it fails.
run() { # LOG COMMAND...
    "${@:2}" >"$1" 2>&1 || { cat "$1" >&2; exit 1; }
}

run "$results/build.log" cmake --preset benchmark
run "$results/build.log" cmake --build --preset benchmark

programs=(treevault_benchmarks treevault_storage_benchmarks treevault_internal_benchmarks)
for program in "${programs[@]}"; do
    # A filter may leave programs without a benchmark.
    run "$results/$program.log" build/benchmark/bin/$program \
        --benchmark_repetitions="${BENCH_REPETITIONS:-5}" \
        --benchmark_enable_random_interleaving=true \
        --benchmark_report_aggregates_only=true \
        --benchmark_out="$results/$program.json" --benchmark_out_format=json \
        "$@"
done

# Medians in the order of the sources, one a line: name, items in a second, bytes for each node.
medians() { # NUMBER FILE
    awk -v program="$1" '
        function text_of(line) { sub(/^[^:]*: *"/, "", line); sub(/",?$/, "", line); return line }
        function number_of(line) { sub(/^[^:]*: */, "", line); return line + 0 }
        /"family_index":/ { family = number_of($0) }
        /"per_family_instance_index":/ { instance = number_of($0) }
        /"run_name":/ { name = text_of($0); rate = bytes = 0 }
        /"aggregate_name":/ { median = text_of($0) == "median" }
        /"error_message":/ { print name ": " text_of($0) > "/dev/stderr" }
        /"items_per_second":/ { rate = number_of($0) }
        /"bytes_per_node":/ { bytes = number_of($0) }
        /^ *}/ && rate > 0 { if (median) print program, family, instance, name, rate, bytes; rate = 0 }
    ' "$2" | sort -n -k 1,1 -k 2,2 -k 3,3
}

# The names are BM_<workload>/<who>, with arguments and marks of the measurement behind.
{
    for number in "${!programs[@]}"; do
        medians "$number" "$results/${programs[number]}.json"
    done
} | awk '
    function note(workload, who, value) {
        if (!(workload in references)) { order[++count] = workload; references[workload] = "" }
        if (who != "treevault")
            references[workload] = references[workload] " " who
        values[workload, who] = value
    }

    function shown(value, unit) {
        return sprintf(value < 10 ? "%.2f %s" : value < 100 ? "%.1f %s" : "%.0f %s", value, unit)
    }

    {
        parts = split($4, part, "/")
        workload = substr(part[1], 4)
        for (i = 3; i <= parts; ++i)
            if (part[i] ~ /^(threads:)?[0-9]+$/) workload = workload "/" part[i]
        note(workload, part[2], 1e9 / $5)
        if ($6 > 0) note(workload " memory", part[2], $6)
    }

    END {
        line = "%-22s %10s  %-24s %10s %8s\n"
        printf line, "workload", "TreeVault", "reference", "", "ratio"
        for (w = 1; w <= count; ++w) {
            workload = order[w]
            own = values[workload, "treevault"]
            unit = workload ~ / memory$/ ? "B" : "ns"
            label = workload
            time = shown(own, unit)
            total = split(references[workload], who, " ")
            for (r = 1; r <= total; ++r) {
                other = values[workload, who[r]]
                printf line, label, time, who[r], shown(other, unit), sprintf("%.2f", own / other)
                label = time = ""
            }
        }
    }'
