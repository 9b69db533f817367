#!/usr/bin/env bash
# What the record library exports is what its list says, and what its header declares.
#     symbols_test.sh LIBRARY EXPORTS_MAP HEADER
set -euo pipefail
listed=$(sed -n 's/^ *\(sxml_[a-z_]*\);$/\1/p' "$2" | sort)
exported=$(nm -D --defined-only "$1" | sed -n 's/.* T \([a-z_A-Z0-9]*\)\(@.*\)\?$/\1/p' | sort)
declared=$(grep -o '\bsxml_[a-z_]*(' "$3" | tr -d '(' | sort -u)
[ -n "$listed" ]
diff <(echo "$listed") <(echo "$exported") && diff <(echo "$listed") <(echo "$declared")
# Nothing but functions: C++ templates of the library's own would clash with a program's.
others=$(nm -D --defined-only "$1" | grep -v ' [TA] ' || true)
[ -z "$others" ] || { echo "$others"; exit 1; }
