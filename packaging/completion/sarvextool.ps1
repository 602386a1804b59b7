# Completion of SarvexToolBench and of the simulated daemon vemo, for PowerShell 5.1 and later. Name this
# file in the profile, or call it in the console where it is wanted.

# PowerShell calls the block long after this file has ended, so that all it needs is in it.
Register-ArgumentCompleter -Native -CommandName @(
    'SarvexToolBench', 'SarvexToolBench.exe', 'vemo', 'vemo.exe', 'sarvextool-vemo'
) -ScriptBlock {
    param([string] $wordToComplete, $commandAst, [int] $cursorPosition)

    # The options of a subcommand, each with the kind of its value after a colon. Without a subcommand:
    # those that SarvexToolBench itself has.
    $benchOptions = @{
        '' = '-h --help --version'
        'check' = '-h --help --write:table --mac-type:text --exchange:text --daemon:text --timeout:text'
        'run' = '-h --help --resume:run --out:folder --client:file --limits:table --fail-fast --force ' +
            '--progress:progress --daemon:text --answer-timeout:text --retries:text --wait:text ' +
            '--stop-timeout:text --segment:text --bench:text --device:text --attempt:text --firmware:text ' +
            '--note:text --keep --store:file'
        'stop' = '-h --help --daemon:text --stop-timeout:text'
        'split' = '-h --help --lines:text -o:folder --output:folder'
        'merge' = '-h --help -o:folder --output:folder --partial'
        'judge' = '-h --help --limits:table --junit:xml --json:json --csv:table --group-by:part'
        'report' = '-h --help --limits:table --baseline:result --store:file -o:html --output:html --group-by:part'
        'compare' = '-h --help --baseline:text --store:file --tolerance:text --junit:xml --json:json ' +
            '--html:html --group-by:part'
        'history' = '-h --help'
        'history add' = '-h --help --store:file --bench:text --device:text --firmware:text --note:text ' +
            '--measured:text --limits:table --partial'
        'history list' = '-h --help --store:file --since:text --until:text --bench:text --device:text ' +
            '--firmware:text --file:text --verdict:verdict --json:json'
        'history trend' = '-h --help --store:file --since:text --until:text --bench:text --device:text ' +
            '--firmware:text --file:text --verdict:verdict --limits:table --html:html --json:json'
        'history report' = '-h --help --store:file --since:text --until:text --bench:text --device:text ' +
            '--firmware:text --file:text --verdict:verdict --limits:table -o:html --output:html'
        'history show' = '-h --help --store:file --json:json'
        'history export' = '-h --help -o:folder --output:folder --store:file'
        'history remove' = '-h --help --store:file --yes --force'
        'history check' = '-h --help --store:file'
        'history baseline' = '-h --help'
        'history baseline set' = '-h --help --store:file'
        'history baseline show' = '-h --help --store:file --json:json'
        'history baseline remove' = '-h --help --store:file'
        'help' = '-h --help'
    }
    # The kind of a subcommand's arguments that are no options.
    $benchArguments = @{
        '' = 'subcommand'
        'check' = 'table'
        'run' = 'table'
        'stop' = ''
        'split' = 'table'
        'merge' = 'json'
        'judge' = 'result'
        'report' = 'result'
        'compare' = 'result'
        'history' = 'history'
        'history add' = 'result'
        'history list' = ''
        'history trend' = ''
        'history report' = ''
        'history show' = ''
        'history export' = ''
        'history remove' = ''
        'history check' = ''
        'history baseline' = 'history baseline'
        'history baseline set' = ''
        'history baseline show' = ''
        'history baseline remove' = ''
        'help' = 'subcommand'
    }
    $vemoOptions = '--help --version --port:text --address:text --body-limit:text --request-log:file ' +
        '--seed:text --noise:text --offset:text --mac-type:text --mcc:text --replay:exchanges --latency:text --fault:fault'
    $faults = 'close-before close-after= reset no-answer delay= split-mark split-mark= drip drip= ' +
        'no-mark crlf nul= raw= missing-chain= uncalibrated return-code= big= long-line='
    $endings = @{
        'table' = '.csv'
        'result' = '.csv'
        'exchanges' = '.jsonl'
        'xml' = '.xml'
        'json' = '.json'
        'html' = '.html'
        'file' = ''
    }

    $word = $wordToComplete.Trim([char[]] '''"')
    $before = @($commandAst.CommandElements | Select-Object -Skip 1 |
        Where-Object { $_.Extent.EndOffset -lt $cursorPosition } | ForEach-Object { $_.Extent.Text })

    # Writes an answer when it begins with the word; what PowerShell would not take as it is gets quotes.
    function Write-Answer([string] $text, [string] $type = 'ParameterValue') {
        if ($text.StartsWith($word, [StringComparison]::OrdinalIgnoreCase)) {
            $inserted = $text
            if ($text -match '[\s''"`&;,|<>(){}$@#]') {
                $inserted = "'" + $text.Replace("'", "''") + "'"
            }
            [System.Management.Automation.CompletionResult]::new($inserted, $text, $type, $text)
        }
    }

    # Whether a folder is that of a run, or leads to others.
    function Test-RunFolder([string] $folder) {
        (Test-Path -LiteralPath (Join-Path $folder 'run.json')) -or
            @(Get-ChildItem -LiteralPath $folder -Directory -ErrorAction SilentlyContinue).Count -gt 0
    }

    # Writes the folders and the files with this ending; $null stands for folders alone.
    function Write-PathAnswer([string] $taken, $ending, [bool] $runsOnly = $false) {
        $value = $word.Substring($taken.Length)
        $folder = $value.Substring(0, $value.LastIndexOfAny([char[]] '/\') + 1)
        $place = if ($folder) { $folder } else { '.' }
        foreach ($item in @(Get-ChildItem -LiteralPath $place -ErrorAction SilentlyContinue)) {
            $path = $taken + $folder + $item.Name
            if ($item.PSIsContainer) {
                if (-not $runsOnly -or (Test-RunFolder $item.FullName)) {
                    Write-Answer $path 'ProviderContainer'
                }
            } elseif ($null -ne $ending -and
                $item.Name.EndsWith($ending, [StringComparison]::OrdinalIgnoreCase)) {
                Write-Answer $path 'ProviderItem'
            }
        }
    }

    # WHICH ends at the first colon.
    function Write-FaultAnswer([string] $taken) {
        $value = $word.Substring($taken.Length)
        $colon = $value.IndexOf(':')
        if ($colon -lt 0) {
            Write-Answer "${taken}*:"
            Write-Answer "${taken}text="
            return
        }
        $which = $taken + $value.Substring(0, $colon + 1)
        $fault = $value.Substring($colon + 1)
        if ($fault.StartsWith('missing-chain=')) {
            Write-Answer "${which}missing-chain=A"
            Write-Answer "${which}missing-chain=B"
        } elseif ($fault.StartsWith('raw=')) {
            Write-PathAnswer "${which}raw=" ''
        } else {
            foreach ($name in $faults.Split(' ')) {
                Write-Answer ($which + $name)
            }
        }
    }

    # Writes the values of a kind; the word holds what is in front of the value too, as in --out=DIR.
    function Write-ValueAnswer([string] $kind, [string] $taken) {
        if ($endings.ContainsKey($kind)) {
            Write-PathAnswer $taken $endings[$kind]
        } elseif ($kind -eq 'folder') {
            Write-PathAnswer $taken $null
        } elseif ($kind -eq 'run') {
            Write-PathAnswer $taken $null $true
        } elseif ($kind -eq 'progress') {
            Write-Answer "${taken}text"
            Write-Answer "${taken}json"
        } elseif ($kind -eq 'part') {
            foreach ($name in 'bench', 'device', 'attempt') {
                Write-Answer "${taken}${name}"
            }
        } elseif ($kind -eq 'fault') {
            Write-FaultAnswer $taken
        } elseif ($kind -eq 'verdict') {
            foreach ($name in 'pass', 'fail') {
                Write-Answer "${taken}${name}"
            }
        } elseif ($kind -eq 'subcommand') {
            foreach ($name in 'check', 'run', 'stop', 'split', 'merge', 'judge', 'report', 'compare', 'history',
                'help') {
                Write-Answer $name
            }
        } elseif ($kind -eq 'history') {
            foreach ($name in 'add', 'list', 'show', 'export', 'remove', 'check', 'baseline', 'trend', 'report') {
                Write-Answer $name
            }
        } elseif ($kind -eq 'history baseline') {
            foreach ($name in 'set', 'show', 'remove') {
                Write-Answer $name
            }
        }
    }

    # What follows -- is meant for another program.
    if ($before -contains '--') {
        return
    }
    if ([IO.Path]::GetFileNameWithoutExtension($commandAst.GetCommandName()) -like '*vemo') {
        $options = $vemoOptions.Split(' ')
        $argument = ''
    } else {
        $subcommand = "$($before | Where-Object { -not $_.StartsWith('-') } | Select-Object -First 1)"
        # These two have subcommands of their own, which follow at once.
        if ($subcommand -eq 'history' -and "$($before[1])" -match '^[a-z]') {
            $subcommand += " $($before[1])"
        }
        if ($subcommand -eq 'history baseline' -and "$($before[2])" -match '^[a-z]') {
            $subcommand += " $($before[2])"
        }
        if (-not $benchOptions.ContainsKey($subcommand)) {
            return
        }
        $options = $benchOptions[$subcommand].Split(' ')
        $argument = $benchArguments[$subcommand]
    }
    $last = if ($before.Count -gt 0) { $before[-1] } else { '' }
    foreach ($option in $options) {
        $name, $kind = $option.Split(':')
        if ($kind -and $last -ceq $name) {
            Write-ValueAnswer $kind ''
            return
        }
        if ($kind -and $word.StartsWith("$name=", [StringComparison]::Ordinal)) {
            Write-ValueAnswer $kind "$name="
            return
        }
    }
    if ($word.StartsWith('-') -or (-not $word -and -not $argument)) {
        foreach ($option in $options) {
            Write-Answer ($option.Split(':')[0]) 'ParameterName'
        }
    } else {
        Write-ValueAnswer $argument ''
    }
}
