# Cases of convert, image, list, calib and table; sourced by run, whose helpers they use.

says() {  # says WANTED ARGUMENTS...: standard output is exactly that (line ends aside)
    local wanted=$1
    shift
    kolink "$@" > "$out" 2> "$err" < /dev/null && [ "$(tr -d '\r' < "$out")" = "$wanted" ] || { cat "$out" "$err"; return 1; }
}
says_of() {  # says_of WANTED INPUT ARGUMENTS...: the same, with that on standard input
    local wanted=$1 input=$2
    shift 2
    printf '%b' "$input" | kolink "$@" > "$out" 2> "$err" && [ "$(tr -d '\r' < "$out")" = "$wanted" ] || { cat "$out" "$err"; return 1; }
}

# ---- convert ----------------------------------------------------------------------------------
check "convert --help shows an example" shows "  kolink convert " convert --help
check "built-in: red is magenta and yellow" says "6 255 233 0" convert --builtin 255,0,0
check "built-in: three colours" says $'0 0 0 0\n255 255 255 255\n236 0 255 0' \
    convert --builtin 255,255,255 0,0,0 "0 255 0"
check "built-in: four numbers are CMYK" says "0 0 0" convert --builtin 0,0,0,255
check "percent in and out" says "0 62.75 77.65" convert --builtin --percent 100,0,0,0
check "a sign of percent does no harm" says "0 62.75 77.65" convert --builtin --percent "100% 0% 0% 0%"
check "blanks, tabs, commas and CR LF, empty lines and remarks" \
    says_of $'6 255 233 0\n236 0 255 0' '255,0\t0\r\n\n# green\n 0 , 255 0' convert --builtin
check "the last line needs no end" says_of "0 0 0 0" '255 255 255' convert --builtin
check "grey ink of RGB: white 0, black 255" says $'0\n255' convert --grey 255,255,255 0,0,0
check "grey ink through the built-in tables" says "0" convert --builtin --grey 255,255,255
check "a pair of profiles, white stays clean" says "0 0 0 0" convert --source "$screen" --destination "$printer" 255,255,255
check "a pair through the system: paper white is RGB white" says "255 255 255" \
    convert --source "$printer" --destination "$screen" --intent relative 0,0,0,0
