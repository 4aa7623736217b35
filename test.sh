#!/usr/bin/env bash
# Builds the library and runs all its tests: ./test.sh
# Installs what is missing. Needs no display and about half an hour on two cores the first time.
set -euo pipefail
cd "$(dirname "$(realpath -- "$0")")"
. scripts/common.sh

[ $# -eq 0 ] || { echo "test.sh: takes no arguments" >&2 && exit 2; }

fuzz_runs=20000

scripts/install-packages.sh "${build_packages[@]}" "${display_packages[@]}" "${test_packages[@]}" "${packaging_packages[@]}" \
    fonts-noto-cjk libxml2-utils clang libclang-rt-14-dev clang-tidy cppcheck

# Qt writes its files for the session there; without it, Qt complains in every test.
runtime_folder=$(mktemp -d)
trap 'kill $(jobs -p) 2>/dev/null || true; rm -rf "$runtime_folder"' EXIT
export XDG_RUNTIME_DIR=$runtime_folder

build() {
    configure "$1"
    cmake --build --preset "$1"
}

run_tests() {
    with_virtual_display ctest --preset "$1" --parallel "$(nproc)"
}

say "The tour's part and the code in the guides are up to date"
scripts/make_part.py --check examples/tour/part.obj
scripts/check_docs.py

say "Static checks"
scripts/lint.sh quick

say "Debug build"
build dev
run_tests dev

# The fuzzer keeps one core busy, so it runs while the other build does; nothing there depends on time.
say "Build with address and undefined-behaviour sanitizers; beside it, fuzzing the reader of saved files"
scripts/fuzz.sh "$fuzz_runs" >"$runtime_folder/fuzz.log" 2>&1 &
fuzzing=$!
build sanitize

say "Fuzzing: $fuzz_runs runs"
wait "$fuzzing" || { cat "$runtime_folder/fuzz.log" && exit 1; }
tail -n 20 "$runtime_folder/fuzz.log"

say "Tests with sanitizers"
# Leaks count as failures; those of other libraries are listed in tests/sanitizer-suppressions.
run_tests sanitize
