# Wine folders for the tests; sourced. KO_WINE is where they are, $support this folder.
# One is prepared once and then copied, its big files shared: Wine replaces a file rather than
# write into it. A test takes the first copy of its kind that nobody has, so that tests which run
# at the same time share no Wine server, registry, named object or temporary file, and one after
# another use the same copy.
wine_environment=(WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml=" FONTCONFIG_FILE="$KO_WINE/fonts.conf")

# The fonts that script/bootstrap installs for the tests, and none of the machine's other ones.
write_fonts() {
    cat > "$KO_WINE/fonts.conf.new" << END
<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "urn:fontconfig:fonts.dtd">
<fontconfig>
  <dir>/usr/share/fonts/truetype/vlgothic</dir>
  <dir>/usr/share/fonts/truetype/wqy</dir>
  <cachedir>$KO_WINE/fontcache</cachedir>
</fontconfig>
END
    mv "$KO_WINE/fonts.conf.new" "$KO_WINE/fonts.conf"
}

prepare_wine() (
    mkdir -p "$KO_WINE/home"
    exec 9> "$KO_WINE/lock"
    flock 9
    [ ! -e "$KO_WINE/prepared/ready" ] || exit 0
    rm -rf "$KO_WINE"/copy-*
    write_fonts
    wine() { env -i PATH="$PATH" LANG=C.UTF-8 HOME="$KO_WINE/home" "${wine_environment[@]}" \
                 WINEPREFIX="$KO_WINE/prepared" "$@" 9>&- < /dev/null; }
    local attempt
    for attempt in 1 2 3; do  # Wine's first start gives up on a machine that leaves it no time
        rm -rf "$KO_WINE/prepared"
        wine wineboot --init && wine wineserver --wait && touch "$KO_WINE/prepared/ready" && exit 0
        echo "Wine's folder could not be prepared, attempt $attempt"
        wine wineserver --kill
    done
    exit 1
)

# take_wine KIND: sets taken, and holds it by the descriptor slot_lock until this shell ends.
take_wine() {
    local number copy
    for ((number = 1; ; ++number)); do
        copy="$KO_WINE/copy-$1-$number"
        exec {slot_lock}> "$copy.lock" || return
        flock -n "$slot_lock" && break
        exec {slot_lock}>&-
    done
    if [ -e "$copy/busy" ]; then  # a test was ended by force: what it left running goes
        WINEPREFIX="$copy" wineserver --kill {slot_lock}>&- 2> /dev/null
    elif [ ! -e "$copy/ready" ]; then
        prepare_wine || return
        rm -rf "$copy" "$copy.new"
        cp -al "$KO_WINE/prepared" "$copy.new" && rm "$copy.new"/*.reg &&
            cp "$KO_WINE/prepared"/*.reg "$copy.new/" && mv "$copy.new" "$copy" || return
    fi
    touch "$copy/busy"
    taken=$copy
}
