#!/usr/bin/env bash
# Measures reading a document of about 100 MB: the parser API, whole and record by record, beside
# Expat and libxml2, in processor time.
#     [OTHER_BUILD=DIR] parse.sh BUILD_DIR [RECORDS [ROUNDS]]
set -euo pipefail
build=${1:?usage: parse.sh BUILD_DIR [RECORDS [ROUNDS]]}
records=${2:-400000}
rounds=${3:-5}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d "$build/parse.XXXXXX")
trap 'rm -rf "$work"' EXIT
ways="expat handlers libxml2 dom whole records"
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
elements=$((records * 10))
least() { sort -n "$work/$1.times" | head -n 1 | cut -d " " -f "$2"; }
base=$(least expat 1)
for way in $ways; do
    instructions=not-counted
    if command -v valgrind >/dev/null; then
        instructions=$(valgrind --tool=callgrind --callgrind-out-file="$work/$way.callgrind" \
            "$program" "$way" "$work/small.xml" "$build/lib/sxml.so" 2>&1 |
            sed -n 's/.*Collected : //p')
    fi
    sort -n "$work/$way.times" | awk -v elements="$elements" -v way="$way" -v bytes="$bytes" -v base="$base" \
        -v instructions="$instructions" -v small="$(stat -c %s "$work/small.xml")" '
        { time[NR] = $1; memory = $2 }
        END {
            median = time[int((NR + 1) / 2)]
            printf "  %-9s best %7.1f MB/s, median %7.1f MB/s, time is %5.2f of expat\047s; ",
                way, bytes / time[1] / 1e6, bytes / median / 1e6, time[1] / base
            printf "%s instructions for %d bytes, ", instructions, small
            printf "%.0f bytes of memory an element\n", memory / elements }'
done
awk -v whole="$(least whole 1)" -v dom="$(least dom 1)" -v bytes="$(least whole 2)" -v elements="$elements" 'BEGIN {
    printf "  target: the whole document / libxml2\047s tree at most 1.00; measured %.2f: %s\n",
        whole / dom, whole <= dom ? "met" : "missed"
    printf "  target: bytes of memory an element at most 250; measured %.0f: %s\n", bytes / elements,
        bytes <= 250 * elements ? "met" : "missed" }'
# Whole programs that use the parser API. The target is half of what they took before elements became one
# block each: instructions for a record of this document, g++ 12 and Expat 2.5.0. OTHER_BUILD: another build
# to compare with, in time.
declare -A before=([rewrite]=112694 [tree]=106517)
words_of() { # COMMAND IN
    words=("$1" "$2")
    [ "$1" = tree ] || words+=("$work/rewritten.xml")
}
processor_seconds() { # BUILD COMMAND
    local words TIMEFORMAT='%3U %3S'
    words_of "$2" "$work/large.xml"
    { time "$1/bin/sxml" "${words[@]}" >/dev/null 2>&3; } 3>&2 2>&1 | awk '{ print $1 + $2 }'
}
instructions_of() { # COMMAND IN
    local words
    words_of "$@"
    valgrind --tool=callgrind --callgrind-out-file=/dev/null "$build/bin/sxml" "${words[@]}" 2>&1 >/dev/null |
        sed -n 's/.*Collected : //p'
}
echo "<d/>" >"$work/empty.xml"
for command in rewrite tree; do
    for ((round = 0; round < rounds; ++round)); do
        processor_seconds "$build" "$command" >>"$work/$command.times"
        [ -z "${OTHER_BUILD:-}" ] || processor_seconds "$OTHER_BUILD" "$command" >>"$work/$command.other"
    done
    echo "  sxml $command: $(least "$command" 1) s for $bytes bytes"
    if command -v valgrind >/dev/null; then
        taken=$((($(instructions_of "$command" "$work/small.xml") - $(instructions_of "$command" "$work/empty.xml")) / 4000))
        awk -v command="$command" -v taken="$taken" -v before="${before[$command]}" 'BEGIN {
            printf "  target: %s, instructions a record / before at most 0.50; measured %d, %.2f: %s\n", command,
                taken, taken / before, taken <= before / 2 ? "met" : "missed" }'
    fi
    [ -z "${OTHER_BUILD:-}" ] || awk -v this="$(least "$command" 1)" \
        -v other="$(sort -n "$work/$command.other" | head -n 1)" -v command="$command" 'BEGIN {
            printf "  target: %s / that of the other build at most 0.50; measured %.2f: %s\n", command,
                this / other, this <= 0.5 * other ? "met" : "missed" }'
done
