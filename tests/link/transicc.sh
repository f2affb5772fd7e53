#!/usr/bin/env bash
# Holds links through the system's colour management against transicc, on 16 bits, at 2,000
# random nodes of each: no value may differ by more than 1 of 255.
#   transicc.sh CMYK.icc RGB.icc LINK_NODES [RUNNER]       RUNNER: wine for a Windows program
set -uo pipefail
readonly cmyk=$1 rgb=$2 program=$3 runner=${4:-}
. "$(dirname "$0")/../support/checks.sh"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

agrees() {  # rgb|cmyk SOURCE DESTINATION OUTPUTS INTENT
    local inputs=4 full=100
    [ "$1" = cmyk ] || { inputs=3 full=255; }
    ${runner:+"$runner"} "$program" "$1" system "$2" "$3" "$5" 2000 | tr -d '\r' > "$scratch/link" || return 1
    awk -v n=$inputs -v full=$full \
        '{ for (k = 1; k <= n; ++k) printf "%.9f ", $k * full / 65535; print "" }' "$scratch/link" |
        transicc -v0 -n -e -w -c0 "-t$5" -i "$2" -o "$3" > "$scratch/expected" 2> "$scratch/errors" ||
        { cat "$scratch/errors"; return 1; }
    paste -d ' ' "$scratch/link" "$scratch/expected" | awk -v n=$inputs -v outputs="$4" '
        NF != n + 4 + outputs { print "line " NR " is not whole"; bad = 1; exit }
        {
            for (k = 1; k <= outputs; ++k) {
                d = $(n + k) - $(n + 4 + k)
                if (d < 0) d = -d
                if (d > worst) worst = d
            }
        }
        END {
            printf "%d nodes, largest difference %.3f of 255\n", NR, worst / 257
            exit bad || NR != 2000 || worst > 257
        }'
}
for intent in 0 1 2 3; do
    check "CMYK to CMYK agrees with transicc, intent $intent" agrees cmyk "$cmyk" "$cmyk" 4 $intent
    check "CMYK to RGB agrees with transicc, intent $intent" agrees cmyk "$cmyk" "$rgb" 3 $intent
    check "RGB to CMYK agrees with transicc, intent $intent" agrees rgb "$rgb" "$cmyk" 4 $intent
    check "RGB to RGB agrees with transicc, intent $intent" agrees rgb "$rgb" "$rgb" 3 $intent
done
finish
