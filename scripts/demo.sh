#!/usr/bin/env bash
# The main job: builds the release and plays the default scenario.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release --target simulationtool

build/release/bin/simulationtool play "$@"
