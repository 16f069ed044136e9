#!/usr/bin/env bash
# Presses the tabulator: completion_check.sh BIN-DIRECTORY. Drives the completions of tools/completion as bash does, and
# those for zsh where there is one.
set -u
here=$(cd -P -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd -P)
completion=$here/../../tools/completion
PATH=$(readlink -f -- "$1"):$PATH
failures=0
compopt() { options+=" $*"; }
for file in "$completion"/*.bash; do source "$file"; done

# offers LINE WORD...: what is offered at the end of the line are these words, in any order.
offers() {
    local line=$1 wanted got
    shift
    COMP_LINE=$line COMP_POINT=${#line} COMPREPLY=() options=
    # As bash splits it, for the completions that need no more.
    read -ra COMP_WORDS <<<"$line"
    [[ $line != *' ' ]] || COMP_WORDS+=('')
    COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
    "_${COMP_WORDS[0]##*/}" "${COMP_WORDS[0]}"
    wanted=$(printf '%s\n' "$@" | sort)
    got=$(printf '%s\n' ${COMPREPLY[@]+"${COMPREPLY[@]}"} | sort)
    if [[ $got = "$wanted" ]]; then
        echo "ok      $line"
    else
        echo "FAILED  $line: offered" ${got:-nothing}
        failures=$((failures + 1))
    fi
}

offers 'atctl s' send show
offers 'atctl --v' --version
offers 'atctl send +CSQ' +CSQ
offers 'atctl send csq' +CSQ
offers 'atctl send +creg' '+CREG=' '+CREG\?'
offers "atctl send '+CREG" '+CREG=' '+CREG?'
offers 'atctl send "+CREG' '+CREG=' '+CREG?'
offers 'atctl send \$QCSYS' '\$QCSYSMODE\?'
offers 'atctl send "$QCSYS' '\$QCSYSMODE?'
offers 'atctl send +CMTI'
# Behind an equals sign readline completes only the rest.
offers 'atctl send +CPMS=' ''
offers 'atctl send +CPMS= ' mem1= mem2= mem3=
offers "atctl send '+CPMS=' SM mem2=ME m" mem3=
offers 'atctl send +CREG= n=' 0 1 2
offers 'atctl send +CSQ --j' --json
offers 'atctl send --color=a' auto always
offers 'atctl watch +CSQ 2 --field ' rssi ber
offers 'atctl bench --command +CREG' '+CREG\?'
offers 'atctl monitor sms s' sim
offers 'atctl xyzzy '
offers 'modemsim --che' --check
offers 'modemsim demo' demo
offers 'modemsim ctl ri' ring
offers 'modemsim ctl network ' lose restore roam
offers 'cfgctl g' get

# A blank follows a word that is whole, and none follows "name=".
offers 'atctl send +CREG= n' n=
[[ $options = *nospace* ]] || { echo "FAILED  a blank would follow n="; failures=$((failures + 1)); }
offers 'atctl send +CREG' '+CREG=' '+CREG\?'
[[ $options != *nospace* ]] || { echo "FAILED  no blank would follow +CREG="; failures=$((failures + 1)); }

# Only the command under the cursor counts, wherever it stands.
COMP_LINE='echo x; sudo atctl send +CSQ; ls' COMP_POINT=28
_atctl atctl
[[ ${COMPREPLY[*]} = +CSQ ]] || { echo "FAILED  behind another command: ${COMPREPLY[*]-}"; failures=$((failures + 1)); }

# Whatever the help tells is offered.
for subcommand in '' send watch monitor bench list show; do
    mapfile -t told < <(atctl $subcommand --help | sed -n 's/^ *\(-[a-z],\)\{0,1\}\(--[a-z]*\).*/\2/p')
    offers "atctl ${subcommand:+$subcommand }--" "${told[@]}"
done

if command -v zsh >/dev/null; then
    for line in 'atctl send +CSQ|+CSQ:signal quality' 'atctl send \$QCSYS|$QCSYSMODE?:radio mode in use' \
        'atctl monitor sms s|sim:module 0x1003' 'atctl send +CPMS= mem1|mem1=:storage to read and delete from'; do
        # What _describe, which belongs to the completion system, would be given.
        got=$(zsh -f -c '
            _describe() { print -rl -- "${(@P)3}" }
            words=("${(@z)1}") CURRENT=${#words} PREFIX=$words[-1]
            source "$2"' zsh "${line%|*}" "$completion/_atctl" | sed '/^$/d')
        if [[ $got = "${line#*|}" ]]; then
            echo "ok      zsh: ${line%|*}"
        else
            echo "FAILED  zsh: ${line%|*}: $got"
            failures=$((failures + 1))
        fi
    done
    for file in "$completion"/_*; do zsh -n "$file" || failures=$((failures + 1)); done
else
    echo "zsh is not installed: its completion was not tried"
fi
((failures == 0))
