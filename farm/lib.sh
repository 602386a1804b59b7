# What run-chunk and the two sweeps share: for bash, to be sourced.
#
# A sweep's folder DIR holds, besides what SarvexToolBench split has written there:
#   bench-table             the table of benches, where the sweep has one
#   runs/CHUNK/N            the chunk's attempt N, a run directory; N.log is what it has printed
#   runs/CHUNK/claimed      a link to the one attempt whose result counts
#   surplus/CHUNK-N         a further complete attempt, of a job that went on after it had been given up
#   benches/BENCH/running   the bench may be transmitting: HOST PID_OF_RUN_CHUNK PID_OF_RUN CHUNK/N DAEMON
#   benches/BENCH/failures  how often it has failed in a row
#   benches/BENCH/why       the last reason; with GNU parallel benches/BENCH/out has it when that was too often
#   stopped                 no further run is to begin; why
#   run-options             what of the options of run decides what is measured
#   log/                    what the jobs have printed
#   merged                  the result
farm=$(CDPATH='' cd "$(dirname "${BASH_SOURCE[0]}")" && pwd -P)

# A bench that has failed so often in a row is taken out.
failures_allowed=3

# What is told on a console that has been closed is lost, and nothing else.
say() {
    printf '%s: %s\n' "${0##*/}" "$*" >&2 || true
}

# fail CODE WORDS...
fail() {
    say "${@:2}"
    exit "$1"
}

# To be called in a subshell, whose commands then ignore Ctrl-C and SIGTERM. Ctrl-C reaches all that a terminal has in
# the foreground, and Slurm sends SIGTERM to all processes of a job: what a command was about to tell would be lost.
undisturbed() {
    trap '' HUP INT TERM
}

# Sets program: SarvexToolBench beside this folder, as an unpacked archive has it, else the one on the PATH.
find_program() {
    program=${farm%/*}/SarvexToolBench
    [ -x "$program" ] || program=$(type -P SarvexToolBench) ||
        fail 2 "SarvexToolBench is neither in ${farm%/*} nor on the PATH"
}

# has_room DIR: whether runs can be written there. A run needs a copy of the client besides its results.
has_room() {
    local free
    printf '%4096s' . 2>/dev/null >"$1/room" || return
    # Nothing when Ctrl-C has ended it.
    free=$(df -k --output=avail "$1" 2>/dev/null | tail -n 1)
    [ "${free:-0}" -ge 8192 ]
}

# is_complete RUN: whether each line of a run has its row.
is_complete() {
    grep -qs '^  "outcome": "complete"' "$1/run.json"
}

# settle DIR CHUNK: of the chunk's complete attempts one counts, the others go to DIR/surplus. An attempt that
# is complete and has claimed nothing is one whose run-chunk was killed. Where none can be made to count, all
# stay, and this fails.
settle() {
    local runs=$1/runs/$2 attempt number
    # The attempt that counted was taken away, to be measured again.
    is_claimed "$1" "$2" || [ ! -L "$runs/claimed" ] || rm -f "$runs/claimed"
    for attempt in "$runs"/[1-9]*/; do
        attempt=${attempt%/}
        number=${attempt##*/}
        is_complete "$attempt" || continue
        # As the name of a link it is made by one process alone, also over a network.
        (undisturbed; ln -sT "$number" "$runs/claimed" 2>/dev/null) || true
        [ ! "$attempt" -ef "$runs/claimed" ] || continue
        [ -L "$runs/claimed" ] || { say "the link $runs/claimed cannot be made"; return 1; }
        (undisturbed; mkdir -p "$1/surplus" && mv -T "$attempt" "$1/surplus/$2-$number") || return 1
    done
}

# is_claimed DIR CHUNK
is_claimed() {
    [ -e "$1/runs/$2/claimed/run.json" ]
}

# read_table FILE: sets bench_names, and daemon_of and device_of by name. A line is NAME DAEMON DEVICE;
# a word that begins with # begins a comment.
read_table() {
    local name daemon device rest where number=0
    declare -gA daemon_of=() device_of=()
    local -A bench_at=()
    bench_names=()
    # What is no file can be read only once.
    [ -f "$1" ] && [ -r "$1" ] || fail 2 "the table of benches $1 cannot be read, or is no regular file"
    while read -r name daemon device rest || [ -n "$name" ]; do
        number=$((number + 1))
        where="$1:$number"
        [ -n "$name" ] || continue
        [ -n "$device" ] ||
            fail 2 "$where: a line needs NAME DAEMON DEVICE, for example: bench1 10.0.0.11:8738 DUT-42"
        [ -z "$rest" ] || fail 2 "$where: more than NAME DAEMON DEVICE: $rest"
        [[ $name =~ ^[A-Za-z0-9][A-Za-z0-9._-]*$ ]] ||
            fail 2 "$where: the bench's name $name: only letters, digits, '.', '_' and '-' are allowed"
        [[ $daemon =~ ^(\[[0-9A-Fa-f:.]+\]|[^]:[]+)(:[0-9]+)?$ ]] ||
            fail 2 "$where: the daemon $daemon is not of the form HOST[:PORT]"
        [ -z "${daemon_of[$name]:-}" ] || fail 2 "$where: there are two lines for the bench $name"
        [ -z "${bench_at[$daemon]:-}" ] ||
            fail 2 "$where: $name and ${bench_at[$daemon]} have the same daemon, $daemon"
        bench_names+=("$name")
        daemon_of[$name]=$daemon
        device_of[$name]=$device
        bench_at[$daemon]=$name
    done < <(tr -d '\r' <"$1" | LC_ALL=C sed -E 's/(^|[[:blank:]])#.*//')
    [ ${#bench_names[@]} -gt 0 ] || fail 2 "the table of benches $1 names none"
}

# find_bench DIR BENCH: sets daemon and device. Without a table the daemon is on the host that runs this.
find_bench() {
    daemon=127.0.0.1 device=$2
    [ -e "$1/bench-table" ] || return 0
    read_table "$1/bench-table"
    [ -n "${daemon_of[$2]:-}" ] || fail 2 "the bench $2 is not in the sweep's table of benches, $1/bench-table"
    daemon=${daemon_of[$2]} device=${device_of[$2]}
}

# read_note DIR BENCH: whether the bench may be transmitting. Sets noted_host, noted_script, noted_run,
# noted_attempt and noted_daemon, which is the one that was started: the table may have another for the bench by
# now, or none. A host that has died may leave a note without words; the table is then all there is to go by.
read_note() {
    noted_host='' noted_script=0 noted_run=0 noted_attempt='' noted_daemon=''
    [ -e "$1/benches/$2/running" ] || return
    read -r noted_host noted_script noted_run noted_attempt noted_daemon 2>/dev/null \
        <"$1/benches/$2/running" || true
    [ -n "$noted_daemon" ] || noted_daemon=$(find_bench "$1" "$2" 2>/dev/null && printf '%s' "$daemon") || true
}

# run_option NAME OPTIONS...: prints the value that options of run give to one; fails where they do not.
run_option() {
    local name=$1 value='' found=
    shift
    # What follows -- is the client's own first command.
    while [ $# -gt 0 ] && [ "$1" != -- ]; do
        case $1 in
        "$name") found=1 value=${2:-} ;;
        "$name="*) found=1 value=${1#*=} ;;
        esac
        shift
    done
    [ -n "$found" ] && printf '%s' "$value"
}

# failures_of DIR BENCH: how often in a row. On a full disk the file may be empty.
failures_of() {
    local count=0
    read -r count 2>/dev/null <"$1/benches/$2/failures" || true
    echo "${count:-0}"
}
