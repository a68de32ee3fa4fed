#!/usr/bin/env bash
# Builds the release and runs all benchmarks. Every figure is printed with the bare
# cost of the same work in the same run, and their ratio.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh bench
cmake --preset release -DSIMULATION_BUILD_BENCHMARKS=ON >/dev/null
cmake --build --preset release

for benchmark in build/release/bin/bench_*; do
    "$benchmark" "$@"
done
