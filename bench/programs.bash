# For drivers that time whole programs side by side. The driver sets
#     build, records, rounds   from its arguments
#     work                     an empty folder of its own
#     programs                 names, `sxml` first
# and defines
#     command_of NAME IN OUT   sets the array `command` to the program's command line
# shellcheck shell=bash

# Drops from `programs` those whose file PREFIX_NAME was not built, and says so.
keep_built() { # PREFIX
    local name kept=()
    for name in "${programs[@]}"; do
        if [[ $name == sxml* ]] || [ -x "$1_$name" ]; then
            kept+=("$name")
        else
            echo "  $name: not measured, $(basename "$1_$name") is not built"
        fi
    done
    programs=("${kept[@]}")
}

has_program() { # NAME
    [[ " ${programs[*]} " == *" $1 "* ]]
}

run() { # NAME IN OUT
    local command
    command_of "$@"
    "${command[@]}"
}

# Runs every program in turn, `rounds` times; $work/NAME.times gets seconds: wall, user, system.
time_rounds() { # IN
    local name round
    local TIMEFORMAT='%3R %3U %3S'
    for ((round = 0; round < rounds; ++round)); do
        for name in "${programs[@]}"; do
            rm -f "$work/$name.out"
            { time run "$name" "$1" "$work/$name.out" 2>&3; } 3>&2 2>>"$work/$name.times"
        done
    done
}

best_wall() { # NAME
    awk 'NR == 1 || $1 < best { best = $1 } END { print best }' "$work/$1.times"
}

best_processor() { # NAME
    awk 'NR == 1 || $2 + $3 < best { best = $2 + $3 } END { print best }' "$work/$1.times"
}

instructions() { # NAME IN: of one run
    local command
    command_of "$1" "$2" "$work/counted.out"
    valgrind --tool=callgrind --callgrind-out-file=/dev/null "${command[@]}" 2>&1 |
        sed -n 's/.*Collected : //p'
}

# Instructions for one record: what the inputs SMALL and LARGE cost differs by that many records.
instructions_per_record() { # NAME SMALL LARGE RECORDS
    if command -v valgrind >/dev/null; then
        echo $((($(instructions "$1" "$3") - $(instructions "$1" "$2")) / $4))
    else
        echo not-counted
    fi
}

report() { # BYTES SMALL LARGE RECORDS
    local name base
    base=$(best_processor sxml)
    for name in "${programs[@]}"; do
        instructions_per_record "$name" "$2" "$3" "$4" >"$work/$name.instructions"
        awk -v name="$name" -v best="$(best_wall "$name")" \
            -v processor="$(best_processor "$name")" -v base="$base" -v bytes="$1" \
            -v records="$records" \
            -v instructions="$(<"$work/$name.instructions")" 'BEGIN {
                printf "  %-10s %6.3f s (processor %6.3f s)  %7.1f MB/s of XML  %9.0f records/s  ",
                    name, best, processor, bytes / best / 1e6, records / best
                printf "%5.2f of sxml\047s processor time  %s instructions a record\n",
                    processor / base, instructions }'
    done
}

# Puts a ratio of best times beside its target: processor times, which other work on the machine disturbs
# least, or those on the clock where several processes are meant to gain. After `report`: the ratio of
# instructions comes with it.
#     target WHAT NUMERATOR DENOMINATOR least|most|below LIMIT [best_wall]
target() {
    local best=${6:-best_processor}
    if ! has_program "$2" || ! has_program "$3"; then return 0; fi
    awk -v what="$1" -v above="$("$best" "$2")" -v below="$("$best" "$3")" \
        -v kind="$4" -v limit="$5" -v more="$(<"$work/$2.instructions")" -v less="$(<"$work/$3.instructions")" 'BEGIN {
            ratio = above / below
            met = kind == "least" ? ratio >= limit : kind == "most" ? ratio <= limit : ratio < limit
            counted = kind != "least" && less > 0 ? sprintf(" (in instructions %.2f)", more / less) : ""
            printf "  target: %s %s %.2f; measured %.2f%s: %s\n", what,
                kind == "below" ? kind : "at " kind, limit, ratio, counted, met ? "met" : "missed" }'
}
