#!/usr/bin/env bash
# Writes docs/rules.md, the page of the rules of "simulationtool check", from the table of
# the program.
#
#   scripts/rules.sh [TOOL]            replaces the page
#   scripts/rules.sh --check [TOOL]    changes nothing; exit code 1 when the page is outdated
#
# TOOL is the built program; default: that of the debug build.
set -euo pipefail
cd "$(dirname "$0")/.."

page=docs/rules.md
check=false
if [ "${1:-}" = --check ]; then
    check=true
    shift
fi
tool=${1:-build/debug/bin/simulationtool}

new=$(mktemp)
trap 'rm -f "$new"' EXIT
"$tool" check --rules --markdown >"$new"
if $check; then
    diff -u "$page" "$new" || {
        echo "rules.sh: $page is outdated: run scripts/rules.sh" >&2
        exit 1
    }
else
    cat "$new" >"$page"
fi
