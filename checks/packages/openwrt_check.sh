#!/usr/bin/env bash
# The OpenWrt package, as far as that goes without OpenWrt: the Makefile's sections are run with stand-ins for the SDK's
# rules, its install list is held against what cmake installs, and the init script is run with stand-ins for procd's
# functions in a sandbox.
#   openwrt_check.sh BUILD-DIRECTORY WORK-DIRECTORY      exit 77 where there can be no sandbox, or no git
set -u
export LC_ALL=C
here=$(cd -P -- "$(dirname -- "${BASH_SOURCE[0]}")" && pwd -P)
root=$(cd -P -- "$here/../.." && pwd -P)
package=$root/packaging/openwrt/at-server
# shellcheck source=checks/support/verdict.sh
. "$root/checks/support/verdict.sh"

if [[ $1 = --inside ]]; then
    # The values of /etc/config/at-server are given as NAME=VALUE.
    shift
    declare -A values
    for value; do values[${value%%=*}]=${value#*=}; done
    config_load() { [[ $1 = at-server ]]; }
    config_get() { printf -v "$1" %s "${values[$3]-${4-}}"; }
    config_get_bool() { config_get "$@"; }
    procd_open_instance() { echo open; }
    procd_set_param() { echo "$@"; }
    procd_close_instance() { echo close; }
    procd_add_reload_trigger() { echo "trigger $1"; }
    logger() { echo "$3: $4"; } # called as logger -s -t NAME TEXT
    # Only root's files can be made here: that of another user's is told.
    chown() { echo "chown $2 $3"; } # called as chown -h USER FILE
    # shellcheck source=packaging/openwrt/at-server/files/at-server.init
    . "$package/files/at-server.init"
    # The store that an earlier run left, or what its user put in its place.
    store=/etc_rw/config/.store
    if [[ ${values[store]-} = link ]]; then
        store=/tmp/elsewhere
        ln -s "$store" /etc_rw/config/.store
    fi
    [[ ! ${values[store]-} ]] || { mkdir "$store" && touch "$store"/{data.mdb,lock.mdb,other}; }
    start_service && service_triggers
    stat -c '%A %n' /etc_rw/config /etc/cusd 2>/dev/null
    cat /proc/sys/kernel/msgmnb
    exit
fi

build=$1 work=$2
"$root/scripts/sandbox" -- true || exit 77
git -C "$root" rev-parse -q --verify HEAD >/dev/null || skip "no git repository"
rm -rf "$work"
mkdir -p "$work"

# ---- the Makefile
run() { make -s -C "$package" TOPDIR="$here/openwrt" INCLUDE_DIR="$here/openwrt" WORK="$work" PKG_INSTALL_DIR="$work/whole" "$@"; }
mapfile -t values < <(run values)
check "name and version, and cmake's own installation" test "${values[0]}" = "at-server $VERSION 1"
check "the configuration file is kept" test "${values[2]}" = /etc/config/at-server
check "the sources" run prepare
check "they are all there" test -s "$work/source/CMakeLists.txt" -a -s "$work/source/client/at_client.h"
configured() {
    local output
    # As the SDK does: the options are words with quotes in them.
    output=$(eval "cmake -S \"$root\" -B \"$work/build\" -G Ninja -DCMAKE_INSTALL_PREFIX=/usr ${values[1]}" 2>&1) || { echo "$output"; return 1; }
    if grep -q 'not used' <<<"$output"; then echo "$output"; return 1; fi
    ninja -C "$work/build" -t targets all | grep -q 'bin/at-server:'
}
check "cmake knows the options" configured

# What `cmake --install` makes with these options: all but the tools and systemd's files.
for component in daemon development; do
    DESTDIR=$work/whole cmake --install "$build" --prefix /usr --component $component >"$work/log" || exit 1
done
rm -rf "$work/whole/usr/lib/systemd" "$work/whole/usr/lib/sysusers.d" "$work/whole/usr/lib/tmpfiles.d"
# The router's library directory is lib, whatever this machine's is.
if [[ ! -e $work/whole/usr/lib/libat_client.a ]]; then
    cp -r "$work"/whole/usr/lib/*/. "$work/whole/usr/lib/"
    rm -r "$work"/whole/usr/lib/*-linux-*
fi
check "files for other packages" run dev DESTINATION="$work/dev"
check "files of the router" run install DESTINATION="$work/router"
tree() { (cd "$1" && find . -type f -printf '%m %P\n' | sort -k 2); }
check "the router gets what it needs" diff - <(tree "$work/router") <<'END'
600 etc/config/at-server
644 etc/hotplug.d/tty/50-at-server
755 etc/init.d/at-server
755 usr/sbin/at-server
END
# Manual pages and documents have no place on a router.
check "nothing that cmake installs is forgotten" diff <(tree "$work/whole" | grep -v ' usr/share/\(man\|doc\)/') \
    <({ tree "$work/router" | grep ' usr/'; tree "$work/dev"; } | sort -k 2)

# ---- its shell parts
for file in init hotplug; do
    check "syntax of at-server.$file" sh -n "$package/files/at-server.$file"
    ! command -v shellcheck >/dev/null || check "style of at-server.$file" shellcheck -s dash "$package/files/at-server.$file"
done
# started NAME EXPECTED VALUE...: what procd is told with these values in the configuration.
started() {
    local name=$1 expected=$2
    shift 2
    check "$name" diff <(echo "$expected") \
        <("$root/scripts/sandbox" --msgmnb 16384 -- "$here/openwrt_check.sh" --inside "$@" 2>&1)
}
started "switched off, it starts nothing" "trigger at-server
drwxr-xr-x /etc_rw/config
16384" enabled=0 user=at-server
places="drwxr-xr-x /etc_rw/config
-rw-r--r-- /etc/cusd"
served="open
command /usr/sbin/at-server
user at-server
no_new_privs 1
respawn 3600 5 0
close
trigger at-server
$places"
started "switched on" "chown at-server /etc/cusd
chown at-server /etc_rw/config
$served
65536" enabled=1 user=at-server queue_bytes=65536
started "with another user, and queues as they are" "chown root /etc/cusd
chown root /etc_rw/config
open
command /usr/sbin/at-server
user root
no_new_privs 1
respawn 3600 5 0
close
trigger at-server
$places
16384" enabled=1 user=root

started "a size that is no number is told and left" "chown at-server /etc/cusd
chown at-server /etc_rw/config
at-server: queue_bytes '64k' in /etc/config/at-server is no number of bytes
$served
16384" enabled=1 user=at-server queue_bytes=64k

started "an earlier run's store goes to the user" "chown at-server /etc/cusd
chown at-server /etc_rw/config
chown at-server /etc_rw/config/.store
chown at-server /etc_rw/config/.store/data.mdb
chown at-server /etc_rw/config/.store/lock.mdb
$served
16384" enabled=1 user=at-server store=directory
started "what a link in its place leads to does not" "chown at-server /etc/cusd
chown at-server /etc_rw/config
$served
16384" enabled=1 user=at-server store=link

((failures == 0))
