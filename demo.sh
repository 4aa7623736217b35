#!/usr/bin/env bash
# Shows what the library does on a mesh: ./demo.sh [MESH]
# MESH is any .obj, .stl, .ply or .osgt file; without it, a machined part that ships with the project.
# Installs what is missing, builds, and leaves numbered pictures in demo-output/.
set -euo pipefail

fail() {
    echo "demo.sh: $*" >&2
    exit 1
}

[ $# -le 1 ] || fail "at most one mesh, please: ./demo.sh [MESH]"
if [ $# -eq 1 ]; then
    case "$1" in
        -h | --help) sed -n '2,4s/^# //p' "$0" && exit 0 ;;
    esac
    [ -e "$1" ] || fail "there is no file $1"
    [ -f "$1" ] || fail "$1 is no file"
    [ -r "$1" ] || fail "$1 cannot be read"
    mesh=$(realpath -- "$1")
fi

cd "$(dirname "$(realpath -- "$0")")"
. scripts/common.sh
mesh=${mesh:-$PWD/examples/tour/part.obj}

scripts/install-packages.sh "${build_packages[@]}" "${display_packages[@]}"

say "Building into build/demo"
configure release -B build/demo -DKELVOSGTOOLS_BUILD_TESTS=OFF -DKELVOSGTOOLS_BUILD_BENCHMARKS=OFF
cmake --build build/demo --target tour

say "Features on $mesh"
rm -rf demo-output
runtime_folder=$(mktemp -d) # Qt writes its files for the session there, and complains without it
trap 'rm -rf "$runtime_folder"' EXIT
export XDG_RUNTIME_DIR=$runtime_folder
with_display build/demo/examples/tour/tour "$mesh" demo-output
say "Done: the pictures and the saved features are in $PWD/demo-output"
