#!/usr/bin/env bash
# Measures `sxml to-xml` beside C programs written by hand for one layout: one with libxml2's writer
# and two without a library, which make the same document. `sxml-jobs` is sxml with two processes.
#     to_xml.sh BUILD_DIR [RECORDS [ROUNDS]]
set -euo pipefail
build=${1:?usage: to_xml.sh BUILD_DIR [RECORDS [ROUNDS]]}
records=${2:-1000000}
rounds=${3:-5}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
source "$here/programs.bash"

export SOURCE_DATE_EPOCH=1795305600
date=$(date -u -d "@$SOURCE_DATE_EPOCH" +%Y/%m/%d)
version=$("$build/bin/sxml" --version | sed -n '1s/^sxml \([^ ]*\).*/\1/p')
programs=(sxml sxml-jobs libxml2 snprintf buffer)

command_of() { # NAME IN OUT
    case $1 in
        sxml) command=("$build/bin/sxml" to-xml "$2" "$3" --layout "$here/customer.cpy"
            --name customer_file --jobs 1) ;;
        sxml-jobs) command=("$build/bin/sxml" to-xml "$2" "$3" --layout "$here/customer.cpy"
            --name customer_file --jobs 2) ;;
        *) command=("$build/bench/to_xml_$1" "$2" "$3" "$version" "$date") ;;
    esac
}

# libxml2 ends lines with LF alone and leaves apostrophes as they are.
as_libxml2_spells() { sed -e 's/\r$//' -e "s/&apos;/'/g" "$1"; }

check_document() { # NAME
    run "$1" "$work/records" "$work/$1.out"
    case $1 in
        libxml2) as_libxml2_spells "$work/sxml.out" | cmp - "$work/$1.out" ;;
        *) cmp "$work/sxml.out" "$work/$1.out" ;;
    esac || {
        echo "to_xml.sh: $1 makes another document" >&2
        exit 1
    }
}

echo "to-xml: $records records of 44 bytes, $rounds rounds, best of each"
keep_built "$build/bench/to_xml"
"$build/bench/make_records" "$records" "$work/records"
"$build/bench/make_records" 1000 "$work/small"
"$build/bench/make_records" 5000 "$work/large"
for name in "${programs[@]}"; do check_document "$name"; done
time_rounds "$work/records"
report "$(stat -c %s "$work/sxml.out")" "$work/small" "$work/large" 4000
target "libxml2's time / sxml's" libxml2 sxml least 4
target "sxml's time / snprintf's" sxml snprintf most 0.45
target "sxml's time / that of two processes" sxml sxml-jobs least 1.4 best_wall
