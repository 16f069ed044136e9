# bash completion of cfgctl.

_cfgctl() {
    local word=${COMP_WORDS[COMP_CWORD]} offered=''
    case $COMP_CWORD in
        1) offered='get set list --help --version' ;;
        2) case ${COMP_WORDS[1]} in get | set) offered=$("$1" list 2>/dev/null | sed 's/=.*//') ;; esac ;;
    esac
    mapfile -t COMPREPLY < <(compgen -W "$offered" -- "$word")
}
complete -F _cfgctl cfgctl
