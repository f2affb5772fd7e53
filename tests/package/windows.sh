#!/usr/bin/env bash
# Makes the zip and the installer for Windows, installs silently under Wine, makes a link with what
# was installed, and takes it away again.
#   windows.sh BUILDS SCRATCH PRINTER.icc SOURCE.icc
set -uo pipefail
readonly builds=$1 printer=$3 source=$4
top=$(cd "$(dirname "$0")/../.." && pwd)
. "$top/tests/support/checks.sh"
rm -rf "$2" && mkdir -p "$2/made"
scratch=$(cd "$2" && pwd)
cd "$scratch" || exit 1
prefix=${WINEPREFIX:?}
readonly to="$prefix/drive_c/KoLinkHere"

made() { KO_BUILDS=$builds "$top/script/package" windows "$scratch/made"; }
check "script/package windows makes the zip and the installer" made
setup=$(echo made/KoLink-*-setup.exe) zip=$(echo made/KoLink-*.zip)
check "with a valid list of what is inside" python3 "$top/tests/package/spdx.py" made/*.spdx.json
wanted=(x64/bin/{KoLink.dll,KoLinkPrecise.dll,kolink.exe,KoLinkStudio.exe} x86/bin/{KoLink.dll,KoLinkPrecise.dll}
        {x64,x86}/lib/{KoLink.def,libKoLink.dll.a,KoLinkPrecise.def,libKoLinkPrecise.dll.a}
        {x64,x86}/include/kolink.h {x64,x86}/lib/cmake/KoLink/KoLinkConfig.cmake docs/kolink.md LICENSE.txt)
zipped() {
    python3 -c '
import sys, zipfile
names = zipfile.ZipFile(sys.argv[1]).namelist()
folder = names[0].split("/")[0]
missing = [one for one in sys.argv[2:] if f"{folder}/{one}" not in names]
assert not missing, missing' "$zip" "${wanted[@]}"
}
check "the zip has both widths, the tool, the headers and the texts" zipped

registered() { wine reg query "$1" /reg:64 > registry 2>&1; }
installed() {
    local file
    wine "$setup" /S /TYPES '/D=C:\KoLinkHere' || return 1
    for file in "${wanted[@]}" uninstall.exe; do [ -e "$to/$file" ] || { echo "$file is missing"; return 1; }; done
}
check "it installs silently, into the folder that is named" installed
linked() {
    wine "$to/x64/bin/kolink.exe" link --source "$source" --destination "$printer" --grid 9 --output made.icc &&
        [ "$(head -c 40 made.icc | tail -c 4)" = acsp ] && [ "$(head -c 16 made.icc | tail -c 4)" = link ]
}
check "the installed tool makes a link" linked
check "Windows knows how to uninstall it" registered 'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\KoLink'
typed() { registered 'HKLM\Software\Classes\KoLink.clb\shell\open\command' && grep -q KoLinkStudio registry; }
check "calibration sets open with KoLink Studio" typed
in_menu() { find "$prefix/drive_c" -iname 'KoLink Studio.lnk' | grep -q .; }
check "KoLink Studio is in the Start menu" in_menu
for width in x86 x64; do
    compiler=i686-w64-mingw32-gcc-posix
    [ $width = x86 ] || compiler=x86_64-w64-mingw32-gcc-posix
    hosted() {
        $compiler -std=c99 "$top/examples/host-c/host.c" -o host.exe -I"$to/$width/include" -L"$to/$width/lib" -lKoLink &&
            cp "$to/$width/bin/KoLink.dll" . && wine ./host.exe "$printer" "$source" $width.icc &&
            [ "$(stat -c %s $width.icc)" -gt 4743684 ]
    }
    check "the example host compiles against the installed files and runs, $width" hosted
done

echo mine > "$to/mine.icc"
gone() {
    wine "$to/uninstall.exe" /S '_?=C:\KoLinkHere' || return 1
    [ "$(find "$to" -type f ! -name uninstall.exe -printf '%P ')" = "mine.icc " ] || { find "$to" -type f | head; return 1; }
}
check "it uninstalls silently, all but what others put there" gone
untyped() { ! registered 'HKLM\Software\Classes\KoLink.clb' && ! registered 'HKLM\Software\Classes\.clb'; }
check "the file types are gone" untyped
unlisted() { ! registered 'HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\KoLink' && ! in_menu; }
check "and so are the entries of the menu and of Windows" unlisted
finish
