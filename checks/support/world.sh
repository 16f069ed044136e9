# Sourced by checks that are shell scripts and run in scripts/sandbox: starts a simulated modem and a daemon.

# Until a command succeeds, a minute at most.
wait_for() {
    local i
    for ((i = 0; i < 600; ++i)); do
        "$@" >/dev/null 2>&1 && return
        sleep 0.1
    done
    echo "this did not happen in a minute: $*" >&2
    return 1
}

# start_world TOOLS SCENARIO DAEMON...: with modemsim and atctl of the directory TOOLS. Returns when the daemon answers.
start_world() {
    local tools=$1 scenario=$2
    shift 2
    "$tools/modemsim" "$scenario" >/tmp/modemsim.out 2>&1 &
    wait_for test -L /dev/ttyUSB1 || { cat /tmp/modemsim.out >&2; return 1; }
    "$@" &
    wait_for "$tools/atctl" send AT --timeout 1
}
