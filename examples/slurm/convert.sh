#!/usr/bin/env bash
# convert.sh to-xml|from-xml IN OUT LAYOUT PARTS [OPTIONS OF sxml...]: converts a file on the nodes of a cluster.
# SXML: the command; by default the one on PATH. RECORDS: how many records IN has, when they are not of one length.
set -euo pipefail

if [ $# -lt 5 ]; then
    sed -n '2,3s/^# //p' "$0" >&2
    exit 2
fi
here=$(cd "$(dirname "$0")" && pwd)
export DIRECTION=$1 IN=$2 OUT=$3 LAYOUT=$4 PARTS=$5 SXML=${SXML:-sxml}
shift 5
export WORK=$OUT.parts
mkdir -p "$WORK"

# How many records a record file has.
count_records() {
    local length
    length=$("$SXML" layout "$LAYOUT" 2>/dev/null | sed -n 's/^Record length: \([0-9]*\) bytes$/\1/p')
    echo $(($(stat -c %s "$IN") / length))
}

number() { printf "%0${#PARTS}d" "$1"; }

if [ "$DIRECTION" = from-xml ] && [ ! -e "$WORK/divided" ]; then
    "$SXML" split "$IN" --parts "$PARTS" --output "$WORK/in" >"$WORK/names"
    mv "$WORK/names" "$WORK/divided"
elif [ "$DIRECTION" = to-xml ]; then
    RECORDS=${RECORDS:-$(count_records)}
    export RECORDS
fi

# A part appears under its name when it is complete.
missing=()
for ((part = 1; part <= PARTS; ++part)); do
    [ -e "$WORK/out-$(number "$part")" ] || missing+=("$part")
done
after=()
if [ ${#missing[@]} -gt 0 ]; then
    job=$(sbatch --parsable --job-name=sxml-part --array="$(IFS=,; echo "${missing[*]}")" \
        --output="$WORK/log-%a" "$here/part.sh" "$@")
    after=(--dependency="afterok:$job" --kill-on-invalid-dep=yes)
fi
# A job that is cancelled, since what it waits for has failed, ends the wait with status 0.
sbatch --wait --job-name=sxml-join --output="$WORK/log" "${after[@]}" "$here/join.sh" >/dev/null || true
if [ ! -e "$WORK/joined" ]; then
    echo "convert.sh: not all parts of $OUT could be made; $WORK/log-* say why; run this again to make the others" >&2
    exit 1
fi
rm -r "$WORK"
