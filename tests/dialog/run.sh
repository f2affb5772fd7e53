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
# Wine's font for captions and messages lacks what another language's needs: they get one that has
# it, as Windows finds by itself. In Japanese Wine finds it too.
metrics='HKCU\Control Panel\Desktop\WindowMetrics'
font_of() {  # CHARSET FACE: a regular font, eleven pixels high, as the registry holds it
    local face
    face=$(printf '%s' "$2" | iconv -t UTF-16LE | od -An -v -tx1 | tr -d ' \n')
    printf 'F5FFFFFF%024d90010000000000%s00000022%s%0*d' 0 "$1" "$face" $((128 - ${#face})) 0
}
for font in CaptionFont MessageFont; do
    case ${LC_ALL:-} in
        ja*) wine reg delete "$metrics" /v $font /f > /dev/null 2>&1 ;;
        zh*) set_value "$metrics" $font REG_BINARY "$(font_of 86 SimSun)" ;;
        *)   set_value "$metrics" $font REG_BINARY "$(font_of 80 'VL PGothic')" ;;
    esac
done
wineserver --kill
wine "$@"