near_system() {  # HOW...: this way and the system's, on average
    kolink convert --source "$screen" --destination "$printer" --white profile --intent relative "$@" < rgb.txt > own.txt &&
        kolink convert --source "$screen" --destination "$printer" --method system --intent relative < rgb.txt > system.txt &&
        paste -d' ' own.txt system.txt | tr -d '\r' | awk '
            { for (i = 1; i <= 4; ++i) { d = $i - $(i + 4); if (d < 0) d = -d; sum += d; ++n } }
            END { if (n != 2000) { print n; exit 1 } if (sum / n > 4) { print sum / n; exit 1 } }'
}
awk 'BEGIN { srand(7); for (i = 0; i < 500; ++i) print int(rand() * 256), int(rand() * 256), int(rand() * 256) }' > rgb.txt
check "the classic way and the system's agree within a few levels on average" near_system --method classic
check "the tables alone and the system's way as well" near_system --method tables
rm -f own.txt system.txt
link_as_library() {
    "$link_check" levels K > levels.txt
    kolink convert --link link.icc < levels.txt | tr -d '\r' | cmp - levels.txt
}
check "black through a link that keeps it comes out as it went in" link_as_library
check "a .lut of zeros converts to no ink" says "0 0 0 0" convert --link zeros.lut 10,20,30,40
million() {
    awk 'BEGIN { srand(1); for (i = 0; i < 1000000; ++i) print int(rand() * 256), int(rand() * 256), int(rand() * 256) }' > many.txt
    kolink convert --builtin < many.txt | wc -l | grep -qx '1000000'
}
native && check "a million lines" million
rm -f many.txt
refuses "no way to convert" 2 "--builtin" convert 1,2,3
says_at_once() {  # though standard input stays open
    python3 - "${runner[@]}" "$tool" << 'PYTHON'
import subprocess, sys
tool = subprocess.Popen(sys.argv[1:] + ["convert"], stdin=subprocess.PIPE, stderr=subprocess.PIPE)
assert tool.wait(timeout=60) == 2
assert b"tell how to convert" in tool.stderr.read()
PYTHON
}
check "no way to convert is said before anything is read" says_at_once
refuses "two ways to convert" 2 "exclude each other" convert --builtin --link link.icc 1,2,3
refuses "colours without quotes" 2 'one argument, with commas or in quotes: 0,0,0,255' convert --builtin 0 0 0 255
refuses "colours without quotes, through a link" 2 "in quotes" convert --link link.icc 0 0 0 255
answers() {  # each line before the next one comes
    python3 - "${runner[@]}" "$tool" << 'PYTHON'
import subprocess, sys
tool = subprocess.Popen(sys.argv[1:] + ["convert", "--builtin"], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
for colour, wanted in ((b"255,0,0\n", b"6 255 233 0"), (b"# none\n0 0 0\n", b"255 255 255 255")):
    tool.stdin.write(colour)
    tool.stdin.flush()
    assert tool.stdout.readline().strip() == wanted
tool.stdin.close()
assert tool.wait() == 0
PYTHON
}
check "on a pipe each line is answered before the next one comes" answers
refuses "two numbers" 2 "three (RGB) or four (CMYK)" convert --builtin 1,2
refuses "a word" 2 "'a,b,c,d' is not 4 numbers" convert --link link.icc a,b,c,d
refuses "a level over 255" 2 "is not 4 numbers from 0 to 255" convert --link link.icc 256,0,0,0
refuses "not a number" 2 "is not 4 numbers" convert --link link.icc nan,0,0,0
refuses "percent over 100" 2 "from 0 to 100" convert --link link.icc --percent 101,0,0,0
refuses "RGB colours for a CMYK link" 2 "is not 4 numbers" convert --link link.icc 1,2,3
refuses "a source alone" 2 "go together" convert --source "$screen" 1,2,3
refuses "the classic way to RGB" 1 "converts to CMYK only" convert --source "$printer" --destination "$screen" --method classic 0,0,0,0
refuses "absolute the classic way" 2 "knows no --intent absolute" convert --source "$screen" --destination "$printer" --method classic --intent absolute 0,0,0
refuses "a destination without tables to print with, the classic way" 1 "tag B2A0 is missing" convert --source "$screen" --destination "$press" --method classic --intent perceptual 0,0,0
refuses "a destination without tables to print with" 1 "lacks the table B2A1; it has A2B0" convert --source "$screen" --destination "$press" 0,0,0
refuses "a grey profile the classic way" 1 "takes RGB and CMYK alone" convert --source "$grey" --destination "$printer" --method classic 0
refuses "a press profile as link" 1 "it is no link" convert --link "$printer" 0,0,0,0
refuses "a link that is not there" 1 "not found" convert --link nowhere.icc 0,0,0,0
wrong_line() { printf '1 2 3\n4 5\n' | kolink convert --builtin > "$out" 2> "$err"; [ $? = 1 ] && grep -qF "standard input, line 2: '4 5' is not 3 numbers" "$err"; }
check "a wrong line is named" wrong_line
long_line() { head -c 100000 /dev/zero | tr '\0' 1 | kolink convert --builtin > "$out" 2> "$err"; [ $? = 1 ] && grep -q "line 1" "$err"; }
check "a line without end is refused" long_line

# What a link with the same options gives, and other spaces.
as_link() {  # OPTIONS...: convert and a link with them give the same
    kolink link --source "$press" --destination "$printer" "$@" -o same-link.icc &&
        kolink convert --link same-link.icc < cmyk.txt > wanted.txt &&
        kolink convert --source "$press" --destination "$printer" "$@" < cmyk.txt > got.txt && same wanted.txt got.txt
}
awk 'BEGIN { srand(8); for (i = 0; i < 500; ++i) print int(rand() * 256), int(rand() * 256), int(rand() * 256), int(rand() * 256)
             for (i = 0; i < 256; ++i) print 0, 0, 0, i }' > cmyk.txt
