#!/usr/bin/env bash
# Builds the library and runs all its tests: ./test.sh
# Installs what is missing. Needs no display and about 20 minutes on two cores the first time.
set -euo pipefail
cd "$(dirname "$(realpath -- "$0")")"
. scripts/common.sh

[ $# -eq 0 ] || { echo "test.sh: takes no arguments" >&2 && exit 2; }

fuzz_runs=20000

scripts/install-packages.sh "${build_packages[@]}" "${display_packages[@]}" "${test_packages[@]}" "${packaging_packages[@]}" \
    fonts-noto-cjk libxml2-utils clang libclang-rt-14-dev

# Qt writes its files for the session there; without it, Qt complains in every test.
runtime_folder=$(mktemp -d)
trap 'rm -rf "$runtime_folder"' EXIT
export XDG_RUNTIME_DIR=$runtime_folder

# Builds the preset $1 and runs its tests.
build_and_test() {
    configure "$1"
    cmake --build --preset "$1"
    with_virtual_display ctest --preset "$1" --parallel "$(nproc)"
}

say "The tour's part and the code in the guides are up to date"
scripts/make_part.py --check examples/tour/part.obj
scripts/check_docs.py

say "Debug build"
build_and_test dev

if [ -x scripts/fuzz.sh ]; then
    say "Fuzzing the reader of saved files: $fuzz_runs runs"
    scripts/fuzz.sh "$fuzz_runs"
fi

say "Build with address and undefined-behaviour sanitizers"
# Leaks count as failures; those of other libraries are listed in tests/sanitizer-suppressions.
build_and_test sanitize
