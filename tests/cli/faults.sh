# Cases of what goes wrong around the tool: signals, neighbours, short memory, lying and huge files;
# sourced by run, whose helpers they use.
readonly big=$meanwhile/big.tif

# ---- Lines that end in CR alone -----------------------------------------------------------------
printf '#begindata\r0 0 0 0 9 8 7 6\r255 255 255 255 1 2 3 4\r' > cr.txt
check "a table whose lines end in CR alone converts" says "9 8 7 6" convert --table cr.txt 0,0,0,0
check "and table check counts its nodes" eval '! kolink table check cr.txt > "$out" && grep -q "2 of 83,521 nodes are given" "$out"'
check "info of such a table" eval 'kolink info cr.txt > "$out" && grep -q "CMYK to CMYK" "$out"'
rm -f cr.txt

# ---- What is beside an output --------------------------------------------------------------------
: > '~kolink-1-2-3.tmp'
removes_left_over() { kolink plot curve.bkc -o picture.svg && no_leftovers; }
check "what a killed run left is removed by the next one" removes_left_over
rm -f picture.svg

native || return 0

keeps_mode() { echo old > mode.svg && chmod 640 mode.svg && kolink plot curve.bkc -o mode.svg && [ "$(stat -c %a mode.svg)" = 640 ]; }
check "an output keeps the mode of the old file" keeps_mode
rm -f mode.svg

# ---- Files that claim or hold too much -----------------------------------------------------------
plain() { ! grep -q __asan_init "$tool"; }  # a sanitizer's runtime takes memory of its own
too_large() {  # FILE COMMAND...: one line that says so, in little memory
    local most=65536 status
    plain || most=1048576
    truncate -s "$1" "$2"
    process peak $most "$tool" "${@:3}" "$2" > "$out" 2> "$err"
    status=$?
    rm -f "$2"
    [ $status = 1 ] && [ ! -s "$out" ] && [ "$(wc -l < "$err")" = 1 ] && grep -qi 'too large' "$err" || { echo "status $status"; cat "$out" "$err"; return 1; }
}
for name in sparse.txt sparse.lut sparse.icc; do check "a $name of 40 GB is refused at once" too_large 40G $name info; done
for name in sparse.bkc sparse.dcc sparse.clb; do check "a $name of 12 GiB is refused at once" too_large 12G $name info; done
check "a sparse picture of a table as well" too_large 40G sparse.txt plot -o none.svg
hole() {  # a profile that goes on as a hole of 128 MiB takes memory for what it holds
    local most=65536
    plain || most=1048576
    cp "$printer" hole.icc && truncate -s 128M hole.icc
    process peak $most "$tool" link --source hole.icc --destination hole.icc --grid 9 -o none.icc > "$out" 2> "$err"
    local status=$?
    rm -f hole.icc none.icc
    [ $status = 0 ] || { echo "status $status"; cat "$out" "$err"; return 1; }
}
check "a profile that is mostly a hole takes little memory" hole
claims() {  # a TIFF of a few hundred bytes that claims WIDTH x HEIGHT in COMPRESSION
    local most=65536 status
    plain || most=1048576
    python3 "$top/tests/cli/tiff.py" claim claim.tif "$@"
    process peak $most "$tool" image claim.tif result.tif --builtin > "$out" 2> "$err"
    status=$?
    [ $status = 1 ] && [ "$(wc -l < "$err")" = 1 ] && grep -q 'it is too short for' "$err" && [ ! -e result.tif ] || { echo "status $status: $(cat "$out" "$err")"; return 1; }
}
for compression in 1 5 8 32773; do
    check "a small picture that claims a wide row, compression $compression" claims 60000000 1 $compression
    check "a small picture that claims four thousand million rows, compression $compression" claims 3 4294967295 $compression
done
rm -f claim.tif

# ---- Short memory --------------------------------------------------------------------------------
if plain; then
    short_memory() {  # whatever the limit: all is well, or one line and 1
        local limit status
        for limit in $(seq 12000 1500 60000); do
            rm -f result.out
            (ulimit -v "$limit"; exec "$tool" "$@") > "$out" 2> "$err"
            status=$?
            # Below some size the system cannot even load the program.
            [ $status = 127 ] && continue
            case $status in
                0) [ ! -s "$err" ] ;;
                1) [ "$(wc -l < "$err")" = 1 ] && [ ! -e result.out ] && grep -q '^kolink: ' "$err" ;;
                *) false ;;
            esac && no_leftovers || { echo "with $limit KiB: status $status: $(head -c 500 "$err")"; return 1; }
        done
        [ $status = 0 ]
    }
    check "info in short memory" short_memory info --json link.icc
    check "plot in short memory" short_memory plot link.icc -o result.out
    check "convert in short memory" short_memory convert --link link.icc 1,2,3,4
    check "link in short memory" short_memory "${pair[@]}" -o result.out
    rm -f result.out
    few_files() { (exec 3>&-; ulimit -n 4; exec "$tool" calib new few.clb) 2> "$err"; [ $? = 1 ] && grep -q 'few.clb: cannot be written: Too many open files' "$err" && [ ! -e few.clb ] || { cat "$err"; return 1; }; }
    check "too many open files are called that" few_files