check "a pair converts as a link" as_link
check "with --preserve and --ink-limit" as_link --preserve duplex --ink-limit 250
check "with black at its level" as_link --black keep
check "by the tables, perceptually" as_link --method tables --intent perceptual
check "the classic way" as_link --method classic --intent perceptual
check "absolute" as_link --intent absolute
rm -f same-link.icc wanted.txt got.txt cmyk.txt
black_kept() { kolink convert --source "$press" --destination "$printer" 0,0,0,40 0,0,0,128 0,0,0,255 | tr -d '\r' | grep -c '^0 0 0 [1-9]' | grep -qx 3; }
check "pure black stays black alone" black_kept
check "50 percent is 50" says "0 0 0 50" convert --source "$press" --destination "$printer" --black keep --percent 0,0,0,50
check "--precision gives decimals of levels" says "0 0 0 127.5" convert --source "$press" --destination "$printer" --black keep --precision 1 0,0,0,127.5
check "fractions are not rounded on the way in" eval '[ "$(kolink convert --source "$screen" --destination "$printer" --precision 3 100.2,100,100)" != "$(kolink convert --source "$screen" --destination "$printer" --precision 3 100,100,100)" ]'
check "to L*a*b*" says "100 0 0" convert --source "$screen" --destination "$lab" --precision 0 255,255,255
check "from L*a*b*, with a sign" says "255 255 255" convert --source "$lab" --destination "$screen" -- 100,0,0
refuses "L* beyond 100" 2 "L* 0 to 100" convert --source "$lab" --destination "$screen" -- 101,0,0
check "from grey" says "0 0 0 0" convert --source "$grey" --destination "$printer" 255
check "to grey" says "255" convert --source "$screen" --destination "$grey" 255,255,255
refuses "preserved inks where there are none" 2 "--preserve needs a destination for CMYK" convert --source "$screen" --destination "$grey" --preserve primaries 1,2,3
refuses "a choice of inks for a link that is made" 2 "--ink-limit needs --source and --destination" convert --link link.icc --ink-limit 300 1,2,3,4
refuses "a choice of inks with the system" 2 "--method system knows no --preserve" convert --source "$screen" --destination "$printer" --method system --preserve primaries 1,2,3
refuses "digits without end" 2 "--precision" convert --builtin --precision 7 1,2,3
classic_on_lab() { "$link_check" labmatrix "$screen" lab-matrix.icc; }
check "a matrix that connects to Lab" classic_on_lab
check "is converted" says "$(kolink convert --source "$screen" --destination "$printer" 128,128,128 | tr -d '\r')" convert --source lab-matrix.icc --destination "$printer" 128,128,128
refuses "and the classic way says why it does not" 1 "connects to Lab by a matrix" convert --source lab-matrix.icc --destination "$printer" --method classic 128,128,128
mapfile -t machine < <(find /usr/share/color "$top/tests/data" -name '*.ic[cm]' | sort)
all_converted() {  # every profile that lcms2 converts, in every direction that it does
    local profile colour count=0
    for profile in "${machine[@]}"; do
        # Named colours have numbers of a list, not of a space.
        [ "$(head -c 16 "$profile" | tail -c 4)" != nmcl ] || continue
        case $(head -c 20 "$profile" | tail -c 4) in
            GRAY) colour=128 ;;
            CMYK) colour=10,20,30,40 ;;
            *) colour=50,20,10 ;;
        esac
        if echo "${colour//,/ }" | transicc -n -t1 -i "$profile" -o "$screen" 2> "$err" | grep -q '^[0-9-]' && ! grep -qi error "$err"; then
            count=$((count + 1))
            kolink convert --source "$profile" --destination "$screen" -- $colour > "$out" || { echo "from $profile"; return 1; }
        fi
        if echo "50 50 50" | transicc -n -t1 -i "$screen" -o "$profile" 2> "$err" | grep -q '^[0-9-]' && ! grep -qi error "$err"; then
            count=$((count + 1))
            kolink convert --source "$screen" --destination "$profile" --grid 9 50,50,50 > "$out" || { echo "to $profile"; return 1; }
        fi
    done
    echo "$count conversions"
    [ "$count" -gt 20 ]
}
native && check "every profile of this machine that lcms2 converts is converted" all_converted

