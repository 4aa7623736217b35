#!/usr/bin/env bash
# Measures the library against bare OpenSceneGraph and Qt, and writes docs/performance.md.
#
#   scripts/bench.sh [REPETITIONS]    medians of 3 by default
#
# Leave the machine alone meanwhile. Needs no display: frames are then drawn in software.
set -euo pipefail
cd "$(dirname "$(realpath -- "$0")")/.."
. scripts/common.sh
repetitions=${1:-3}

scripts/install-packages.sh "${build_packages[@]}" "${display_packages[@]}" libbenchmark-dev

say "Release build"
configure release -B build/bench -DKELVOSGTOOLS_BUILD_TESTS=OFF -DKELVOSGTOOLS_BUILD_EXAMPLES=OFF
cmake --build build/bench --target feature_benchmarks picking_benchmarks persistence_benchmark

results=build/bench/results
mkdir -p "$results"
# Runs the benchmark program $1, leaving $2.json.
measure() {
    say "$2"
    QT_QPA_PLATFORM=offscreen with_display "$1" --benchmark_repetitions="$repetitions" \
        --benchmark_report_aggregates_only=true --benchmark_out="$results/$2.json" --benchmark_out_format=json
}
measure build/bench/benchmarks/features/feature_benchmarks features
measure build/bench/benchmarks/picking/picking_benchmarks picking
measure build/bench/benchmarks/persistence/persistence_benchmark persistence

scripts/performance_page.py "$results" "$repetitions" >docs/performance.md
say "docs/performance.md is written"
