# Cases of precise links; sourced by run, whose helpers they use.
presses=(link --source "$press" --destination "$printer")

# ---- What is refused ----------------------------------------------------------------------------
refuses "plane by the tables alone" 2 "--method tables follows the tables" "${presses[@]}" -o x.icc --method tables --black plane
refuses "plane with the maker's own intent" 2 "--intent perceptual follows the tables" "${presses[@]}" -o x.icc --intent perceptual --black plane
refuses "ink saved by the tables alone" 2 "--save-ink needs" "${presses[@]}" -o x.icc --method tables --save-ink 50
refuses "a lightness for no saving" 2 "--save-ink-above needs --save-ink" "${presses[@]}" -o x.icc --save-ink-above 60
refuses "black points with absolute colours" 2 "--bpc contradicts" "${presses[@]}" -o x.icc --intent absolute --bpc
for option in "--black plane" "--black match" "--preserve duplex" "--preserve triplex" --bpc "--ink-limit 300" \
              "--save-ink 10" "--clip 1" "--bits 16" "--grid 17" "--nodes even"; do
    refuses "$option the classic way" 2 "--method classic knows no ${option%% [0-9]*}" "${presses[@]}" -o x.icc --method classic $option
    refuses "$option with a base alone" 2 "there is no pair of profiles" link --base "$press" -o x.icc $option
done
refuses "absolute the classic way" 2 "knows no --intent absolute" "${presses[@]}" -o x.icc --method classic --intent absolute
refuses "a limit below what black needs" 2 "below what black needs" "${presses[@]}" -o x.icc --ink-limit 99
refuses "a limit of five inks" 2 "401" "${presses[@]}" -o x.icc --ink-limit 401
refuses "a limit that is a word" 2 "much" "${presses[@]}" -o x.icc --ink-limit much
refuses "a clip of 11 percent" 2 "11" "${presses[@]}" -o x.icc --clip 11
refuses "a saving of more than all" 2 "101" "${presses[@]}" -o x.icc --save-ink 101
refuses "a grid of 8 points" 2 "9 to 33 points" "${presses[@]}" -o x.icc --grid 8
refuses "a grid of 34 points from CMYK" 2 "9 to 33 points" "${presses[@]}" -o x.icc --grid 34
refuses "a grid of no points" 2 "no grid" "${presses[@]}" -o x.icc --grid 0
refuses "12 bits" 2 "--bits" "${presses[@]}" -o x.icc --bits 12
refuses "the library's nodes on another grid" 2 "33 points" "${presses[@]}" -o x.icc --grid 17 --nodes library
refuses "a paper under RGB" 2 "--paper needs a source for CMYK" link --source "$screen" --destination "$printer" -o x.icc --paper 0,0,5,0
refuses "plane from RGB" 2 "has no black ink" link --source "$screen" --destination "$printer" -o x.icc --black plane
refuses "inks limited in RGB" 2 "links to CMYK only" link --source "$press" --destination "$screen" -o x.icc --ink-limit 300
refuses "a destination that cannot be printed with" 1 "lacks the table B2A1; it has A2B0" link --source "$printer" --destination "$press" -o x.icc
refuses "a grey destination" 1 "GRAY where CMYK or RGB is needed" link --source "$press" --destination "$grey" -o x.icc
refuses "a text as source" 1 "text.icc: is not an ICC file" link --source text.icc --destination "$printer" -o x.icc
refuses "a source that is cut short" 1 "cut.icc: " link --source cut.icc --destination "$printer" -o x.icc
refuses "a profile as base" 1 "the base must be a link" "${presses[@]}" -o x.icc --base "$printer"
refuses "a curve that is none" 1 "is not a black-correction file" "${presses[@]}" -o x.icc --black curves.tnc
refuses "an output that is the black curve" 1 "is the input file" "${presses[@]}" -o curve.bkc --black curve.bkc
refuses "an output that is the destination" 1 "is the input file" link --source "$press" --destination press.icc -o press.icc

# ---- Links --------------------------------------------------------------------------------------
check "a precise link of two presses" kolink "${presses[@]}" -o precise.icc --preserve secondaries --name '試験 Test' --comment 'Kommentar'
check "says nothing of its own accord" test -z "$(kolink "${presses[@]}" -o again.icc --name quiet 2>&1)"
check "and the same input gives the same bytes" same again.icc <(kolink "${presses[@]}" -o again.icc --name quiet && cat again.icc)
tells_all() {  # FILE WORDS...: info says them all
    kolink info "$1" > "$out" || return 1
    local words
    for words in "${@:2}"; do grep -qE -e "$words" "$out" || { echo "$words"; cat "$out"; return 1; }; done
}
check "info tells how it was made" tells_all precise.icc 'provenance' 'source +uCMY' 'source-id +c367d1d1' \
    'destination +Artifex CMYK SWOP Profile' 'method +precise' 'intent +relative' 'black +plane' 'preserve +secondaries' \
    'nodes +even' 'version +1\.'
