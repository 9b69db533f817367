#!/usr/bin/env bash
# Measures `sxml to-xml` beside two C programs written by hand for one layout, which make the same
# document byte for byte.
#     to_xml.sh BUILD_DIR [RECORDS [ROUNDS]]
set -euo pipefail
build=${1:?usage: to_xml.sh BUILD_DIR [RECORDS [ROUNDS]]}
records=${2:-1000000}
rounds=${3:-5}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

export SOURCE_DATE_EPOCH=1795305600
date=$(date -u -d "@$SOURCE_DATE_EPOCH" +%Y/%m/%d)
version=$("$build/bin/sxml" --version | sed 's/^sxml //')

convert() { # PROGRAM: makes $work/PROGRAM.xml
    case $1 in
        sxml) "$build/bin/sxml" to-xml "$work/records" "$work/$1.xml" \
            --layout "$here/customer.cpy" --name customer_file ;;
        *) "$build/bench/to_xml_$1" "$work/records" "$work/$1.xml" "$version" "$date" ;;
    esac
}

seconds() { # PROGRAM: runs it, prints how long that took
    local start=$EPOCHREALTIME
    convert "$1"
    awk -v start="$start" -v end="$EPOCHREALTIME" 'BEGIN { printf "%.4f\n", end - start }'
}

echo "to-xml: $records records of 44 bytes, $rounds rounds, best of each"
"$build/bench/make_records" "$records" "$work/records"
for program in sxml snprintf buffer; do
    convert "$program"
    if ! cmp "$work/sxml.xml" "$work/$program.xml"; then
        echo "to_xml.sh: $program makes another document" >&2
        exit 1
    fi
done
for ((round = 0; round < rounds; ++round)); do
    for program in sxml snprintf buffer; do
        rm "$work/$program.xml"
        seconds "$program" >>"$work/$program.times"
    done
done
bytes=$(stat -c %s "$work/sxml.xml")
base=$(sort -n "$work/sxml.times" | head -1)
for program in sxml snprintf buffer; do
    awk -v program="$program" -v best="$(sort -n "$work/$program.times" | head -1)" \
        -v base="$base" -v bytes="$bytes" -v records="$records" 'BEGIN {
            printf "  %-9s %7.3f s  %7.1f MB/s of XML  %9.0f records/s  time is %.2f of sxml\047s\n",
                program, best, bytes / best / 1e6, records / best, best / base }'
done
