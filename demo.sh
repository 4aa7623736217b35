#!/usr/bin/env bash
# Shows what the library does on a mesh: ./demo.sh [MESH]
# MESH is any .obj, .stl, .ply or .osgt file; without it, a machined part that ships with the project.
# Installs what is missing, builds, and leaves numbered pictures in demo-output/. Then starts the measuring viewer,
# or, without a display, walks through it and leaves screenshots in demo-output/viewer.
set -euo pipefail

fail() {
    echo "demo.sh: $*" >&2
    exit 1
}

[ $# -le 1 ] || fail "at most one mesh, please: ./demo.sh [MESH]"
if [ $# -eq 1 ]; then
    case "$1" in
        -h | --help) sed -n '2,5s/^# //p' "$0" && exit 0 ;;
    esac
    [ -e "$1" ] || fail "there is no file $1"
    [ -f "$1" ] || fail "$1 is no file"
    [ -r "$1" ] || fail "$1 cannot be read"
    mesh=$(realpath -- "$1")
fi

cd "$(dirname "$(realpath -- "$0")")"
. scripts/common.sh
mesh=${mesh:-$PWD/examples/tour/part.obj}

scripts/install-packages.sh "${build_packages[@]}" "${display_packages[@]}" "${test_packages[@]}"

say "Building into build/demo"
configure release -B build/demo -DKELVOSGTOOLS_BUILD_BENCHMARKS=OFF
cmake --build build/demo --target tour kelv-viewer kelv-viewer-walk

say "Features on $mesh"
rm -rf demo-output
runtime_folder=$(mktemp -d) # Qt writes its files for the session there, and complains without it
trap 'rm -rf "$runtime_folder"' EXIT
export XDG_RUNTIME_DIR=$runtime_folder
with_display build/demo/examples/tour/tour "$mesh" demo-output
say "The pictures and the saved features are in $PWD/demo-output"

if [ -n "${DISPLAY:-}" ]; then
    say "The measuring viewer: close its window to end"
    build/demo/examples/viewer/kelv-viewer "$mesh" --features demo-output/features.xml
else
    say "A walk through the measuring viewer, without a display"
    QT_QPA_PLATFORM=xcb with_virtual_display build/demo/tests/viewer/kelv-viewer-walk demo-output/viewer
    say "Done: its screenshots are in $PWD/demo-output/viewer"
fi
