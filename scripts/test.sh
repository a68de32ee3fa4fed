#!/usr/bin/env bash
# Builds everything and runs all tests. The argument is the preset, by default
# "debug"; "sanitize" is another.
set -euo pipefail
cd "$(dirname "$0")/.."

preset=${1:-debug}
scripts/setup.sh test
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset"

expected=$(find tests -name 'tst_*.cpp' | wc -l)
registered=$(ctest --preset "$preset" --show-only | grep -c ': tst_' || true)
if [ "$registered" -ne "$expected" ]; then
    echo "test.sh: $expected test programs exist, but $registered are registered" >&2
    exit 1
fi
ctest --preset "$preset"
