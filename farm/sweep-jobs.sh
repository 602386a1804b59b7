# The jobs of a sweep: how far they are, and how they and what they transmit are ended. For bash, to be sourced by
# sweep.sh.

# clock SECONDS: hours:minutes:seconds.
clock() {
    if [ "$1" -ge 3600 ]; then
        printf '%d:%02d:%02d' $(($1 / 3600)) $(($1 / 60 % 60)) $(($1 % 60))
    else
        printf '%d:%02d' $(($1 / 60)) $(($1 % 60))
    fi
}

# tell WORDS...: a line of its own on standard error, which the progress does not overwrite.
tell() {
    [ -z "$shown" ] || printf '\r%*s\r' ${#shown} '' >&2 || true
    shown=
    say "$@"
}

# The progress: on a terminal one line that is written anew, elsewhere one every half minute.
show_progress() {
    local text width measured=$((done_lines - lines_before)) elapsed=$((SECONDS - started))
    text="$done_lines/$total_lines ($((100 * done_lines / total_lines)) %), $(clock "$elapsed")"
    # The first lines of all benches come together, and tell little about the others.
    [ "$measured" -lt 1 ] || [ "$elapsed" -lt 3 ] || [ "$done_lines" -eq "$total_lines" ] ||
        text+=", about $(clock $(((total_lines - done_lines) * elapsed / measured))) left"
    [ -z "$note" ] || text+="; $note"
    if [ -t 2 ]; then
        read -r _ width < <(stty size <&2 2>/dev/null || echo 24 80)
        [ "${width:-0}" -gt 20 ] || width=80
        text=${text:0:width-1}
        printf '\r%s%*s' "$text" $((${#shown} > ${#text} ? ${#shown} - ${#text} : 0)) '' >&2 || true
        shown=$text
    elif [ "$SECONDS" -ge "$next_report" ]; then
        printf '%s\n' "$text" >&2 || true
        next_report=$((SECONDS + report_seconds))
    fi
}

# Sets ending when the jobs are to be ended.
look_for_an_end() {
    engine_look
    ending=$over
    if [ -z "$interrupted" ] && [ -e "$dir/stopped" ]; then
        ending=$(cat "$dir/stopped")
        refused=1
    elif [ -z "$interrupted" ] && ! has_room "$dir"; then
        ending="there is no room in $dir, or no permission to write"
    fi
    # Last, since Ctrl-C also ends the commands that look.
    [ -z "$interrupted" ] || ending="it was interrupted"
}

# Until no job is left. Sets ending when that is before all chunks were measured.
watch_jobs() {
    started=$SECONDS next_report=$SECONDS
    count_lines
    lines_before=$done_lines
    while look_for_an_end && [ -z "$ending" ] && [ "$jobs" -gt 0 ]; do
        count_lines
        show_progress
        pause
    done
    tell_end_of_progress
    [ -z "$ending" ] || end_jobs
}

# A signal ends the pause.
pause() {
    sleep "$poll_seconds" 8>&- &
    wait $! || true
}

tell_end_of_progress() {
    count_lines
    next_report=0
    show_progress
    [ -z "$shown" ] || printf '\n' >&2 || true
    shown=
}

end_jobs() {
    [ -e "$dir/stopped" ] || printf '%s\n' "$ending" 2>/dev/null >"$dir/stopped" || true
    while engine_cancel; engine_look; [ "$jobs" -gt 0 ]; do
        pause
    done
}

# Also after a sweep that ended well: a job that was killed has not stopped its bench.
stop_transmissions() {
    find_open
    [ ${#open[@]} -gt 0 ] || return 0
    tell "stopping the transmissions of ${open[*]}"
    engine_stop "${open[@]}"
    has_stopped=1
}

# begin_stops HOW BENCH...: sets stops, their processes. HOW is as for run-chunk.
begin_stops() {
    local how=$1 bench
    shift
    stops=()
    for bench in "$@"; do
        timeout "$stop_seconds" "$farm/run-chunk" "$how" "$dir" "$bench" -- ${run_options[@]+"${run_options[@]}"} 8>&- &
        stops+=($!)
    done
}

# stop_from_here HOW BENCH...: all at the same time. What has become of it the notes tell.
stop_from_here() {
    local process stops
    begin_stops "$@"
    for process in ${stops[@]+"${stops[@]}"}; do
        # A signal ends a wait, but not the process.
        while kill -0 "$process" 2>/dev/null; do
            wait "$process" || true
        done
    done
}
