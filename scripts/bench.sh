#!/usr/bin/env bash
# Builds the release and runs all benchmarks. Most benchmarks also measure the bare cost,
# that is the same work without this library, in the same run. They print both figures
# and their ratio. Arguments are passed to every benchmark.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh bench
cmake --preset release -DSIMULATION_BUILD_BENCHMARKS=ON >/dev/null
cmake --build --preset release

for benchmark in build/release/bin/bench_*; do
    "$benchmark" "$@"
done
