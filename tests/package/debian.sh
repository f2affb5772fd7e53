#!/usr/bin/env bash
# Makes Debian's packages from a build, unpacks them into an empty folder and uses them from there.
#   debian.sh BUILDS SCRATCH PRINTER.icc SOURCE.icc
set -uo pipefail
readonly builds=$1 printer=$3 source=$4
top=$(cd "$(dirname "$0")/../.." && pwd)
. "$top/tests/support/checks.sh"
. "$top/tests/package/readme_host.sh"
rm -rf "$2" && mkdir -p "$2/root" "$2/made"
scratch=$(cd "$2" && pwd)
cd "$scratch" || exit 1
arch=$(dpkg-architecture -qDEB_HOST_MULTIARCH)
version=$("$builds/linux/bin/kolink" --version | sed -n '1s/^kolink \([0-9.]*\).*/\1/p')
readonly root="$scratch/root" lib="$scratch/root/usr/lib/$arch" version

made() { KO_BUILDS=$builds "$top/script/package" debian "$scratch/made"; }
check "script/package debian makes the packages" made
names() {
    local name
    for name in libkolink1 libkolink-dev kolink python3-kolink; do
        [ "$(dpkg-deb -f made/${name}_*.deb Version)" = "$version" ] || { echo "$name"; return 1; }
    done
}
check "all four, of the tool's own version" names
clean() { lintian --fail-on error,warning --allow-root made/*.deb; }
check "lintian has nothing to say" clean
boms() { python3 "$top/tests/package/spdx.py" made/*.spdx.json; }
check "each has a valid list of what is inside" boms

unpacked() { local deb; for deb in made/*.deb; do dpkg-deb -x "$deb" "$root" || return 1; done; }
check "they unpack into an empty root" unpacked
check "README has a host of five lines" readme_host host.c "$top/README.md"
compiled() { cc host.c -o host -I"$root/usr/include" -L"$lib" -lkolink; }
check "it compiles with their headers and library" compiled
cp "$source" press.icc
cp "$printer" printer.icc
links() { LD_LIBRARY_PATH=$lib ./host && [ "$(head -c 40 proof.icc | tail -c 4)" = acsp ]; }
check "and makes a link" links
by_pkg_config() {  # it escapes blanks for a shell
    local found
    found=$(PKG_CONFIG_LIBDIR="$lib/pkgconfig" PKG_CONFIG_SYSROOT_DIR='' pkg-config --variable=libdir kolink) &&
        eval "found=$found" && [ "$(realpath "$found")" = "$(realpath "$lib")" ]
}
check "pkg-config finds the library where it is" by_pkg_config
reads() { "$root/usr/bin/kolink" info proof.icc | grep -q 'grid'; }
check "the tool runs from there" reads
product() { readelf -d "$root/usr/bin/kolink" "$lib"/libkolink*.so.1 | grep -E 'R(UN)?PATH' && return 1; return 0; }
check "nothing looks for libraries in places of its own" product
python_module() {
    LD_LIBRARY_PATH=$lib PYTHONPATH="$root/usr/lib/python3/dist-packages" PYTHONDONTWRITEBYTECODE=1 /usr/bin/python3 -c '
import kolink, importlib.metadata as metadata, sys
kolink.Link.make("press.icc", "printer.icc", grid_points=9).save("python.icc")
assert metadata.version("kolink") == sys.argv[1]' "$version"
}
check "the Python module makes a link with them" python_module

pages() {
    local page
    for page in "$root"/usr/share/man/man1/*.1.gz; do
        said=$(MANROFFSEQ='' LC_ALL=C.UTF-8 MANWIDTH=80 man --warnings -E UTF-8 -l -Z "$page" 2>&1 > /dev/null)
        [ -z "$said" ] || { echo "$page: $said"; return 1; }
    done
}
check "the manual pages have nothing wrong" pages
check "that of kolink link has its options" eval 'gzip -dc "$root/usr/share/man/man1/kolink-link.1.gz" | grep -qF -e "\-\-preserve"'
completes() {  # completes WANTED WORDS...: what Tab offers after them, in bash
    local wanted=$1
    shift
    bash --norc -c '
        . "$1"; shift
        complete -p kolink > /dev/null || exit 1
        compopt() { :; }
        COMP_WORDS=("$@") COMP_CWORD=$(($# - 1))
        _kolink
        printf "%s " "${COMPREPLY[@]}"' bash "$root/usr/share/bash-completion/completions/kolink" "$@" > offered
    grep -qE "$wanted" offered || { cat offered; return 1; }
}
check "bash completes commands" completes '^link list $' kolink li
check "bash completes options" completes '^--preserve $' kolink link --source a.icc --pre
check "bash completes what an option takes" completes '^perceptual $' kolink link --intent per
check "bash completes commands of commands" completes '^show set $' kolink calib s
for shell in zsh fish; do
    command -v $shell > /dev/null || continue
    file=$(find "$root/usr/share/$shell" -type f)
    check "$shell can read its completions" $shell -n "$file"
done
fish_offers() { fish --no-config -c "source '$root/usr/share/fish/vendor_completions.d/kolink.fish'; complete -C 'kolink link --intent per'" | grep -q '^perceptual'; }
if command -v fish > /dev/null; then check "fish completes what an option takes" fish_offers; fi
finish
