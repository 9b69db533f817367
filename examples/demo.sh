#!/usr/bin/env bash
# Two COBOL programs write record files; sxml turns them into documents; xmllint judges these.
#     demo.sh BUILD_DIR
set -euo pipefail
build=$(cd "${1:?usage: demo.sh BUILD_DIR}" && pwd)
examples=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
PATH=$build/bin:$PATH

heading() { printf '\n== %s\n' "$1"; }
run() { # shows a command and runs it
    printf '$ %s\n' "${*//"$examples/"/}"
    "$@"
}
show() { # FILE FROM TO: some lines of a document
    printf -- '-- %s\n' "$1"
    sed -n "$2,$3p" "$1" | tr -d '\r'
}

heading "A COBOL program writes orders: groups, tables, packed and binary numbers"
cobc -x -I "$examples" -o write_orders "$examples/write_orders.cbl"
run ./write_orders orders.dat
run sxml layout "$examples/orders.cpy"

heading "The orders as XML, with a DTD"
run sxml to-xml orders.dat orders.xml --layout "$examples/orders.cpy"
run xmllint --noout --valid orders.xml
echo "orders.xml is valid: $(grep -c '<order_record>' orders.xml) records"
show orders.xml 1 8
echo ...
show orders.xml 30 72

heading "And back: the same bytes"
run sxml from-xml orders.xml back.dat --layout "$examples/orders.cpy"
run cmp orders.dat back.dat

heading "The orders as XML, with a schema"
run sxml to-xml orders.dat orders-schema.xml --layout "$examples/orders.cpy" \
    --set SXML_CREATE_STYLE=SCHEMA --set SXML_SCHEMA_NAME=orders.xsd
run xmllint --noout --schema orders.xsd orders-schema.xml
show orders-schema.xml 1 12
show orders.xsd 1 12

heading "A COBOL program writes a ledger: accounts and bookings, told apart by a condition"
cobc -x -I "$examples" -o write_ledger "$examples/write_ledger.cbl"
run ./write_ledger ledger.dat
run sxml layout "$examples/write_ledger.cbl" --fd LEDGER

heading "The ledger as XML, with a DTD"
run sxml to-xml ledger.dat ledger.xml --layout "$examples/write_ledger.cbl" --fd LEDGER
run xmllint --noout --valid ledger.xml
echo "ledger.xml is valid: $(grep -c '<account>' ledger.xml) accounts," \
    "$(grep -c '<booking>' ledger.xml) bookings"
show ledger.xml 1 44