# ---- table ------------------------------------------------------------------------------------
{ printf '#begindata\n255\t255\t255\t255\t1\t2\t3\t4\n0 0 0 0 9 8 7 6\n'; } > one.txt
check "table check tells of missing nodes" eval '! kolink table check one.txt > "$out" && grep -q "2 of 83,521 nodes are given" "$out"'
check "a table in text converts" says "9 8 7 6" convert --table one.txt 0,0,0,0
check "a table goes to binary and back" eval 'kolink table convert one.txt --to binary -o one.bin && kolink table convert one.bin --to text -o two.txt && kolink table convert two.txt --to binary -o two.bin && same one.bin two.bin && [ $(wc -c < one.bin) = 334084 ]'
check "a binary table converts" says "1 2 3 4" convert --table one.bin 255,255,255,255
check "table show" eval 'kolink table show one.bin > "$out" && grep -q "CMYK to CMYK" "$out" && grep -q "binary" "$out"'
check "table check finds nothing in a whole table" eval 'kolink table check two.txt > "$out" && grep -q "83,521 of 83,521" "$out"'
printf '#begindata\nno number here\n0 0 0 1 2\n16 x 0 1 2 3\n300 0 0 1 2 3\n5 0 0 1 2 3\n5 0 0 1 2 3\n' > odd.txt
odd_lines() {
    kolink table check --space RGB odd.txt > "$out" 2>&1 && return 1
    for words in "line 2: holds no number" "line 3: has 5 numbers instead of 6" "line 4: 'x' is not a whole number" \
                 "line 5: a level is outside" "line 6: level 5 is between grid points" "line 7: gives a node again"; do
        grep -qF "$words" "$out" || { echo "$words"; cat "$out"; return 1; }
    done
}
check "table check names every odd line" odd_lines
check "info of a table" eval 'kolink info one.txt > "$out" && grep -q "CMYK to CMYK" "$out"'
check "plot of a table" eval 'kolink plot one.bin -o - > "$out" && grep -q "<svg" "$out"'
refuses "a text that is no table" 1 "is no table" table show text.icc
refuses "a table over its own source" 1 "not overwritten" table convert one.txt --to text -o one.txt
rm -f one.bin two.bin one.txt two.txt odd.txt

