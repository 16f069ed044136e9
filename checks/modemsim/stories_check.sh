#!/usr/bin/env bash
# What modules live through, with the real daemon and the default modem, steered while it runs.
#   stories_check.sh BUILD-DIRECTORY      exit 77 where there can be no sandbox
set -u
root=$(cd -P -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd -P)

if [[ $1 != --inside ]]; then
    "$root/scripts/sandbox" -- true || exit 77
    exec "$root/scripts/sandbox" -- "$root/scripts/world" --scenario default --build "$1" -- "$0" --inside
fi

failures=0

# expect STATUS TEXT COMMAND...: its exit status, and a text that must be in what it prints ("" for any).
expect() {
    local wanted=$1 text=$2 printed status
    shift 2
    printed=$("$@" 2>&1)
    status=$?
    [[ $status = "$wanted" && $printed = *"$text"* ]] && return
    failures=$((failures + 1))
    printf 'FAILED  %s: status %s instead of %s, or "%s" is missing in\n%s\n' "$*" "$status" "$wanted" "$text" "$printed"
}
ask() { atctl send --timeout 20 "$@"; }
ctl() { modemsim ctl "$@"; }

# reported MODULE TEXT COMMAND...: the command succeeds, and a report with this text reaches the module (20 s at most).
reported() {
    local module=$1 text=$2 watcher tries=200
    shift 2
    : >/tmp/reports
    atctl monitor "$module" --timeout 25 >/tmp/reports 2>/tmp/listening &
    watcher=$!
    until grep -q listening /tmp/listening || ((--tries == 0)); do sleep 0.1; done
    expect 0 "" "$@"
    tries=200
    until grep -qF -- "$text" /tmp/reports || ((--tries == 0)); do sleep 0.1; done
    if ((tries == 0)); then
        failures=$((failures + 1))
        printf 'FAILED  after "%s" no report "%s" in\n' "$*" "$text"
        cat /tmp/reports
    fi
    kill "$watcher"
    wait "$watcher" 2>/dev/null
}

story() { echo "story   $1"; }

story "a message is stored, listed, read, sent and deleted"
pdu=0011000B917744770009F10000AA05E8329BFD06
expect 0 "index  6" ask '+CMGW=' 19 2 $pdu
expect 0 "$pdu" ask '+CMGR=' 6
expect 0 "count  2" ask '+CMGL=' 2
expect 0 "mr      17" ask '+CMGS=' 19 $pdu
expect 0 '"+77447700901"' ctl state
expect 1 "304" ask '+CMGS=' 18 $pdu
expect 0 "" ask '+CMGD=' 6 0
expect 1 "321" ask '+CMGR=' 6

story "a message comes in"
reported sms "SM" ctl message +447700900123 Hello
expect 0 "05C8329BFD06" ask '+CMGR=' 6

story "the PIN, wrong and then right"
expect 0 "" ctl sim lock
expect 0 "SIM PIN" ask '+CPIN?'
expect 1 "311" ask '+CMGL=' 4
expect 1 "16" ask '+CPIN=' 1111
expect 0 "PinNum1  2" ask '+CPINC'
reported sim "1A2B" ask '+CPIN=' 1234
expect 0 "PinNum1  3" ask '+CPINC'

story "a call out and a call in"
reported call "VOICE CONNECT" ask D 07700900123
expect 0 "07700900123" ask '+CLCC?'
reported call "HANGUP" ask '+CHUP'
reported call "RING" ctl ring +447700900456
reported call "VOICE CONNECT" ask A
reported call "VOICE NO CARRIER" ctl hangup

story "a context gets its addresses and loses them with the network"
expect 0 "" ask '+CGDCONT=' 3 IP internet.example "" 0 0
reported data "10.64.14.34" ask '+ZGACT=' 1 3
reported data "stat 0" ctl network lose
expect 1 "30" ask '+CGACT=' 1 3
reported sim "1A2B" ctl network restore

story "a USSD menu"
reported ussd "3 Language" ask '+CUSD=' 1 '*101#' 15
expect 0 '"dialogue": "*101#"' ctl state
reported ussd "2 Today" ask '+CUSD=' 1 2 15

story "bytes one by one, glued, with garbage in front"
expect 0 "" ctl fault split 1 gap 1ms
expect 0 "READY" ask '+CPIN?'
expect 0 "" ctl fault off
expect 0 "" ctl fault glue 300ms
expect 0 "" ctl raw '^RSSI:20'
expect 0 "READY" ask '+CPIN?'
expect 0 "" ctl fault off
expect 0 "" ctl fault storm 500
expect 0 "READY" ask '+CPIN?'

echo "$failures failures"
((failures == 0))
