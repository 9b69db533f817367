#!/usr/bin/env bash
# Measures WRITE and READ of a COBOL program with XML documents beside the same program with the
# runtime's own sequential files.
#     cobol.sh BUILD_DIR [RECORDS [ROUNDS]]
set -euo pipefail
if [[ $(cobc --version) != *"(GnuCOBOL) 3.1."* ]]; then
    printf '\n== COBOL programs compiled for XML\nskipped: needs libcob 3.1\n'
    exit 0
fi
build=$(cd "${1:?usage: cobol.sh BUILD_DIR [RECORDS [ROUNDS]]}" && pwd)
records=${2:-200000}
rounds=${3:-3}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
export SXML_PATH=$here

cobc -x -O -o plain "$here/cobol_records.cbl"
"$build/bin/sxml" cob -O -x "$here/cobol_records.cbl" -o xml

seconds() { # PROGRAM FILE WHAT: runs it, prints how long that took
    local start=$EPOCHREALTIME
    DD_MASTER=$2 "./$1" "$3" "$records" >"$1.sum"
    awk -v start="$start" -v end="$EPOCHREALTIME" 'BEGIN { printf "%.4f\n", end - start }'
}

echo "COBOL programs: $records records of 51 bytes, $rounds rounds, best of each"
for ((round = 0; round < rounds; ++round)); do
    for what in write read; do
        seconds plain records.dat "$what" >>"plain.$what"
        seconds xml records.xml "$what" >>"xml.$what"
        seconds xml passed.dat "$what" >>"passed.$what"
    done
    if ! cmp plain.sum xml.sum || ! cmp records.dat passed.dat; then
        echo "cobol.sh: the programs do not agree" >&2
        exit 1
    fi
done
for what in write read; do
    for kind in plain passed xml; do
        sort -n "$kind.$what" | head -1 | awk -v what="$what" -v kind="$kind" \
            -v records="$records" '{
            printf "  %-5s %-6s %7.3f s  %9.0f records/s\n", what, kind, $1, records / $1 }'
    done
done
echo "  plain: without the handler; passed: plain files through the handler"
