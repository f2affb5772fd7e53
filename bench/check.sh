#!/usr/bin/env bash
# Every benchmark runs, briefly, in the form that script/bench makes its table from. No times count.
#   check.sh PROGRAM
set -uo pipefail
. "$(dirname "$0")/../tests/support/checks.sh"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

run() { "$1" --benchmark_min_time=0.001 --benchmark_format=csv > "$scratch/rows"; }
all_there() {  # a row each, none of them an error
    local all
    all=$("$1" --benchmark_list_tests | wc -l)
    [ "$all" -gt 0 ] && [ "$(grep -c '^"' "$scratch/rows")" = "$all" ] &&
        ! grep -E '^"[^"]*",,' "$scratch/rows"
}
check "the benchmarks run to their end" run "$1"
check "each benchmark has its row" all_there "$1"
finish
