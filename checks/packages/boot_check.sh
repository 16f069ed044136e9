#!/usr/bin/env bash
# Boots systemd on an overlay of this machine, installs the Debian packages there and has the service work under the
# real systemd, with the user, rights and limits of its unit: started by the installation, asked, killed, upgraded, removed.
#   boot_check.sh BUILD-DIRECTORY WORK-DIRECTORY      exit 77 where that is impossible
set -u
export LC_ALL=C
here=$(cd -P -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd -P)
# Both lie beside this script where it was copied into another root.
support=$here/../support
[[ -e $support/verdict.sh ]] || support=$here
# shellcheck source=checks/support/verdict.sh
. "$support/verdict.sh"

# ---- in the booted system. $data is the only directory that both sides know.
data=/var/lib/boot-check
property() { systemctl show --value -P "$1" at-server.service; }
is() { [[ $2 = "$1" ]] || { echo "it is $2, not $1"; return 1; }; }
process_has() { grep -qE "^$1:[[:space:]]+$2\$" "/proc/$(property MainPID)/status" || { grep "^$1:" "/proc/$(property MainPID)/status"; return 1; }; }
serves() { wait_for atctl send AT --timeout 1; }
as_user() { setpriv --reuid="$1" --regid="$1" --init-groups "${@:2}"; }
# With root's rights, but in the file system as the service sees it.
in_its_view() { nsenter --target "$(property MainPID)" --mount -- "$@"; }
refuses_writing() {
    local output
    output=$(in_its_view touch "$1" 2>&1) && { echo "$1 was written"; return 1; }
    grep -q 'Read-only file system' <<<"$output" || { echo "$output"; return 1; }
}
restarted_after_kill() {
    local before
    before=$(property NRestarts)
    kill -KILL "$(property MainPID)"
    wait_for restarts_are $((before + 1)) && serves
}
restarts_are() { [[ $(property NRestarts) = "$1" && $(property ActiveState) = active ]]; }
reset_list_file() { rm /etc/cusd && systemctl restart at-server && [[ $(stat -c %U /etc/cusd) = at-server ]] && serves; }
stopped() { [[ $(property ActiveState) = inactive ]]; }

in_booted_system() {
    check "install" dpkg -i "$data"/debs/at-server_*.deb "$data"/debs/at-server-tools_*.deb
    check "the installation has enabled the service" systemctl is-enabled at-server
    check "and started it, without a modem" is active "$(property ActiveState)"

    modemsim default >/dev/null 2>&1 &
    check "a modem comes" wait_for test -L /dev/ttyUSB1
    local pty
    pty=$(readlink -f /dev/ttyUSB1)
    chgrp dialout "$pty" && chmod 660 "$pty" # as Debian's udev has it
    check "the service takes the port and answers" serves
    ((failures == 0)) || { systemctl status --no-pager at-server; return 1; }
    check "it has not been started twice for that" is 0 "$(property NRestarts)"
    check "a module that runs as root gets a list" atctl send '+COPS=?'
    check "the list is the service's" is at-server:at-server "$(stat -c %U:%G /etc_rw/config/copslist)"
    check "a module of the service's user is served" as_user at-server atctl send +CSQ
    check "a USSD text arrives in its file" ussd_arrives

    local user
    user=$(id -u at-server)
    check "its user" process_has Uid "$user.*$user.*$user.*$user"
    check "its groups: its own and that of the ports" process_has Groups "$(printf '%s %s ' \
        "$(getent group dialout | cut -d: -f3)" "$(id -g at-server)")"
    check "no right but to write to root's queues" process_has CapEff 0000000000008000
    check "no way to others" process_has CapBnd 0000000000008000
    check "no new privileges" process_has NoNewPrivs 1
    check "filtered system calls" process_has Seccomp 2
    check "a network of its own" test "$(readlink "/proc/$(property MainPID)/ns/net")" != "$(readlink /proc/1/ns/net)"
    check "/usr cannot be written" refuses_writing /usr/x
    check "nor can /var" refuses_writing /var/x
    check "nor /etc" refuses_writing /etc/x
    check "its directory can" in_its_view touch /etc_rw/config/x
    touch /root/x
    check "homes are not seen" is "" "$(in_its_view ls -A /root)"
    check "what it stores is shown" is port_open "$(cfgctl get port_stat)"
    check "the log is in the journal" wait_for log_has 'AT RESOLVE COMPLETE!'

    check "killed, it comes back and serves" restarted_after_kill
    check "a list file that was deleted is made again" reset_list_file
    local before
    before=$(property MainPID)
    check "upgrade" dpkg -i "$data"/debs/at-server_*.deb
    check "the upgrade has restarted it" test "$before" != "$(property MainPID)"
    check "and it serves" serves
    check "remove" dpkg -r at-server
    check "removing has stopped it" stopped
    check "purge" dpkg -P at-server at-server-tools
    check "no unit is left" test "$(systemctl list-unit-files 'at-server*' | grep -c '^at-server')" = 0
    check "nor a failed one" test "$(systemctl --failed --plain --no-legend | grep -c at-server)" = 0
    ((failures == 0))
}
ussd_arrives() { atctl send '+CUSD=' 1 '*100#' 15 && wait_for test -s /etc/cusd; }
log_has() { journalctl -t at-server -a | grep -q "$1"; }

# ---- on this machine
# The way into the system and out again: its end is the container's, with its status.
units() {
    cat >"$1/boot-check.service" <<END
[Unit]
Requires=basic.target
After=basic.target
SuccessAction=exit
FailureAction=exit
[Service]
Type=oneshot
ExecStart=/bin/bash $data/boot_check.sh --booted
StandardOutput=file:$data/out
StandardError=inherit
TimeoutStartSec=180
END
}
boot() {
    local work=$1 options=(--register=no)
    [[ -d /run/systemd/system ]] || options+=(--keep-unit)
    overlay_of_this_machine "$work/root" || return 77
    work=$work/root
    mkdir -p "$work/root$data" && cp -r "$2" "$work/root$data/debs" || return 77
    cp "${BASH_SOURCE[0]}" "$support/verdict.sh" "$support/world.sh" "$work/root$data/"
    # Where this machine is itself a container it may forbid packages to start their services.
    rm -f "$work/root/usr/sbin/policy-rc.d"
    units "$work/root/etc/systemd/system"
    timeout --kill-after=10 300 systemd-nspawn --quiet --directory="$work/root" --machine=boot-check --private-network \
        --console=pipe "${options[@]}" --boot systemd.unit=boot-check.service </dev/null >"$3" 2>&1
    local status=$?
    [[ -s $work/root$data/out ]] || { echo "systemd does not boot here: $(tail -n 5 "$3")" >&2; return 77; }
    cat "$work/root$data/out"
    return "$status"
}

case $1 in
    --booted)
        # shellcheck source=checks/support/world.sh
        . "$here/world.sh"
        export DEBIAN_FRONTEND=noninteractive PATH=/usr/sbin:/usr/bin:/sbin:/bin
        in_booted_system
        ;;
    --boot) boot "$2" "$3" "$4" ;;
    *)
        build=$1 work=$2
        needs "boot a system" systemd-nspawn dpkg dpkg-shlibdeps file cpack unshare nsenter setpriv
        rm -rf "$work"
        mkdir -p "$work/root"
        work=$(cd -P -- "$work" && pwd -P)
        make_packages "$build" "$work" || exit 1
        unshare --mount -- "$here/boot_check.sh" --boot "$work" "$work/debs" "$work/console"
        ;;
esac
