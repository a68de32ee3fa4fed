#!/usr/bin/env bash
# Checks the format of all sources of the project, then runs clang-tidy on them.
# Fails on any finding. Makes the debug build first, because clang-tidy uses its
# compile commands and generated sources. clang-tidy skips a source that had no
# findings, until the source, a header that it includes, its compile command,
# .clang-tidy or a Debian package changes.
#
#   scripts/lint.sh [--anew] [SOURCE...]    --anew: skips no source
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/setup.sh lint
build=build/debug
clean=$build/lint # one empty file for each state of a source that had no findings
if [ "${1:-}" = --anew ]; then
    rm -rf "$clean"
    shift
fi
mkdir -p "$clean"

# Lists untracked files as well, unless git ignores them.
own_sources() { git ls-files --cached --others --exclude-standard "$@"; }

own_sources '*.cpp' '*.h' | xargs clang-format-14 --dry-run --Werror

# The benchmarks are checked as well.
cmake --preset debug -DSIMULATION_BUILD_BENCHMARKS=ON >/dev/null
cmake --build --preset debug

scratch=$(mktemp -d)
# The compile commands without the precompiled headers. Only the compiler that wrote these
# headers can read them, and they would hide that an include is missing.
sed -E 's/-Winvalid-pch -include [^ ]*cmake_pch\.hxx//g' "$build/compile_commands.json" >"$scratch/compile_commands.json"
trap 'rm -rf "$scratch"' EXIT

# The largest sources are checked first, so that the long checks begin early and all
# processors stay busy to the end. tests/consumer is a project of its own without compile
# commands in this build.
sources=("$@")
[ $# -gt 0 ] || mapfile -t sources < <(own_sources '*.cpp' ':!tests/consumer' | xargs ls -S)

# The inputs of clang-tidy that all sources share: its settings and the installed
# packages.
common=$(cat .clang-tidy <(dpkg-query --show) | sha256sum)
# Lists each source with every file of the project that it depends on, one pair a line.
ninja -C "$build" -t deps | awk -v build="$build" '
    /^[^ ]/ { source = ""; next }
    NF == 0 { next }
    { file = $0; sub(/^ +/, "", file) }
    source == "" { source = file; sub(/^(\.\.\/)+/, "", source) }
    file !~ /^\/usr\// { print source "\t" build "/" file }' >"$scratch/files"

# Prints a hash of everything that a source's findings depend on. Fails for a source
# that the build does not contain.
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
    'clang-tidy-14 -p "$0" --quiet "$1" && touch "$2"' "$scratch" <"$scratch/changed"
