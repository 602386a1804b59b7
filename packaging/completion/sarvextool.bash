# Completion of SarvexToolBench and of the simulated daemon vemo, for bash 4 or later. Source this file,
# or install it as /usr/share/bash-completion/completions/SarvexToolBench, with a link to it beside it for
# each name of the simulated daemon. It does not need the package bash-completion.

# The options of a subcommand, each with the kind of its value after a colon. Without a subcommand: those
# that SarvexToolBench itself has.
_sarvextool_bench_options() {
    case $1 in
    '') echo -h --help --version ;;
    help) echo -h --help ;;
    check) echo -h --help --write:table --mac-type:text --exchange:text --daemon:text --timeout:text ;;
    run)
        echo -h --help --resume:run --out:folder --client:file --limits:table --fail-fast --force \
            --progress:progress --daemon:text --answer-timeout:text --retries:text --wait:text \
            --stop-timeout:text --segment:text --bench:text --device:text --attempt:text --firmware:text \
            --note:text --keep --store:file
        ;;
    stop) echo -h --help --daemon:text --stop-timeout:text ;;
    split) echo -h --help --lines:text -o:folder --output:folder ;;
    merge) echo -h --help -o:folder --output:folder --partial ;;
    judge) echo -h --help --limits:table --junit:xml --json:json --csv:table --group-by:part ;;
    report)
        echo -h --help --limits:table --baseline:result --store:file -o:html --output:html --group-by:part
        ;;
    compare)
        echo -h --help --baseline:text --store:file --tolerance:text --junit:xml --json:json --html:html \
            --group-by:part
        ;;
    history | 'history baseline') echo -h --help ;;
    'history add')
        echo -h --help --store:file --bench:text --device:text --firmware:text --note:text --measured:text \
            --limits:table --partial
        ;;
    'history list')
        echo -h --help --store:file --since:text --until:text --bench:text --device:text --firmware:text \
            --file:text --verdict:verdict --json:json
        ;;
    'history trend')
        echo -h --help --store:file --since:text --until:text --bench:text --device:text --firmware:text \
            --file:text --verdict:verdict --limits:table --html:html --json:json
        ;;
    'history report')
        echo -h --help --store:file --since:text --until:text --bench:text --device:text --firmware:text \
            --file:text --verdict:verdict --limits:table -o:html --output:html
        ;;
    'history show' | 'history baseline show') echo -h --help --store:file --json:json ;;
    'history export') echo -h --help -o:folder --output:folder --store:file ;;
    'history remove') echo -h --help --store:file --yes --force ;;
    'history check' | 'history baseline set' | 'history baseline remove') echo -h --help --store:file ;;
    esac
}

# The kind of a subcommand's arguments that are no options.
_sarvextool_bench_argument() {
    case $1 in
    '' | help) echo subcommand ;;
    check | run | split) echo table ;;
    merge) echo json ;;
    judge | report | compare | 'history add') echo result ;;
    history | 'history baseline') echo "$1" ;;
    esac
}

_sarvextool_vemo_options() {
    echo --help --version --port:text --address:text --body-limit:text --request-log:file --seed:text \
        --noise:text --offset:text --mac-type:text --mcc:text --replay:exchanges --latency:text --fault:fault
}

