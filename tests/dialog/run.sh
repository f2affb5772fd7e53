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
# Set once in a Wine folder. Wine draws the frames itself. Its font for captions and messages lacks
# what another language's needs: they get one that has it, as Windows finds by itself. In Japanese
# Wine finds it too.
font_of() {  # CHARSET FACE: a regular font, eleven pixels high, as the registry holds it
    local face
    face=$(printf '%s' "$2" | iconv -t UTF-16LE | od -An -v -tx1 | tr -d ' \n')
    printf 'F5FFFFFF%024d90010000000000%s00000022%s%0*d' 0 "$1" "$face" $((128 - ${#face})) 0 |
        sed 's/../&,/g; s/,$//; s/^/hex:/'
}
case ${LC_ALL:-} in
    ja*) font=- ;;
    zh*) font=$(font_of 86 SimSun) ;;
    *)   font=$(font_of 80 'VL PGothic') ;;
esac
values="Windows Registry Editor Version 5.00

[HKEY_CURRENT_USER\\Control Panel\\Desktop]
\"LogPixels\"=dword:$(printf %08x "$dpi")

[HKEY_CURRENT_USER\\Control Panel\\Desktop\\WindowMetrics]
\"CaptionFont\"=$font
\"MessageFont\"=$font

[HKEY_CURRENT_USER\\Software\\Wine\\X11 Driver]
\"Managed\"=\"N\""
if [ "$values" != "$(cat "$WINEPREFIX/values.reg" 2> /dev/null)" ]; then
    printf '%s\n' "$values" > "$scratch/values.reg"
    wine regedit /S "Z:${scratch//\//\\}\\values.reg" || exit
    wineserver --kill
    cp "$scratch/values.reg" "$WINEPREFIX/"
fi
wine "$@"
