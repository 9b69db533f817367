#!/usr/bin/env bash
# What it costs to start: instructions, as callgrind counts them, until the version is printed or a file of two records
# is converted; and the libraries that are loaded for it.
#     start_test.sh BUILD_DIR
set -euo pipefail
build=$(cd "${1:?usage: start_test.sh BUILD_DIR}" && pwd)
examples=$(cd "$(dirname "${BASH_SOURCE[0]}")/../../examples" && pwd)
most=5000000
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cd "$scratch"
failed=0

count() { # COMMAND...
    local instructions
    instructions=$(valgrind --tool=callgrind --callgrind-out-file=/dev/null "$@" 2>&1 >/dev/null |
        sed -n 's/.*Collected : \([0-9]*\).*/\1/p')
    echo "$instructions instructions: ${*##*/}"
    [ "${instructions:-$most}" -lt "$most" ] || { echo "start_test: not below $most" >&2; failed=1; }
}
count "$build/bin/sxml" --version
count "$build/bin/sxml" to-xml "$examples/custfile.dat" out.xml --layout "$examples/custfile.cpy"
# libcurl with all that it needs would be thirty libraries more.
if ldd "$build/bin/sxml" | grep -E 'curl|ssl'; then failed=1; fi
exit "$failed"
