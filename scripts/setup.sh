#!/usr/bin/env bash
# Installs what the project needs from Debian, and only what is missing. Works
# as root and through sudo; says nothing and takes no time when all is there.
set -euo pipefail

packages=(
    build-essential cmake ninja-build git ca-certificates
    qt6-base-dev libgl-dev libboost-dev libgeographiclib-dev libpugixml-dev
    libzip-dev zlib1g-dev
    libbenchmark-dev libsndfile1-dev
    clang-14 clang-format-14 clang-tidy-14
)

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
