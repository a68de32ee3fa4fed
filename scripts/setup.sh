#!/usr/bin/env bash
# Installs the Debian packages that the project needs and that are missing, as root or
# with sudo. Prints nothing when all are installed.
#
#   scripts/setup.sh [build|test|bench|lint]...    without an argument: all of them
set -euo pipefail

build=(
    build-essential cmake ninja-build
    qt6-base-dev libgl-dev libboost-dev libgeographiclib-dev libpugixml-dev
    libkissfft-dev libzip-dev zlib1g-dev
)
test=(libxml2-utils python3) # libxml2-utils: xmllint
bench=(libbenchmark-dev libsndfile1-dev)
lint=(git clang-14 clang-format-14 clang-tidy-14)

[ $# -gt 0 ] || set -- test bench lint
packages=()
for purpose in "$@"; do
    case $purpose in
        build) packages+=("${build[@]}") ;;
        test) packages+=("${build[@]}" "${test[@]}") ;;
        bench) packages+=("${build[@]}" "${bench[@]}") ;;
        # The tests and benchmarks are checked as well.
        lint) packages+=("${build[@]}" "${test[@]}" "${bench[@]}" "${lint[@]}") ;;
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
# The package lists of a new machine may be missing or outdated.
install >/dev/null 2>&1 || {
    "${as_root[@]}" apt-get update --quiet=2
    install >/dev/null
}
