#!/usr/bin/env bash
# Runs a test program of a build from a copy, with the library in a folder that no other run has:
# the tests put plug-ins beside the library, and two runs at a time would take them from each
# other. Windows programs run under Wine; the language and WINEPREFIX are the caller's.
#   alone.sh BUILD PROGRAM [ARGUMENT...]      for example: alone.sh build/win32 library_tests
set -uo pipefail
readonly build=$1 program=$2
shift 2
mkdir -p "$build/alone"
folder=$(mktemp -d -p "$build/alone")  # beside the originals: a link serves for a copy
trap 'rm -rf "$folder"' EXIT
mkdir "$folder/bin" "$folder/lib"
if [ -e "$build/bin/$program.exe" ]; then
    cp -l "$build/bin/$program.exe" "$build/bin/KoLink.dll" "$folder/bin/" || exit
    wine "$folder/bin/$program.exe" "$@"
else
    cp -l "$build/bin/$program" "$folder/bin/" && cp -lP "$build"/lib/libkolink.so* "$folder/lib/" || exit
    "$folder/bin/$program" "$@"
fi
