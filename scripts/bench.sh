#!/usr/bin/env bash
# Builds the release and measures it: every figure stands beside the bare cost
# of the same work in the same run, with their ratio.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh bench
cmake --preset release -DSIMULATION_BUILD_BENCHMARKS=ON >/dev/null
cmake --build --preset release

for benchmark in build/release/bin/bench_*; do
    "$benchmark" "$@"
done
