#!/usr/bin/env bash
# kolink image on JPEG and PNG pictures, made and looked at by Pillow.
#   run.sh TOOL SCRATCH PRINTER.icc
set -uo pipefail
readonly tool=$1 printer=$3
top=$(cd "$(dirname "$0")/../.." && pwd)
. "$top/tests/support/checks.sh"
rm -rf "$2" && mkdir -p "$2"
cd "$2" || exit 1
screen=$top/tests/data/sRGB-v2-magic.icc
readonly screen machine=/usr/share/color/icc/ghostscript/a98.icc
pictures() { "$top/tests/pictures/pictures.py" "$@"; }
kolink() { "$tool" "$@"; }
pictures make . "$screen" || exit 1
rgb=(--source "$screen" --destination "$machine")

# One conversion, whatever the picture comes in and goes out as.
kolink image rgb.tif wanted.tif "${rgb[@]}"
from() { kolink image "$1" "$2" "${rgb[@]}" && pictures same wanted.tif "$2" "${3:-0}"; }
check "TIFF to PNG" from rgb.tif a.png
check "PNG to TIFF" from rgb.png a.tif
check "PNG to PNG" from rgb.png b.png
check "an alpha channel of a PNG is left out" from alpha.png c.tif
palette() { kolink image palette.png a.tif "${rgb[@]}" && kolink image of-palette.png b.tif "${rgb[@]}" && pictures same a.tif b.tif; }
check "a palette is its colours" palette
check "a fine JPEG is close" from fine.jpg d.tif 14
check "a progressive one is" from progressive.jpg e.tif 30
interlaced() { /usr/bin/convert rgb.png -interlace PNG interlaced.png && from interlaced.png f.tif; }
check "an interlaced PNG is the same" interlaced
fine() { kolink image rgb.tif g.jpg "${rgb[@]}" --quality 99 --subsampling 444 && pictures same wanted.tif g.jpg 8 && ! pictures same wanted.tif g.jpg 0; }
check "TIFF to JPEG" fine
grey16() {
    kolink image grey16.png a.png --source "$top/tests/data/sGrey-v2-micro.icc" --destination "$machine" &&
        kolink image grey.png b.png --source "$top/tests/data/sGrey-v2-micro.icc" --destination "$machine" --bits 16 &&
        cmp a.png b.png && file a.png | grep -q '16-bit/color RGB'
}
check "16 bits of a PNG stay 16" grey16
grey() { kolink image rgb.png a.jpg --grey && kolink image rgb.png b.png --grey && [ "$(pictures says a.jpg mode)" = "L 83 61" ] && pictures same a.jpg b.png 6; }
check "grey goes out as grey" grey
by_content() { cp rgb.png "named.tif" && kolink image named.tif a.tif "${rgb[@]}" && pictures same a.tif wanted.tif; }
check "what a picture is tells the file, not its name" by_content
by_name() { kolink image rgb.png result "${rgb[@]}" && file result | grep -q PNG; }
check "without an ending the result is what the picture is" by_name

# CMYK, in both kinds of JPEG.
kolink link --source "$printer" --destination "$printer" -o same.icc 2> /dev/null
pictures plain adobe.jpg plain.jpg
ink() { kolink image "$1" a.tif --link same.icc && pictures same a.tif cmyk.tif 12; }
check "a CMYK JPEG with Adobe's mark is inverted" ink adobe.jpg
check "one without is as it stands" ink plain.jpg
marked() { kolink image cmyk.tif a.jpg --link same.icc --quality 98 && pictures same a.jpg cmyk.tif 12 && [ "$(pictures says a.jpg adobe)" = 0 ]; }
check "a CMYK result has the mark, and other readers see its inks" marked
back() { kolink image a.jpg b.tif --link same.icc && pictures same b.tif cmyk.tif 14; }
check "and it is read back" back

# What is known of a picture besides.
says() { local said; said=$(pictures says "$1" "$2") && [ "$said" = "$3" ] || { echo "$2 of $1: $said"; return 1; }; }
told() { says "$1" dpi "300 200" && says "$1" orientation 6 && says "$1" description "A description" && says "$1" author Somebody && says "$1" xmp True; }
for in in told.jpg told.png; do
    for out in jpg png tif; do
        keeps() { kolink image "$in" kept.$out --destination "$machine" --embed && told kept.$out && says kept.$out icc "$(stat -c %s "$machine")"; }
        check "$in to $out keeps resolution, orientation, texts and XMP, and gets the profile" keeps
    done
