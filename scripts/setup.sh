#!/usr/bin/env bash
# Installs what the project needs from Debian, and only what is missing. Works
# as root and through sudo; prints nothing and takes no time when all is there.
#
#   scripts/setup.sh [build|test|bench|lint]...    without an argument: all of it
set -euo pipefail

build=(
    build-essential cmake ninja-build
    qt6-base-dev libgl-dev libboost-dev libgeographiclib-dev libpugixml-dev
    libzip-dev zlib1g-dev
)
bench=(libbenchmark-dev libsndfile1-dev)
lint=(git clang-14 clang-format-14 clang-tidy-14)

[ $# -gt 0 ] || set -- build bench lint
packages=()
for purpose in "$@"; do
    case $purpose in
        build | test) packages+=("${build[@]}") ;;
        bench) packages+=("${build[@]}" "${bench[@]}") ;;
        # The benchmarks are checked, too.
        lint) packages+=("${build[@]}" "${bench[@]}" "${lint[@]}") ;;
        *)
            echo "setup.sh: unknown purpose \"$purpose\": give build, test, bench or lint" >&2
            exit 2
            ;;
    esac
done

installed=$(dpkg-query --show --showformat='${Package} ${db:Status-Status}\n' "${packages[@]}" 2>/dev/null || true)
missing=()
for package in "${packages[@]}"; do
    grep --quiet --line-regexp "$package installed" <<<"$installed" || missing+=("$package")
done
if [ "${#missing[@]}" -eq 0 ]; then
    exit 0
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || {
        echo "setup.sh: run as root, or install sudo; missing: ${missing[*]}" >&2
        exit 1
    }
    as_root=(sudo)
fi

echo "Installing: ${missing[*]}"
install() {
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install --yes --quiet=2 --no-install-recommends "${missing[@]}"
}
# The package lists of a fresh machine may be absent or old.
install >/dev/null 2>&1 || {
    "${as_root[@]}" apt-get update --quiet=2
    install >/dev/null
}
