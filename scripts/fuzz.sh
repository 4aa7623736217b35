#!/bin/sh
# Feeds mutated feature files to the importer, in a build with sanitizers.
#
#   scripts/fuzz.sh [COUNT]    COUNT executions, 100000 by default; further runs go on from what the
#                              former ones found (build/fuzz/corpus)
#
# A finding ends the run with an error and leaves the input in build/fuzz/findings.
set -eu
cd "$(dirname "$0")/.."
count=${1:-100000}

cmake --preset fuzz
cmake --build --preset fuzz --target importer_fuzzer
mkdir -p build/fuzz/corpus build/fuzz/findings
build/fuzz/fuzz/importer_fuzzer -runs="$count" -max_len=8192 -timeout=60 -dict=fuzz/importer.dict \
    -artifact_prefix=build/fuzz/findings/ -print_final_stats=1 build/fuzz/corpus fuzz/corpus
