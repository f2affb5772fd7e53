#!/usr/bin/env bash
# Runs library_script on every platform and holds the outputs equal, byte for byte; the dates of
# profiles aside.
#   same_bytes.sh BUILDS SCRATCH PRINTER.icc SOURCE.icc
set -uo pipefail
readonly builds=$1 scratch=$2
. "$(dirname "$0")/../support/checks.sh"
rm -rf "$scratch"

runs() {  # NAME SETTINGS LOCALE COMMAND...: in a folder of its own, by short names
    local folder="$scratch/$1" settings=$2 locale=$3
    shift 3
    mkdir -p "$folder" && cp "$printer" "$folder/printer.icc" && cp "$source" "$folder/source.icc" &&
        (cd "$folder" && "$@" "$settings" "$locale") || return 1
    local profile
    for profile in "$folder"/*.icc; do  # year to second
        printf '\0\0\0\0\0\0\0\0\0\0\0\0' | dd of="$profile" bs=1 seek=24 conv=notrunc status=none
    done
}
printer=$3 source=$4
wine=(env LC_ALL=ja_JP.UTF-8 wine)
check "the script runs on linux" runs linux usual C "$builds/linux/bin/library_script"
check "the script runs on linux with a decimal comma" \
    runs linux-comma usual de_DE.UTF-8 "$builds/linux/bin/library_script"
for target in win32 win64; do
    check "the script runs on $target" \
        runs $target usual C "${wine[@]}" "$builds/$target/bin/library_script.exe"
    check "the script runs on $target with a decimal comma" \
        runs $target-comma usual German_Germany.1252 \
        "${wine[@]}" "$builds/$target/bin/library_script.exe"
done
check "the script runs under the sanitizers" runs asan usual C "$builds/asan/bin/library_script"

# What a host may have set for its thread; half of the rounding on either Windows.
others=(linux-comma win32 win32-comma win64 win64-comma asan)
for target in linux win32 win64; do
    program=("$builds/linux/bin/library_script")
    [ $target = linux ] || program=("${wine[@]}" "$builds/$target/bin/library_script.exe")
    case $target in
        linux) set -- down up zero flush traps stack ;;
        win32) set -- up traps ;;
        win64) set -- down flush ;;
    esac
    for settings in "$@"; do
        check "the script runs on $target in a host that has set: $settings" \
            runs $target-$settings $settings C "${program[@]}"
        others+=($target-$settings)
    done
done

# The tool's links, precise ones of both forms and a classic one.
links() {  # NAME COMMAND...
    local folder="$scratch/$1-links" options
    shift
    mkdir -p "$folder" && cp "$printer" "$folder/printer.icc" && cp "$source" "$folder/source.icc" || return 1
    while read -r name options; do
        (cd "$folder" && SOURCE_DATE_EPOCH=1700000000 "$@" link --source source.icc --destination printer.icc \
            $options -o "$name.icc" < /dev/null) || return 1
    done << 'END'
precise
fine --bits 16 --nodes library --preserve triplex --black match --clip 1
saving --save-ink 60 --ink-limit 260 --grid 17
absolute --intent absolute --black keep
tables --method tables --intent perceptual --bpc --paper 0,2,6,3
classic --method classic --intent perceptual
END
}
check "the tool makes links on linux" links linux "$builds/linux/bin/kolink"
for target in win32 win64; do
    check "the tool makes links on $target" links $target "${wine[@]}" "$builds/$target/bin/kolink.exe"
    equal() { [ -s "$scratch/linux-links/precise.icc" ] && diff -rq "$scratch/linux-links" "$scratch/$target-links"; }
    check "linux and $target made the same links" equal
done

for other in "${others[@]}"; do
    equal() { [ -s "$scratch/linux/tables.txt" ] && diff -rq "$scratch/linux" "$scratch/$other" | head -5; }
    check "linux and $other wrote the same bytes" equal
done
[ "$failures" -gt 0 ] || rm -rf "$scratch"  # some hundred megabytes
finish
