#!/usr/bin/env bash
# Static checks of our own code; any finding is an error.
#
#   scripts/lint.sh quick     cppcheck, and clang-tidy over the library: what ./test.sh runs
#   scripts/lint.sh           clang-tidy over the examples and benchmarks too
#   scripts/lint.sh analyse   clang's static analyser over the library: a quarter of an hour on two cores
#
# The checks, and what is left out of them with the reasons: .clang-tidy, scripts/cppcheck-suppressions.
set -euo pipefail
cd "$(dirname "$(realpath -- "$0")")/.."
. scripts/common.sh

mode=${1:-all}
case $mode in
quick | all | analyse) ;;
*) echo "usage: scripts/lint.sh [quick|analyse]" >&2 && exit 2 ;;
esac

scripts/install-packages.sh "${build_packages[@]}" clang clang-tidy cppcheck
[ "$mode" != all ] || scripts/install-packages.sh libbenchmark-dev

# For the commands that compile the sources, and for the header that CMake writes. Nothing is built.
build=build/lint
configure dev -B "$build" -DCMAKE_CXX_COMPILER=clang++ -DKELVOSGTOOLS_BUILD_TESTS=OFF \
    -DKELVOSGTOOLS_BUILD_BENCHMARKS="$([ "$mode" = all ] && echo ON || echo OFF)"

tidy() {
    xargs --max-procs="$(nproc)" --max-args=1 clang-tidy --quiet --warnings-as-errors='*' "$@"
}

if [ "$mode" = analyse ]; then
    printf '%s\n' src/*/*.cpp | tidy -p "$build" --checks='-*,clang-analyzer-*'
    exit
fi

cppcheck --quiet --error-exitcode=1 --std=c++17 --library=qt --enable=warning,style,performance,portability \
    --suppressions-list=scripts/cppcheck-suppressions -I include -I src -I "$build/include" \
    src include examples benchmarks fuzz

# Without the analyser, which looks at a main source only, not at those that it includes.
folders=(src)
[ "$mode" = quick ] || folders+=(examples/*/ benchmarks/*/)
scripts/lint_units.py "$build" "$build/units" "${folders[@]}" |
    tidy -p "$build/units" --checks='-clang-analyzer-*,-bugprone-suspicious-include'
