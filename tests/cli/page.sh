#!/usr/bin/env bash
# The pages of report in headless Chromium.
#   page.sh PATH-TO-KOLINK
set -uo pipefail
. "$(dirname "$0")/../support/checks.sh"
top=$(cd "$(dirname "$0")/../.." && pwd)
tool=$(realpath "$1") || exit 2
readonly top tool printer=/usr/share/color/icc/ghostscript/default_cmyk.icc
readonly press=$top/tests/data/CGATS001Compat-v2-micro.icc
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 2

looks() {  # WHAT PAGE: the lines of page.py, each with what it is about
    local line lines=0
    while IFS= read -r line; do
        echo "${line/ - / - $1, }"
        [ "${line%% - *}" != "not ok" ] || failures=$((failures + 1))
        lines=$((lines + 1))
    done < <("$top/tests/cli/page.py" "$2" 2>&1)
    check "$1: everything is looked at" test "$lines" -gt 15
}
pair=(link --source "$press" --destination "$printer" --grid 9)
check "a link is made" "$tool" "${pair[@]}" --preserve secondaries -o one.icc
check "and another one" "$tool" "${pair[@]}" --method tables --black none -o two.icc
check "a page of one" "$tool" report one.icc --max-de95 5 --html one.html
check "a page of two in Japanese" "$tool" report one.icc two.icc --language ja --html two.html
looks "one link" one.html
looks "two links" two.html
finish
