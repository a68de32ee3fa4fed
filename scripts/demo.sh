#!/usr/bin/env bash
# The main job: builds the release, makes a repository of signal packages in a
# scratch folder, plays the default scenario with them, and sends it the whole
# road from an editor through the service to two devices. Arguments go to
# "simulationtool play".
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release --target simulationtool

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
tool=build/release/bin/simulationtool

"$tool" repository init "$scratch/repository"
echo
"$tool" repository list "$scratch/repository"
echo
"$tool" play --repository "$scratch/repository" --cache "$scratch/cache" "$@"
echo
"$tool" demo
