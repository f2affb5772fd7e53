#!/usr/bin/env bash
# Reads the export table of a built library and holds it against the lists in cmake/ and against
# the prototypes in the headers.
#   exports.sh linux|win32|win64 LIBRARY [precise]     the second library with the last word
set -uo pipefail
readonly target=$1 library=$2 kind=${3-}
top=$(cd "$(dirname "$0")/../.." && pwd)
. "$top/tests/support/checks.sh"

case $target in
    linux) compiler=cc ;;
    win32) compiler=i686-w64-mingw32-gcc-posix objdump=i686-w64-mingw32-objdump ;;
    win64) compiler=x86_64-w64-mingw32-gcc-posix objdump=x86_64-w64-mingw32-objdump ;;
    *) echo "usage: exports.sh linux|win32|win64 LIBRARY [precise]" >&2; exit 2 ;;
esac
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

lists=("$top/cmake/exports.txt")  # on Windows the dialogs are exported as well
[ "$target" = linux ] || lists+=("$top/cmake/exports_windows.txt")
headers=(kolink.h $(cd "$top/include" && echo kolink/*_dialog.h))
names='(j[A-Z]|Value[0-9])' soname=libkolink.so.1
if [ "$kind" = precise ]; then
    lists=("$top/cmake/exports_precise.txt") headers=(kolink/precise.h)
    names='koPrecise[A-Z]' soname=libkolink-precise.so.1
fi
grep -hE '^[A-Za-z]' "${lists[@]}" | sort > "$scratch/list"

# Every function that the headers declare, with KOLINK_API or without: what the preprocessor
# leaves of our own files, records and attributes taken out, up to each parameter list.
printf '#include "%s"\n' "${headers[@]}" |
    "$compiler" -E -I "$top/include" - |
    awk '/^# [0-9]+ "/ { ours = /include\/kolink[^"]*\.h"/; next } ours' |
    tr '\n' ' ' | sed -E 's/__attribute__ ?\(\([^;{}]*\)\)\)//g; s/\{[^{}]*\}//g' | tr ';' '\n' |
    grep -v typedef | sed -nE 's/.*[^A-Za-z0-9_]([A-Za-z_][A-Za-z0-9_]*) *\([^()]*\) *$/\1/p' |
    sort > "$scratch/headers"

if [ "$target" = linux ]; then
    nm -D --defined-only "$library" | awk '{ print $NF }' | sort > "$scratch/exported"
else
    "$objdump" -p "$library" |
        awk '/Ordinal\/Name Pointer/ { on = 1; next } on && !/\[/ { exit } on { print $NF }' |
        sort > "$scratch/exported"
    "$objdump" -p "$library" | awk '/DLL Name:/ { print tolower($3) }' | sort > "$scratch/imports"
fi

same() { [ -s "$1" ] && diff "$1" "$2" | head -20 && cmp -s "$1" "$2"; }
check "$target: exactly the listed functions are exported" same "$scratch/list" "$scratch/exported"
check "$target: exactly the declared functions are exported" \
    same "$scratch/headers" "$scratch/exported"
plain() { [ -s "$1" ] && ! grep -vE "^$names[A-Za-z0-9_]*$" "$1"; }
check "$target: exported names are plain" plain "$scratch/exported"

if [ "$target" = linux ]; then
    soname() { readelf -d "$library" | grep -F "soname: [$soname]"; }
    check "linux: the soname carries the major version" soname
    own_runtime() {
        readelf -d "$library" | grep -q SONAME &&
            ! readelf -d "$library" | grep -E 'NEEDED.*(libstdc\+\+|libgcc)'
    }
    check "linux: the C++ runtime is inside" own_runtime
else
    shipped='advapi32|comctl32|comdlg32|gdi32|kernel32|mscms|msvcrt|ole32|shell32|user32|version'
    from_windows() { [ -s "$scratch/imports" ] && ! grep -vxE "($shipped)\.dll" "$scratch/imports"; }
    check "$target: needs no DLL that Windows does not ship" from_windows
    version() { "$objdump" -p "$library" | grep -E 'Entry: ID: 0x0*10,'; }  # RT_VERSION is 16
    check "$target: there is a version resource" version
fi
finish
