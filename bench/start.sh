#!/usr/bin/env bash
# Measures what a conversion costs before the first record: instructions, shared objects and memory.
#     start.sh BUILD_DIR
set -euo pipefail
build=${1:?usage: start.sh BUILD_DIR}
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

judge() { # WHAT MEASURED LIMIT
    echo "  target: $1 at most $3; measured $2: $([ "$2" -le "$3" ] && echo met || echo missed)"
}

convert() { "$@" "$build/bin/sxml" to-xml "$work/records" "$work/out.xml" --layout "$here/customer.cpy" --name f --jobs 1; }

echo "the start of to-xml, with one record"
"$build/bench/make_records" 1 "$work/records"
if command -v valgrind >/dev/null; then
    judge instructions "$(convert valgrind --tool=callgrind --callgrind-out-file=/dev/null 2>&1 |
        sed -n 's/.*Collected : //p')" 5000000
fi
judge "shared objects" "$(LD_DEBUG=files convert env 2>&1 | grep -c 'generating link map')" 10
# Looked at while the end of the records has not come yet.
"$build/bench/make_records" 100000 "$work/records"
mkfifo "$work/pipe"
"$build/bin/sxml" to-xml "$work/pipe" "$work/out.xml" --layout "$here/customer.cpy" --name f &
exec 3>"$work/pipe"
cat "$work/records" >&3
judge "kilobytes of memory" "$(sed -n 's/^VmHWM:[^0-9]*\([0-9]*\) kB$/\1/p' "/proc/$!/status")" 7000
exec 3>&-
wait
