#!/usr/bin/env bash
# cluster.sh BUILD_DIR: converts files by examples/slurm on a cluster of this one machine, which it starts and stops,
# with a part that fails at first, and compares the results with those of one process. Needs Slurm and Munge.
set -euo pipefail

build=$(cd "$1" && pwd)
source=$(cd "$(dirname "$0")/../.." && pwd)
work=$(mktemp -d)
export SLURM_CONF=$work/slurm.conf SOURCE_DATE_EPOCH=1795000000
daemons=()

stop() {
    local status=$?
    # The jobs end with the daemons that watch them.
    [ ! -e "$work/started" ] || scancel --user="$(id -un)" 2>/dev/null || true
    for ((i = ${#daemons[@]} - 1; i >= 0; --i)); do
        kill "${daemons[$i]}" 2>/dev/null || true
        wait "${daemons[$i]}" 2>/dev/null || true
    done
    [ "$status" -eq 0 ] || tail -n 30 "$work"/*.log >&2 || true
    rm -rf "$work"
    exit "$status"
}
trap stop EXIT
trap 'exit 1' INT TERM

wait_for() { # COMMAND...: until it succeeds, for at most 30 seconds
    local tries
    for ((tries = 0; tries < 150; ++tries)); do
        if "$@" >/dev/null 2>&1; then return; fi
        sleep 0.2
    done
    echo "cluster.sh: in vain: $*" >&2
    return 1
}

free_port() { python3 -c 'import socket; s = socket.socket(); s.bind(("127.0.0.1", 0)); print(s.getsockname()[1])'; }

start() {
    local host
    host=$(hostname -s)
    chmod 755 "$work"
    dd if=/dev/urandom of="$work/munge.key" bs=128 count=1 status=none
    chmod 600 "$work/munge.key"
    /usr/sbin/munged --foreground --force --key-file="$work/munge.key" --socket="$work/munge.socket" \
        --pid-file="$work/munged.pid" --log-file="$work/munged.log" --seed-file="$work/munge.seed" 2>"$work/munge.log" &
    daemons+=($!)
    wait_for test -S "$work/munge.socket"
    cat >"$SLURM_CONF" <<CONF
ClusterName=one
SlurmctldHost=$host(127.0.0.1)
SlurmUser=$(id -un)
SlurmdUser=$(id -un)
AuthType=auth/munge
AuthInfo=socket=$work/munge.socket
CredType=cred/munge
SlurmctldPort=$(free_port)
SlurmdPort=$(free_port)
SlurmctldPidFile=$work/slurmctld.pid
SlurmdPidFile=$work/slurmd.pid
StateSaveLocation=$work/state
SlurmdSpoolDir=$work/spool
ProctrackType=proctrack/linuxproc
TaskPlugin=task/none
JobAcctGatherType=jobacct_gather/none
MpiDefault=none
SchedulerParameters=sched_min_interval=100000,sched_interval=1
SelectType=select/cons_tres
SelectTypeParameters=CR_CPU
NodeName=$host NodeAddr=127.0.0.1 CPUs=$(nproc)
PartitionName=all Nodes=ALL Default=YES State=UP
CONF
    echo "CgroupPlugin=cgroup/v1" >"$work/cgroup.conf"
    mkdir "$work/state" "$work/spool"
    /usr/sbin/slurmctld -D >"$work/slurmctld.log" 2>&1 &
    daemons+=($!)
    /usr/sbin/slurmd -D -N "$host" >"$work/slurmd.log" 2>&1 &
    daemons+=($!)
    wait_for sh -c "sinfo --noheader --format=%T | grep -Eq 'idle|mixed'"
    touch "$work/started"
}

# An sxml that fails at its third part until the file `mended` is there.
failing_sxml() {
    cat >"$work/sxml" <<TEXT
#!/bin/sh
echo "\${SLURM_ARRAY_TASK_ID:-}" >>"$work/tasks"
if [ "\${SLURM_ARRAY_TASK_ID:-}" = 3 ] && [ ! -e "$work/mended" ]; then exit 1; fi
exec "$build/bin/sxml" "\$@"
TEXT
    chmod +x "$work/sxml"
}

# convert DIRECTION IN OUT: in 7 parts, with a failure on the way.
convert() {
    rm -f "$work/mended"
    if "$source/examples/slurm/convert.sh" "$@" customer.cpy 7; then
        echo "cluster.sh: a part failed, and nobody said so" >&2
        return 1
    fi
    test ! -e "$3"
    test "$(find "$3.parts" -name 'out-?' | wc -l)" -eq 6
    touch "$work/mended"
    rm "$work/tasks"
    "$source/examples/slurm/convert.sh" "$@" customer.cpy 7
    test "$(grep . "$work/tasks")" = 3 # no other part was made again
    test ! -e "$3.parts"
}

# refused MESSAGE COMMAND...: the command fails, and says so on standard error or in the log of a part.
refused() {
    local message=$1
    shift
    if "$@" 2>"$work/refusal"; then
        echo "cluster.sh: not refused: $*" >&2
        return 1
    fi
    cat out.xml.parts/log-* >>"$work/refusal" 2>/dev/null || true
    grep -qF "$message" "$work/refusal" || {
        cat "$work/refusal" >&2
        return 1
    }
}

# No record is lost, and no part of another conversion taken.
refuse_losses() {
    local convert=("$source/examples/slurm/convert.sh" to-xml)
    printf '       01 PAIR.\n           05 A PIC X(4).\n           05 B PIC 9(4).\n' >pair.cpy
    printf 'abcd0001efgh0002ij' >cut.dat
    refused "the record is cut short" "${convert[@]}" cut.dat out.xml pair.cpy 2
    test ! -e out.xml
    printf 'abcd0001\nef  0002\nij  0003\n' >pairs.txt
    refused "set RECORDS" env -u RECORDS "${convert[@]}" pairs.txt out.xml pair.cpy 2 --line
    RECORDS=3 refused "holds parts of another conversion" "${convert[@]}" pairs.txt out.xml pair.cpy 2 --line
    rm -r out.xml.parts
    for count in 2 3; do # more than they are said to be, and as many
        RECORDS=$count "${convert[@]}" pairs.txt out.xml pair.cpy 2 --line
        test "$(grep -c '<pair>' out.xml)" -eq 3
        rm out.xml
    done
}

start
cd "$work"
failing_sxml
export SXML=$work/sxml
cp "$source/bench/customer.cpy" .
"$build/bench/make_records" 100003 records
"$build/bin/sxml" to-xml records one.xml --layout customer.cpy --jobs 1 2>/dev/null
convert to-xml records many.xml
cmp one.xml many.xml
convert from-xml many.xml many.records
cmp records many.records
refuse_losses
echo "cluster: 100,003 records in 7 parts, one of them made again: the same document and the same records as of one process"
