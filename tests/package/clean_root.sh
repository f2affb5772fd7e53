#!/usr/bin/env bash
# Installs Debian's packages of KoLink into a root that holds nothing else than Debian itself, by
# mmdebstrap and the network, uses them there as a stranger would, and removes them again.
#   clean_root.sh BUILDS SCRATCH PRINTER.icc SOURCE.icc       as root
set -uo pipefail
readonly builds=$1 printer=$3 source=$4
top=$(cd "$(dirname "$0")/../.." && pwd)
. "$top/tests/support/checks.sh"
. "$top/tests/package/readme_host.sh"
rm -rf "$2" && mkdir -p "$2"
scratch=$(cd "$2" && pwd)

mkdir "$scratch/in"
made() { KO_BUILDS=$builds "$top/script/package" debian "$scratch/in"; }
check "script/package debian makes the packages" made
cp "$source" "$scratch/in/press.icc"
cp "$printer" "$scratch/in/printer.icc"
check "README has a host of five lines" readme_host "$scratch/in/host.c" "$top/README.md"
cat > "$scratch/in/use" << 'END'
#!/bin/sh
cd /in
say() { what=$1; shift; if "$@" > /in/said 2>&1; then echo "ok - $what"; else echo "not ok - $what"; sed 's/^/    /' /in/said; fi; }
export DEBIAN_FRONTEND=noninteractive
say "apt installs them with what they need" apt-get install -y --no-install-recommends ./libkolink1_*.deb ./libkolink-dev_*.deb \
    ./kolink_*.deb ./python3-kolink_*.deb
say "README's host compiles with nothing but -lkolink" cc host.c -o host -lkolink
say "and makes a link" ./host
say "which is one" sh -c 'test "$(head -c 40 proof.icc | tail -c 4)" = acsp'
say "the tool makes a link" kolink link --source press.icc --destination printer.icc --grid 9 -o tool.icc
say "the tool reads the host's" kolink info proof.icc
say "the manual page is there" test -s /usr/share/man/man1/kolink-link.1.gz
say "Python makes a link" python3 -c 'import kolink; kolink.Link.make("press.icc", "printer.icc", grid_points=9).save("python.icc")'
say "they are removed again" dpkg --purge kolink python3-kolink libkolink-dev libkolink1
say "and nothing of them stays" sh -c '! find /usr /etc /var/lib/dpkg/info -iname "*kolink*" | grep .'
END
chmod +x "$scratch/in/use"
used() {
    mmdebstrap --variant=apt --include=gcc,libc6-dev --customize-hook="copy-in '$scratch/in' /" \
        --customize-hook="chroot \"\$1\" /in/use > '$scratch/said'" bookworm /dev/null
}
check "mmdebstrap makes a root of Debian alone" used
cat "$scratch/said" || echo "not ok - nothing was tried in that root"
! grep -q '^not ok' "$scratch/said" || failures=1
finish
