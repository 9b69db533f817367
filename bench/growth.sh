#!/usr/bin/env bash
# Shows how the cost of a conversion grows: instructions for each unit of what grows, over three decades.
#     growth.sh BUILD_DIR
set -euo pipefail
build=${1:?usage: growth.sh BUILD_DIR}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
if ! command -v valgrind >/dev/null; then
    echo "growth: not measured, valgrind is missing"
    exit 0
fi

instructions() { # WORDS...
    valgrind --tool=callgrind --callgrind-out-file=/dev/null "$build/bin/sxml" "$@" 2>&1 >/dev/null |
        sed -n 's/.*Collected : //p'
}

layout() { # KIND SIZE: a record of so many fields or entries, or with a field of so many bytes
    echo "       01  R."
    case $1 in
        fields) for ((i = 1; i <= $2; ++i)); do echo "           05  FIELD-$i PIC X(8)."; done ;;
        entries) printf '%s\n' "           05  ENTRY OCCURS $2 TIMES." "               10  E PIC X(8)." ;;
        bytes) echo "           05  TEXT-OF-IT PIC X($2)." ;;
        records) echo "           05  FIELD-1 PIC X(8)." ;;
    esac
}

records_of() { # KIND SIZE COUNT: records of letters
    local bytes
    case $1 in
        fields | entries) bytes=$((8 * $2 * $3)) ;;
        bytes) bytes=$(($2 * $3)) ;;
        records) bytes=$((8 * $3)) ;;
    esac
    head -c "$bytes" /dev/zero | tr '\0' a
}

# convert KIND SIZE COUNT: instructions to write and to read so many records
convert() {
    layout "$1" "$2" >"$work/r.cpy"
    records_of "$@" >"$work/records"
    local common=(--layout "$work/r.cpy" --jobs 1)
    written=$(instructions to-xml "$work/records" "$work/document" "${common[@]}")
    read_back=$(instructions from-xml "$work/document" "$work/again" "${common[@]}")
    cmp "$work/records" "$work/again"
}

# Costs of one unit: what 3 records cost more than 1.
grow() { # KIND SIZE
    local one_written one_read units=$((2 * $2))
    convert "$1" "$2" 1
    one_written=$written one_read=$read_back
    convert "$1" "$2" 3
    printf '  %-8s %7d: %9d to write, %9d to read\n' "$1" "$2" $(((written - one_written) / units)) \
        $(((read_back - one_read) / units))
}

nested() { # DEPTH: 20,000 elements, nested so deep
    local i
    printf '<d>'
    for ((i = 0; i < 20000 / $1; ++i)); do
        printf '<e>%.0s' $(seq "$1")
        printf '</e>%.0s' $(seq "$1")
    done
    printf '</d>'
}

echo "growth: instructions for one field of 8 bytes, table entry, byte of a field"
for size in 3 30 300 3000; do grow fields "$size"; done
for size in 10 100 1000 10000; do grow entries "$size"; done
for size in 100 1000 10000 100000; do grow bytes "$size"; done
echo "growth: instructions for one record of one field, of so many"
convert records 1 10
start_written=$written start_read=$read_back
for count in 100 1000 10000 100000; do
    convert records 1 "$count"
    printf '  %-8s %7d: %9d to write, %9d to read\n' records "$count" \
        $(((written - start_written) / (count - 10))) $(((read_back - start_read) / (count - 10)))
done
echo "growth: instructions for one element of the parser API, nested so deep (sxml rewrite)"
echo "<d/>" >"$work/empty.xml"
start=$(instructions rewrite "$work/empty.xml" "$work/out.xml")
for depth in 10 100 1000 10000; do
    nested "$depth" >"$work/nested.xml"
    echo "  depth $depth: $((($(instructions rewrite "$work/nested.xml" "$work/out.xml") - start) / 20000))"
done
