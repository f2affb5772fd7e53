#!/usr/bin/env bash
# The Python package: its types, its tests, the examples in its docstrings, and its wheel, which is
# installed into an empty folder and used as a stranger would.
#   run.sh BUILD SCRATCH PRINTER.icc
set -uo pipefail
readonly build=$1 printer=$3
top=$(cd "$(dirname "$0")/../.." && pwd)
readonly top python=/usr/bin/python3
. "$top/tests/support/checks.sh"
rm -rf "$2" && mkdir -p "$2"
scratch=$(cd "$2" && pwd)
export PYTHONDONTWRITEBYTECODE=1 KO_PRINTER=$printer MPLBACKEND=Agg
export KOLINK_TOOL=$build/bin/kolink
cd "$top" || exit 1

typed() { (cd python && $python -m mypy --strict --cache-dir "$scratch/mypy" kolink); }
typed_users() { MYPYPATH=$top/python $python -m mypy --strict --cache-dir "$scratch/mypy" tests/python examples/python; }
check "the package is typed strictly" typed
check "the tests and the example use it as it is typed" typed_users

tests=($python -m pytest -p no:cacheprovider --no-header --no-summary -qq -p checks)
(
    export KOLINK_LIBRARY=$build/lib PYTHONPATH=$top/python:$top/tests/python
    "${tests[@]}" tests/python || echo "not ok - pytest ended with status $?"
    "${tests[@]}" --doctest-modules python/kolink --rootdir python || echo "not ok - the examples in the docstrings"
)

# The wheel, with nothing of this folder in reach.
check "makes a wheel" "$top/script/wheel" "$build" "$scratch"
wheel=$(echo "$scratch"/kolink-*.whl)
tagged() { [[ $wheel == *-py3-none-linux_$(uname -m).whl ]]; }
check "its name says that it is for this system and every Python 3" tagged
installs() { $python -m pip install --quiet --no-index --no-deps --target "$scratch/installed" "$wheel"; }
check "pip installs it" installs
used() {
    (cd "$scratch" && env -u KOLINK_LIBRARY PYTHONPATH="$scratch/installed" $python "$top/examples/python/pictures.py" \
        "$top/tests/data/CGATS001Compat-v2-micro.icc" "$printer" "$scratch/pictures" > "$scratch/said")
}
check "the example runs with what it carries" used
drawn() {
    local name
    for name in ramps picture tones; do
        [ "$(head -c 4 "$scratch/pictures/$name.png" | tail -c 3)" = PNG ] || return 1
        [ "$(stat -c %s "$scratch/pictures/$name.png")" -gt 8000 ] || return 1
    done
}
check "and draws its pictures" drawn
carried() { cmp "$scratch"/installed/kolink/lib/libkolink-precise.so.1 "$build"/lib/libkolink-precise.so.1; }
check "the library in it is the one that was built" carried
finish