# ---- calib ------------------------------------------------------------------------------------
check "calib new makes identity curves" eval 'kolink calib new press.clb --channels 2 --range 100 --title "Press 3" --names "Black,Spot" && kolink calib value press.clb 1 33 > "$out" && [ "$(tr -d "\r" < "$out")" = 33 ]'
check "calib set stores a tone, decimals and all" eval 'kolink calib set press.clb 1 50 47.5 && [ "$(kolink calib value press.clb 1 50 | tr -d "\r")" = 47.5 ]'
check "the other channel stays" eval '[ "$(kolink calib value press.clb 2 50 | tr -d "\r")" = 50 ]'
check "calib show" eval 'kolink calib show press.clb > "$out" && grep -q "Press 3" "$out" && grep -q Spot "$out"'
check "calib show --json" eval 'kolink calib show press.clb --json | python3 -c "import json,sys; r=json.load(sys.stdin); assert r[\"range\"]==100 and r[\"channels\"][0][\"tones\"]==[[0,0],[50,47.5],[100,100]], r"'
check "info of a set" eval 'kolink info press.clb > "$out" && grep -q "calibration set" "$out"'
check "calib plot" eval 'kolink calib plot press.clb -o press.svg && grep -q "<svg" press.svg'
check "calib delete" eval 'kolink calib delete press.clb 1 50 && [ "$(kolink calib value press.clb 1 50 | tr -d "\r")" = 50 ]'
refuses "an input tone beyond the range has no value" 1 "from 0 to 100" calib value press.clb 1 101
refuses "nor has one below it" 1 "from 0 to 100" calib value press.clb 1 -- -1
named() {  # named LOCALE NAME: of the second channel of a new set
    LC_ALL=$1 kolink calib new named.clb && kolink calib show named.clb > "$out" && rm named.clb && grep -q "$2 " "$out"
}
check "new channels are named in English where there is no language" named C.UTF-8 "Channel 2"
if native; then
    check "in Japanese for a Japanese user" named ja_JP.UTF-8 "チャンネル 2"
    check "in Chinese for a Chinese one" named zh_CN.UTF-8 "通道 2"
    check "and in English for a German one" named de_DE.UTF-8 "Channel 2"
fi
coloured() {  # all sixteen apart, and none black by default
    kolink calib new coloured.clb --channels 16 && kolink calib show --json coloured.clb | python3 -c "
import json, sys
colours = [tuple(one['colour']) for one in json.load(sys.stdin)['channels']]
assert len(set(colours)) == 16 and (0, 0, 0) not in colours, colours" && rm coloured.clb
}
check "new channels have colours of their own" coloured
refuses "an end tone stays" 1 "between the two ends" calib delete press.clb 1 0
refuses "a tone that is not there" 1 "there is no tone at 12" calib delete press.clb 1 12
refuses "a channel that is not there" 1 "no channel 3" calib value press.clb 3 0
refuses "an input tone beyond the range" 1 "from 0 to 100" calib set press.clb 1 101 5
refuses "an output tone beyond the limit" 1 "from 0 to 100" calib set press.clb 1 10 101
refuses "a tone that is no number" 2 "is not a number" calib set press.clb 1 nan 5
refuses "a tone that is infinite" 2 "is not a number" calib set press.clb 1 5 inf
refuses "a new set over an old one" 1 "exists already" calib new press.clb
refuses "seventeen channels" 2 "--channels" calib new more.clb --channels 17
cp text.icc text.clb
refuses "a text that is no set" 1 "is no calibration set" calib show text.clb
rm -f press.svg

# ---- list -------------------------------------------------------------------------------------
mkdir profiles
cp "$press" profiles/b.icc
cp "$screen" profiles/a.icm
cp text.icc profiles/text.icc
check "list names profiles and their colours" eval 'kolink list profiles > "$out" && grep -q "^CMYK .*b.icc" "$out" && grep -q "^RGB .*a.icm" "$out" && grep -q "^unreadable .*text.icc" "$out"'
check "list tells class, version and description" eval 'kolink list profiles > "$out" && grep -qE "^RGB +display +2\.[0-9] +profiles.a\.icm  [A-Za-z]" "$out"'
mkdir -p profiles/below/deep && cp "$grey" profiles/below/deep/g.icc
check "list leaves the folders below alone" eval '! kolink list profiles | grep -q g.icc'
check "list --recursive" eval 'kolink list profiles --recursive > "$out" && grep -q "^GRAY .*g.icc" "$out" && [ "$(wc -l < "$out")" = 4 ]'
check "list of grey ones" eval 'kolink list profiles -r --space GRAY > "$out" && [ "$(wc -l < "$out")" = 1 ] && grep -q g.icc "$out"'
rm -r profiles/below
check "list of one space" eval 'kolink list profiles --space RGB > "$out" && [ "$(wc -l < "$out")" = 1 ] && grep -q a.icm "$out"'
check "list --json" eval 'kolink list profiles --json | python3 -c "import json,sys; assert len(json.load(sys.stdin))==3"'
refuses "a folder that is not there" 1 "not found" list nowhere
refuses "a file in place of a folder" 1 "is not a folder" list text.icc

