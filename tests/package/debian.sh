#!/usr/bin/env bash
# The tests of the Debian packages: debian.sh STEP, called by ctest with these variables:
#   SOURCE, BUILD    the project's sources and its build folder
#   VERSION          the project's
#   SCRATCH          a folder of these tests
# The step `make_packages` comes first. It makes the packages and unpacks all of them into one folder, where the
# other steps, each a test of its own, find what they hold as if it was installed.
set -euo pipefail

packages="$SCRATCH/packages"
root="$SCRATCH/root"
export QT_QPA_PLATFORM=offscreen

fail() {
    echo "debian.sh: $*" >&2
    exit 1
}

make_packages() {
    rm -rf "$packages" "$root"
    (cd "$BUILD" && cpack -G DEB -B "$packages")
    local package
    for package in "$packages"/*.deb; do dpkg-deb --extract "$package" "$root"; done
}

field() {
    dpkg-deb --field "$packages/${1}_$VERSION"-*.deb "$2"
}

expect_dependency() {
    [[ $(field "$1" Depends) == *"$2"* ]] || fail "$1 depends on $(field "$1" Depends), not on $2"
}

name_what_they_need() {
    expect_dependency libkelvosgtools1 libopenscenegraph
    expect_dependency libkelvosgtools1 libqt5gui5
    expect_dependency libkelvosgtools-dev libopenscenegraph-dev
    expect_dependency libkelvosgtools-dev qtbase5-dev
    expect_dependency libkelvosgtools-dev "libkelvosgtools1 (= $VERSION-1)"
    expect_dependency kelv-viewer "libkelvosgtools1 (= $VERSION-1)"
    expect_dependency kelv-viewer libqt5widgets5
}

pass_lintian() {
    lintian --allow-root --fail-on error "$packages"/*.deb
}

# A host against what -dev and the library hold; what they depend on is on the machine.
serve_a_host() {
    rm -rf "$SCRATCH/host"
    cmake -S "$SOURCE/tests/package/host" -B "$SCRATCH/host" -G Ninja -DCMAKE_CXX_FLAGS="-O0" \
        -DCMAKE_PREFIX_PATH="$root/usr"
    cmake --build "$SCRATCH/host"
    "$SCRATCH/host/host"
}

viewer_starts() {
    if readelf --dynamic "$root/usr/bin/kelv-viewer" | grep PATH; then fail "the viewer has a run path"; fi
    local library
    library=$(find "$root/usr/lib" -name 'libKelvOsgTools.so.1')
    LD_LIBRARY_PATH=$(dirname "$library") "$root/usr/bin/kelv-viewer" --version |
        grep --fixed-strings "kelv-viewer $VERSION"
}

"$@"
