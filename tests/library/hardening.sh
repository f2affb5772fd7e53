#!/usr/bin/env bash
# Reads from the built files what a build has to protect a host, and holds a second build of them
# against the first.
#   hardening.sh linux|win32|win64 BUILD
set -uo pipefail
readonly target=$1 build=$(realpath "$2")
top=$(cd "$(dirname "$0")/../.." && pwd)
. "$top/tests/support/checks.sh"
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

case $target in
    linux) libraries=(lib/libkolink.so.1.0.0 lib/libkolink-precise.so.1.0.0)
           tool=bin/kolink prefix= ;;
    win32) libraries=(bin/KoLink.dll bin/KoLinkPrecise.dll)
           tool=bin/kolink.exe prefix=i686-w64-mingw32- ;;
    win64) libraries=(bin/KoLink.dll bin/KoLinkPrecise.dll)
           tool=bin/kolink.exe prefix=x86_64-w64-mingw32- ;;
    *) echo "usage: hardening.sh linux|win32|win64 BUILD" >&2; exit 2 ;;
esac

symbols() { "${prefix}nm" "$build/$library"; }
dynamic() { "${prefix}nm" -D "$build/$1"; }

own_exceptions() {  # none of what the runtime would allocate for each thread, or never give back
    symbols | grep __cxa_get_globals > /dev/null &&
        ! symbols | grep -E 'eh_globals|emutls|emergency_pool|__freeres'
}
for library in "${libraries[@]}"; do
    check "$target: $library keeps its exceptions in its own memory" own_exceptions
done

if [ "$target" = linux ]; then
    for file in "${libraries[@]}" "$tool"; do
        bound_at_once() { readelf -dW "$build/$file" | grep -E 'BIND_NOW|FLAGS.*NOW'; }
        check "linux: $file binds its symbols at once" bound_at_once
        read_only() { readelf -lW "$build/$file" | grep GNU_RELRO; }
        check "linux: $file protects its relocated data" read_only
        no_code_on_stack() { readelf -lW "$build/$file" | grep GNU_STACK | grep -E ' RW +0x'; }
        check "linux: the stack of $file holds no code" no_code_on_stack
        guarded() { dynamic "$file" | grep __stack_chk_fail; }
        check "linux: $file guards its stack" guarded
        fortified() { dynamic "$file" | grep -v __stack_chk | grep -E '__[a-z]+_chk'; }
        check "linux: $file checks the sizes that it copies" fortified
    done
    landing() {  # at the start of every exported function
        local exported
        exported=$(dynamic "$library" | grep -cE ' T (j|koPrecise)[A-Z]')
        objdump -d --no-show-raw-insn "$build/$library" |
            grep -A1 -E '^[0-9a-f]+ <(j|koPrecise)[A-Z][A-Za-z0-9_]+>:' |
            awk -v exported="$exported" '/>:$/ { name = $2; next } /^--/ { next }
                 $2 != "endbr64" { print name; bad = 1 } { ++seen } END { exit bad || seen < 20 || seen < exported }'
    }
    at_start() { ! readelf -rW "$build/$library" | grep -E 'DTPMOD|TLSDESC'; }
    for library in "${libraries[@]}"; do
        check "linux: exported functions of $library are where control may land" landing
        check "linux: what $library keeps for a thread is there from its start" at_start
    done
    anywhere() { readelf -hW "$build/$1" | grep -E 'Type: +DYN'; }
    check "linux: the tool runs at any address" anywhere "$tool"
else
    for file in "${libraries[@]}" "$tool"; do
        characteristics() { "${prefix}objdump" -p "$build/$file" | grep -w "$1" > /dev/null; }
        check "$target: $file runs at any address" characteristics DYNAMIC_BASE
        check "$target: data of $file is no code" characteristics NX_COMPAT
        [ "$target" = win32 ] ||
            check "$target: $file takes addresses beyond 4 GiB" characteristics HIGH_ENTROPY_VA
        undated() { "${prefix}objdump" -p "$build/$file" | grep -E '^Time/Date.*1970'; }
        check "$target: $file carries no date" undated
    done
    guarded() { symbols | grep __stack_chk_fail; }
    fortified() { symbols | grep __memcpy_chk; }
    no_thread_library() { ! symbols | grep -E 'pthread_(self|key_create|getspecific|cond_wait)'; }
    for library in "${libraries[@]}"; do
        check "$target: $library guards its stack" guarded
        check "$target: $library checks the sizes that it copies" fortified
        check "$target: no thread library is inside $library" no_thread_library
    done
fi

# Each library linked once more from the same objects, a second later; and some objects compiled
# once more from a copy of the sources in another folder.
relinked() {
    local again="$scratch/again" command
    mkdir -p "$again/lib" "$again/bin"
    command=$(ninja -C "$build" -t commands "$library" | tail -n 1)
    command=${command//-o $library/-o $again/$library}
    command=$(sed -E "s#(--out-implib,|--output-lib )[^ ]+#\\1$again/import.a#g" <<< "$command")
    sleep 1
    (cd "$build" && eval "$command") && cmp "$build/$library" "$again/$library"
}
for library in "${libraries[@]}"; do
    check "$target: $library linked twice is the same" relinked
done
recompiled() {
    local other="$scratch/other" object command count=0
    mkdir -p "$other" && cp -r "$top"/{frame,icc,link,include,resources,cmake} "$other/" || return
    for object in $(ninja -C "$build" -t targets all |
                    sed -nE 's/^((frame|link|icc)\/CMakeFiles\/.*\/(state|text|lut_setup|combine)\.cpp\.o(bj)?|.*KoLink[^ ]*\.rc\.(res|obj)): .*/\1/p'); do
        command=$(ninja -C "$build" -t commands "$object" | tail -n 1)
        command=${command//ccache /}
        command=${command//$top\//$other/}
        command=${command//-ffile-prefix-map=$top=/-ffile-prefix-map=$other=}
        command=${command//$other\/build/$top/build}  # what the build has generated
        command=${command//-o $object/-o $scratch/object}
        (cd "$build" && eval "$command") && cmp "$build/$object" "$scratch/object" || return
        count=$((count + 1))
    done
    [ $count -ge 3 ]
}
check "$target: what is compiled in another folder is the same" recompiled
finish
