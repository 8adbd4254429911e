# Shared by the scripts beside it; to be sourced. Leaves the shell in the root of the project.

set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."

say() { printf '== %s\n' "$*"; }

build_packages="g++ cmake ninja-build ccache qt6-base-dev libssl-dev libboost-stacktrace-dev"

# need_packages package…: installs those Debian packages that are missing, if any.
need_packages() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed ||
            missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    say "Installing ${missing[*]}"
    local as_root=()
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    quietly "${as_root[@]}" apt-get update
    quietly "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y --no-install-recommends "${missing[@]}"
}

# quietly command…: shows what the command printed only if it fails.
quietly() {
    local output status=0
    output=$(mktemp)
    "$@" >"$output" 2>&1 || status=$?
    [ "$status" -eq 0 ] || cat "$output"
    rm -f "$output"
    return "$status"
}

# build preset [target…]: configures and builds a preset, all of it or the targets alone.
build() {
    local preset=$1
    shift
    say "Building ($preset)"
    quietly cmake --preset "$preset"
    quietly cmake --build --preset "$preset" ${1:+--target "$@"}
}

# run_tests preset: runs the tests of a preset; shows each test and the summary.
run_tests() {
    say "Testing ($1)"
    ctest --preset "$1" -j "$(nproc)"
}
