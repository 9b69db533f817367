#!/usr/bin/env bash
# Measures `sxml from-xml` beside C programs written by hand for one layout, one with libxml2's reader
# and one with Expat, which make the same record file. `sxml-expat` is sxml with everything through Expat,
# `sxml-jobs` with two processes.
#     from_xml.sh BUILD_DIR [RECORDS [ROUNDS]]
set -euo pipefail
build=${1:?usage: from_xml.sh BUILD_DIR [RECORDS [ROUNDS]]}
records=${2:-1000000}
rounds=${3:-5}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
source "$here/programs.bash"
programs=(sxml sxml-jobs sxml-expat libxml2 expat)

command_of() { # NAME IN OUT
    case $1 in
        sxml) command=("$build/bin/sxml" from-xml "$2" "$3" --layout "$here/customer.cpy"
            --name customer_file --jobs 1) ;;
        sxml-jobs) command=("$build/bin/sxml" from-xml "$2" "$3" --layout "$here/customer.cpy"
            --name customer_file --jobs 2) ;;
        sxml-expat) command=("$build/bin/sxml" from-xml "$2" "$3" --layout "$here/customer.cpy"
            --name customer_file --jobs 1 --set SXML_PLAIN_RECORDS=no) ;;
        *) command=("$build/bench/from_xml_$1" "$2" "$3") ;;
    esac
}

make_document() { # RECORDS FILE: the document, and its records in FILE.records
    "$build/bench/make_records" "$1" "$2.records"
    "$build/bin/sxml" to-xml "$2.records" "$2" --layout "$here/customer.cpy" --name customer_file
}

check_records() { # NAME
    run "$1" "$work/document" "$work/$1.out"
    if ! cmp "$work/document.records" "$work/$1.out"; then
        echo "from_xml.sh: $1 makes other records" >&2
        exit 1
    fi
}

echo "from-xml: $records records of 44 bytes, $rounds rounds, best of each"
keep_built "$build/bench/from_xml"
make_document "$records" "$work/document"
make_document 1000 "$work/small"
make_document 5000 "$work/large"
for name in "${programs[@]}"; do check_records "$name"; done
time_rounds "$work/document"
report "$(stat -c %s "$work/document")" "$work/small" "$work/large" 4000
target "sxml's time / libxml2's" sxml libxml2 below 1
target "sxml's time / expat's" sxml expat most 0.45
target "sxml's time / expat's, everything through Expat" sxml-expat expat most 1.15
target "sxml's time / that of two processes" sxml sxml-jobs least 1.8 best_wall