check "the library still opens its editing data" tells_all precise.icc 'name +試験 Test' 'comment +Kommentar' 'input C +\(0, 0\) \(255, 255\)'
check "--preserve secondaries is the difference" differ precise.icc again.icc
purity() {  # FILE INKS...: exactly no other ink, with lcms2's ways, in Argyll
    local inks
    for inks in "${@:2}"; do
        "$link_check" zeros "$1" "$inks" && argyll_zeros "$inks" "$1" || { echo "$inks"; return 1; }
    done
}
check "pure inks and mixes of two stay pure in foreign readers" purity precise.icc C M Y CM CY MY K
check "white stays white" "$link_check" white precise.icc
check "white stays white in Argyll" argyll_zeros "" precise.icc
kolink "${presses[@]}" -o triplex.icc --preserve triplex
check "--preserve triplex keeps mixes with black" purity triplex.icc CK MK YK CMK CYK MYK
limited() {  # FILE PERCENT: the most ink of any node
    kolink info --json "$1" | python3 -c "import json,sys; c=json.load(sys.stdin)['editingData']['highestCoveragePercent']; sys.exit(not 100 < c <= $2 + 1e-9 and str(c))"
}
kolink "${presses[@]}" -o limit.icc --ink-limit 240
check "--ink-limit 240 is held by every node" limited limit.icc 240
check "the tables' own limit is held unless told otherwise" limited again.icc 300.5
kolink "${presses[@]}" -o keep.icc --black keep
keeps_levels() {  # in percent, as far as the table's rounding lets it
    seq -f '0 0 0 %g' 0 100 > levels.txt
    transicc -n -l "$1" < levels.txt 2> "$err" | awk 'NF == 4' > "$out"
    paste -d' ' levels.txt "$out" | awk '{ d = $4 - $8; if (NF != 8 || d > 0.4 || d < -0.4 || $5 + $6 + $7) { print; bad = 1 } } END { exit bad || NR != 101 }'
}
check "--black keep keeps levels" keeps_levels keep.icc
kolink "${presses[@]}" -o curve-p.icc --black curve.bkc
kolink "${presses[@]}" -o clip.icc --clip 2 --ink-limit none
clipped() { python3 - clip.icc << 'PYTHON'
import struct, sys
data = open(sys.argv[1], "rb").read()
for at in range(struct.unpack(">I", data[128:132])[0]):
    sig, offset, size = struct.unpack(">4sII", data[132 + 12 * at:144 + 12 * at])
    if sig == b"A2B0":
        levels = set(data[offset + 48 + 1024:offset + 48 + 1024 + 4 * 33 ** 4])
        assert not levels & set(range(1, 5)) and not levels & set(range(246, 255)), sorted(levels)
PYTHON
}
check "--clip leaves no level below it and none above its double" clipped
check "--black FILE is a link of its own" differ curve-p.icc keep.icc
check "and says which file" tells_all curve-p.icc 'black +curve' 'black-file +curve.bkc'
identity() {
    kolink link --source "$printer" --destination "$printer" -o identity.icc 2> "$err" && grep -q 'the same profile; the link changes no colour' "$err" &&
        printf '%s\n' '0 0 0 0' '255 255 255 255' '10 20 30 40' '200 180 190 250' > colours.txt &&
        kolink convert --link identity.icc < colours.txt | tr -d '\r' | paste -d' ' - colours.txt |
            awk '{ for (i = 1; i <= 4; ++i) if ($i - $(i + 4) > 1 || $(i + 4) - $i > 1) { print; bad = 1 } } END { exit bad }'
}
check "a profile to itself is an identity, and that is said" identity
drops() {
    kolink "${presses[@]}" -o drops.icc --name 'Proof 한' 2> "$err" && [ "$(wc -l < "$err")" = 1 ] && grep -q "'한'" "$err" &&
        kolink info drops.icc | grep -qE 'name +Proof'
}
check "--name says what the editing data cannot have" drops
long_name() { kolink "${presses[@]}" -o drops.icc --name "$(printf 'n%.0s' {1..70})" 2> "$err" && grep -q "'nnnnnnn'" "$err"; }
check "and what it has no room for" long_name
verbose() { kolink "${presses[@]}" -o again.icc -v --save-ink 50 2> "$err" && grep -q '1,185,921 nodes (33 points a channel, 8 bits), relative, solved for' "$err" && grep -qE 'mean ink [0-9.]+ %, by the tables [0-9.]+ %, limit 300.4 %, saved [0-9.]+ %; of the nodes' "$err"; }
check "--verbose tells how it was made, what was saved, what it costs" verbose
falls_back() { kolink link --base link.icc -o again.icc -v --black none 2> "$err" && grep -q 'made the classic way, since there is no pair of profiles' "$err"; }
check "a base alone goes the classic way, and --verbose says so" falls_back
check "a base with the library's nodes before two profiles" kolink "${presses[@]}" -o based.icc --base link.icc
check "a table as base before two profiles" kolink "${presses[@]}" -o based.icc --base zeros.lut
check "and the table is what comes first" eval '[ "$(kolink convert --link based.icc 200,100,50,0 | tr -d "\r")" = "$(kolink convert --link based.icc 10,10,10,0 | tr -d "\r")" ]'
for way in "--bits 16" "--bits 16 --nodes library" "--grid 17" "--intent absolute" "--intent perceptual" "--method tables" "--bpc"; do
    check "a link with $way" kolink "${presses[@]}" -o other.icc $way
    check "iccdump opens it without complaint" complains_not iccdump -v2 other.icc
