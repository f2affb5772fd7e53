#!/usr/bin/env bash
# A PDF through device links by Ghostscript; black text stays black ink alone.
#   convert.sh LINK.icc IN.pdf OUT.pdf|OUT.tif [-r DPI] [--rgb RGB-LINK.icc]
# LINK.icc is from CMYK to CMYK, RGB-LINK.icc (for RGB objects) from RGB to the same CMYK. The pages
# come out as CMYK pictures of DPI (300), in one PDF or in one TIFF a page (a %d in the name counts
# them): Ghostscript's PDF writer leaves CMYK as it is and would not use the link.
set -euo pipefail
fail() { echo "convert.sh: $1" >&2; exit "${2:-1}"; }
[ $# -ge 3 ] || fail "usage: convert.sh LINK.icc IN.pdf OUT.pdf|OUT.tif [-r DPI] [--rgb RGB-LINK.icc]" 2
link=$1 input=$2 output=$3 dpi=300 rgb=
shift 3
while [ $# -gt 0 ]; do
    [ $# -ge 2 ] || fail "$1 needs a value" 2
    case $1 in
        -r)    dpi=$2 ;;
        --rgb) rgb=$2 ;;
        *)     fail "unknown option $1" 2 ;;
    esac
    shift 2
done
case $output in
    *.pdf)         device=pdfimage32 ;;
    *.tif|*.tiff)  device=tiff32nc ;;
    *)             fail "$output: the name has to end in .pdf or .tif" 2 ;;
esac
for file in "$link" "$input" ${rgb:+"$rgb"}; do [ -r "$file" ] || fail "$file: cannot be read"; done
# Bytes 12 to 19 of a profile: its class and what it takes.
takes() { [ "$(head -c 20 "$1" | tail -c 8)" = "link$2" ] || fail "$1: is no device link from $2"; }
takes "$link" CMYK
[ -z "$rgb" ] || takes "$rgb" "RGB "

# The control file names a link for each kind of object, then intent, black point, override and, for
# CMYK alone, keep black: with fewer numbers Ghostscript 10.0 ends by a fault, with more in an error. It
# knows no blanks in paths, so that the links are copied beside it.
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cp "$link" "$scratch/cmyk.icc"
[ -z "$rgb" ] || cp "$rgb" "$scratch/rgb.icc"
for kind in Graphic Image Text; do
    echo "${kind}_CMYK $scratch/cmyk.icc 1 0 0 0"
    [ -z "$rgb" ] || echo "${kind}_RGB $scratch/rgb.icc 1 0 0"
done > "$scratch/control"

gs -q -dSAFER -dBATCH -dNOPAUSE -sDEVICE=$device -r"$dpi" --permit-file-read="$scratch/" \
    -sSourceObjectICC="$scratch/control" -o "$output" -f "$input"
