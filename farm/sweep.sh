# What a sweep does on any engine: for bash, to be sourced after lib.sh. The engine's script defines
#   engine_check          ends with 2 when there is no such engine; sets benches, the names that may be used
#   engine_open           prepares for the sweep's folder, once it is this call's
#   engine_adopt          whether jobs of this sweep go on that an earlier call has begun, once that is known
#   engine_start CHUNK... hands the chunks over; where it cannot, it fails, with ending set
#   engine_look           looks how it is with the jobs; sets jobs (how many there are), note (a few words for
#                         the progress) and over (why nothing more will come of them, or nothing)
#   engine_cancel         ends all jobs, and may be called again
#   engine_leave          sees to it that all jobs end, and does not wait for it; perhaps there are none yet. Sets
#                         busy, benches that have a job besides those that have a note
#   engine_stop BENCH...  stops the transmissions of benches whose job has not done so
. "$farm/lib.sh"
. "$farm/sweep-folder.sh"
. "$farm/sweep-jobs.sh"
# How long a run may take to stop its transmission, and a bench that is asked to.
kill_seconds=30
stop_seconds=90
poll_seconds=1
# What a command says that could not write, in the system's words.
cannot_write='No space left|[Qq]uota exceeded|File too large|Read-only file system|Permission denied|Input/output error'
# Where standard error is no terminal.
report_seconds=30

# Whether the sweep's folder is this call's alone, and whether it has tried to stop all that transmits.
is_ours=
has_stopped=
interrupted=
interrupted_at=0
shown=
this_host=$(uname -n)

interrupt() {
    if [ -z "$interrupted" ]; then
        interrupted=1 interrupted_at=$SECONDS
        tell "stopping; this takes until all transmitters are off (press Ctrl-C again to leave at once)"
    elif [ $((SECONDS - interrupted_at)) -ge 1 ]; then
        trap '' HUP INT TERM
        # The first may have come in the middle of a look, after which the jobs would have been ended.
        [ -z "$is_ours" ] || [ -e "$dir/stopped" ] ||
            printf 'it was interrupted\n' 2>/dev/null >"$dir/stopped" || true
        busy=()
        engine_leave
        tell "left at once: jobs may still be stopping their transmitters"
        has_stopped=1
        exit 3
    fi
}

# However the sweep ends, what may be transmitting is stopped, or told last with the code 4. In a folder that
# another call has, that one does it.
leave() {
    local code=$? bench
    trap - EXIT
    trap '' HUP INT TERM
    set +e
    # That of a command that Ctrl-C has ended.
    [ -z "$interrupted" ] || [ "$code" -le 4 ] || code=3
    have_folder || exit "$code"
    find_open
    # Jobs of an earlier call may go on; whoever is refused does not end them.
    if [ -z "$has_stopped" ] && [ ${#open[@]} -gt 0 ]; then
        tell "stopping the transmissions of ${open[*]}, as far as no job uses them"
        stop_from_here --stop-unused "${open[@]}"
        find_open
    fi
    for bench in ${busy[@]+"${busy[@]}"}; do
        [ -z "$bench" ] || [[ " ${open[*]} " = *" $bench "* ]] || open+=("$bench")
    done
    [ ${#open[@]} -gt 0 ] || exit "$code"
    tell_open_benches
    exit 4
}

# Ctrl-C also ends the commands that this script has just started, which then tell nothing. Jobs of an earlier call
# may go on.
end_if_interrupted() {
    [ -n "$interrupted" ] || return 0
    ending="it was interrupted"
    # A subshell only ends: its caller goes on.
    [ -z "$is_ours" ] || [ "$BASH_SUBSHELL" -gt 0 ] || end_jobs
    exit 3
}

# As that of lib.sh, but for what such a command has seemed to tell.
fail() {
    end_if_interrupted
    say "${@:2}"
    exit "$1"
}

have_folder() {
    [ -z "$is_ours" ] || return 0
    [ -e "$dir/sweep.lock" ] && exec 8<"$dir/sweep.lock" && flock -n 8
}

usage="usage: ${0##*/} PLAN [--out DIR] [--table FILE] [--benches N] [--lines N] [-- RUN_OPTIONS...]"

usage() {
    fail 2 "$usage"
}

# value_of OPTION VALUES...: the next of the arguments, which has to be there.
value_of() {
    [ $# -ge 2 ] || fail 2 "$1 needs a value"
    printf '%s' "$2"
}

number_of() {
    value_of "$@" >/dev/null
    [[ $2 =~ ^[1-9][0-9]{0,8}$ ]] || fail 2 "$1 needs a number of 1 or more, not $2"
    printf '%s' "$2"
}

# What the sweep itself decides for each run, and what would leave a chunk without a whole result.
refused_run_options=(--out --daemon --resume --bench --device --attempt --progress --fail-fast -h --help)

read_arguments() {
    local option refused
    call=("$0" "$@")
    plan='' dir='' table='' benches_wanted='' lines_wanted='' run_options=()
    while [ $# -gt 0 ]; do
        case $1 in
        --out) dir=$(value_of "$@") || exit 2; shift 2 ;;
        --table) table=$(value_of "$@") || exit 2; shift 2 ;;
        --benches) benches_wanted=$(number_of "$@") || exit 2; shift 2 ;;
        --lines) lines_wanted=$(number_of "$@") || exit 2; shift 2 ;;
        --) shift; run_options=("$@"); break ;;
        -h | --help) printf '%s\n' "$usage"; exit 0 ;;
        -*) usage ;;
        *) [ -z "$plan" ] || usage; plan=$1; shift ;;
        esac
    done
    [ -n "$plan" ] || usage
    for option in ${run_options[@]+"${run_options[@]}"}; do
        [ "$option" != -- ] || break
        for refused in "${refused_run_options[@]}"; do
            [ "${option%%=*}" != "$refused" ] || fail 2 "$refused cannot be given to the runs of a sweep"
        done
    done
    read_stop_timeout
    [ -f "$plan" ] && [ -r "$plan" ] || fail 2 "the plan $plan cannot be read"
    plan=$(realpath "$plan")
    if [ -z "$dir" ]; then
        dir=${plan##*/}
        dir=sweeps/${dir%.csv}
    fi
    local usual=${SARVEX_BENCHES:-/etc/sarvextool/benches}
    if [ -z "$table" ] && [ -e "$usual" ]; then
        table=$usual
    fi
    # Else commands would take them for options.
    [[ $dir != -* ]] || dir=./$dir
    [[ $table != -* ]] || table=./$table
}

