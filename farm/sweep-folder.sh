# The folder of a sweep: whose it is, and what is in it. For bash, to be sourced by sweep.sh.

# lives OPTION...: whether a process that ps finds by these is more than what its parent has not taken away yet.
lives() {
    [[ $(undisturbed; ps -o stat= "$@" 2>/dev/null) =~ (^|$'\n')[^Z$'\n'] ]]
}

# refuse_second_call HOLDER JOBS: the two lines of the lock.
refuse_second_call() {
    local process host why="the sweep in $dir is under way: "
    read -r _ process _ host <<<"$1"
    if [ -z "$process" ]; then
        why+="another process has it"
    elif [ "$host" != "$this_host" ] || [ -e "/proc/$process" ]; then
        why+="$1 has it"
    elif [ -n "$2" ] && lives -p "$2"; then
        why+="its call was killed, and its jobs go on; after kill $2 no further one begins"
    else
        why+="its call has ended, and something that it has begun has not"
    fi
    fail 2 "$why"
}

# end_counters SESSION: a parallel that is killed in its first moment leaves what it has begun to count what the host
# can do: processes that have the lock, and sleep for hours. One that lives ends them itself at once.
end_counters() {
    pkill -KILL -s "$1" -f '(^|/)sleep 10101$' || true
}

