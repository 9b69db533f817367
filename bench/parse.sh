#!/usr/bin/env bash
# Measures reading a document of about 100 MB: the parser API, whole and record by record, beside
# Expat and libxml2.
#     parse.sh BUILD_DIR [RECORDS [ROUNDS]]
set -euo pipefail
build=${1:?usage: parse.sh BUILD_DIR [RECORDS [ROUNDS]]}
records=${2:-400000}
rounds=${3:-5}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d "$build/parse.XXXXXX")
trap 'rm -rf "$work"' EXIT
ways="expat handlers libxml2 whole records"
program=$build/bench/parse_rates
if [ ! -x "$program" ]; then
    echo "parse: not measured, $program is not built"
    exit 0
fi

make_document() { # RECORDS FILE
    "$build/bench/make_records" "$1" "$work/data"
    "$build/bin/sxml" to-xml "$work/data" "$2" --layout "$here/customer.cpy" \
        --name customer_file --set SXML_CREATE_STYLE=NONE
}

make_document "$records" "$work/large.xml"
make_document 4000 "$work/small.xml"
bytes=$(stat -c %s "$work/large.xml")
echo "parse: $bytes bytes, $records records, $rounds rounds"
for ((round = 0; round < rounds; ++round)); do
    for way in $ways; do
        "$program" "$way" "$work/large.xml" "$build/lib/sxml.so" >>"$work/$way.times"
    done
done
base=$(sort -n "$work/expat.times" | head -1)
for way in $ways; do
    instructions=not-counted
    if command -v valgrind >/dev/null; then
        instructions=$(valgrind --tool=callgrind --callgrind-out-file="$work/$way.callgrind" \
            "$program" "$way" "$work/small.xml" "$build/lib/sxml.so" 2>&1 |
            sed -n 's/.*Collected : //p')
    fi
    sort -n "$work/$way.times" | awk -v way="$way" -v bytes="$bytes" -v base="$base" \
        -v instructions="$instructions" -v small="$(stat -c %s "$work/small.xml")" '
        { time[NR] = $1 }
        END {
            median = time[int((NR + 1) / 2)]
            printf "  %-9s best %7.1f MB/s, median %7.1f MB/s, time is %5.2f of expat\047s; ",
                way, bytes / time[1] / 1e6, bytes / median / 1e6, time[1] / base
            printf "%s instructions for %d bytes\n", instructions, small }'
done
