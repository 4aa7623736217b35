#!/usr/bin/env bash
# Makes sure that Debian packages are there: scripts/install-packages.sh PACKAGE...
# Installs only what is missing, and asks no questions. On other systems, where the same things have
# other names, install them by hand and set KELVOSGTOOLS_SKIP_PACKAGES=1.
set -euo pipefail

[ "${KELVOSGTOOLS_SKIP_PACKAGES:-}" != 1 ] || exit 0

is_installed() {
    [ "$(dpkg-query --show --showformat='${db:Status-Status}' "$1" 2>/dev/null)" = installed ]
}

missing=()
for package in "$@"; do
    is_installed "$package" || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

if ! command -v apt-get >/dev/null; then
    echo "error: no apt-get here; install what these Debian packages hold, then set KELVOSGTOOLS_SKIP_PACKAGES=1:" \
        "${missing[*]}" >&2
    exit 1
fi

as_root=(env DEBIAN_FRONTEND=noninteractive)
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
        echo "error: neither root nor sudo here; have these packages installed: ${missing[*]}" >&2
        exit 1
    fi
    as_root=(sudo "${as_root[@]}")
fi

echo "Installing packages: ${missing[*]}"
"${as_root[@]}" apt-get update -qq </dev/null
"${as_root[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}" </dev/null
