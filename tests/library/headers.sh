#!/usr/bin/env bash
# Compiles what stands for a test by compiling: record layout and headers.
#   headers.sh TARGET BUILD
set -uo pipefail
. "$(dirname "$0")/../support/checks.sh"
check "$1: every record has its size and its fields their places" ninja -C "$2" library_layout
check "$1: every header stands alone in C99, without a warning" ninja -C "$2" library_headers_c
check "$1: every header stands alone in C++" ninja -C "$2" library_headers_cxx
finish
