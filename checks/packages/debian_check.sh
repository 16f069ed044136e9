#!/usr/bin/env bash
# Makes the Debian packages and installs, uses, upgrades, removes and purges them in a clean root: this machine as an
# overlay that is thrown away, with dpkg's own database, so that dependencies and maintainer scripts are the real ones.
#   debian_check.sh BUILD-DIRECTORY WORK-DIRECTORY      exit 77 where that is impossible
set -u
export LC_ALL=C
here=$(cd -P -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd -P)

# Both lie beside this script where it was copied into another root.
support=$here/../support
[[ -e $support/verdict.sh ]] || support=$here
# shellcheck source=checks/support/verdict.sh
. "$support/verdict.sh"

# ---- in the clean root
# What differs from the machine below, but for what dpkg and the system write about any package.
changes() {
    local kind name
    cd /upper || return
    find . \( -path ./tmp -o -path ./run -o -path ./debs -o -path ./upper -o -path ./lower -o -path ./var/cache -o \
        -path ./var/log -o -path ./var/lib/dpkg -o -path ./var/backups -o -path ./dev -o -path ./proc \) -prune -o \
        -printf '%y %P\n' | while read -r kind name; do
        case $kind in
            d) [[ -d /lower/$name ]] || echo "directory /$name" ;;
            *)
                # /etc/passwd- and the like hold what was before the last change.
                cmp -s "/lower/$name" "$name" || [[ $name = etc/*- ]] || echo "/$name"
                ;;
        esac
    done
}
users() { sort /etc/passwd /etc/group /etc/shadow /etc/gshadow; }
listed_files_exist() {
    local package file count=0
    for package in at-server at-server-tools libat-client-dev; do
        while read -r file; do
            [[ -e $file ]] || { echo "$package: $file is missing"; return 1; }
            count=$((count + 1))
        done < <(dpkg -L "$package")
    done
    ((count > 60))
}
# As the unit has it, so far as that can be had without systemd.
# shellcheck disable=SC2054 # commas are setpriv's
as_service=(setpriv --reuid=at-server --regid=at-server --groups=dialout --no-new-privs --inh-caps=-all,+ipc_owner
    --ambient-caps=-all,+ipc_owner --bounding-set=-all,+ipc_owner)
owned_by() { [[ $(stat -c '%U:%G %a' "$2") = "$1" ]]; }
queue() { ipcs -q | grep -q '^0x00001000 '; }

in_clean_root() {
    check "a clean root" diff /dev/null <(changes)
    users >/tmp/users
    check "install" dpkg -i /debs/*.deb
    check "every file of the packages is there" listed_files_exist
    check "every file is as it was packed" dpkg -V at-server at-server-tools libat-client-dev
    check "the service's user" test "$(getent passwd at-server | cut -d: -f6-)" = "/:/usr/sbin/nologin"
    check "/etc_rw/config is the service's" owned_by "at-server:at-server 755" /etc_rw/config
    check "/etc/cusd is the service's" owned_by "at-server:at-server 644" /etc/cusd
    check "the service is enabled" test -L /etc/systemd/system/multi-user.target.wants/at-server.service

    # The programs, as the service's user and as root. (Root's cfgctl is the first to use the store.)
    check "cfgctl" cfgctl set WatchDog_Setting_Option off
    check "the store is the service's" owned_by "at-server:at-server 644" /etc_rw/config/.store/data.mdb
    modemsim default >/tmp/modemsim.out 2>&1 &
    local modem=$! pty
    check "modemsim starts, and finds its scenarios" wait_for test -L /dev/ttyUSB1
    pty=$(readlink -f /dev/ttyUSB1)
    chgrp dialout "$pty" && chmod 660 "$pty" # as Debian's udev has it
    "${as_service[@]}" at-server &
    local daemon=$!
    check "the daemon runs as its user" wait_for atctl send AT --timeout 1
    check "it serves a module that runs as root" atctl send '+CMGL=' 4
    check "and one that runs as its user" "${as_service[@]}" atctl send +CSQ
    check "others may not ask" refuses_nobody
    check "it writes list files" owned_by "at-server:at-server 644" /etc_rw/config/smsbak
    check "cfgctl shows what it stored" test "$(cfgctl get port_stat)" = port_open
    kill "$daemon" "$modem"
    wait

    check "upgrade" dpkg -i /debs/at-server_*.deb
    check "it leaves the store" test "$(cfgctl get port_stat)" = port_open
    check "the queue is still there" queue
    check "remove" dpkg -r at-server at-server-tools libat-client-dev
    check "the program is gone" test ! -e /usr/sbin/at-server
    if queue; then failed "the queue is still there after removing"; else passed "the queue is gone"; fi
    check "the data stay" test -s /etc_rw/config/smsbak
    check "purge" dpkg -P at-server at-server-tools libat-client-dev
    check "purging leaves no file" diff /dev/null <(changes)
    check "purging leaves no user" diff /tmp/users <(users)

    # As in an image under construction. The directories are made by the first start.
    check "install without /proc" install_without_proc
    check "purge that" dpkg -P at-server
    check "that leaves no file either" diff /dev/null <(changes)

    # What is not the server's stays.
    check "install again" dpkg -i /debs/at-server_*.deb
    echo mine >/etc_rw/config/AT_Test.ini
    check "purge at once" dpkg -P at-server
    check "files of others stay, in root's hands" owned_by "root:root 755" /etc_rw/config
    check "unharmed" test "$(cat /etc_rw/config/AT_Test.ini)" = mine
    ((failures == 0))
}
install_without_proc() {
    local status
    umount /proc || return
    dpkg -i /debs/at-server_*.deb
    status=$?
    mount -t proc proc /proc
    ((status == 0)) && [[ $(dpkg-query -W -f '${db:Status-Status}' at-server) = installed ]]
}
refuses_nobody() {
    local output
    output=$(setpriv --reuid=65534 --regid=65534 --clear-groups atctl send +CSQ --timeout 2 2>&1)
    (($? == 4)) || { echo "status is not 4: $output"; return 1; }
    echo "$output" && grep -qi 'user' <<<"$output"
}

enter_clean_root() {
    local work=$1 root=$2
    overlay_of_this_machine "$work" || return 1
    [[ $root ]] || return 0
    cd "$work/root" || return 1
    mount -t tmpfs none tmp && mount -t tmpfs none run && mount -t tmpfs none dev && mount -t proc proc proc || return 1
    mkdir debs upper lower dev/pts && mount -o bind "$work/upper" upper && mount -o bind,ro / lower && mount -t devpts -o newinstance,ptmxmode=0666,mode=620 devpts dev/pts || return 1
    ln -s pts/ptmx dev/ptmx && ln -s /proc/self/fd dev/fd
    local device
    for device in null:1:3 zero:1:5 full:1:7 random:1:8 urandom:1:9 tty:5:0; do
        mknod -m 666 "dev/${device%%:*}" c "$(cut -d: -f2 <<<"$device")" "$(cut -d: -f3 <<<"$device")" || return 1
    done
    mount -o bind "$root" debs
}

case $1 in
    --try) enter_clean_root "$2" '' ;;
    --inside)
        enter_clean_root "$2" "$3" || skip "cannot make the clean root"
        # The check itself from the machine: the overlay shows it, but only if it lies on the root file system.
        cp "${BASH_SOURCE[0]}" "$2/root/tmp/check"
        cp "$support/world.sh" "$support/verdict.sh" "$2/root/tmp/"
        DEBIAN_FRONTEND=noninteractive exec chroot "$2/root" /bin/bash /tmp/check --clean
        ;;
    --clean)
        export PATH=/usr/sbin:/usr/bin:/sbin:/bin
        # shellcheck source=checks/support/world.sh
        . /tmp/world.sh
        in_clean_root
        exit
        ;;
    *)
        build=$1 work=$2
        needs "install packages in a clean root" \
            dpkg dpkg-shlibdeps file cpack unshare setpriv systemd-sysusers systemd-tmpfiles
        rm -rf "$work"
        mkdir -p "$work/root"
        work=$(cd -P -- "$work" && pwd -P)
        unshare --mount -- "$here/debian_check.sh" --try "$work/root" || skip "no overlay of / can be mounted here"
        make_packages "$build" "$work" || exit 1
        ending=_${VERSION}_$(dpkg --print-architecture).deb
        check "no more and no fewer packages" diff <(cd "$work/debs" && ls) \
            <(printf "%s$ending\n" at-server at-server-tools libat-client-dev | sort)
        check "the changelog is of this version" test "$(dpkg-parsechangelog -l "$here/../../packaging/debian/changelog" \
            -S Version)" = "$VERSION"
        if command -v lintian >/dev/null; then
            check "lintian finds nothing" lintian --allow-root --fail-on error,warning "$work"/debs/*.deb
        fi
        unshare --mount --ipc --pid --fork --kill-child -- "$here/debian_check.sh" --inside "$work/root" "$work/debs" ||
            failures=$((failures + 1))
        ((failures == 0))
        ;;
esac
