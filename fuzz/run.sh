#!/usr/bin/env bash
# Runs one fuzz target.
#   run.sh corpus PROGRAM CORPUS            over the files of its corpus
#   run.sh fuzz   PROGRAM CORPUS SCRATCH    and over a fixed number of seeded inputs
set -uo pipefail
readonly mode=$1 program=$2 corpus=$3
. "$(dirname "$0")/../tests/support/checks.sh"
name=$(basename "$program")
case $mode in
    corpus) check "$name accepts its corpus" "$program" "$corpus" ;;
    fuzz)
        # What it finds goes to the scratch folder, empty at the start, so that runs are alike.
        rm -rf "$4" && mkdir -p "$4/found"
        check "$name accepts its corpus" "$program" "$corpus"/*
        check "$name survives seeded inputs" "$program" -seed=1 -runs=10000 -max_total_time=10 \
            -timeout=10 -rss_limit_mb=2048 -artifact_prefix="$4/" "$4/found" "$corpus" ;;
esac
finish
