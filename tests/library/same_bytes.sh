#!/usr/bin/env bash
# Runs library_script on every platform and holds the outputs equal, byte for byte; the dates of
# profiles aside.
#   same_bytes.sh BUILDS SCRATCH PRINTER.icc SOURCE.icc
set -uo pipefail
readonly builds=$1 scratch=$2
. "$(dirname "$0")/../support/checks.sh"
rm -rf "$scratch"

runs() {  # NAME LOCALE COMMAND...: in a folder of its own, by short names
    local folder="$scratch/$1" locale=$2
    shift 2
    mkdir -p "$folder" && cp "$printer" "$folder/printer.icc" && cp "$source" "$folder/source.icc" &&
        (cd "$folder" && "$@" "$locale") || return 1
    local profile
    for profile in "$folder"/*.icc; do  # year to second
        printf '\0\0\0\0\0\0\0\0\0\0\0\0' | dd of="$profile" bs=1 seek=24 conv=notrunc status=none
    done
}
printer=$3 source=$4
wine=(env LC_ALL=ja_JP.UTF-8 wine)
check "the script runs on linux" runs linux C "$builds/linux/bin/library_script"
check "the script runs on linux with a decimal comma" \
    runs linux-comma de_DE.UTF-8 "$builds/linux/bin/library_script"
for target in win32 win64; do
    check "the script runs on $target" \
        runs $target C "${wine[@]}" "$builds/$target/bin/library_script.exe"
    check "the script runs on $target with a decimal comma" \
        runs $target-comma German_Germany.1252 "${wine[@]}" "$builds/$target/bin/library_script.exe"
done
check "the script runs under the sanitizers" runs asan C "$builds/asan/bin/library_script"

for other in linux-comma win32 win32-comma win64 win64-comma asan; do
    equal() { [ -s "$scratch/linux/tables.txt" ] && diff -rq "$scratch/linux" "$scratch/$other" | head -5; }
    check "linux and $other wrote the same bytes" equal
done
[ "$failures" -gt 0 ] || rm -rf "$scratch"  # some hundred megabytes
finish
