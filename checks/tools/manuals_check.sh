#!/usr/bin/env bash
# The manual pages are well formed, and say of each tool what its --help says: manuals_check.sh BIN-DIRECTORY
set -u
here=$(cd -P -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd -P)
root=$here/../..
bin=$(readlink -f -- "$1")
failures=0
fail() {
    echo "FAILED  $*"
    failures=$((failures + 1))
}

linted=
for page in "$root"/docs/man/*.[18]; do
    complaints=
    if command -v mandoc >/dev/null; then
        linted=yes
        complaints=$(mandoc -T lint -W warning "$page" 2>&1)
    fi
    if command -v groff >/dev/null && groff -man -Tutf8 /dev/null >/dev/null 2>&1; then
        linted=yes
        complaints+=$(groff -man -ww -Tutf8 "$page" 2>&1 >/dev/null)
    fi
    [[ -z $complaints ]] || fail "${page##*/}: $complaints"
done
[[ $linted ]] || fail "neither mandoc nor groff is installed (scripts/setup installs mandoc)"

# The page as plain text, as far as words go.
text_of() { sed 's/\\-/-/g; s/\\fB//g; s/\\fR//g' "$root/docs/man/$1.1"; }
options_of() { grep -o -- '--[a-z][a-z-]*' | sort -u; }

for tool in atctl cfgctl modemsim; do
    [[ -x $bin/$tool ]] || continue
    # Subcommands with a help of their own.
    case $tool in
        atctl) subcommands=$("$bin/atctl" --help | sed -n '/^Subcommands:/,/^$/s/^  \([a-z]*\) .*/\1/p') ;;
        modemsim) subcommands=$(sed -n 's/^    Subcommand{"\([a-z]*\)".*/\1/p' "$root/tools/modemsim/main.cpp") ;;
        *) subcommands= ;;
    esac
    help=$("$bin/$tool" --help) || fail "$tool --help ends with $?"
    for subcommand in $subcommands; do
        help+=$'\n'$("$bin/$tool" "$subcommand" --help) || fail "$tool $subcommand --help ends with $?"
    done
    [[ $tool = cfgctl || $subcommands ]] || fail "$tool: no subcommands were found"
    differences=$(diff <(options_of <<<"$help") <(text_of "$tool" | options_of)) ||
        fail "$tool: options of --help (<) and of docs/man/$tool.1 (>):
$differences"
    differences=$(diff <(printf '%s\n' $subcommands | sort) \
        <(text_of "$tool" | sed -n "s/^\.SS $tool \([a-z]*\)$/\1/p" | sort)) || [[ $tool = cfgctl ]] ||
        fail "$tool: subcommands of the program (<) and of docs/man/$tool.1 (>):
$differences"
done

differences=$(diff <("$bin/atctl" --help | sed -n '/^Exit status:/,$s/^  \([0-9]*\) .*/\1/p') \
    <(text_of atctl | sed -n '/^\.SH EXIT STATUS/,/^\.SH ENV/s/^\.B \([0-9]*\)$/\1/p')) ||
    fail "atctl: exit statuses of --help (<) and of docs/man/atctl.1 (>):
$differences"

((failures == 0)) && echo "the manual pages say what the programs say"
exit $((failures != 0))
