#!/usr/bin/env bash
# Runs the example modules against the real daemon and a simulated modem, and looks at what they print, how they end and
# what they leave behind. In scripts/sandbox:
#   examples_check.sh PROGRAMS EXAMPLES
set -u
root=$(cd -P -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd -P)
# shellcheck source=checks/support/world.sh
. "$root/checks/support/world.sh"
programs=$1 examples=$2
failures=0

# expect NAME EXPECTED ACTUAL
expect() {
    if [[ $3 = $2 ]]; then
        echo "ok      $1"
    else
        printf 'FAILED  %s\n--- expected\n%s\n--- came\n%s\n' "$1" "$2" "$3"
        failures=$((failures + 1))
    fi
}
# Queues that are there but for the server's.
queues() { ipcs -q | grep -i '^0x' | grep -vi '^0x0*1000 ' | wc -l; }
# Starts an example, which reads from the pipe $input; its output goes to a file that can be looked at meanwhile.
mkfifo /tmp/quiet /tmp/spoken
exec 5<>/tmp/quiet
input=/tmp/quiet
start() {
    : >/tmp/out # what an earlier one printed must not be taken for this one's
    "$@" <"$input" >/tmp/out 2>&1 &
    example=$!
}
# Until it has printed a line like this.
prints() { wait_for grep -q "$1" /tmp/out || sed 's/^/    /' /tmp/out; }
# end_with SIGNAL: its exit status.
end_with() {
    kill "-$1" "$example"
    wait "$example"
}

# What cannot be meant is told before anything is asked for: without a server these would end with 1, with one they would
# dial or run on.
while read -r name words; do
    case $words in --help) wanted='0 usage out' ;; *) wanted='2 usage err' ;; esac
    # shellcheck disable=SC2086 # words, not a word
    timeout 10 "$examples/$name" $words </tmp/quiet >/tmp/out 2>/tmp/err
    status=$?
    grep -q "^usage: $name" /tmp/out && [ ! -s /tmp/err ] && status="$status usage out"
    grep -q "^usage: $name" /tmp/err && [ ! -s /tmp/out ] && status="$status usage err"
    expect "$name $words" "$wanted" "$status"
done <<'WORDS'
place_call --help
place_call --hepl
place_call
place_call 07700900123x
place_call 07700900123 5s
place_call 07700900123 -1
place_call 07700900123 1 2
signal_meter --help
signal_meter abc
signal_meter 3x
signal_meter 0
signal_meter 1 2
receive_messages --help
receive_messages --hepl
receive_messages --help now
WORDS

# A number of 35 characters is asked for, which fails without a server; a longer one is not.
number=12345678901234567890123456789012345
start "$examples/place_call" "$number"
wait "$example"
expect "the longest number" "1 place_call: dialling: there is no queue of the server's; start at-server" "$? $(cat /tmp/out)"
start "$examples/place_call" "${number}6"
wait "$example"
expect "a number that would be cut" "2 place_call: a number has at most 35 characters; this one has 36" "$? $(cat /tmp/out)"

start "$examples/signal_meter"
wait "$example"
expect "without a server, the reason is told" "1 signal_meter: there is no queue of the server's; start at-server" "$? $(cat /tmp/out)"
expect "and nothing is left" 0 "$(queues)"

start_world "$programs" "$root/examples/examples.modem" "$programs/at-server" || exit 1

start "$examples/signal_meter" 3
wait "$example"
expect "the signal, read three times" $'0 -71 dBm\n-89 dBm\nno signal' "$? $(cat /tmp/out)"
expect "the meter's queue is gone" 0 "$(queues)"
start "$examples/signal_meter"
prints 'no signal'
expect "the meter has a queue while it runs" 1 "$(queues)"
end_with INT
expect "Ctrl-C ends the meter" 0 $?
expect "and takes its queue away" 0 "$(queues)"

pdu='0791447700090000040C9144770009406500086211022151000022041F04400438043204350442002C00200434043E0020043204350447043504400430'
start "$examples/receive_messages"
prints '^message'
expect "a message is received" "waiting for messages
message 2, 53 octets: $pdu" "$(head -n 2 /tmp/out)"
"$examples/receive_messages" </dev/null >/tmp/second 2>&1
expect "a second module of the same id is refused" \
    "1 receive_messages: opening: the module has a queue already; end the program that uses it, or remove it with ipcrm -Q" \
    "$? $(cat /tmp/second)"
end_with TERM
expect "SIGTERM ends the receiver" 0 $?
expect "and takes its queue away" 0 "$(queues)"
input=/tmp/spoken
start "$examples/receive_messages"
exec 6>/tmp/spoken
prints '^waiting'
echo list >&6
prints '^message 3'
exec 6>&-
input=/tmp/quiet
wait "$example"
expect "the end of its input ends the receiver" 0 $?
expect "the list was read meanwhile" 1 "$(grep -c '^message 1, 50 octets: ' /tmp/out)"

# Killed, it leaves its queue behind; the next one takes over.
start "$examples/receive_messages"
prints '^waiting'
end_with KILL 2>/dev/null
expect "killed, the receiver leaves its queue" 1 "$(queues)"
start "$examples/receive_messages"
prints '^message 2'
end_with INT
expect "and the next one takes over" 0 $?
expect "which removes it" 0 "$(queues)"

start "$examples/place_call" 07700900123 1
wait "$example"
expect "a call" "0 dialling 07700900123
it rings over there
connected
the call has ended (HANGUP: 16)" "$? $(cat /tmp/out)"
start "$examples/place_call" 07700900123 60
prints connected
end_with INT
expect "Ctrl-C ends the call" 0 $?
expect "and takes the queue away" 0 "$(queues)"
start "$examples/place_call" 07700900999
wait "$example"
expect "a busy line" "1 place_call: dialling: busy" "$? $(cat /tmp/out)"

exit $((failures != 0))
