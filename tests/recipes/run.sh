#!/usr/bin/env bash
# Runs every line of docs/recipes.md as it stands there, and looks at what came out.
#   run.sh BUILD SCRATCH PRINTER.icc SOURCE.icc
set -uo pipefail
readonly build=$1 printer=$3 source=$4
top=$(cd "$(dirname "$0")/../.." && pwd)
readonly top pixels="$top/tests/recipes/pixels.py"
. "$top/tests/support/checks.sh"
rm -rf "$2" && mkdir -p "$2"
cd "$2" || exit 1
# Debian's programs, and the libraries as they are built.
export PATH="$build/bin:/usr/bin:/bin" LD_LIBRARY_PATH="$build/lib" LIBRARY_PATH="$build/lib"
export SOURCE_DATE_EPOCH=1700000000
ln -s "$top/examples" examples
cp "$printer" printer.icc
cp "$source" press.icc
"$pixels" make || exit 1

# fpc looks for libraries where -Fl says; in an installed system they are in the usual place.
echo "-Fl$build/lib" > fpc.cfg
cat /etc/fpc.cfg >> fpc.cfg 2> /dev/null
export PPC_CONFIG_PATH=$PWD

lines=0
runs() { bash -c "$1"; }
while IFS= read -r line; do
    check "runs: $line" runs "$line"
    ((++lines))
done < <(sed -n 's/^    //p' "$top/docs/recipes.md")
check "the document has its lines" test "$lines" = 17

# The figures are those of the document's table.
compared() { "$pixels" compare "$@"; }
check "lcms2 without optimisations gives what the tool gives" compared proof-lcms2.raw 0 0 1
check "ImageMagick does" compared proof-magick.tif 0 0 1
check "cctiff is as close as the document says" compared proof-cctiff.tif 1 3 9
check "cctiff -p is" compared proof-cctiff-p.tif 1 4 11
optimised() {
    sed 's/cmsFLAGS_NOOPTIMIZE | cmsFLAGS_NOCACHE/0/' examples/host-lcms2/host.c > optimised.c &&
        cc -o optimised optimised.c -llcms2 && ./optimised proof.icc < page.raw > optimised.raw &&
        compared optimised.raw 4 8 57 && ! compared optimised.raw 3 7 30
}
check "lcms2 with them is as far as the document says" optimised
black_alone() { echo "0 0 0 255" | icclu -ff -s255 proof.icc | grep -q -- '-> 0.0* 0.0* 0.0* 255.0* \[CMYK\]'; }
check "icclu keeps black alone" black_alone

# Ghostscript
rendered() { gs -q -dSAFER -dBATCH -sDEVICE=tiff32nc -r72 -o "$2" "$1" && "$pixels" page "$2" kolink; }
check "Ghostscript's TIFF has every pixel as the link has it" "$pixels" page page-proof.tif kolink
check "its PDF has as well" rendered page-proof.pdf of-pdf.tif
without() { gs -q -dSAFER -dBATCH -sDEVICE=tiff32nc -r72 -o plain.tif page.pdf && ! "$pixels" page plain.tif kolink; }
check "a page without the link is another one" without
command_line() {  # the option that the document warns of
    gs -q -dSAFER -dBATCH -sDEVICE=tiff32nc -r72 --permit-file-read="$PWD/" -sDeviceLinkProfile="$PWD/proof.icc" \
        -sOutputICCProfile="$PWD/printer.icc" -o option.tif page.pdf &&
        ! "$pixels" page option.tif kolink > said && grep '(0, 0, 0, 255) becomes \[163 182 167 ' said
}
check "the option of the command line fills black text with other inks" command_line
with_rgb() {
    kolink link --source "$top/tests/data/sRGB-v2-magic.icc" --destination printer.icc --grid 9 -o rgb.icc &&
        examples/ghostscript/convert.sh proof.icc page.pdf rgb.tif -r 72 --rgb rgb.icc && "$pixels" page rgb.tif kolink &&
        sed 's/^0 g /1 0 0 rg /' page.pdf > red.pdf &&
        examples/ghostscript/convert.sh proof.icc red.pdf red.tif -r 72 --rgb rgb.icc 2> said &&
        [ "$(kolink convert --link rgb.icc 255,0,0)" = "$(/usr/bin/python3 -c \
            'from PIL import Image; print(*Image.open("red.tif").getpixel((180, 125)))')" ]
}
check "a link from RGB takes RGB objects" with_rgb
refuses() { "$@" 2> said; [ $? = 1 ] && [ "$(wc -l < said)" = 1 ]; }
check "the script names a link that is none" refuses examples/ghostscript/convert.sh printer.icc page.pdf no.tif
check "and a file that is not there" refuses examples/ghostscript/convert.sh proof.icc nothing.pdf no.tif

# libvips
mismatch() { ! vips icc_transform page.tif no.tif proof.icc 2> said && grep -q 'ColorSpace mismatch' said; }
check "libvips refuses a link" mismatch
small() { [ "$(/usr/bin/python3 -c 'from PIL import Image; print(Image.open("proof-small.tif").size)')" = "(32, 32)" ]; }
check "what libvips scaled is converted" small

# Hosts of other languages
hosts() {
    cmp <(undated csharp.icc) <(undated pascal.icc) && cc -I"$top/include" -L"$build/lib" -o host-c examples/host-c/host.c \
        -lkolink && ./host-c printer.icc press.icc c.icc || return 1
    for name in c csharp; do tr ' ' '\n' <<< "0,0,0,255 10,20,30,40 200,100,50,0" | kolink convert --link $name.icc > $name.said || return 1; done
    cmp c.said csharp.said
}
undated() { head -c 24 "$1"; tail -c +37 "$1"; }
check "the links of C, C# and Pascal are the same" hosts
check "the precise ones as well" cmp csharp-precise.icc pascal-precise.icc
sizes() { mono host.exe printer.icc press.icc a b > said && grep -q '1332, 1016, 368' said && ./Host printer.icc press.icc a b > said && grep -q '1332, 1016, 368' said; }
check "their records have the sizes of the headers" sizes
check "the C# host says what is wrong" refuses mono host.exe printer.icc nothing.icc a b
check "the Pascal host does" refuses ./Host printer.icc nothing.icc a b
finish
