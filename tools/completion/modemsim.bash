# bash completion of modemsim: options as its help tells them, the names of the shipped scenarios, orders, files.

_modemsim() {
    local word=${COMP_WORDS[COMP_CWORD]} sub='' offered=''
    case ${COMP_WORDS[1]} in
        -* | '') ;;
        *) ((COMP_CWORD < 2)) || sub=${COMP_WORDS[1]} ;;
    esac
    if [[ $word = -* ]]; then
        offered=$("$1" $sub --help 2>/dev/null | sed -n 's/^ *\(-[a-z],\)\{0,1\}\(--[a-z-]*\).*/\2/p')
    elif [[ $sub = ctl ]]; then
        # The first word of an order, or the second one where it has two.
        offered=$("$1" ctl help | sed -n "s/^  ${COMP_WORDS[2]:-none} \([a-z]*\) .*/\1/p")
        ((COMP_CWORD > 2)) || offered=$("$1" ctl help | sed 's/^  \([a-z]*\) .*/\1/')
    elif [[ ${COMP_WORDS[COMP_CWORD - 1]} != --* && ($sub = '' || $sub = play) ]]; then
        offered="play ctl record replay redact $("$1" --list 2>/dev/null)"
        [[ $sub = '' ]] || offered=$("$1" --list 2>/dev/null)
    fi
    mapfile -t COMPREPLY < <(compgen -W "$offered" -- "$word"; [[ $word = -* || $sub = ctl ]] || compgen -f -- "$word")
}
complete -o filenames -F _modemsim modemsim
