# Cases of check; sourced by run, whose helpers they use.
check "check --help shows an example" shows "  kolink check " check --help
finds() {  # finds STATUS WORDS ARGUMENTS...
    kolink check "${@:3}" > "$out" 2> "$err" < /dev/null
    [ $? = "$1" ] && grep -qE -e "$2" "$out" && [ ! -s "$err" ] || { cat "$out" "$err"; return 1; }
}
kolink link --source "$printer" --destination "$printer" --grid 9 -o checked.icc
check "check passes a link of the tool, and says what the dialogs would lose" finds 0 \
    'checked.icc: note: .* it loses the names of its profiles \(pseq\), its grid of 9 points.* kprv, its rendering intent' checked.icc
check "check passes the profile that Debian ships" finds 0 '0 errors|nothing' "$printer"
{ cat checked.icc; printf 'more'; } > longer.icc
check "check tells file, place, rule and remedy" finds 1 \
    '^longer.icc: error: at 0: the header says [0-9]+ bytes, the file has [0-9]+; .* \[size\]$' longer.icc
check "check looks at several files" eval 'finds 1 "longer.icc: 1 error" checked.icc longer.icc && grep -q "checked.icc: 0 errors" "$out"'
check "check of a text says that it is none" finds 1 'no ICC profile|fewer than' text.icc
check "check --json tells the same" finds 1 '"rule": "size"' --json longer.icc
native && check "check --json is JSON" eval 'kolink check --json checked.icc longer.icc > "$meanwhile/json"; "$link_check" json "$meanwhile/json"'
check "check --fix mends the size and says what is left" finds 0 'mended.icc: 0 errors, 0 warnings' longer.icc --fix mended.icc
check "and changes no tag" cmp <(tail -c 1000 checked.icc) <(tail -c 1000 mended.icc)
refuses "check --fix of two files" 2 "--fix" check checked.icc longer.icc --fix x.icc
refuses "check --fix over its input" 1 "is the input file" check longer.icc --fix longer.icc
refuses "check --fix of a text" 1 "cannot be mended" check text.icc --fix x.icc
refuses "check of a file that is not there" 1 "missing.icc: not found" check missing.icc
refuses "check of nothing" 2 "files" check
check "check passes the curves of the product" eval 'finds 0 "curve.bkc: nothing" curve.bkc && finds 0 "curves.tnc: nothing" curves.tnc'
check "check tells the line of a curve" eval 'printf "TONE   = 0,0\nTONE   = x,5\n" > odd.bkc && finds 1 "odd.bkc: error: line 2: the level .x. is no whole number" odd.bkc'
check "check of a cut table" finds 1 'short.lut: error: at 1000: the file has 1000 of 4744656 bytes' short.lut
check "check of a printer without curves" finds 1 'no line is a curve' hollow.dcc
printf 'CHANNEL = 1\nRANGE   = 100\nTONE 0  = 0,0\nTONE 0  = 100,100\nTONES 0 = 1\n' > odd.clb
check "check --fix writes a calibration as the library reads it" eval \
    'finds 0 "mended.clb: nothing is wrong" odd.clb --fix mended.clb && grep -q "TONE_001 = 100,100" mended.clb'
printf '<INI>\n  KO_FOLDER = x\n' > odd.ini
check "check --fix ends what is open in settings" eval 'finds 0 "directory-open" odd.ini && finds 0 "mended.ini: nothing" odd.ini --fix mended.ini'
printf '#begindata\n0 0 0 1 2 3\n' > odd.txt
check "check --fix writes a whole table" eval 'finds 0 "4912 of 4913 nodes are not given" odd.txt && finds 0 "whole.txt: nothing" odd.txt --fix whole.txt'
{ cat zeros.lut; printf more; } > longer.lut
printf '\1' | dd of=longer.lut bs=1 seek=2000 conv=notrunc 2> /dev/null
check "check --fix cuts a table to its length" eval \
    'finds 0 "4 bytes behind the grid" longer.lut && finds 0 "cut.lut: nothing" longer.lut --fix cut.lut && cmp -n 4744656 longer.lut cut.lut'
refuses "check --fix of what only a person can judge" 1 "cannot be mended: line 2: the level" check odd.bkc --fix x.bkc
rm -f odd.bkc odd.clb mended.clb odd.ini mended.ini odd.txt whole.txt longer.lut cut.lut
if native; then
    check_survives() {
        local variant status
        for ((variant = 0; variant < 40; ++variant)); do
            "$link_check" damage "$1" damaged.icc $variant
            kolink check damaged.icc > "$out" 2> "$err"
            status=$?
            [ $status -le 1 ] || { echo "variant $variant: status $status: $(head -c 2000 "$err")"; return 1; }
        done
    }
    check "check survives 40 damaged links" check_survives checked.icc
    check "check survives 40 damaged profiles" check_survives "$rgb"
fi
rm -f checked.icc longer.icc mended.icc damaged.icc
