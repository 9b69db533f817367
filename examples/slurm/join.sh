#!/usr/bin/env bash
# Puts the parts together, in the order of their numbers.
set -euo pipefail

parts=()
for ((part = 1; part <= PARTS; ++part)); do
    file=$WORK/out-$(printf "%0${#PARTS}d" "$part")
    # Where there are fewer records than parts, the last ones are empty files.
    if [ "$DIRECTION" = to-xml ] && [ -e "$file" ] && [ ! -s "$file" ]; then continue; fi
    parts+=("$file")
done
if [ "$DIRECTION" = from-xml ]; then
    cat "${parts[@]}" >"$WORK/whole"
    mv "$WORK/whole" "$OUT"
else
    "$SXML" join "${parts[@]}" --output "$OUT"
fi
touch "$WORK/joined"
