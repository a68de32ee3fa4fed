#!/usr/bin/env bash
# Builds the release, makes a repository of signal packages, plays the default
# scenario with them, and sends it from an editor through the service to two devices.
# Shows the first lines and the last line of each step's output; build/demo contains the
# whole output. Arguments are passed to "simulationtool play".
set -euo pipefail
cd "$(dirname "$0")/.."

tool=build/release/bin/simulationtool
folder=build/demo
lines=10 # first lines shown of each step, so that this script prints little
rm -rf "$folder"
mkdir -p "$folder"

# step NAME COMMAND...: runs the command, writes its output to NAME.txt and shows the
# first lines and the last line of the output.
step() {
    local file=$folder/$1.txt
    echo "$1: ${*:2}"
    "${@:2}" >"$file" 2>&1 || {
        tail -n 30 "$file"
        echo "demo.sh: \"${*:2}\" failed; all that it printed is in $file" >&2
        exit 1
    }
    head -n "$lines" "$file"
    local rest=$(($(wc -l <"$file") - lines))
    [ "$rest" -le 1 ] || echo "... $((rest - 1)) more lines in $file"
    [ "$rest" -le 0 ] || tail -n 1 "$file"
    echo
}

scripts/setup.sh build
echo "build: the release, which takes minutes when it is built for the first time"
{
    cmake --preset release && cmake --build --preset release --target simulationtool
} >"$folder/build.txt" 2>&1 || {
    tail -n 30 "$folder/build.txt"
    echo "demo.sh: the build failed; all that it printed is in $folder/build.txt" >&2
    exit 1
}
echo

step init "$tool" repository init "$folder/repository"
step list "$tool" repository list "$folder/repository"
step play "$tool" play --repository "$folder/repository" --cache "$folder/cache" "$@"
step demo "$tool" demo
echo "Left in $folder: build.txt, init.txt, list.txt, play.txt, demo.txt,"
echo "repository (signal packages) and cache (their copies)"
