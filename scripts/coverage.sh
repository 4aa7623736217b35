#!/usr/bin/env bash
# Runs the tests and prints which lines and branches of src/ and include/ they run: scripts/coverage.sh
# Leaves the sources with the counts beside their lines in build/coverage/report/index.html.
#
# Branches that only exceptions take, as the compiler adds them after every call, do not count: nothing is
# caught here but exhausted memory, which has tests of its own. Nor do branches that the compiler knows
# to be never taken. The viewer's tests are left out; they are not about the library.
set -euo pipefail
cd "$(dirname "$(realpath -- "$0")")/.."
. scripts/common.sh

scripts/install-packages.sh "${build_packages[@]}" "${display_packages[@]}" "${test_packages[@]}" fonts-noto-cjk \
    libxml2-utils gcovr

configure coverage
cmake --build --preset coverage
find build/coverage -name '*.gcda' -delete

runtime_folder=$(mktemp -d)
trap 'rm -rf "$runtime_folder"' EXIT
export XDG_RUNTIME_DIR=$runtime_folder
# Whole programs: a process for each test would spend its time on reading and writing counts.
find build/coverage/tests -name '*_tests' -type f -executable | sort | while read -r program; do
    say "$program"
    with_virtual_display "$program" --gtest_brief=1 </dev/null
done

mkdir -p build/coverage/report
gcovr --root . --filter src/ --filter include/ --exclude-throw-branches --exclude-unreachable-branches \
    --html-details build/coverage/report/index.html --txt - --print-summary build/coverage