fi

# ---- Neighbours ----------------------------------------------------------------------------------
sets_of_eight() {
    kolink calib new many.clb --channels 1 --range 1000 || return 1
    local worker
    for worker in 1 2 3 4 5 6 7 8; do
        (for change in 1 2 3 4 5; do kolink calib set many.clb 1 $((worker * 100 + change)) $((worker + change)) || exit 1; done) &
    done
    wait
    local tones
    tones=$(kolink calib show --json many.clb | python3 -c "import json,sys; print(len(json.load(sys.stdin)['channels'][0]['tones']))")
    [ "$tones" = 42 ] || { echo "$tones tones instead of 42"; return 1; }
}
check "eight at once set forty tones, and none is lost" sets_of_eight
deletes_of_four() {
    local worker
    for worker in 1 2 3 4; do
        (for change in 1 2 3 4 5; do kolink calib delete many.clb 1 $((worker * 100 + change)) || exit 1; done) &
    done
    wait
    [ "$(kolink calib show --json many.clb | python3 -c "import json,sys; print(len(json.load(sys.stdin)['channels'][0]['tones']))")" = 22 ]
}
check "four at once delete twenty of them" deletes_of_four
news_of_eight() {  # one makes the set, the others find it there
    local worker made=0
    for worker in 1 2 3 4 5 6 7 8; do kolink calib new one.clb --title "$worker" 2> "$meanwhile/new$worker" & done
    for worker in $(jobs -p); do wait "$worker" && made=$((made + 1)); done
    [ $made = 1 ]
}
check "of eight that make one set, one does" news_of_eight
rm -f many.clb one.clb

# Other programs of this user would wait with these: as root, the tool runs as a user of its own.
apart=()
user=$(id -u)
if [ "$user" = 0 ]; then
    user=$((20000 + $$ % 20000))
    apart=(setpriv --reuid=$user --clear-groups)
fi
mkdir -m 777 shared
cp press.icc press.clb shared/
chmod -R a+rwX shared "$meanwhile"
chmod a+x "$scratch"
readonly guard=/tmp/.kolink-$user/_KOLINK_MUTEX
in_shared() { (cd shared && "${apart[@]}" "$@"); }
if in_shared "$tool" info press.icc > "$out" 2> "$err" && in_shared test -w "$guard"; then
    waits_and_ends() {  # SIGNAL STATUS ARGUMENTS...
        local signal=$1 status=$2
        shift 2
        # Not one that belongs to this user alone.
        in_shared /usr/bin/python3 "$top/tests/cli/process.py" hold "$guard" \
            /usr/bin/python3 "$top/tests/cli/process.py" \
            signal "$signal" "says waiting for process HOLDER (python3" "$tool" "$@" > "$out" 2> "$err"
        [ "$(cat "$out")" = "$status" ] && [ "$(tail -n +2 shared/said)" = "kolink: interrupted" ] &&
            [ "$(wc -l < shared/said)" = 2 ] && ! ls -A shared | grep '^~kolink' || { cat "$out" "$err" shared/said; return 1; }
    }
    check "waits for a stopped holder, names it, and SIGTERM ends it" waits_and_ends SIGTERM 143 info press.icc
    check "Ctrl-C ends it" waits_and_ends SIGINT 130 plot press.icc -o press.svg
    check "SIGHUP ends it" waits_and_ends SIGHUP 129 calib set press.clb 1 10 20
else
    bad "the guard is where it is expected" "$(cat "$err"; ls -l "$guard")"
fi
[ "$(id -u)" = "$user" ] || rm -rf "/tmp/.kolink-$user"
rm -rf shared

# ---- Signals while a picture is made ---------------------------------------------------------------
python3 "$top/tests/cli/tiff.py" make "$big" 6000 3000 3 8 2 9
mkdir made
stops_picture() {  # SIGNAL STATUS
    echo old > made/result.tif
    process signal "$1" "makes made" "$tool" image "$big" made/result.tif --builtin > "$out" 2> "$err"
    [ "$(cat "$out")" = "$2" ] && [ "$(cat made/result.tif)" = old ] && [ "$(ls -A made)" = result.tif ] &&
        [ "$(cat said)" = "kolink: interrupted" ] || { cat "$out" "$err" said; ls -A made; return 1; }
}
for ending in "SIGINT 130" "SIGTERM 143" "SIGHUP 129"; do
    check "a picture that is being made is removed: ${ending% *}" stops_picture $ending
done
ignores_hangup() { (trap '' HUP; exec "$tool" image "$big" made/result.tif --builtin) & sleep 0.2; kill -HUP $!; wait $! && [ "$(wc -c < made/result.tif)" -gt 100000 ]; }
check "a signal that the caller has ignored stays ignored" ignores_hangup
rm -rf made said "$big"
