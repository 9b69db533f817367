#!/usr/bin/env bash
# A COBOL program reads two XML documents, computes, and writes a third.
#     demo_cobol.sh BUILD_DIR
set -euo pipefail
build=$(cd "${1:?usage: demo_cobol.sh BUILD_DIR}" && pwd)
samples=$(cd "$(dirname "${BASH_SOURCE[0]}")/cobol" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
PATH=$build/bin:$PATH
export DD_ORDERS=orders.xml DD_CUSTOMERS=customers.xml DD_CHANGES=changes.xml DD_LEDGER=ledger.xml
export DD_UPDATED=updated.xml

run() { # shows a command and runs it
    printf '$ %s\n' "${*//"$samples/"/}"
    "$@"
}
show() { # DOCUMENT ELEMENT: its document element, from the start tag on
    printf -- '-- %s\n' "$1"
    sed -n "/^<$2>/,\$p" "$1" | tr -d '\r'
}

printf '\n== COBOL programs compiled for XML; nothing in them is about XML\n'
run sxml cob "$samples/make_data.cbl" -I "$samples" -o make_data
run sxml cob "$samples/master_update.cbl" -I "$samples" -o master_update
run ./make_data
show customers.xml customers
show changes.xml changes

printf '\n== The update reads both documents and writes the new master\n'
run ./master_update
run xmllint --noout --valid updated.xml
show updated.xml new_master
