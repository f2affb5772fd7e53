# Cases of check; sourced by run, whose helpers they use.
check "check --help shows an example" shows "  kolink check " check --help
finds() {  # finds STATUS WORDS ARGUMENTS...
    kolink check "${@:3}" > "$out" 2> "$err" < /dev/null
    [ $? = "$1" ] && grep -qE -e "$2" "$out" && [ ! -s "$err" ] || { cat "$out" "$err"; return 1; }
}
kolink link --source "$printer" --destination "$printer" --grid 9 -o checked.icc
check "check passes a link of the tool" finds 0 'checked.icc: nothing is wrong' checked.icc
check "check passes the profile that Debian ships" finds 0 '0 errors|nothing' "$printer"
{ cat checked.icc; printf 'more'; } > longer.icc
check "check tells file, place, rule and remedy" finds 1 \
    '^longer.icc: error: at 0: the header says [0-9]+ bytes, the file has [0-9]+; .* \[size\]$' longer.icc
check "check looks at several files" eval 'finds 1 "longer.icc: 1 error" checked.icc longer.icc && grep -q "checked.icc: nothing" "$out"'
check "check of a text says that it is none" finds 1 'no ICC profile|fewer than' text.icc
check "check --json tells the same" finds 1 '"rule": "size"' --json longer.icc
native && check "check --json is JSON" eval 'kolink check --json checked.icc longer.icc > "$meanwhile/json"; "$link_check" json "$meanwhile/json"'
check "check --fix mends the size and says what is left" finds 0 'mended.icc: nothing is wrong' longer.icc --fix mended.icc
check "and changes no tag" cmp <(tail -c 1000 checked.icc) <(tail -c 1000 mended.icc)
refuses "check --fix of two files" 2 "--fix" check checked.icc longer.icc --fix x.icc
refuses "check --fix over its input" 1 "is the input file" check longer.icc --fix longer.icc
refuses "check --fix of a text" 1 "cannot be mended" check text.icc --fix x.icc
refuses "check of a file that is not there" 1 "missing.icc: not found" check missing.icc
refuses "check of nothing" 2 "files" check
refuses "check of a curve" 1 "is not an ICC file" check curve.bkc
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
