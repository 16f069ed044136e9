#!/usr/bin/env bash
# Is the systemd service well formed and hardened, and does it allow all that the daemon does? No systemd runs here: the
# daemon is watched while it works, and what it did is held against the unit's words.
#   service_check.sh BUILD-DIRECTORY WORK-DIRECTORY      exit 77 without strace or systemd-analyze (250 or newer)
set -u
export LC_ALL=C
here=$(cd -P -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd -P)
root=$(cd -P -- "$here/../.." && pwd -P)
# shellcheck source=checks/support/world.sh
. "$root/checks/support/world.sh"
# shellcheck source=checks/support/verdict.sh
. "$root/checks/support/verdict.sh"

if [[ $1 = --inside ]]; then
    bin=$2
    cat >/tmp/drop.modem <<END
include $root/scenarios/default.modem
# The data connection drops.
report 200ms after AT+CREG?
    | +ZCONSTAT: 0,1
END
    "$bin/cfgctl" set WatchDog_Setting_Option on
    # A file for each thread, so that no call is told in two halves.
    start_world "$bin" /tmp/drop.modem strace -ff -qq -o /tmp/trace "$bin/at-server"
    "$bin/atctl" send +CREG? >&2
    "$bin/atctl" send +CMGL= 4 >&2
    "$bin/atctl" send +CUSD= 1 '*100#' 15 >&2
    traced() { cat /tmp/trace.* | grep -q "$1"; }
    wait_for traced 'read(.*ZCONSTAT'
    wait_for traced 'openat(.*/etc/cusd'
    # What the watchdog runs after four silent minutes.
    strace -ff -qq -o /tmp/trace.touch sh -c 'touch /etc_rw/config/WatchDog/at_abnormal0.xml'
    kill "$(pidof at-server)"
    cat /tmp/trace.*
    exit
fi

build=$1 work=$2
for program in systemd-analyze strace; do
    command -v "$program" >/dev/null || skip "$program is missing: run scripts/setup --all"
done
systemd-analyze --help | grep -q -e --offline || skip "systemd-analyze has no --offline: systemd 250 or newer is needed"
"$root/scripts/sandbox" -- true || exit 77
rm -rf "$work"
mkdir -p "$work"
silent() {
    local output
    if ! output=$("$@" 2>&1) || [[ $output ]]; then
        echo "$output"
        return 1
    fi
}

cmake --install "$build" --prefix "$work" --component daemon >/dev/null || exit 1
unit=$work/lib/systemd/system/at-server.service
check "systemd reads the unit" silent systemd-analyze verify --man=no "$unit"
# Of 100; about 10 with what the fixed paths and the queues leave.
check "its exposure" systemd-analyze security --offline=yes --threshold=12 "$unit"

"$root/scripts/sandbox" --ro "$build/bin" -- "$here/service_check.sh" --inside "$(cd "$build/bin" && pwd)" \
    >"$work/trace" 2>"$work/answers"

# ---- system calls
# members SET: the calls of a set of systemd's, sets in it resolved.
members() {
    local name
    systemd-analyze syscall-filter "$1" | grep -v '#' | sed 1d | tr -d ' ' | while read -r name; do
        case $name in
            @*) members "$name" ;;
            ?*) echo "$name" ;;
        esac
    done
}
allowed=$work/allowed
: >"$allowed"
while read -r sets; do
    for set in ${sets#\~}; do members "$set"; done | sort -u >"$work/set"
    if [[ $sets = \~* ]]; then
        comm -23 "$allowed" "$work/set" >"$work/rest" && mv "$work/rest" "$allowed"
    else
        sort -u "$allowed" "$work/set" -o "$allowed"
    fi
done < <(sed -n 's/^SystemCallFilter=//p' "$unit")
used=$work/used
sed -n 's/^\([a-z_0-9]*\)(.*/\1/p' "$work/trace" | sort -u >"$used"
# watched CALL...: the trace holds these calls; without them it says nothing.
watched() {
    local call
    for call; do grep -qx "$call" "$used" || { echo "no $call in $work/trace"; return 1; }; done
}
check "the daemon was seen at work" watched msgget msgrcv msgsnd ioctl connect clone3 execve mkdir
# A program that it ran would need rights of its own: killall, for one, CAP_KILL.
check "it runs touch alone" diff <(printf '%s\n' at-server sh touch) <(sed -n \
    's/.*execve("[^"]*\/\([^"/]*\)", .* = 0$/\1/p' "$work/trace" | sort -u)
check "it makes no call that the unit refuses" diff /dev/null <(comm -23 "$used" "$allowed")

# ---- sockets, devices, files
check "it uses local sockets only" diff /dev/null <(grep -o 'socket([A-Z0-9_]*' "$work/trace" | grep -v 'AF_UNIX')
writable='/dev/null|/dev/tty|/dev/ttyUSB1|/etc/cusd|/etc_rw/config/.*'
check "it writes where the unit lets it" diff /dev/null <(
    sed -n 's/.*\(openat\|mkdir\|unlink\|rename\)(\(AT_FDCWD, \)\?"\([^"]*\)", .*= [0-9].*/\1 \3 &/p' "$work/trace" |
        grep -E '^(mkdir|unlink|rename)|O_(WRONLY|RDWR|CREAT)' | cut -d' ' -f2 | sort -u | grep -vxE "$writable")
grep -qx 'ReadWritePaths=/etc_rw/config -/etc/cusd' "$unit" && grep -qx 'DeviceAllow=char-ttyUSB rw' "$unit"
check "which are the paths checked here" test $? = 0
check "and really did" grep -q 'openat(AT_FDCWD, "/etc/cusd", O_RDWR|O_CREAT|O_TRUNC' "$work/trace"

((failures == 0))
