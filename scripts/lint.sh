#!/usr/bin/env bash
# Checks the format of all own sources, then lets clang-tidy look for mistakes.
# Any finding fails. Needs the debug build, whose compile commands it uses.
set -euo pipefail
cd "$(dirname "$0")/.."

mapfile -t sources < <(git ls-files '*.cpp' '*.h')
clang-format-14 --dry-run --Werror "${sources[@]}"

build=build/debug
# The flags are the compiler's own; clang-tidy's front end does not know all.
git ls-files '*.cpp' | grep -v -e '^tests/consumer/' -e '^benchmarks/' |
    xargs --max-procs="$(nproc)" --max-args=1 \
        clang-tidy-14 -p "$build" --quiet --extra-arg=-Wno-unknown-warning-option
