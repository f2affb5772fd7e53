#!/usr/bin/env bash
# The device profile example, looked at by foreign programs: iccdump reads the profile without
# complaint, transicc takes it as a printer profile, and its colours are the measured ones.
#   device_profile.sh PRESS.icc EXAMPLE
set -uo pipefail
readonly press=$1 program=$2
. "$(dirname "$0")/../support/checks.sh"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
device="$scratch/device.icc"

check "the example writes a device profile" "$program" "$press" "$device"

opens() {
    iccdump -v3 "$device" > "$scratch/dump" 2>&1 || { cat "$scratch/dump"; return 1; }
    ! grep -iE 'error|warning|unknown|wrong|fail' "$scratch/dump" && grep -q "'B2A2'" "$scratch/dump"
}
check "iccdump opens it without complaint" opens

# 1,000 patches: percent for the device profile, the measured whole level for the press.
awk 'BEGIN {
    srand(1)
    for (n = 0; n < 1000; ++n) {
        for (ink = 0; ink < 4; ++ink) {
            i = int(rand() * 9)
            at = at " " i * 12.5
            measured = measured " " int((i * 255 + 4) / 8) * 100 / 255
        }
        print at > "'"$scratch"'/at"
        print measured > "'"$scratch"'/measured"
        at = measured = ""
    }
}'
colours() { transicc -v0 -n -c0 -t1 -i "$1" -o '*Lab2' < "$2" 2> "$scratch/errors" || { cat "$scratch/errors"; return 1; }; }
matches() {
    colours "$device" "$scratch/at" > "$scratch/device.txt" && colours "$press" "$scratch/measured" > "$scratch/press.txt" || return 1
    paste -d ' ' "$scratch/device.txt" "$scratch/press.txt" | awk '
        NF != 6 { print "line " NR " is not whole"; bad = 1; exit }
        {
            for (k = 1; k <= 3; ++k) {
                d = ($k - $(k + 3)) * (k == 1 ? 2.55 : 1)
                if (d < 0) d = -d
                if (d > worst) worst = d
            }
        }
        END { print NR " colours, largest difference " worst " of 255"; exit bad || NR != 1000 || worst > 2 }'
}
check "its colours lie within 2 of 255 of the measurements" matches

# There and back: a printable colour comes out of its inks again.
returns() {
    printf '%s\n' '80 0 0' '60 20 20' '50 -20 10' '40 0 -10' '70 0 40' > "$scratch/lab"
    transicc -v0 -n -c0 -t1 -i '*Lab2' -o "$device" < "$scratch/lab" > "$scratch/inks" 2> "$scratch/errors" &&
        colours "$device" "$scratch/inks" > "$scratch/back" || { cat "$scratch/errors"; return 1; }
    paste -d ' ' "$scratch/lab" "$scratch/back" | awk '
        { d = sqrt(($1 - $4) ^ 2 + ($2 - $5) ^ 2 + ($3 - $6) ^ 2); if (d > worst) worst = d }
        END { print NR " colours, largest difference " worst; exit NR != 5 || worst > 6 }'
}
check "transicc prints on it" returns
finish
