#!/usr/bin/env bash
# Puts the parts together, in the order of their numbers.
set -euo pipefail

if [ "$DIRECTION" = from-xml ]; then
    cat "$WORK"/out-* >"$WORK/whole"
    mv "$WORK/whole" "$OUT"
else
    parts=()
    for part in "$WORK"/out-*; do
        [ ! -s "$part" ] || parts+=("$part")
    done
    "$SXML" join "${parts[@]}" --output "$OUT"
fi
touch "$WORK/joined"
