# Cases of report; sourced by run, whose helpers they use.
check "report --help shows an example" shows "  kolink report " report --help
readonly schema=$top/docs/report.schema.json
cp "$printer" printer.icc
kolink link --source "$printer" --destination "$printer" --black plane --preserve secondaries --grid 9 --no-paths -o report.icc

report() { kolink report "$@" > "$out" 2> "$err" < /dev/null; }
twelve_lines() {
    report report.icc --source "$printer" --destination "$printer" && [ "$(wc -l < "$out")" = 12 ] && [ ! -s "$err" ] &&
        grep -qE '^Colour +ΔE00 mean [0-9.]+, median .* over 21,617 colours' "$out" &&
        grep -qE '^Purity +pure: white, C, M, Y, K, CM, CY, MY' "$out"
}
check "report has a summary of twelve lines" twelve_lines
check "jump and file are told apart" eval 'grep -qE "^Smoothness .*; neighbouring nodes at most [0-9.]+ % apart" "$out" && grep -q "^File        nothing is wrong with it" "$out"'
(mkdir lonely && cp report.icc lonely/away.icc && cd lonely && kolink report away.icc > "$out")
cp report.icc away.icc
check "report without profiles says so" grep -q 'no profiles' "$out"
rm -rf lonely
found() {  # FILES OF THE LINK BESIDE IT
    # A date from outside is for results that are the same everywhere, and leaves the folders out.
    (unset SOURCE_DATE_EPOCH; kolink link --source printer.icc --destination printer.icc --grid 9 -o beside.icc) &&
        (cd folder && report ../beside.icc --json) && grep -q '"from": "provenance"' "$out"
}
check "report finds the profiles beside the link" found
kolink link --source printer.icc --destination printer.icc --grid 9 --no-paths -o named.icc
not_found() {  # another file of that name is not the one
    mkdir other && cp named.icc other/beside.icc && cp "$press" other/printer.icc && (cd other && report beside.icc) &&
        grep -q 'no profiles' "$out"
}
check "report does not take another profile of the same name" not_found
rm -rf other
moved() { mkdir moved && mv beside.icc moved/ && (cd / && report "$there/moved/beside.icc" "$@"); }
there=$(pwd)
there=$(native && echo "$there" || echo "Z:$there")
check "report finds the profiles where they were" eval 'moved --json && grep -q "\"from\": \"provenance\"" "$out"'
mv printer.icc "$meanwhile/"
check "report says which profile is gone" eval 'report moved/beside.icc && grep -q "printer.icc is not where it was" "$out"'
cp "$press" printer.icc
check "report says which profile is another one" eval \
    'report moved/beside.icc && grep -q "printer.icc is not the profile that the link was made from" "$out"'
mv "$meanwhile/printer.icc" .
check "link --no-paths keeps names alone" eval \
    'grep -aq "source-file: printer.icc" named.icc && ! grep -aq "source-path" named.icc && report named.icc --json &&
     grep -q "\"from\": \"provenance\"" "$out"'
cp printer.icc "刷り 100%.icc"
native && check "profiles are found by names that are not ASCII" eval \
    'kolink link --source "刷り 100%.icc" --destination printer.icc --grid 9 -o named.icc &&
     grep -aq "source-file: %e5%88%b7%e3%82%8a 100%25.icc" named.icc && report named.icc --json &&
     grep -q "\"from\": \"provenance\"" "$out"'
check "a link of the classic method tells its profiles too" eval \
    'kolink link --source printer.icc --destination printer.icc --method classic -o named.icc && (cd / && report "$there/named.icc" --json) &&
     grep -q "\"from\": \"provenance\"" "$out"'
rm -rf moved named.icc "刷り 100%.icc"
keeps_schema() { report "$@" --json && python3 "$top/tests/cli/schema.py" "$schema" "$out"; }
if native; then
    check "report --json keeps its schema" keeps_schema report.icc --source "$printer" --destination "$printer"
    check "report --json without profiles keeps its schema" keeps_schema away.icc --nodes even
    kolink link --source "$rgb" --destination "$printer" --grid 9 -o light.icc
    check "report --json of a link from RGB keeps its schema" keeps_schema light.icc --source "$rgb" --destination "$printer"
    kolink link --source "$grey" --destination "$printer" --grid 9 -o light.icc
    check "report --json of a link from grey keeps its schema" keeps_schema light.icc --source "$grey" --destination "$printer"
    rm -f light.icc
    linkicc -t1 -n9 -o foreign.icc "$printer" "$printer" > /dev/null 2>&1
    check "report --json of another maker's link keeps its schema" keeps_schema foreign.icc --source "$printer" --destination "$printer"
    rm -f foreign.icc