done
check "a link from RGB" kolink link --source "$screen" --destination "$printer" -o rgb-link.icc
check "and with black for neutrals" kolink link --source "$screen" --destination "$printer" -o grey-link.icc --black keep --grid 65
check "a link from grey" kolink link --source "$grey" --destination "$printer" -o other.icc
check "a link to RGB" kolink link --source "$press" --destination "$screen" -o other.icc

# ---- Foreign readers ----------------------------------------------------------------------------
remarks() { iccdump -v2 "$1" > "$out" 2>&1 && ! grep -qiE 'warn|error|fail|bad|wrong|corrupt|unknown' "$out" && grep -q "No. elements = 2" "$out"; }
check "iccdump remarks on nothing and sees two profiles" remarks precise.icc
sequence() { "$link_check" sequence "$1" "uCMY" "Artifex CMYK SWOP Profile"; }
check "lcms2 reads both profiles of the sequence" sequence precise.icc
listed() { kolink info precise.icc > "$out" && python3 - << 'PYTHON'
import struct
data = open("precise.icc", "rb").read()
assert struct.unpack(">I", data[64:68])[0] == 1, "intent"
for at in range(struct.unpack(">I", data[128:132])[0]):
    sig, offset, size = struct.unpack(">4sII", data[132 + 12 * at:144 + 12 * at])
    if sig == b"desc":
        ascii_count = struct.unpack(">I", data[offset + 8:offset + 12])[0]
        start = offset + 12 + ascii_count
        count = struct.unpack(">I", data[start + 4:start + 8])[0]
        assert data[start + 8:start + 8 + 2 * count].decode("utf-16-be") == "試験 Test\0"
PYTHON
}
check "the Unicode description is the name, the header has the intent" listed
for file in precise.icc rgb-link.icc; do
    runs_in_transicc() { echo "10 20 30 40" | transicc -l "$1" > "$out" 2>&1 && grep -qE 'C=[0-9.]+ M=[0-9.]+ Y=[0-9.]+ K=[0-9.]+' "$out"; }
    check "transicc converts through $file" runs_in_transicc $file
    check "icclu converts through $file" eval 'echo "10 20 30 40" | icclu -ff -s255 $file > "$out" && grep -q "CMYK" "$out"'
done
if native; then
    python3 "$top/tests/cli/tiff.py" make rgb8.tif 37 23 3 8 2 1
    python3 "$top/tests/cli/tiff.py" make cmyk8.tif 37 23 4 8 5 3
    check "cctiff converts a picture through it" cctiff precise.icc cmyk8.tif result.tif
    check "tificc converts a picture through it" tificc -l precise.icc cmyk8.tif result.tif
    check "and one of RGB" tificc -l rgb-link.icc rgb8.tif result.tif
    rm -f ./*.tif
    peak() { process peak 32768 "$tool" "${presses[@]}" -o again.icc; }
    grep -q __asan_init "$tool" || check "a precise link takes less than 32 MiB" peak
    damaged_sources() {
        local variant status
        for ((variant = 0; variant < 12; ++variant)); do
            "$link_check" damage "$press" damaged.icc $variant
            kolink link --source damaged.icc --destination "$printer" -o damaged-link.icc --grid 9 2> "$err"
            status=$?
            [ $status -le 1 ] && { [ $status = 0 ] || [ "$(wc -l < "$err")" = 1 ]; } || { echo "variant $variant: status $status: $(head -c 2000 "$err")"; return 1; }
        done
    }
    check "precise links survive damaged profiles" damaged_sources
fi
rm -f again.icc other.icc drops.icc levels.txt based.icc colours.txt
