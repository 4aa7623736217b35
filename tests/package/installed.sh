#!/usr/bin/env bash
# The tests of what is installed: installed.sh STEP [ARGUMENT], called by ctest with these variables:
#   SOURCE, BUILD    the project's sources and its build folder
#   VERSION          the project's
#   SCRATCH          a folder of these tests
#   LIBDIR           the folder of libraries below an installation, such as lib
# The step `install` comes first. It installs the build into one folder and moves that to another, where the other
# steps, each a test of its own, find it.
set -euo pipefail

installed="$SCRATCH/moved"
export QT_QPA_PLATFORM=offscreen

fail() {
    echo "installed.sh: $*" >&2
    exit 1
}

# Configures and builds the project $1 in the scratch folder $2, with further options for CMake.
build() {
    local project=$1 folder="$SCRATCH/$2"
    shift 2
    rm -rf "$folder"
    cmake -S "$project" -B "$folder" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_FLAGS="-O0 -g0" "$@"
    cmake --build "$folder" --parallel 2
}

install() {
    rm -rf "$SCRATCH/installed" "$installed"
    cmake --install "$BUILD" --prefix "$SCRATCH/installed"
    mv "$SCRATCH/installed" "$installed"
}

# A path of the build in there would be missing, or another's, on the machine of a user.
names_no_folder() {
    local folder text_files=0 file
    while IFS= read -r file; do
        text_files=$((text_files + 1))
        for folder in "$SOURCE" "$BUILD" "$SCRATCH"; do
            if grep --fixed-strings --line-number "$folder" "$file"; then fail "$file names $folder"; fi
        done
    done < <(find "$installed/include" "$installed/$LIBDIR" "$installed/share" -type f ! -name '*.so*')
    [ "$text_files" -gt 20 ] || fail "only $text_files files there"

    local binary run_path
    for binary in "$installed/$LIBDIR"/*.so "$installed/bin"/*; do
        run_path=$(readelf --dynamic "$binary" | sed -n 's/.*(R\(UN\)\?PATH).*\[\(.*\)\]/\2/p')
        case "$run_path" in
            "" | "\$ORIGIN/../$LIBDIR") ;;
            *) fail "$binary looks for libraries in $run_path" ;;
        esac
    done
}

viewer_finds_its_library() {
    # Nothing but its own run path may lead the program to the library.
    local library
    library=$(env -u LD_LIBRARY_PATH ldd "$installed/bin/kelv-viewer" | awk '/libKelvOsgTools/ { print $3 }')
    [ "$(realpath "$library")" = "$(realpath "$installed/$LIBDIR/libKelvOsgTools.so")" ] ||
        fail "kelv-viewer runs with $library"
    env -u LD_LIBRARY_PATH "$installed/bin/kelv-viewer" --version | grep --fixed-strings "kelv-viewer $VERSION"
}

host_by_find_package() {
    build "$SOURCE/tests/package/host" find-package -DCMAKE_PREFIX_PATH="$installed"
    "$SCRATCH/find-package/host"
}

host_by_pkg_config() {
    local flags
    export PKG_CONFIG_PATH="$installed/$LIBDIR/pkgconfig"
    pkg-config --exact-version="$VERSION" kelvosgtools || fail "the version is $(pkg-config --modversion kelvosgtools)"
    read -ra flags < <(pkg-config --cflags --libs kelvosgtools)
    mkdir -p "$SCRATCH/pkg-config"
    # Qt's headers ask for -fPIC, and its packages for pkg-config leave that to the host.
    g++ -std=c++17 -fPIC "$SOURCE/tests/package/host/main.cpp" -o "$SCRATCH/pkg-config/host" "${flags[@]}"
    LD_LIBRARY_PATH=$(pkg-config --variable=libdir kelvosgtools) "$SCRATCH/pkg-config/host"
}

host_by_add_subdirectory() {
    build "$SOURCE/tests/package/host_with_sources" add-subdirectory -DKELVOSGTOOLS_SOURCE_DIR="$SOURCE"
    "$SCRATCH/add-subdirectory/host"
    [ ! -e "$SCRATCH/add-subdirectory/KelvOsgTools/tests" ] || fail "the host's build holds our tests"
}

# The example $1, copied out of the sources, and its own tests.
example() {
    rm -rf "$SCRATCH/examples/$1"
    mkdir -p "$SCRATCH/examples"
    cp -r "$SOURCE/examples/$1" "$SCRATCH/examples"
    build "$SCRATCH/examples/$1" "examples/$1/build" -DCMAKE_PREFIX_PATH="$installed"
    ctest --test-dir "$SCRATCH/examples/$1/build" --output-on-failure --no-tests=error
}

"$@"
