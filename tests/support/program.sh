#!/usr/bin/env bash
# Runs a part of a test program of a build, by itself (see alone.sh).
#   program.sh BUILD PROGRAM FOLDER [WITHOUT]    the suites of the sources in tests/FOLDER
#   program.sh BUILD PROGRAM =FILTER             the cases of a GoogleTest filter
#   program.sh BUILD PROGRAM ?WITHOUT FOLDER...  every case belongs to one of these
# WITHOUT is a GoogleTest filter of cases that are left to another run.
set -uo pipefail
readonly build=$1 program=$2 part=$3
here=$(cd "$(dirname "$0")" && pwd)

suites() {  # FOLDER: the filter of its suites, also of those with parameters
    sed -nE 's/^(TYPED_)?TEST(_F|_P)?\(([A-Za-z0-9_]+),.*/\3/p' "$here/../$1"/*_test.cpp | sort -u |
        awk '{ printf "%s.*:*/%s.*:", $1, $1 }'
}
run() { "$here/alone.sh" "$build" "$program" "$@"; }
names() {
    run --gtest_list_tests "$@" | tr -d '\r' |
        awk '/^[^ ].*\./ { suite = $1; next } /^  / { print suite $1 }' | sort
}

case $part in
    =*)  run "--gtest_filter=${part#=}" ;;
    \?*) . "$here/checks.sh"
         scratch=$(mktemp -d)
         trap 'rm -rf "$scratch"' EXIT
         shift 3
         names > "$scratch/all"
         { for folder in "$@"; do names "--gtest_filter=$(suites "$folder")-${part#?}"; done
           names "--gtest_filter=${part#?}"; } | sort > "$scratch/parts"
         every() { [ -s "$scratch/all" ] && diff "$scratch/all" "$scratch/parts"; }
         check "each case of $program is in one part of the list, and in one alone" every
         finish ;;
    *)   run "--gtest_filter=$(suites "$part")${4:+-$4}" ;;
esac
