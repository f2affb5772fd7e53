#!/usr/bin/env bash
# The measures of links, our own and others', against lcms2.
#   judge.sh PATH-TO-QUALITY-JUDGE
set -uo pipefail
. "$(dirname "$0")/../support/checks.sh"
top=$(cd "$(dirname "$0")/../.." && pwd)
judge=$(realpath "$1") || exit 2
readonly printer=/usr/share/color/icc/ghostscript/default_cmyk.icc
readonly rgb=$top/tests/data/sRGB-v2-magic.icc grey=$top/tests/data/sGrey-v2-micro.icc
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 2

judged() {  # WHAT LINK SOURCE DESTINATION
    local line lines=0
    while IFS= read -r line; do
        echo "${line/ - / - $1, }"
        [ "${line%% - *}" = ok ] || failures=$((failures + 1))
        lines=$((lines + 1))
    done < <("$judge" "${@:2}" 2>&1)
    check "$1: everything is compared" test "$lines" -gt 9
}
made() { check "$1 is made" "${@:2}" && [ -s "$1" ]; }

made a.icc "$judge" press a.icc 0.15 12
made b.icc "$judge" press b.icc 0.2 18
made plane.icc "$judge" make plane.icc a.icc b.icc && judged "from press to press, 8 bits" plane.icc a.icc b.icc
made wide.icc "$judge" make wide.icc b.icc "$printer" bits 16 black none &&
    judged "to a smaller gamut, 16 bits" wide.icc b.icc "$printer"
made perceptual.icc "$judge" make perceptual.icc "$printer" a.icc intent 0 &&
    judged "perceptual" perceptual.icc "$printer" a.icc
made light.icc "$judge" make light.icc "$rgb" "$printer" && judged "from RGB" light.icc "$rgb" "$printer"
made grey.icc "$judge" make grey.icc "$grey" a.icc && judged "from grey" grey.icc "$grey" a.icc
made linkicc.icc linkicc -t1 -n17 -o linkicc.icc "$printer" a.icc && judged "linkicc's" linkicc.icc "$printer" a.icc
made collink.icc collink -v0 -ir -r9 a.icc "$printer" collink.icc && judged "collink's" collink.icc a.icc "$printer"
finish
