#!/usr/bin/env bash
# Checks the format of all own sources, then lets clang-tidy look for mistakes.
# Any finding fails. The debug build comes first: its compile commands and
# generated sources are used. A source that had no finding is passed over until
# it, a header that it includes, its compile command, .clang-tidy or a package
# of Debian changes.
#
#   scripts/lint.sh [--anew] [SOURCE...]    --anew: passes none over
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh lint
build=build/debug
clean=$build/lint # an empty file for every state of a source that had no finding
if [ "${1:-}" = --anew ]; then
    rm -rf "$clean"
    shift
fi
mkdir -p "$clean"

# What git does not know yet counts as well, unless it is ignored.
own_sources() { git ls-files --cached --others --exclude-standard "$@"; }

own_sources '*.cpp' '*.h' | xargs clang-format-14 --dry-run --Werror

# The benchmarks are checked, too.
cmake --preset debug -DSIMULATION_BUILD_BENCHMARKS=ON >/dev/null
cmake --build --preset debug

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

# The sources in the order of their size: the long checks begin first, so that all
# processors are busy to the end. The consumer of the installation is built apart
# from us, so there are no compile commands for it.
sources=("$@")
[ $# -gt 0 ] || mapfile -t sources < <(own_sources '*.cpp' ':!tests/consumer' | xargs ls -S)

# What clang-tidy reads beside our own files.
common=$(cat .clang-tidy <(dpkg-query --show) | sha256sum)
# For every source a line with each of our files that it was made from.
ninja -C "$build" -t deps | awk -v build="$build" '
    /^[^ ]/ { source = ""; next }
    NF == 0 { next }
    { file = $0; sub(/^ +/, "", file) }
    source == "" { source = file; sub(/^(\.\.\/)+/, "", source) }
    file !~ /^\/usr\// { print source "\t" build "/" file }' >"$scratch/files"

# An error where the build knows no files of the source.
state_of() {
    grep --quiet --fixed-strings "$1	" "$scratch/files" || {
        echo "lint.sh: $1 is not among the sources that the debug build compiled" >&2
        return 1
    }
    {
        echo "$common"
        grep --fixed-strings -- "-c $PWD/$1\"" "$build/compile_commands.json"
        awk -F '\t' -v source="$1" '$1 == source { print $2 }' "$scratch/files" | sort -u | xargs sha256sum
    } | sha256sum | cut -d ' ' -f 1
}

for source in "${sources[@]}"; do
    state=$(state_of "$source")
    [ -e "$clean/$state" ] || printf '%s\0%s\0' "$source" "$clean/$state"
done >"$scratch/changed"

echo "lint.sh: $(($(tr --complement --delete '\0' <"$scratch/changed" | wc -c) / 2)) of ${#sources[@]} sources are checked, the others have not changed"
xargs --null --max-procs="$(nproc)" --max-args=2 --no-run-if-empty sh -c \
    'clang-tidy-14 -p build/debug --quiet "$1" && touch "$2"' lint <"$scratch/changed"
