# shellcheck shell=bash disable=SC2034
# Shared by the scripts of this project; to be sourced.

# What building and drawing need.
build_packages=(cmake python3 ninja-build g++ libopenscenegraph-dev qtbase5-dev qtbase5-dev-tools)
display_packages=(xvfb xauth libgl1-mesa-dri fonts-dejavu-core)

# What building the tests needs.
test_packages=(libgtest-dev libgmock-dev doxygen)

# What testing the installed library and the Debian packages needs.
packaging_packages=(dpkg-dev file lintian pkg-config)

say() {
    if [ -t 1 ] && [ "${CI:-}" != true ]; then
        printf '\033[1m== %s\033[0m\n' "$*"
    else
        printf '== %s\n' "$*"
    fi
}

# Configures the preset $1, with further options for CMake.
configure() {
    local preset=$1
    shift
    local launcher=()
    if command -v ccache >/dev/null; then
        launcher=(-DCMAKE_CXX_COMPILER_LAUNCHER=ccache)
    fi
    cmake --preset "$preset" "${launcher[@]}" "$@" >/dev/null
}

# Runs a command with a display: the present one, or a virtual one with software GL.
with_display() {
    if [ -n "${DISPLAY:-}" ]; then
        "$@"
    else
        with_virtual_display "$@"
    fi
}

with_virtual_display() {
    xvfb-run --auto-servernum --server-args="-screen 0 1280x1024x24 -noreset" "$@"
}