# Reads the words before the cursor into words and the one under it into word. Bash has begun a new piece
# at each = and : of COMP_WORDBREAKS; here they are one word again. What bash is going to replace is only
# the last piece, so that taken, what is before it, must not be in an answer.
_sarvextool_words() {
    local piece at=-1 goes_on=
    words=()
    for piece in "${COMP_WORDS[@]:1:COMP_CWORD}"; do
        if [[ $at -ge 0 && -n $piece && ( -n $goes_on || $piece == [=:]* ) ]]; then
            words[at]+=$piece
        else
            words[++at]=$piece
        fi
        goes_on=
        [[ $piece != *[=:] ]] || goes_on=1
    done
    word=${words[at]}
    unset 'words[at]'
    [[ $piece != [=:]* ]] || piece=
    taken=${word%"$piece"}
    # In quotes a word is one piece, and everything else is as it is meant.
    case $word in
    [\"\']*) word=${word:1} taken= ;;
    *) word=${word//\\/} ;;
    esac
}

# Adds the answers that begin with the word, without what bash keeps.
_sarvextool_answer() {
    local answer
    for answer; do
        [[ $answer != "$word"* ]] || COMPREPLY+=("${answer#"$taken"}")
    done
}

# Answers with the folders, and with the files that have one of the endings.
_sarvextool_files() {
    local path ending before=$1
    shift
    local -a paths
    compopt -o filenames 2>/dev/null
    mapfile -t paths < <(compgen -f -- "${word#"$before"}")
    for path in "${paths[@]}"; do
        if [[ -d ${path/#~\//$HOME/} ]]; then
            _sarvextool_answer "$before$path"
            continue
        fi
        for ending; do
            [[ ${path,,} != *"$ending" ]] || _sarvextool_answer "$before$path"
        done
    done
}

# Answers with the folders of runs, and with those that hold other folders.
_sarvextool_runs() {
    local path folder below
    local -a paths
    compopt -o filenames 2>/dev/null
    mapfile -t paths < <(compgen -d -- "${word#"$1"}")
    for path in "${paths[@]}"; do
        folder=${path/#~\//$HOME/}
        below=$(compgen -d -- "$folder/")
        [[ ! -e $folder/run.json && -z $below ]] || _sarvextool_answer "$1$path"
    done
}

_sarvextool_fault() {
    local which fault before=$1
    local value=${word#"$before"}
    if [[ $value != *:* ]]; then
        compopt -o nospace 2>/dev/null
        _sarvextool_answer "$before*:" "${before}text="
        return
    fi
    which=${value%%:*}
    case ${value#*:} in
    missing-chain=*) _sarvextool_answer "$before$which:missing-chain="{A,B} ;;
    raw=*) _sarvextool_files "$before$which:raw=" '' ;;
    *)
        for fault in close-before close-after= reset no-answer delay= split-mark split-mark= drip drip= \
            no-mark crlf nul= raw= missing-chain= uncalibrated return-code= big= long-line=; do
            _sarvextool_answer "$before$which:$fault"
        done
        [[ ${#COMPREPLY[@]} -ne 1 || ${COMPREPLY[0]} != *= ]] || compopt -o nospace 2>/dev/null
        ;;
    esac
}

# Answers with the values of a kind; the word holds what is in front of the value too, as in --out=DIR.
_sarvextool_value() {
    case $1 in
    table) _sarvextool_files "$2" .csv ;;
    result) _sarvextool_files "$2" .csv ;;
    exchanges) _sarvextool_files "$2" .jsonl ;;
    xml | json | html) _sarvextool_files "$2" ".$1" ;;
    file) _sarvextool_files "$2" '' ;;
    folder) _sarvextool_files "$2" ;;
    run) _sarvextool_runs "$2" ;;
    progress) _sarvextool_answer "$2"{text,json} ;;
    part) _sarvextool_answer "$2"{bench,device,attempt} ;;
    subcommand) _sarvextool_answer "$2"{check,run,stop,split,merge,judge,report,compare,history,help} ;;
    history) _sarvextool_answer {add,list,show,export,remove,check,baseline,trend,report} ;;
    'history baseline') _sarvextool_answer {set,show,remove} ;;
    verdict) _sarvextool_answer "$2"{pass,fail} ;;
    fault) _sarvextool_fault "$2" ;;
    esac
}

# Answers with the options, the value of an option, or an argument of that kind.
_sarvextool_complete() {
    local argument=$1 option last=
    shift
    [[ ${#words[@]} -eq 0 ]] || last=${words[-1]}
    for option; do
        [[ $option == *:* ]] || continue
        if [[ $last == "${option%:*}" ]]; then
            _sarvextool_value "${option#*:}" ''
            return
        elif [[ $word == "${option%:*}="* ]]; then
            _sarvextool_value "${option#*:}" "${option%:*}="
            return
        fi
    done
    if [[ $word == -* || ( -z $word && -z $argument ) ]]; then
        _sarvextool_answer "${@%:*}"
    else
        _sarvextool_value "$argument" ''
    fi
}

_sarvextool_bench() {
    local subcommand='' word taken candidate IFS=$' \t\n'
    local -a words options
    COMPREPLY=()
    _sarvextool_words
    for candidate in "${words[@]}"; do
        # What follows -- is meant for another program.
        [[ $candidate != -- ]] || return 0
        [[ -n $subcommand || $candidate == -* ]] || subcommand=$candidate
    done
    # These two have subcommands of their own, which follow at once.
    [[ $subcommand != history || ${words[1]} != [a-z]* ]] || subcommand+=" ${words[1]}"
    [[ $subcommand != 'history baseline' || ${words[2]} != [a-z]* ]] || subcommand+=" ${words[2]}"
    read -ra options < <(_sarvextool_bench_options "$subcommand")
    _sarvextool_complete "$(_sarvextool_bench_argument "$subcommand")" "${options[@]}"
}

_sarvextool_vemo() {
    local word taken IFS=$' \t\n'
    local -a words options
    COMPREPLY=()
    _sarvextool_words
    read -ra options < <(_sarvextool_vemo_options)
    _sarvextool_complete '' "${options[@]}"
}

complete -F _sarvextool_bench SarvexToolBench SarvexToolBench.exe
complete -F _sarvextool_vemo vemo vemo.exe sarvextool-vemo