done
iptc() { for out in jpg tif; do kolink image told.jpg kept.$out --destination "$machine" && says kept.$out iptc True || return 1; done; }
check "IPTC goes to JPEG and TIFF" iptc
from_tiff() { kolink image kept.tif kept.png --source "$screen" --destination "$machine" && told kept.png && kolink image kept.tif kept.jpg --source "$screen" --destination "$machine" && told kept.jpg; }
check "from TIFF all of it goes on" from_tiff
cmyk_resolution() { kolink image told.jpg ink.jpg --destination "$printer" --grid 9 && kolink image ink.jpg ink.tif --link same.icc && says ink.tif dpi "300 200"; }
check "a CMYK JPEG keeps its resolution" cmyk_resolution
source_profile() { kolink image told.png a.png --destination "$machine" && kolink image rgb.png b.png "${rgb[@]}" && pictures same a.png b.png; }
check "the profile in a picture is its source" source_profile
quality() { identify -format '%Q' "$1"; }
kept_coding() {
    local name
    for name in fine coarse; do
        kolink image $name.jpg a.jpg "${rgb[@]}" && [ "$(quality a.jpg)" = "$(quality $name.jpg)" ] &&
            says a.jpg subsampling "$(pictures says $name.jpg subsampling)" || return 1
    done
}
check "quality and subsampling of a JPEG are kept" kept_coding
chosen() { kolink image coarse.jpg a.jpg "${rgb[@]}" --quality 77 --subsampling 422 && [ "$(quality a.jpg)" = 77 ] && says a.jpg subsampling "2x1 1x1 1x1"; }
check "or chosen" chosen

# Faults: one sentence, status 1, nothing made.
refuses() {  # STATUS PATTERN ARGUMENT...
    local status=$1 pattern=$2
    shift 2
    rm -f no.*
    kolink image "$@" 2> said
    [ $? = "$status" ] && [ "$(wc -l < said)" = 1 ] && grep -qE "$pattern" said && [ -z "$(ls -d no.* '~'* 2> /dev/null)" ] || { cat said; return 1; }
}
for how in cut bits; do
    for name in fine.jpg progressive.jpg rgb.png; do
        pictures broken $name "broken.${name##*.}" $how
        check "a damaged picture is named: $name, $how" refuses 1 "broken.${name##*.}: cannot be read: " "broken.${name##*.}" no.tif "${rgb[@]}"
    done
done
pictures broken told.png crc.png crc
check "a damaged profile in a PNG is no missing one" refuses 1 "iCCP" crc.png no.tif --destination "$machine"
for kind in png baseline progressive; do
    pictures claims "claims.$kind" $kind
    claimed() { (ulimit -v 4000000; refuses 1 "too short for the 60,000 x 60,000 pixels" "claims.$kind" no.tif "${rgb[@]}"); }
    case $tool in *asan*) claimed() { refuses 1 "too short for the 60,000 x 60,000 pixels" "claims.$kind" no.tif "${rgb[@]}"; } ;; esac
    check "so many pixels in so few bytes are a lie: $kind" claimed
done
echo text > text.jpg
check "a text is no picture" refuses 1 "text.jpg: is not a TIFF picture" text.jpg no.tif "${rgb[@]}"
check "several pages do not go into a PNG" refuses 1 "has several pages" pages.tif no.png "${rgb[@]}"
check "CMYK does not" refuses 2 "holds no CMYK" cmyk.tif no.png --link same.icc
check "16 bits do not go into a JPEG" refuses 2 "has 8 bits" grey16.png no.jpg "${rgb[@]}" --bits 16
check "--quality is of JPEG" refuses 2 "are of JPEG" rgb.png no.png "${rgb[@]}" --quality 50
[ "${tool#*asan}" != "$tool" ] || {
    full() { (ulimit -f 4; trap '' XFSZ; refuses 1 "cannot be written" fine.jpg no.jpg "${rgb[@]}" --quality 100); }
    check "a full disk leaves nothing" full
}
finish
