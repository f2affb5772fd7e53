#!/usr/bin/env bash
# The precise engine's links against its peers', on press profiles that Argyll makes here: three
# presses read off the Debian profile with other dot gains and another black, tables of 16 bits,
# and the Debian profile itself, whose inverse table has 8. The profiles stay in build/presses.
#   bench/precise.sh
set -euo pipefail
cd "$(dirname "$0")/.."
printer=/usr/share/color/icc/ghostscript/default_cmyk.icc
mkdir -p build/presses
make_press() {  # NAME TOTAL FAKEREAD-OPTIONS...
    local name=$1 total=$2
    shift 2
    [ -e "build/presses/$name.icc" ] && return
    (cd build/presses
     targen -d4 -f1500 -l320 "$name" > /dev/null
     fakeread -Ia "$@" "$printer" "$name" > /dev/null
     colprof -qm -kr -l"$total" -D"Press $name" "$name" > /dev/null)
}
make_press A 310
make_press B 310 -0 0.88 -1 0.9 -2 0.86 -3 0.92
make_press C 280 -0 1.12 -1 1.06 -2 1.1 -3 1.15
script/build linux kolink_precise_bench > /dev/null
p=build/presses
build/linux/bin/kolink_precise_bench build $p/A.icc $p/B.icc $p/B.icc $p/A.icc \
    $p/C.icc $p/A.icc $p/A.icc $p/C.icc $p/B.icc "$printer" "$printer" $p/B.icc
