#!/usr/bin/env bash
# Checks the program given as argument, cfgctl, in a sandbox. Exit 77 where there can be none.
set -u
if [[ ${1-} != --inside ]]; then
    here=$(cd -P -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd -P)
    cfgctl=$(readlink -f -- "$1")
    "$here/../../scripts/sandbox" -- true || exit 77
    exec "$here/../../scripts/sandbox" --ro "$(dirname -- "$cfgctl")" -- "$here/cfgctl_check.sh" --inside "$cfgctl"
fi

cfgctl=$2
failures=0
any=$'[^\n]*' # the rest of a line

# expect NAME STATUS STDOUT STDERR-PATTERN COMMAND...
expect() {
    local name=$1 status=$2 out=$3 pattern=$4 actual actual_out actual_err
    shift 4
    actual_out=$("$@" 2>/tmp/stderr; echo "status $?")
    actual=${actual_out##*status }
    actual_out=${actual_out%status *}
    actual_err=$(</tmp/stderr)
    if [[ $actual = "$status" && $actual_out = "$out" && $actual_err =~ ^$pattern$ ]]; then
        echo "ok      $name"
    else
        failures=$((failures + 1))
        printf 'FAILED  %s: status %s, output "%s", errors "%s"\n' "$name" "$actual" "$actual_out" "$actual_err"
    fi
}

expect "get of a missing key" 1 '' 'cfgctl: there is no key port_stat' "$cfgctl" get port_stat
expect "list of an empty store" 0 '' '' "$cfgctl" list
expect "set" 0 '' '' "$cfgctl" set port_stat port_open
expect "get" 0 $'port_open\n' '' "$cfgctl" get port_stat
expect "get of a prefix" 1 '' 'cfgctl: there is no key port_sta; did you mean port_stat\?' "$cfgctl" get port_sta
expect "get of another key" 1 '' 'cfgctl: there is no key xyzzy' "$cfgctl" get xyzzy
expect "an unknown command" 2 '' 'cfgctl: there is no command lst; did you mean list\?; try cfgctl --help' "$cfgctl" lst
expect "set of an empty value" 0 '' '' "$cfgctl" set AT_Test ''
expect "get of an empty value" 0 $'\n' '' "$cfgctl" get AT_Test
expect "set of control characters" 0 '' '' "$cfgctl" set text $'a\nb\tc\rd\001 \\ ü=='
expect "get gives them as they are" 0 $'a\nb\tc\rd\001 \\ ü==\n' '' "$cfgctl" get text
expect "list is sorted and one line a key" 0 $'AT_Test=\nport_stat=port_open\ntext=a\\nb\\tc\\rd\\x01 \\ ü==\n' '' "$cfgctl" list

long=$(printf '%4095s' x)
expect "set of the longest value" 0 '' '' "$cfgctl" set long "$long"
expect "get of the longest value" 0 "$long"$'\n' '' "$cfgctl" get long
expect "a longer value" 2 '' "cfgctl: ${any}4095 bytes$any" "$cfgctl" set long "$long."
expect "it changed nothing" 0 "$long"$'\n' '' "$cfgctl" get long
key=$(printf '%255s' k)
expect "the longest key" 0 '' '' "$cfgctl" set "$key" 1
expect "a longer key" 2 '' "cfgctl: ${any}255 bytes$any" "$cfgctl" set "$key." 1

for arguments in '' 'get' 'get a b' 'set' 'set a' 'set a b c' 'list a' 'put a b' '--nonsense' 'get a=b' 'set a=b c'; do
    expect "misuse '$arguments'" 2 '' "cfgctl: $any" "$cfgctl" $arguments
done
expect "an empty key" 2 '' "cfgctl: KEY is empty$any" "$cfgctl" get ''
expect "--version" 0 "$("$cfgctl" --version)"$'\n' '' "$cfgctl" --version
[[ $("$cfgctl" --version) =~ ^cfgctl\ [0-9]+\.[0-9]+\.[0-9]+$ ]] || { echo "FAILED  --version"; failures=1; }
[[ $("$cfgctl" --help) = Usage:* ]] || { echo "FAILED  --help"; failures=1; }
expect "output that cannot be written" 3 '' 'cfgctl: standard output: No space left on device' \
    sh -c '"$0" list >/dev/full' "$cfgctl"

# Where there is another user to be.
nobody=(setpriv --reuid=65534 --regid=65534 --clear-groups)
if "${nobody[@]}" "$cfgctl" --version >/dev/null 2>&1; then
    chmod 700 /etc_rw/config
    expect "another user may not" 4 '' "cfgctl: cannot open ${any}Permission denied; run as the user that owns it$any" \
        "${nobody[@]}" "$cfgctl" get port_stat
    chmod 755 /etc_rw/config
    expect "another user may not write" 4 '' "cfgctl: ${any}Permission denied; run as the user that owns it$any" \
        "${nobody[@]}" "$cfgctl" set port_stat port_close
fi

mv /etc_rw/config /etc_rw/elsewhere
missing='cfgctl: cannot open the configuration store /etc_rw/config/.store: No such file or directory; '"$any"
expect "get without a store" 3 '' "$missing" "$cfgctl" get AT_Test
expect "set without a store" 3 '' "$missing" "$cfgctl" set AT_Test on
expect "list without a store" 3 '' "$missing" "$cfgctl" list
[[ ! -e /etc_rw/config ]] || { echo "FAILED  a store was made from nothing"; failures=1; }
mv /etc_rw/elsewhere /etc_rw/config
expect "the store is back" 0 $'port_open\n' '' "$cfgctl" get port_stat

((failures == 0))
