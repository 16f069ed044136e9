# bash completion of modemsim: options as its help tells them, the names of the shipped scenarios, files.

_modemsim() {
    local word=${COMP_WORDS[COMP_CWORD]} sub='' offered=''
    case ${COMP_WORDS[1]} in
        -* | '') ;;
        *) ((COMP_CWORD < 2)) || sub=${COMP_WORDS[1]} ;;
    esac
    if [[ $word = -* ]]; then
        offered=$("$1" $sub --help 2>/dev/null | sed -n 's/^ *\(-[a-z],\)\{0,1\}\(--[a-z-]*\).*/\2/p')
    elif [[ ${COMP_WORDS[COMP_CWORD - 1]} != --* && ($sub = '' || $sub = play) ]]; then
        offered="play record replay redact $("$1" --list 2>/dev/null)"
        [[ $sub = '' ]] || offered=$("$1" --list 2>/dev/null)
    fi
    mapfile -t COMPREPLY < <(compgen -W "$offered" -- "$word"; [[ $word = -* ]] || compgen -f -- "$word")
}
complete -o filenames -F _modemsim modemsim