# A run may wait so long twice: for the last answer, and for the stop. Other words than a number it refuses.
read_stop_timeout() {
    local value seconds
    value=$(run_option --stop-timeout ${run_options[@]+"${run_options[@]}"}) || return 0
    [[ $value =~ ^0*([0-9]{1,6})(\.[0-9]*)?$ ]] || return 0
    seconds=$((2 * 10#${BASH_REMATCH[1]}))
    [ $((seconds + 10)) -le "$kill_seconds" ] || kill_seconds=$((seconds + 10))
    [ $((seconds + 30)) -le "$stop_seconds" ] || stop_seconds=$((seconds + 30))
}

# What this host has and another lacks is that host's failure, and no wrong option.
check_files_of_options() {
    local option value
    for option in --client --limits; do
        value=$(run_option "$option" ${run_options[@]+"${run_options[@]}"}) || continue
        [ -f "$value" ] && [ -r "$value" ] || fail 2 "$value, the file of $option, cannot be read on this host"
    done
}

# quoted WORD...: for a shell and a reader. Bash's own way depends on the locale.
quoted() {
    local word words=''
    for word; do
        words+="'${word//\'/\'\\\'\'}' "
    done
    printf '%s' "${words% }"
}

# What of the runs' options decides what is measured, in one line. A client is the same by any of its names.
measured_with() {
    local option value words=''
    for option in --client --firmware; do
        value=$(run_option "$option" ${run_options[@]+"${run_options[@]}"}) || continue
        [ "$option" != --client ] || value=$(realpath -- "$value")
        words+="$option $(quoted "$value") "
    done
    set -- ${run_options[@]+"${run_options[@]}"}
    while [ $# -gt 0 ] && [ "$1" != -- ]; do
        shift
    done
    [ $# -lt 2 ] || words+=$(quoted "$@")
    printf '%s\n' "${words:-none}"
}

# The chunks that were measured, or are, by an earlier call have to be measured as this one measures the others.
compare_options() {
    local now before
    now=$(measured_with)
    # Then nothing is begun, and what there is has to be ended.
    [ -z "$interrupted" ] || return 0
    if [ -n "$adopted" ] || [ ${#missing[@]} -lt ${#chunks[@]} ]; then
        before=$(cat "$dir/run-options" 2>/dev/null) || before=$now
        [ ${#missing[@]} -eq 0 ] || [ "$now" = "$before" ] ||
            fail 2 "chunks of this sweep were measured with other options of run, which decide what is measured:" \
                "$before; now: $now; give the same, or another --out"
    else
        printf '%s\n' "$now" >"$dir/run-options" || end_without_room
    fi
}

# tell_what_is_left WHY
tell_what_is_left() {
    local command
    printf -v command '%q ' "${call[@]}"
    {
        printf 'The sweep ended early, after %s of %s lines: %s.\n' "$done_lines" "$total_lines" "$1"
        printf '%s of %s chunks have no complete run.\n' ${#missing[@]} ${#chunks[@]}
        printf 'To go on with them:\n  %s\n' "${command% }"
        printf 'What there is can be merged:\n  SarvexToolBench merge %q -o RUN --partial\n' "$dir"
    } 2>/dev/null || true
}

# tell_why_not_merged WHY
tell_why_not_merged() {
    local command
    printf -v command '%q ' "${call[@]}"
    printf 'All chunks are measured, and not merged: %s.\nTo merge them:\n  %s\n' "$1" "${command% }" 2>/dev/null ||
        true
}

# Sets code: that of the result, also where nobody has read what the merge printed. Without one the words of the
# merge tell whether it was refused, or could not write.
merge_runs() {
    local words result
    { words=$("$program" merge "$dir" -o "$dir/merged" 2>&1 >&7); } 7>&1
    code=$?
    [ -z "$words" ] || printf '%s\n' "$words" >&2 || true
    result=$(code_of_result)
    if [ -n "$result" ]; then
        code=$result
    elif [ "$code" -gt 2 ]; then
        if [ -n "$interrupted" ]; then words="it was interrupted"; else words="the merge died (code $code)"; fi
        tell_why_not_merged "$words"
        code=3
    elif [ "$code" -eq 2 ] && [[ $words =~ $cannot_write ]]; then
        code=3
        tell_why_not_merged "there is no room in $dir, or no permission to write"
    fi
}

# The very last words, so that nobody overlooks them.
tell_open_benches() {
    local bench
    for bench in "${open[@]}"; do
        read_note "$dir" "$bench" || true
        if [ -n "$noted_daemon" ]; then
            say "switch the device of $bench off, or on ${noted_host:-its host}:" \
                "SarvexToolBench stop --daemon $noted_daemon"
        else
            say "switch the device of $bench off"
        fi
    done
    say "these benches may still be transmitting: ${open[*]}"
}

# Where jobs of an earlier call go on, and where some are to be begun, until they have ended.
measure() {
    local adopted=
    ! engine_adopt || adopted=1
    compare_options
    if [ -n "$adopted" ]; then
        [ -n "$interrupted" ] || tell "the jobs of an earlier call go on"
        watch_jobs
        settle_all
        find_missing
    fi
    [ -n "$ending" ] || [ -z "$interrupted" ] || ending="it was interrupted"
    if [ -z "$ending" ] && [ ${#missing[@]} -gt 0 ]; then
        # What has failed may have begun some all the same.
        if engine_start "${missing[@]}"; then watch_jobs; else end_jobs; fi
        settle_all
        find_missing
    fi
}

# Sets code.
tell_result() {
    if [ ${#missing[@]} -eq 0 ]; then
        merge_runs
    else
        tell_what_is_left "${ending:-some chunks could not be measured; $dir/log tells why}"
        code=3
        [ -z "$refused" ] || code=2
    fi
}

# Files that commands open would take the place of what is closed.
open_streams() {
    [ -e /proc/self/fd/0 ] || exec </dev/null
    [ -e /proc/self/fd/1 ] || exec >/dev/null
    [ -e /proc/self/fd/2 ] || exec 2>/dev/null
}

run_sweep() {
    local code
    open_streams
    refused='' ending='' over='' note='' jobs=0 busy=()
    read_arguments "$@"
    trap leave EXIT
    check_files_of_options
    find_program
    trap interrupt HUP INT TERM
    trap '' PIPE
    engine_check
    open_folder
    split_plan
    # In a subshell, so that what Ctrl-C has this script say is not lost too.
    (prepare_folder 2>/dev/null) || end_without_room
    require_links
    # Ctrl-C reaches the commands that this script has just started, too: none that ends is to end the script.
    set +e
    read_chunks
    settle_all
    find_missing
    measure
    stop_transmissions
    count_lines
    tell_result
    has_stopped=1
    exit "$code"
}
