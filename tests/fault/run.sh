#!/usr/bin/env bash
# Runs one part of the fault tests from a copy of the program and the library, with the tests' own
# plug-in beside it, so that no other run shares the library's folder.
#   run.sh functions  BUILD [OPTION...]     fault_tests
#   run.sh commands   BUILD [OPTION...]     commands.py
#   run.sh neighbours BUILD PART...         neighbour_tests
# Windows programs run under Wine.
set -uo pipefail
readonly part=$1 build=$2
shift 2
here=$(cd "$(dirname "$0")" && pwd)
folder=$(mktemp -d)
mkdir "$folder/bin" "$folder/lib" || exit 2
trap 'rm -rf "$folder"' EXIT
if [ -e "$build/bin/KoLink.dll" ]; then
    cp "$build"/bin/{fault_tests.exe,KoLink.dll} "$build/tests/cmyk/plugin/whole/LutRead.dll" \
        "$folder/bin/" || exit 2
else
    cp "$build"/bin/fault_tests "$folder/bin/" && cp -P "$build"/lib/libkolink.so* \
        "$build/tests/cmyk/plugin/whole/LutRead.so" "$folder/lib/" || exit 2
fi
case $part in
    functions)
        if [ -e "$folder/bin/KoLink.dll" ]; then
            # A folder of a short name, for which no path is too long.
            cd "$folder" && wine bin/fault_tests.exe work "$@"
        else
            "$folder/bin/fault_tests" "$folder/work" "$@"
        fi ;;
    commands)
        cp "$build/bin/kolink" "$folder/bin/" && cp "$build/lib/libkofaults.so" "$folder/" || exit 2
        python3 "$here/commands.py" "$folder/bin/kolink" "$folder/libkofaults.so" \
            "$folder/bin/fault_tests" "$folder/work" "$@" ;;
    neighbours)
        cp "$build/bin/neighbour_tests" "$folder/bin/" || exit 2
        "$folder/bin/neighbour_tests" "$folder/work" "$@" ;;
    *)  echo "run.sh: there is no part $part" >&2; exit 2 ;;
esac
