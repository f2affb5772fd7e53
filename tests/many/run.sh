#!/usr/bin/env bash
# A folder of pictures on Dask: a worker is killed in the middle, and nothing is lost or made twice.
#   run.sh BUILD SCRATCH PRINTER.icc SOURCE.icc
set -uo pipefail
readonly build=$1 printer=$3
top=$(cd "$(dirname "$0")/../.." && pwd)
. "$top/tests/support/checks.sh"
source=$(realpath "$4")
rm -rf "$2" && mkdir -p "$2/in/more"
cd "$2" || exit 1
export PATH="$build/bin:/usr/bin:/bin"
readonly pictures=24
how=(--source "$source" --destination "$printer" --grid 17)

/usr/bin/python3 - $pictures << 'END'
import sys
import numpy as np
from PIL import Image
for number in range(int(sys.argv[1])):
    levels = np.random.default_rng(number).integers(0, 256, (60, 80, 4), np.uint8)
    Image.fromarray(levels, "CMYK").save(f"in/{'more/' if number % 3 == 0 else ''}{number:02}.tif")
END
run() { "$top/examples/many-pictures/convert.py" "$@" -- "${how[@]}"; }
marks() { find out -path '*/.made/*.json' 2> /dev/null | wc -l; }

run in out --workers 2 > said 2> err &
job=$!
# Both work by then, and most is still to do.
for ((turn = 0; turn < 1200; ++turn)); do [ "$(marks)" -ge 3 ] && break; sleep 0.05; done
read -r _ _ first second < <(sed -n 1p said)
before=$(marks)
kill -KILL "$second"
check "a worker is killed while pictures wait" test "$before" -lt $pictures
# Progress, as Dask's pages tell it meanwhile.
page=$(sed -n 's/.*numbers: \(.*\))/\1/p' said)
counts=$(/usr/bin/python3 -c 'import sys, urllib.request; print(urllib.request.urlopen(sys.argv[1], timeout=60).read().decode())' "$page")
check "Dask's page tells how far it is" grep -q '"workers"' <<< "$counts"
wait $job
check "the job ends well" test $? = 0
# One may be "there already": made, and its worker killed before it could say so.
told() {
    local made there
    read -r made there < <(sed -nE 's/^made ([0-9]+), there already ([0-9]+), failed 0;.*/\1 \2/p' said)
    [ $((made + there)) = $pictures ] && [ "$there" -le 1 ] || { cat said; return 1; }
}
check "every picture was made, and none twice" told
check "each has its mark" test "$(marks)" = $pictures
same() {  # as the tool makes them alone
    local one
    for one in 01 07 more/00 more/21; do kolink image "in/$one.tif" alone.tif "${how[@]}" && cmp alone.tif "out/$one.tif" || return 1; done
    [ "$(find out -name '*.tif' | wc -l)" = $pictures ] && [ -z "$(find out -name '~kolink*')" ]
}
check "the pictures are those that the tool makes" same
others() { grep -hoE '"worker": "[^"]*"' out/.made/* out/more/.made/* | sort -u | wc -l; }
check "the killed one was replaced or its work done by the other" test "$(others)" -ge 1

# A second run does what is missing.
rm out/05.tif
touch -d '2020-01-01' in/07.tif
echo damaged > in/broken.tif
stamps() { find out -name '*.tif' ! -name 05.tif ! -name 07.tif -printf '%p %T@\n' | sort; }
kept=$(stamps)
run in out --workers 1 > said 2> err
check "a damaged picture is status 1" test $? = 1
again() { grep -q "made 2, there already $((pictures - 2)), failed 1" said && grep -q 'broken.tif: .*is not a TIFF picture' err; }
check "a second run makes what is missing or has changed, and names what fails" again
check "and touches nothing else" test "$kept" = "$(stamps)"
rm in/broken.tif
run in both --workers 1,2 > said 2> err
check "the throughput is told for one and for two workers" grep -qE '^1 workers: [0-9.]+ pictures a second; 2 workers: [0-9.]+' said
cat said
finish
