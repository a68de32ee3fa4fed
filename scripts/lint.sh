#!/usr/bin/env bash
# Checks the format of all own sources, then lets clang-tidy look for mistakes.
# Any finding fails. Needs the debug build: its compile commands and generated
# sources are used.
set -euo pipefail
cd "$(dirname "$0")/.."

# What git does not know yet counts as well, unless it is ignored.
own_sources() { git ls-files --cached --others --exclude-standard "$@"; }

own_sources '*.cpp' '*.h' | xargs clang-format-14 --dry-run --Werror
# The consumer is built apart from us, so there are no compile commands for it.
own_sources '*.cpp' ':!tests/consumer' |
    xargs --max-procs="$(nproc)" --max-args=1 clang-tidy-14 -p build/debug --quiet
