#!/bin/sh
# Feeds mutated feature files to the importer, in a build with sanitizers.
#
#   scripts/fuzz.sh [COUNT [SEED]]    COUNT executions, 100000 by default
#
# A run in a fresh build is the same every time, for one seed; further runs go on from the inputs that
# former ones kept (build/fuzz/corpus).
# A finding ends the run with an error and leaves the input in build/fuzz/findings.
set -eu
cd "$(dirname "$0")/.."
count=${1:-100000}
seed=${2:-1}

cmake --preset fuzz
cmake --build --preset fuzz --target importer_fuzzer
mkdir -p build/fuzz/corpus build/fuzz/findings
build/fuzz/fuzz/importer_fuzzer -runs="$count" -seed="$seed" -max_len=8192 -timeout=60 -dict=fuzz/importer.dict \
    -artifact_prefix=build/fuzz/findings/ -print_final_stats=1 build/fuzz/corpus fuzz/corpus
