#!/usr/bin/env bash
# Measures WRITE and READ of a COBOL program with XML documents beside the same program with the
# runtime's own sequential files, in processor time.
#     [OTHER_BUILD=DIR] cobol.sh BUILD_DIR [RECORDS [ROUNDS]]
set -euo pipefail
build=$(cd "${1:?usage: cobol.sh BUILD_DIR [RECORDS [ROUNDS]]}" && pwd)
records=${2:-200000}
rounds=${3:-3}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

cobc -x -O -o plain "$here/cobol_records.cbl"
"$build/bin/sxml" cob -O -x "$here/cobol_records.cbl" -o xml
# The same with the adapter of another build, to compare with.
[ -z "${OTHER_BUILD:-}" ] || SXML_PATH=$here "$OTHER_BUILD/bin/sxml" cob -O -x "$here/cobol_records.cbl" -o other

seconds() { # PROGRAM FILE WHAT RECORDS: runs it, prints the processor time that it took
    local TIMEFORMAT='%3U %3S'
    { time DD_MASTER=$2 SXML_PATH=$here "./$1" "$3" "$4" >"$1.sum" 2>&3; } 3>&2 2>&1 | awk '{ print $1 + $2 }'
}

many=$((records * 10)) # plain files are quick
echo "COBOL programs: $records records of 51 bytes as XML, $many plain, $rounds rounds, best of each"
for ((round = 0; round < rounds; ++round)); do
    for what in write read; do
        seconds plain records.dat "$what" "$many" >>"plain.$what"
        seconds xml passed.dat "$what" "$many" >>"passed.$what"
        cmp plain.sum xml.sum
        seconds xml records.xml "$what" "$records" >>"xml.$what"
        [ ! -e other ] || seconds other other.xml "$what" "$records" >>"other.$what"
    done
    cmp records.dat passed.dat
done

best() { sort -n "$1" | head -1; }
line() { # NAME SECONDS RECORDS
    awk -v name="$1" -v s="$2" -v n="$3" 'BEGIN { printf "  %-34s %7.3f s  %9.0f records/s\n", name, s, n / s }'
}
ratio() { # NAME SECONDS SECONDS
    awk -v name="$1" -v a="$2" -v b="$3" 'BEGIN { printf "  %-34s %7.2f\n", name, a / b }'
}
# The targets: as many times the records a second as before there were plans of writing and a lane for plain
# records, in instructions for one record (cobc 3.1.2, g++ 12, Expat 2.5.0).
declare -A before=([write]=10201 [read]=24658) wanted=([write]=1.4 [read]=2)
instructions() { # WHAT RECORDS
    DD_MASTER=counted$2.xml SXML_PATH=$here valgrind --tool=callgrind --callgrind-out-file=/dev/null ./xml "$1" "$2" \
        2>&1 >/dev/null | sed -n 's/.*Collected : //p'
}
count() { # WHAT
    local taken=$((($(instructions "$1" 2500) - $(instructions "$1" 500)) / 2000))
    awk -v what="$1" -v taken="$taken" -v before="${before[$1]}" -v wanted="${wanted[$1]}" 'BEGIN {
        printf "  target: %s XML, %.1f times before; %d instructions a record, %.2f times: %s\n", what, wanted, taken,
            before / taken, (before / taken >= wanted ? "met" : "missed") }'
}
for what in write read; do
    line "$what plain, cobc" "$(best plain.$what)" "$many"
    line "$what plain, sxml cob" "$(best passed.$what)" "$many"
    ratio "  time, sxml cob / cobc" "$(best passed.$what)" "$(best plain.$what)"
    line "$what XML" "$(best xml.$what)" "$records"
    [ ! -e other ] || ratio "  records a second, this / other" "$(best other.$what)" "$(best xml.$what)"
    if command -v valgrind >/dev/null; then count "$what"; fi
done
