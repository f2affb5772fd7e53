#!/usr/bin/env bash
# Makes the source archive, twice, and builds the tool from it where there is no git.
#   source.sh SCRATCH
set -uo pipefail
top=$(cd "$(dirname "$0")/../.." && pwd)
. "$top/tests/support/checks.sh"
rm -rf "$1" && mkdir -p "$1"
cd "$1" || exit 1
check "script/package source makes the archive" "$top/script/package" source "$PWD/one"
check "and once more" "$top/script/package" source "$PWD/two"
same() { cmp one/kolink-*.tar.xz two/kolink-*.tar.xz; }
check "with the same bytes" same
check "with a valid list of what is inside" python3 "$top/tests/package/spdx.py" one/*.spdx.json
unpacked() { tar -xf one/kolink-*.tar.xz && [ ! -e kolink-*/.git ]; }
check "it unpacks" unpacked
cd kolink-*/ || exit 1
without_git() {
    mkdir ../path && printf '#!/bin/sh\necho "git was called" >&2\nexit 1\n' > ../path/git && chmod +x ../path/git
    PATH="$PWD/../path:$PATH" cmake -G Ninja -S . -B build/linux -DCMAKE_BUILD_TYPE=Release &&
        PATH="$PWD/../path:$PATH" ninja -C build/linux
}
check "it builds without git" without_git
check "and the tool runs" build/linux/bin/kolink --version
again() { PATH="$PWD/../path:$PATH" SOURCE_DATE_EPOCH=1700000000 script/package source "$PWD/../three" && [ -s ../three/kolink-*.tar.xz ]; }
check "an archive makes an archive as well" again
finish
