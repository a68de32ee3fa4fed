#!/usr/bin/env bash
# Builds the release and measures it: every figure stands beside the bare cost
# of the same work in the same run, with their ratio.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release

for benchmark in build/release/bin/bench_*; do
    "$benchmark" "$@"
done
