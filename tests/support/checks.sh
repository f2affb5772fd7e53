# For test scripts: each check prints one line, "ok - what" or "not ok - what" and why.
failures=0
check() {  # check WHAT COMMAND...: passes when the command succeeds
    local what=$1 output
    shift
    if output=$("$@" 2>&1); then
        echo "ok - $what"
    else
        echo "not ok - $what"
        [ -z "$output" ] || printf '%s\n' "$output" | sed 's/^/    /'
        failures=$((failures + 1))
    fi
}
finish() { exit $((failures > 0)); }
