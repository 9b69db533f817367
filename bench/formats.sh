#!/usr/bin/env bash
# Compares the record formats: instructions a record, and memory for short and long files, both ways.
# And the memory of sxml copybook for short and long samples.
#     formats.sh BUILD_DIR [MEGABYTES]     (default 100: the long files)
set -euo pipefail
build=${1:?usage: formats.sh BUILD_DIR [MEGABYTES]}
megabytes=${2:-100}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
sxml=$build/bin/sxml

convert() { # WAY FORMAT IN OUT
    "${before[@]}" "$sxml" "$1" "$3" "$4" --layout "$here/customer.cpy" --name f --record-format "$2" --jobs 1
}

instructions() { # the words of convert
    local before=(valgrind --tool=callgrind --callgrind-out-file=/dev/null)
    convert "$@" 2>&1 >/dev/null | sed -n 's/.*Collected : //p'
}

peak() { # PROGRAM WORDS...: kilobytes; what Python takes, some 14000, is the least that can be seen
    python3 -c 'import resource, subprocess, sys
subprocess.run(sys.argv[1:], check=True, stdout=subprocess.DEVNULL)
print(resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss)' "$@"
}

before=()
make_files() { # NAME RECORDS: in every format
    local format
    "$build/bench/make_records" "$2" "$work/$1.fixed"
    convert to-xml fixed "$work/$1.fixed" "$work/$1.xml"
    for format in "${formats[@]:1}"; do
        convert from-xml "$format" "$work/$1.xml" "$work/$1.$format"
    done
}

formats=(fixed line rdw rdw:little bdw gnucobol gnucobol:3)
if command -v valgrind >/dev/null; then
    echo "record formats: instructions a record, of 44 bytes; target: at most 1.10 of fixed"
    records=20000
    make_files one 1
    make_files many "$records"
    for way in to-xml from-xml; do
        for format in "${formats[@]}"; do
            in=$format
            [ "$way" = to-xml ] || in=xml
            few=$(instructions "$way" "$format" "$work/one.$in" "$work/out")
            all=$(instructions "$way" "$format" "$work/many.$in" "$work/out")
            [ "$format" != fixed ] || fixed=$((all - few))
            awk -v way="$way" -v name="$format" -v count=$((all - few)) -v fixed="$fixed" -v n="$records" \
                'BEGIN { ratio = count / fixed
                    printf "  %-8s %-10s %6d, %.2f of fixed: %s\n", way, name, count / n, ratio,
                        ratio <= 1.1 ? "met" : "missed" }'
        done
    done
fi

echo "record formats: kilobytes of memory for 10 and $megabytes MB of records"
make_files short $((10 * 1000000 / 44))
make_files long $((megabytes * 1000000 / 44))
judge() { # WHAT SHORT LONG
    echo "  $1: $2 and $3; target: not 1000 more: $([ "$3" -lt $(($2 + 1000)) ] && echo met || echo missed)"
}
before=(peak)
for format in "${formats[@]}"; do
    judge "to-xml $format" "$(convert to-xml "$format" "$work/short.$format" "$work/out")" \
        "$(convert to-xml "$format" "$work/long.$format" "$work/out")"
    judge "from-xml $format" "$(convert from-xml "$format" "$work/short.xml" "$work/out")" \
        "$(convert from-xml "$format" "$work/long.xml" "$work/out")"
    rm -f "$work/long.$format"
done
judge copybook "$(peak "$sxml" copybook "$work/short.xml" -o "$work/out")" \
    "$(peak "$sxml" copybook "$work/long.xml" -o "$work/out")"
