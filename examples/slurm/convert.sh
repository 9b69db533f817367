#!/usr/bin/env bash
# convert.sh to-xml|from-xml IN OUT LAYOUT PARTS [OPTIONS OF sxml...]: converts a file on the nodes of a cluster.
# SXML: the command; by default the one on PATH. RECORDS: how many records IN has; needed when they are not of one
# length, and with --line or --record-format.
set -euo pipefail

if [ $# -lt 5 ]; then
    sed -n '2,4s/^# //p' "$0" >&2
    exit 2
fi
here=$(cd "$(dirname "$0")" && pwd)
export DIRECTION=$1 IN=$2 OUT=$3 LAYOUT=$4 PARTS=$5 SXML=${SXML:-sxml}
shift 5
export WORK=$OUT.parts

stop() {
    echo "convert.sh: $1" >&2
    exit 1
}

# count_records OPTIONS...: how many whole records a record file has, if they are of the layout's one length.
count_records() {
    local option length
    for option; do
        case $option in
        --line | --record-format | --record-format=*)
            stop "$option: the size of $IN does not tell how many records it has; set RECORDS to their number"
            ;;
        esac
    done
    length=$("$SXML" layout "$LAYOUT" 2>/dev/null | sed -n 's/^Record length: \([0-9]*\) bytes$/\1/p')
    [ -n "$length" ] || stop "$LAYOUT: no layout with records of one length; set RECORDS to the number of records of $IN"
    echo $(($(stat -c %s "$IN") / length))
}

# describe OPTIONS...: what the parts in the work folder are parts of.
describe() {
    printf '%s, %s parts, %s records, options:' "$DIRECTION" "$PARTS" "${RECORDS:-all}"
    printf ' %q' "$@"
    printf '\n'
    stat -c '%n, %s bytes, %y' -- "$IN" "$LAYOUT"
}

number() { printf "%0${#PARTS}d" "$1"; }

if [ "$DIRECTION" = to-xml ]; then
    RECORDS=${RECORDS:-$(count_records "$@")}
    export RECORDS
fi
job=$(describe "$@")
mkdir -p "$WORK"
if [ -z "$(ls -A "$WORK")" ]; then
    echo "$job" >"$WORK/job"
elif [ ! -e "$WORK/job" ] || [ "$(cat "$WORK/job")" != "$job" ]; then
    stop "$WORK holds parts of another conversion; remove it"
fi
rm -f "$WORK/joined"

if [ "$DIRECTION" = from-xml ] && [ ! -e "$WORK/divided" ]; then
    "$SXML" split "$IN" --parts "$PARTS" --output "$WORK/in" >"$WORK/names"
    mv "$WORK/names" "$WORK/divided"
fi

# A part appears under its name when it is complete.
missing=()
for ((part = 1; part <= PARTS; ++part)); do
    [ -e "$WORK/out-$(number "$part")" ] || missing+=("$part")
done
after=()
if [ ${#missing[@]} -gt 0 ]; then
    array=$(sbatch --parsable --job-name=sxml-part --array="$(IFS=,; echo "${missing[*]}")" \
        --output="$WORK/log-%a" "$here/part.sh" "$@")
    after=(--dependency="afterok:$array" --kill-on-invalid-dep=yes)
fi
# When a job is cancelled because a job that it depends on has failed, the wait ends with status 0.
sbatch --wait --job-name=sxml-join --output="$WORK/log" "${after[@]}" "$here/join.sh" >/dev/null || true
if [ ! -e "$WORK/joined" ]; then
    stop "not all parts of $OUT could be made; $WORK/log-* say why; run this again to make the others"
fi
rm -r "$WORK"
