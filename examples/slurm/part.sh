#!/usr/bin/env bash
# One task of the array: converts a part. What is left over after equal shares goes to the first parts. The last part
# takes all that comes after it, too: a file that ends with part of a record is refused, as by one process.
set -euo pipefail

part=$SLURM_ARRAY_TASK_ID
number=$(printf "%0${#PARTS}d" "$part")
common=(--layout "$LAYOUT" --jobs "${SLURM_CPUS_PER_TASK:-1}" "$@")
if [ "$DIRECTION" = from-xml ]; then
    "$SXML" from-xml "$WORK/in-$number.xml" "$WORK/out-$number" "${common[@]}"
    exit
fi
share=$((RECORDS / PARTS))
more=$((RECORDS % PARTS))
first=$(((part - 1) * share + (part - 1 < more ? part - 1 : more) + 1))
count=$((share + (part <= more ? 1 : 0)))
last=$((RECORDS == 0 ? 1 : RECORDS < PARTS ? RECORDS : PARTS))
if [ "$part" -eq "$last" ]; then
    "$SXML" to-xml "$IN" "$WORK/out-$number" "${common[@]}" --from-record "$first"
elif [ "$count" -gt 0 ]; then
    "$SXML" to-xml "$IN" "$WORK/out-$number" "${common[@]}" --from-record "$first" --count "$count"
else
    : >"$WORK/out-$number" # there are fewer records than parts
fi
