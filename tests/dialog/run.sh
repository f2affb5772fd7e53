#!/usr/bin/env bash
# Runs a program with dialogs under Wine on a screen of its own, at a resolution.
#   run.sh DPI PROGRAM [ARGUMENT...]      the language and WINEPREFIX are the caller's
set -uo pipefail
readonly dpi=$1
shift
scratch=$(mktemp -d)
wineserver --kill 2> /dev/null  # one that was started without a screen has none
Xvfb -displayfd 3 -screen 0 2400x1800x24 -nolisten tcp 3> "$scratch/display" 2> "$scratch/xvfb" &
xvfb=$!
trap 'wineserver --kill 2> /dev/null; kill $xvfb; rm -rf "$scratch"' EXIT
for _ in $(seq 100); do
    [ -s "$scratch/display" ] && break
    sleep 0.1
done
[ -s "$scratch/display" ] || { echo "no screen:"; cat "$scratch/xvfb"; exit 1; }
DISPLAY=:$(cat "$scratch/display")
export DISPLAY
set_value() { wine reg add "$1" /v "$2" /t "$3" /d "$4" /f > /dev/null; }
set_value 'HKCU\Control Panel\Desktop' LogPixels REG_DWORD "$dpi"
set_value 'HKCU\Software\Wine\X11 Driver' Managed REG_SZ N  # Wine draws the frames itself
# As on a Chinese Windows, captions and messages have a Chinese font there; Wine's own knows none.
metrics='HKCU\Control Panel\Desktop\WindowMetrics'
for font in CaptionFont MessageFont; do
    case ${LC_ALL:-} in
        zh*) set_value "$metrics" $font REG_BINARY "F5FFFFFF$(printf '0%.0s' {1..24})90010000$(
                 )0000008600000022530069006D00530075006E00$(printf '0%.0s' {1..104})" ;;
        *)   wine reg delete "$metrics" /v $font /f > /dev/null 2>&1 ;;
    esac
done
wineserver --kill
wine "$@"