# The sweep's folder, as one of this call alone. Its lock has who holds it, and the process that gives the jobs
# out, where the jobs hold it too.
open_folder() {
    local holder jobs words
    if [ ! -e "$dir/sweep.lock" ] && [ -n "$(ls -A "$dir" 2>/dev/null || true)" ]; then
        fail 2 "$dir is not empty, and not the folder of a sweep; choose another one by --out"
    fi
    end_if_interrupted
    words=$(LC_ALL=C mkdir -p "$dir" 2>&1) || {
        [[ ! ${words##*: } =~ $cannot_write ]] || end_without_room
        fail 2 "$dir cannot be made"
    }
    dir=$(realpath "$dir")
    { exec 8<>"$dir/sweep.lock"; } 2>/dev/null || end_without_room
    { read -r holder; read -r jobs; } <&8 || true
    [[ ! $jobs =~ ^[1-9][0-9]*$ ]] || end_counters "$jobs"
    # A command of a call that was killed may outlive it for a moment.
    flock -w 2 8 || refuse_second_call "$holder" "$jobs"
    is_ours=1
    engine_open
    printf 'process %s on %s\n' $$ "$this_host" 2>/dev/null >"$dir/sweep.lock" || end_without_room
    [ ! -e "$dir/merged" ] || end_complete
    [ ! -e "$dir/manifest.json" ] || cmp -s "$plan" "$dir/plan.csv" ||
        fail 2 "$plan has changed since the sweep in $dir was begun; go on with" \
            "$(printf '%q --out %q' "$dir/plan.csv" "$dir"), or give another --out"
}

end_without_room() {
    fail 3 "there is no room in $dir, or no permission to write; with room the same command goes on"
}

# code_of_result: prints what the merged run ends with; nothing where there is none.
code_of_result() {
    sed -n 's/^  "exitCode": \([01]\),*$/\1/p' "$dir/merged/run.json" 2>/dev/null
}

# There is nothing to do, but for what an earlier call could not stop. Once that is stopped, the code is what that
# call would have ended with.
end_complete() {
    local code=
    set +e
    find_open
    if [ ${#open[@]} -gt 0 ]; then
        stop_transmissions
        code=$(undisturbed; code_of_result)
    fi
    say "this sweep is complete, its result is in $dir/merged; for a new one give another --out"
    exit "${code:-2}"
}

# Chunks of at most 100 lines, so that at the end no bench waits long for the last one; at least four for each
# bench, so that one that fails costs little; of at least ten lines, since a job needs a second of its own.
lines_of_a_chunk() {
    local total=$1 count=$2 rounds lines
    rounds=$(((total + 100 * count - 1) / (100 * count)))
    [ "$rounds" -ge 4 ] || rounds=4
    lines=$(((total + count * rounds - 1) / (count * rounds)))
    [ "$lines" -ge 10 ] || lines=10
    echo "$lines"
}

split_plan() {
    local total told count=${#benches[@]}
    [ ! -e "$dir/manifest.json" ] || {
        [ -z "$lines_wanted" ] || say "the sweep in $dir goes on with its chunks, as they are"
        return 0
    }
    # Without the header.
    total=$(($(grep -c '' "$plan" || true) - 1))
    [ "${benches_wanted:-$count}" -ge "$count" ] || count=$benches_wanted
    [ -n "$lines_wanted" ] || lines_wanted=$(lines_of_a_chunk "$total" "$count")
    # What it writes on a disk that becomes full it takes away again: its words tell.
    told=$({ words=$("$program" split "$plan" --lines "$lines_wanted" -o "$dir" 2>&1 >&7); } 7>&1
        [ -z "$words" ] || printf '%s\n' "$words" >&2 || true
        [[ ! $words =~ $cannot_write ]]) || [ -e "$dir/manifest.json" ] || end_without_room
    end_if_interrupted
    [ -e "$dir/manifest.json" ] || exit 2
    # Its estimate is for other numbers of benches than there are; the progress tells a better one.
    printf '%s\n' "${told%; about *}" 2>/dev/null || true
}

# What the jobs need. Some of an earlier call may go on and read the table.
prepare_folder() {
    if [ -n "$table" ]; then
        cp "$table" "$dir/bench-table.new" && mv "$dir/bench-table.new" "$dir/bench-table" || return
    else
        rm -f "$dir/bench-table" || return
    fi
    mkdir -p "$dir/log" "$dir/runs" "$dir/benches" && rm -f "$dir/stopped"
}

# By a link a run counts.
require_links() {
    ln -sfT . "$dir/link" 2>/dev/null ||
        fail 3 "no symbolic link can be made in $dir, which a sweep needs; with links the same command goes on"
    rm -f "$dir/link"
}

# Sets chunks, and lines_of by chunk.
read_chunks() {
    local file chunk lines
    declare -gA lines_of=()
    chunks=()
    total_lines=0
    for file in "$dir"/chunk-*.csv; do
        [ -e "$file" ] || continue
        mapfile -t lines <"$file"
        chunk=${file##*/}
        chunk=${chunk%.csv}
        chunks+=("$chunk")
        # Without the header.
        lines_of[$chunk]=$((${#lines[@]} - 1))
        total_lines=$((total_lines + lines_of[$chunk]))
    done
}

# Sets missing: the chunks without a run that counts.
find_missing() {
    local chunk
    missing=()
    for chunk in "${chunks[@]}"; do
        is_claimed "$dir" "$chunk" || missing+=("$chunk")
    done
}

# Attempts of jobs that were killed after they were complete, or that went on after they had been given up. Sets
# ending where that cannot be done: what would be measured now would not count either.
settle_all() {
    local chunk attempts
    for chunk in "${chunks[@]}"; do
        attempts=("$dir/runs/$chunk"/[1-9]*/)
        [ -d "${attempts[0]}" ] || [ -L "$dir/runs/$chunk/claimed" ] || continue
        if ! is_claimed "$dir" "$chunk" || [ ${#attempts[@]} -gt 1 ]; then
            settle "$dir" "$chunk" || {
                ending="complete runs cannot be made to count in $dir/runs"
                return
            }
        fi
    done
}

# Sets open: the benches that may be transmitting.
find_open() {
    local file
    open=()
    for file in "$dir"/benches/*/running; do
        [ -e "$file" ] || continue
        file=${file%/running}
        open+=("${file##*/}")
    done
}

# Sets done_lines, those of runs that go on included.
count_lines() {
    local chunk file attempt count
    local -A under_way=()
    # A chunk is claimed before its run is no longer noted: in this order none is missed.
    for file in "$dir"/benches/*/running; do
        read -r _ _ _ attempt _ 2>/dev/null <"$file" || continue
        [ -e "$dir/runs/$attempt/journal.jsonl" ] || continue
        count=$(wc -l <"$dir/runs/$attempt/journal.jsonl")
        under_way[${attempt%/*}]=${count:-0}
    done
    find_missing
    done_lines=$total_lines
    for chunk in ${missing[@]+"${missing[@]}"}; do
        done_lines=$((done_lines - lines_of[$chunk] + ${under_way[$chunk]:-0}))
    done
}