fi
same_figures() {  # as the native tool finds them, to the last digit
    report report.icc --source "$printer" --destination "$printer" --json && tr -d '\r' < "$out" > "$meanwhile/here" &&
        "$top/build/linux/bin/kolink" report report.icc --source "$printer" --destination "$printer" --json |
        diff - "$meanwhile/here"
}
native || [ ! -x "$top/build/linux/bin/kolink" ] || check "report finds the same figures on Linux" same_figures
check "report --full shows the worst colours" eval 'report report.icc --source "$printer" --destination "$printer" --full && grep -q "^ *worst" "$out" && [ "$(wc -l < "$out")" -gt 100 ]'

# ---- The page ---------------------------------------------------------------------------------
kolink link --source "$printer" --destination "$printer" --method tables --black none --grid 9 -o other.icc
page() {  # page LINKS... : one file that asks for nothing from elsewhere
    report "$@" --source "$printer" --destination "$printer" --html page.html && [ "$(wc -l < "$out")" = $((12 * $#)) ] &&
        [ "$(wc -c < page.html)" -lt 1500000 ] && ! grep -qE '(src|href)="[^d]|@import|https?:|url\(' page.html &&
        for part in verdict summary ramps histogram gamut inkmap worst groups prices purity file; do
            grep -q "class=\"$part" page.html || { echo "without $part"; return 1; }
        done
}
check "report --html writes a page with every section" page report.icc
check "and one of two links" page report.icc other.icc
check "the two stand beside each other" eval '[ "$(grep -o "<th class=\"text\">[^<]*" page.html | wc -l)" = 2 ]'
check "the page speaks Japanese" eval 'report report.icc --html - --language ja && grep -q "lang=\"ja\"" "$out" && grep -q 滑らかさ "$out" && grep -q "隣り合う格子点の差は最大" "$out"'
check "the page speaks Chinese" eval 'report report.icc --html - --language zh && grep -q "lang=\"zh\"" "$out" && grep -q 相邻节点最多相差 "$out"'
check "a page of a link without profiles says so" eval 'report away.icc --html - && grep -q "not judged" "$out"'
pages() {  # in three languages, as a reader of HTML sees them
    local language
    for language in en ja zh; do
        report "$@" --source "$printer" --destination "$printer" --max-ink 10 --html "$meanwhile/$language.html" --language $language
    done
    python3 "$top/tests/cli/page_form.py" "$meanwhile"/{en,ja,zh}.html
}
check "the pages are well-formed, whole, and in three languages" pages report.icc
check "and so are those of two links" pages report.icc other.icc
refuses "a page over the link" 1 "is the input file" report report.icc --html report.icc
refuses "a page in a language that there is none of" 2 "fr" report report.icc --html x.html --language fr
refuses "a report of three links" 2 "two are compared" report report.icc other.icc away.icc
rm -f other.icc page.html

# ---- Gates ------------------------------------------------------------------------------------
kolink link --source "$printer" --destination "$printer" --method tables --black none --grid 9 -o fourinks.icc
stops() {  # stops LINES WORDS ARGUMENTS...: status 3, a line for each gate on standard error, the report as always
    kolink report "${@:3}" > "$out" 2> "$err" < /dev/null
    [ $? = 3 ] && [ -s "$out" ] || { echo "status"; cat "$err"; return 1; }
    tr -d '\r' < "$err" | grep -v '^wine: ' > "$err.plain"
    [ "$(wc -l < "$err.plain")" = "$1" ] && [ "$(grep -c '^kolink: .*: gate ' "$err.plain")" = "$1" ] &&
        grep -qF -e "$2" "$err.plain" || { cat "$err.plain"; return 1; }
}
passes() { report "$@" && [ ! -s "$err" ]; }
judged=(--source "$printer" --destination "$printer")
check "a gate stops a black of four inks" stops 1 "gate require-pure: up to" fourinks.icc --require-pure black
check "and lets pure black through" passes report.icc --require-pure black
check "a gate stops too much ink" stops 1 "gate max-ink" fourinks.icc --max-ink 200%
check "a gate lets less ink through" passes fourinks.icc --max-ink 400
check "a gate stops colours that are off" stops 2 "gate max-de-mean" fourinks.icc "${judged[@]}" --max-de-mean 0.01 --max-de95 0.02
check "a gate lets near colours through" passes report.icc "${judged[@]}" --max-de-mean 5 --max-de95 20
check "a gate stops a jump" stops 1 "gate max-jump" report.icc --max-jump 1
check "a gate stops ink in white" eval 'kolink link --source "$press" --destination "$printer" --intent perceptual --white paper --paper 0,0,5,0 --grid 9 -o tinted.icc && stops 1 "gate require-white" tinted.icc --require-white'
check "white without ink passes" passes report.icc --require-white
{ cat report.icc; printf more; } > longer.icc
check "a gate stops a file with an error" stops 1 "gate require-conformance: errors in the file: 1" longer.icc --require-conformance
check "and lets a sound one through" passes report.icc --require-conformance
rm -f longer.icc
for house in newsprint coated proof; do
    check "the example gates for $house are gates" eval "report report.icc ${judged[*]@Q} --gates '$top/examples/gates/$house.json'; [ \$? = 0 -o \$? = 3 ]"
done
printf '{"maxInk": 100, "requireWhite": true}' > gates.json
check "gates come from a file" stops 1 "gate max-ink" report.icc --gates gates.json
check "options go over the file's" passes report.icc --gates gates.json --max-ink 400
check "gates stand in the JSON" eval 'stops 1 "gate max-ink" report.icc --gates gates.json --json && grep -q "\"holds\": false" "$out"'
printf '{"maxInk": 500}' > toomuch.json
printf '{"maxInc": 300}' > unknown.json
printf '[]' > list.json
printf '{"requirePure": "all"}' > impure.json
refuses "a gate beyond 400 percent in a file" 1 "toomuch.json: maxInk is not a number from 0 to 400" report report.icc --gates toomuch.json
refuses "a gate that there is none of" 1 "unknown.json: there is no gate maxInc" report report.icc --gates unknown.json
refuses "gates that are no object" 1 "list.json: is not a JSON object" report report.icc --gates list.json
refuses "a purity that there is none of" 1 "impure.json: requirePure is not" report report.icc --gates impure.json
refuses "a gate file that is not there" 1 "nogates.json: not found" report report.icc --gates nogates.json
refuses "a gate that is no number" 2 "--max-ink" report report.icc --max-ink lots
refuses "a gate below zero" 2 "--max-jump" report report.icc --max-jump -1
refuses "a gate for colours without profiles" 1 "without the profiles" report away.icc --max-de95 1
refuses "report of a device profile" 1 "is not a device link" report "$printer"
refuses "report of a text" 1 "text.icc: is not an ICC file" report text.icc
refuses "report with a source alone" 2 "--destination" report report.icc --source "$printer"
refuses "report with a source of another space" 1 "is a profile for RGB, but the link leads from CMYK" \
    report report.icc --source "$rgb" --destination "$printer"
refuses "report with a destination of another space" 1 "leads to CMYK" report report.icc --source "$printer" --destination "$rgb"
pure=(link --source "$printer" --destination "$printer" --grid 9)
reports() { kolink "$@" --report > "$out" 2> "$err" && [ "$(wc -l < "$out")" = 12 ]; }
check "link --report prints the summary of what it has made" reports "${pure[@]}" -o told.icc
check "and says what report says of the file" eval 'kolink report told.icc "${judged[@]}" | diff <(grep -v "^Judged" "$out") <(grep -v "^Judged" /dev/stdin)'
check "link --report of a base alone judges no colours" eval 'reports link --base told.icc --method classic -o base.icc && grep -q "not known without profiles" "$out"'
printf '{"requirePure": "black", "maxInk": 400}' > house.json
held_back() {  # four inks for black: not written, an old file stays
    rm -f held.icc
    kolink "${pure[@]}" --method tables --black none --gates house.json -o held.icc > "$out" 2> "$err"
    [ $? = 3 ] && [ ! -e held.icc ] && grep -q 'held.icc: gate require-pure' "$err" || return 1
    echo old > held.icc
    kolink "${pure[@]}" --method tables --black none --gates house.json -o held.icc > "$out" 2> "$err"
    [ $? = 3 ] && [ "$(cat held.icc)" = old ] && no_leftovers
}
check "link --gates does not write a link with a black of four inks" held_back
check "link --gates writes one that is good enough" eval 'kolink "${pure[@]}" --gates house.json -o held.icc && [ "$(wc -c < held.icc)" -gt 20000 ]'
refuses "link with gates that are none" 1 "is not a JSON object" "${pure[@]}" -o x.icc --gates list.json
rm -f told.icc base.icc house.json held.icc list.json
if native; then
    report_survives() {
        local variant status
        for ((variant = 0; variant < 12; ++variant)); do
            "$link_check" damage report.icc damaged.icc $variant
            kolink report damaged.icc --source "$printer" --destination "$printer" --json > "$out" 2> "$err"
            status=$?
            [ $status -le 1 ] || { echo "variant $variant: status $status: $(head -c 2000 "$err")"; return 1; }
            "$link_check" damage "$printer" damaged.icc $variant
            kolink report report.icc --source damaged.icc --destination damaged.icc --json > "$out" 2> "$err"
            status=$?
            [ $status -le 1 ] || { echo "variant $variant: status $status: $(head -c 2000 "$err")"; return 1; }
        done
    }
    check "report survives damaged links and profiles" report_survives
fi
rm -f gates.json toomuch.json unknown.json impure.json away.icc beside.icc printer.icc fourinks.icc tinted.icc damaged.icc
