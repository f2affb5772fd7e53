#!/bin/sh
# A newspaper proof: how colours made for a press look in the paper, printed on white stock.
#   link.sh SOURCE.icc PRINTER.icc OUTPUT.icc [more options of kolink link]
# KOLINK names the tool when it is not on the PATH.
set -eu
source=$1 printer=$2 output=$3
shift 3

# black   newsprint gains in the middle tones; pure black text is printed with black ink alone
# paper   the tint of newsprint in percent of C, M, Y, K, laid under the light colours
# fade    from this total coverage on, colours are printed without the tint; pure black is pure
#         from there on as well
exec "${KOLINK:-kolink}" link --source "$source" --destination "$printer" --output "$output" \
    --intent perceptual \
    --black "$(dirname "$0")/newspaper.bkc" \
    --paper 0,2,6,3 --fade 25 \
    --name "Newspaper proof" \
    --comment "Newsprint simulated on white stock; black through newspaper.bkc" \
    "$@"
