#!/usr/bin/env bash
# Installs a build into an empty folder, moves that folder, and uses it as two strangers would:
# the example host through find_package, and through pkg-config.
#   package.sh linux|win32|win64 BUILD SCRATCH PRINTER.icc SOURCE.icc
set -uo pipefail
readonly target=$1 build=$2 printer=$4 source=$5
top=$(cd "$(dirname "$0")/../.." && pwd)
. "$top/tests/support/checks.sh"
rm -rf "$3" && mkdir -p "$3"
scratch=$(cd "$3" && pwd)
readonly prefix="$scratch/moved here"

cross=() run=() compiler=cc
case $target in
    linux) ;;
    win32) compiler=i686-w64-mingw32-gcc-posix cross=("-DCMAKE_TOOLCHAIN_FILE=$top/cmake/mingw-i686.cmake") run=(wine) ;;
    win64) compiler=x86_64-w64-mingw32-gcc-posix cross=("-DCMAKE_TOOLCHAIN_FILE=$top/cmake/mingw-x86_64.cmake") run=(wine) ;;
    *) echo "usage: package.sh linux|win32|win64 BUILD SCRATCH PRINTER.icc SOURCE.icc" >&2; exit 2 ;;
esac

install() { cmake --install "$build" --prefix "$scratch/installed" && mv "$scratch/installed" "$prefix"; }
check "$target: installs" install

holds() {
    local file
    for file in "$@"; do [ -e "$prefix/$file" ] || { echo "$file is missing"; return 1; }; done
}
own_places() { ! grep -rlF -e "$top" -e "$scratch" "$prefix/lib/cmake" "$prefix/lib/pkgconfig"; }
files=(include/kolink.h include/kolink/api.h lib/cmake/KoLink/KoLinkConfig.cmake lib/pkgconfig/kolink.pc
       lib/pkgconfig/kolink-precise.pc)
if [ "$target" = linux ]; then
    files+=(lib/libkolink.so lib/libkolink.so.1 bin/kolink lib/libkolink-precise.so.1)
else
    files+=(bin/KoLink.dll lib/libKoLink.dll.a lib/KoLink.def bin/kolink.exe
            bin/KoLinkPrecise.dll lib/libKoLinkPrecise.dll.a lib/KoLinkPrecise.def)
fi
check "$target: library, headers, package files and tool are in place" holds "${files[@]}"
check "$target: the package files name no place of this machine" own_places
same_headers() { diff -r "$top/include" "$prefix/include"; }
check "$target: every header is installed and nothing else" same_headers

# find_package looks below the prefix only, so it cannot find another copy.
by_cmake() {  # EXAMPLE FOLDER
    cmake -G Ninja -S "$top/examples/$1" -B "$scratch/$2" "${cross[@]}" \
        -DCMAKE_FIND_ROOT_PATH_MODE_PACKAGE=BOTH -DKoLink_DIR="$prefix/lib/cmake/KoLink" &&
        ninja -C "$scratch/$2"
}
check "$target: the example host builds with find_package" by_cmake host-c host
[ "$target" = linux ] ||
    check "$target: the example host of the dialogs builds with find_package" \
        by_cmake host-win32 dialogs

makes_link() {  # PROGRAM OUTPUT: a link of 33 points, whose black stays black
    local said
    said=$("${run[@]}" "$1" "$printer" "$source" "$2") || { echo "$said"; return 1; }
    echo "$said"
    [ "$(head -c 40 "$2" | tail -c 4)" = acsp ] && [ "$(head -c 16 "$2" | tail -c 4)" = link ] &&
        [ "$(stat -c %s "$2")" -gt 4743684 ]
}
suffix=
[ "$target" = linux ] || suffix=.exe
cd "$scratch" || exit 1
check "$target: the example host makes a link" makes_link "./host/host$suffix" by_cmake.icc

by_pkg_config() {
    local flags  # written for a shell: the folder's name holds a blank
    flags=$(PKG_CONFIG_LIBDIR="$prefix/lib/pkgconfig" PKG_CONFIG_SYSROOT_DIR='' \
            pkg-config --cflags --libs kolink) || return 1
    eval "$compiler -std=c99 -Wall -Wextra -pedantic -Werror \"$top/examples/host-c/host.c\" \
          -o by_pkg_config$suffix $flags" &&
        [ "$(PKG_CONFIG_LIBDIR="$prefix/lib/pkgconfig" pkg-config --modversion kolink)" = 1.0.0 ]
}
check "$target: the example host builds with pkg-config" by_pkg_config
if [ "$target" = linux ]; then
    run=(env "LD_LIBRARY_PATH=$prefix/lib")
else
    cp "$prefix/bin/KoLink.dll" .
fi
check "$target: that host makes a link as well" makes_link "./by_pkg_config$suffix" by_pkg_config.icc

same_bytes() { [ -s by_cmake.icc ] && cmp <(undated by_cmake.icc) <(undated by_pkg_config.icc); }
undated() { head -c 24 "$1"; tail -c +37 "$1"; }  # without the date
check "$target: both hosts wrote the same link" same_bytes

if [ "$target" = linux ]; then
    tool=("$prefix/bin/kolink")
else
    tool=(wine "$prefix/bin/kolink.exe")
fi
check "$target: the installed tool runs" "${tool[@]}" --version
finish
