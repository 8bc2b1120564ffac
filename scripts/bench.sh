#!/usr/bin/env bash
# SPDX-License-Identifier: MIT
# Builds and runs the benchmarks and prints one table: for each workload the time of TreeVault and
# of each reference for one item, how many times the reference TreeVault takes, and whether the
# limits in benchmarks/targets.txt hold. Arguments go to the programs, for instance
# --benchmark_filter=Xml. BENCH_REPETITIONS is 5 unless set, and BENCH_SECONDS, for each of them, 0.1;
# BENCH_GROWTH=large lets trees grow to 11,111,111 nodes. Beside the table: build/benchmark/results/benchmarks.csv and benchmarks.svg.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh benchmark
results=build/benchmark/results
mkdir -p "$results"
rm -f "$results"/*

# Silent unless it fails.
run() { # LOG COMMAND...
    "${@:2}" >"$1" 2>&1 || { cat "$1" >&2; exit 1; }
}

run "$results/build.log" cmake --preset benchmark
run "$results/build.log" cmake --build --preset benchmark

for name in "" storage_ settings_ internal_ growth_ storage_growth_; do
    program=treevault_${name}benchmarks
    # A filter may leave programs without a benchmark.
    run "$results/$program.log" build/benchmark/bin/$program \
        --benchmark_repetitions="${BENCH_REPETITIONS:-5}" \
        --benchmark_min_time="${BENCH_SECONDS:-0.1}" \
        --benchmark_enable_random_interleaving=true \
        --benchmark_report_aggregates_only=true \
        --benchmark_out="$results/$program.json" --benchmark_out_format=json \
        "$@"
    awk -f benchmarks/medians.awk "$results/$program.json" >>"$results/medians.txt"
done

awk -f benchmarks/compare.awk benchmarks/targets.txt "$results/medians.txt" \
    >"$results/benchmarks.csv"
awk -f benchmarks/chart.awk "$results/benchmarks.csv" >"$results/benchmarks.svg"
awk -f benchmarks/table.awk "$results/benchmarks.csv"