# ---- image ------------------------------------------------------------------------------------
if native; then
    tiff() { python3 "$top/tests/cli/tiff.py" "$@"; }
    tiff make rgb8.tif 37 23 3 8 2 1
    tiff make rgb16.tif 37 23 3 16 2 2
    tiff make cmyk8.tif 37 23 4 8 5 3
    tiff make rgba.tif 37 23 4 8 2 4
    tiff make grey.tif 5 5 1 8 1 5
    as_lines() {  # as_lines PICTURE ARGUMENTS...: a picture's pixels are what convert gives, to a rounding
        local picture=$1
        shift
        kolink image "$picture" result.tif "$@" || return 1
        tiff colours "$picture" | cut -d' ' -f1-${inputs:-9} | kolink convert "$@" > wanted.txt || return 1
        tiff colours result.tif > got.txt
        paste -d' ' wanted.txt got.txt | awk '
            { if (NF % 2) { print "columns"; exit 1 }
              for (i = 1; i <= NF / 2; ++i) { d = $i - $(i + NF / 2); if (d > tolerance || d < -tolerance) { print NR ": " $0; exit 1 } } ++n }
            END { if (n != 37 * 23) { print n; exit 1 } }' tolerance=${tolerance:-0}
    }
    check "8-bit RGB through the built-in tables" as_lines rgb8.tif --builtin
    check "8-bit CMYK through a link" as_lines cmyk8.tif --link link.icc
    tolerance=1 check "16-bit RGB" as_lines rgb16.tif --builtin
    check "RGB to a press" as_lines rgb8.tif --source "$screen" --destination "$printer"
    check "CMYK to a screen, through the system" as_lines cmyk8.tif --source "$printer" --destination "$screen" --method system
    near_lines() {  # a picture goes through a link, a colour does not
        kolink image cmyk8.tif result.tif --source "$printer" --destination "$screen" && tiff colours result.tif > got.txt &&
            tiff colours cmyk8.tif | kolink convert --source "$printer" --destination "$screen" | paste -d' ' - got.txt | awk '
                { for (i = 1; i <= 3; ++i) { d = $i - $(i + 3); if (d < 0) d = -d; sum += d; ++n; far += d > 4 } }
                END { print sum / n, far / n; exit n != 37 * 23 * 3 || sum / n > 0.5 || far / n > 0.01 }'
    }
    check "CMYK to a screen, near what convert gives" near_lines
    check "CMYK to a press" as_lines cmyk8.tif --source "$press" --destination "$printer" --preserve triplex --ink-limit 280
    check "CMYK to a press the classic way" as_lines cmyk8.tif --source "$press" --destination "$printer" --method classic --intent perceptual
    check "CMYK through a precise link" as_lines cmyk8.tif --link precise.icc
    check "RGB through a precise link" as_lines rgb8.tif --link rgb-link.icc
    inputs=3 check "an alpha channel is left out" as_lines rgba.tif --builtin
    ramp() {  # SAMPLES PHOTOMETRIC: 4,096 levels of 16 bits, in the last channel alone
        tiff ramp ramp.tif "$@"
    }
    levels_out() { tiff levels result.tif; }  # of the channel that has most
    many() { [ "$(levels_out)" -ge 4000 ] || { levels_out; return 1; }; }
    ramp 4 5 && kolink image ramp.tif result.tif --source "$press" --destination "$printer" --black keep
    check "4,096 levels of a press keep at least 4,000" many
    kolink image ramp.tif result.tif --link keep.icc
    check "through a precise link as well" many
    kolink image ramp.tif result.tif --link link.icc
    check "and through a classic one" many
    ramp 3 2 && kolink image ramp.tif result.tif --source "$screen" --destination "$printer" --bpc
    check "4,096 levels of a screen keep at least 4,000" many
    ramp 1 1 && kolink image ramp.tif result.tif --source "$grey" --destination "$screen"
    check "4,096 levels of grey keep at least 4,000" many
    grey_picture() {
        kolink image grey.tif result.tif --source "$grey" --destination "$printer" && tiff colours grey.tif | kolink convert --source "$grey" --destination "$printer" > wanted.txt &&
            tiff colours result.tif > got.txt && same wanted.txt got.txt
    }
    check "a grey picture" grey_picture
    white_is_zero() { tiff make flip.tif 5 5 1 8 0 5 && tiff colours flip.tif | awk '{ print 255 - $1 }' | kolink convert --source "$grey" --destination "$printer" > wanted.txt &&
        kolink image flip.tif result.tif --source "$grey" --destination "$printer" && tiff colours result.tif > got.txt && same wanted.txt got.txt; }
    check "grey whose white is zero" white_is_zero
    embedded() {
        kolink image rgb8.tif tagged.tif --source "$screen" --destination "$machine_rgb" --embed && kolink image tagged.tif result.tif --destination "$printer" 2> "$err" && [ ! -s "$err" ] &&
            kolink image tagged.tif other.tif --source "$machine_rgb" --destination "$printer" 2> "$err" && [ ! -s "$err" ] && same result.tif other.tif &&
            kolink image tagged.tif other.tif --source "$screen" --destination "$printer" 2> "$err" && grep -q 'tagged.tif: the profile in the picture is not used' "$err" && differ result.tif other.tif
    }
    check "the embedded profile is the source; another one is said" embedded
    check "--embed FILE with a link" eval 'kolink image cmyk8.tif result.tif --link precise.icc --embed "$printer" && [ "$(tiff tag result.tif 34675 | wc -w)" = "$(wc -c < "$printer")" ]'
    check "resolution and description are kept" eval 'kolink image rgb8.tif result.tif --builtin && [ "$(tiff tag result.tif 282) $(tiff tag result.tif 283)" = "300.0 200.0" ] && [ "$(tiff tag result.tif 270)" = "$(tiff tag rgb8.tif 270)" ]'
    check "CMYK is marked as such" eval 'kolink image rgb8.tif result.tif --builtin && [ "$(tiff tag result.tif 262) $(tiff tag result.tif 277)" = "5 4" ]'
    check "grey is lightness" eval 'kolink image rgb8.tif result.tif --grey && tiff colours rgb8.tif | kolink convert --grey | awk "{ print 255 - \$1 }" > wanted.txt && tiff colours result.tif > got.txt && same wanted.txt got.txt'
    check "--bits 16 widens" eval 'kolink image rgb8.tif result.tif --builtin --bits 16 && [ "$(tiff tag result.tif 258)" = "16 16 16 16" ]'
    check "--embed puts the destination profile in" eval 'kolink image rgb8.tif result.tif --source "$screen" --destination "$printer" --embed && tiff tag result.tif 34675 | tr " " "\n" | awk "{ printf \"%c\", \$1 }" | wc -l > "$out" && [ "$(tiff tag result.tif 34675 | wc -w)" = "$(wc -c < "$printer")" ]'
    for form in "-t -w 16 -l 16" "-p separate" "-t -w 16 -l 16 -p separate" "-c lzw" "-c zip" "-r 5"; do
        check "the same from tiffcp $form" eval 'kolink image rgb8.tif plain.tif --builtin && tiffcp '"$form"' rgb8.tif other.tif && kolink image other.tif result.tif --builtin && tiffcp -c none -r 1000 result.tif result1.tif && tiffcp -c none -r 1000 plain.tif plain1.tif && tiff colours result1.tif > got.txt && tiff colours plain1.tif > wanted.txt && same got.txt wanted.txt'
    done
    check "every page of several" eval 'tiffcp rgb8.tif rgb8.tif rgb8.tif pages.tif && kolink image pages.tif result.tif --builtin && [ "$(tiffinfo result.tif | grep -c "Image Width")" = 3 ]'
    whole_or_nothing() {  # PAGE: what cannot be read ends it, and the old result stays
        echo old > result.tif
        kolink image damaged.tif result.tif --builtin > "$out" 2> "$err"
        [ $? = 1 ] && grep -q "damaged.tif: cannot be read at page $1" "$err" && [ "$(cat result.tif)" = old ] || { cat "$err"; return 1; }
    }
    tiff pages pages.tif 2 "$screen"
    check "two pages, whole" eval 'kolink image pages.tif result.tif --builtin && [ "$(tiffinfo result.tif | grep -c "Image Width")" = 2 ]'
    head -c -100 pages.tif > damaged.tif
    check "a picture that is cut in its second page is not taken for one of a single page" whole_or_nothing 2
    (head -c -4 pages.tif; head -c 8 pages.tif | tail -c 4) > damaged.tif
    check "pages that go round in a circle have no end" whole_or_nothing 3
    rm -f damaged.tif
    small_memory() {  # the picture has 90 MB
        tiff make wide.tif 6000 5000 3 8 2 9
        python3 - "$tool" << 'PYTHON'
import resource, subprocess, sys
subprocess.check_call([sys.argv[1], "image", "wide.tif", "result.tif", "--builtin"])
peak = resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss
print(peak, "KiB")
sys.exit(peak >= 64 * 1024)
PYTHON
    }
    # A sanitizer's runtime takes memory of its own.
    grep -q __asan_init "$tool" || check "a picture takes little memory" small_memory
    rm -f wide.tif
    rm -f result.tif
    refuses "a grey picture for the built-in tables" 2 "--builtin needs" image grey.tif result.tif --builtin
    refuses "a grey picture for an RGB source" 1 "is grey, and the conversion takes RGB" image grey.tif result.tif --source "$screen" --destination "$printer"
    refuses "a CMYK picture for an RGB source" 1 "is CMYK, and the conversion takes RGB" image cmyk8.tif result.tif --source "$screen" --destination "$printer"
    refuses "a picture that is none" 1 "is not a TIFF picture" image text.icc result.tif --builtin
    refuses "a picture over itself" 1 "not overwritten" image rgb8.tif ./rgb8.tif --builtin
    refuses "--embed without a profile" 2 "--embed needs" image rgb8.tif result.tif --builtin --embed
    refuses "--embed of a profile for other colours" 1 "is a profile for RGB, and the result is CMYK" image rgb8.tif result.tif --builtin --embed "$screen"
    refuses "a picture without a profile, and no source" 2 "--source and --destination go together" image rgb8.tif result.tif --destination "$printer"
    head -c 1500 rgb8.tif > cut.tif
    refuses "a picture cut short" 1 "cannot be read" image cut.tif result.tif --builtin
    rm -f ./*.tif wanted.txt got.txt
    damaged_pictures() {  # every ending is fine but a crash or a picture half written
        tiff make good.tif 20 12 3 8 2 8
        python3 - "$top" << 'PYTHON'
import random, sys
good = open("good.tif", "rb").read()
rng = random.Random(3)
for n in range(150):
    data = bytearray(good)
    for _ in range(rng.randrange(1, 5)):
        data[rng.randrange(min(len(data), 300))] = rng.choice((0, 1, 127, 128, 255, rng.randrange(256)))
    if n % 5 == 0: data = data[:rng.randrange(len(data))]
    open("damaged%d.tif" % n, "wb").write(data)
PYTHON
        local n
        for n in $(seq 0 149); do
            timeout 20 "$tool" image damaged$n.tif result.tif --builtin > "$out" 2> "$err"
            [ $? -le 1 ] || { echo "damaged$n.tif"; cat "$err"; return 1; }
        done
    }
    check "damaged pictures end well" damaged_pictures
    rm -f ./*.tif
fi
