# bash completion of atctl. It asks atctl itself, and so knows every command, field and option that the program knows.

_atctl() {
    # The words up to the cursor as the shell would read them; the last one may be unfinished or empty.
    local line=${COMP_LINE:0:COMP_POINT} words=() word='' quote='' begun='' char next i
    for ((i = 0; i < ${#line}; ++i)); do
        char=${line:i:1} next=${line:i+1:1}
        if [[ $quote ]]; then
            if [[ $char = "$quote" ]]; then
                quote=''
            elif [[ $quote = '"' && $char = "\\" && $next = [\"\\\$\`] ]]; then
                word+=$next
                i=$((i + 1))
            else
                word+=$char
            fi
            continue
        fi
        case $char in
            [[:blank:]])
                [[ ! $begun ]] || words+=("$word")
                word='' begun=''
                ;;
            [\;\|\&\(]) words=() word='' begun='' ;;
            [\'\"]) quote=$char begun=yes ;;
            "\\") word+=$next begun=yes i=$((i + 1)) ;;
            *) word+=$char begun=yes ;;
        esac
    done
    # What stands before the command: sudo, assignments.
    while ((${#words[@]})) && [[ ${words[0]##*/} != "${1##*/}" ]]; do words=("${words[@]:1}"); done

    # Outside quotes readline completes only what is behind the last break character.
    local kept=''
    [[ $quote ]] || kept=${word%"${word##*[$COMP_WORDBREAKS]}"}
    local candidate offered kind=''
    COMPREPLY=()
    # Candidate, whether it is a whole word, and what it means.
    while IFS=$'\t' read -r candidate offered _; do
        kind=$offered
        candidate=${candidate:${#kept}}
        if [[ $quote = "'" ]]; then
            candidate=${candidate//"'"/"'\\''"}
        elif [[ $quote ]]; then
            candidate=$(sed 's/["$`\\]/\\&/g' <<<"$candidate")
        elif [[ $candidate ]]; then
            printf -v candidate %q "$candidate"
        fi
        COMPREPLY+=("$candidate")
    done < <("${1/#\~\//$HOME/}" complete "${words[@]:1}" "$word" 2>/dev/null)
    if ((${#COMPREPLY[@]} == 1)) && [[ $kind = more ]]; then compopt -o nospace 2>/dev/null; fi
}
complete -F _atctl atctl
