#!/usr/bin/env bash
# Installs into a directory of its own, moves that elsewhere, and has a module's project find it there by find_package
# and by pkg-config, in C and in C++. Each module then asks a server in a sandbox.
#   install_check.sh BUILD-DIRECTORY WORK-DIRECTORY      exit 77 where there can be no sandbox
set -u
root=$(cd -P -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd -P)
# shellcheck source=checks/support/world.sh
. "$root/checks/support/world.sh"
# shellcheck source=checks/support/verdict.sh
. "$root/checks/support/verdict.sh"

if [[ $1 = --inside ]]; then
    prefix=$2
    shift 2
    start_world "$prefix/bin" default "$prefix/sbin/at-server"
    for module; do echo "$(basename "$module"): $("$module" 2>&1)"; done
    exit 0
fi

build=$1 work=$2
"$root/scripts/sandbox" -- true || exit 77
rm -rf "$work"
mkdir -p "$work"
# ---- each component alone, with what belongs to it
# installed COMPONENT FILE...: installs it below $work/COMPONENT, where these files must be, among others.
installed() {
    local component=$1 file
    shift
    cmake --install "$build" --prefix "$work/$component" --component "$component" || return
    for file; do [[ -s $work/$component/$file ]] || { echo "$file is missing"; return 1; }; done
}
check "component daemon" installed daemon sbin/at-server lib/systemd/system/at-server.service \
    lib/sysusers.d/at-server.conf lib/tmpfiles.d/at-server.conf
check "it runs from where it was installed" grep -qx "ExecStart=$work/daemon/sbin/at-server" \
    "$work/daemon/lib/systemd/system/at-server.service"
check "component tools" installed tools bin/atctl bin/modemsim bin/cfgctl share/at-server/scenarios/default.modem
check "component development" installed development include/at-server/client/at_client.h \
    include/at-server/records/message.h include/at-server/reports/report_records.h share/doc/at-server/commands.md
# Each manual page and each completion of the sources has a place where man and the shells look.
documented() {
    local page program file expected=()
    for page in "$root"/docs/man/*.[1-8]; do
        [[ ! -e $page ]] || expected+=("share/man/man${page##*.}/$(basename "$page")")
    done
    for file in "$root"/tools/completion/*; do
        program=$(basename "$file" .bash)
        case $file in
            */_*) expected+=("share/zsh/site-functions/$program") ;;
            *.bash) expected+=("share/bash-completion/completions/$program") ;;
        esac
    done
    for file in "${expected[@]}"; do
        [[ -s $work/whole/$file ]] || { echo "$file is missing"; return 1; }
    done
    # Each in one place.
    find "$work/whole/share" -path '*completions/*' -o -path '*/zsh/*' -type f | sed 's/.*\///' | sort >"$work/completions"
    diff <(printf '%s\n' "${expected[@]}" | sed -n '/^share\/man/d; s/.*\///p' | sort) "$work/completions"
}
same() { diff <(cd "$1" && find . -type f | sort) <(cd "$2" && find . -type f | sort); }
merge() { cmake --install "$build" --prefix "$work/whole" && cp -r "$work/daemon/." "$work/tools/." "$work/development/." "$work/parts"; }
mkdir "$work/parts"
check "everything at once" merge
check "manual pages and completions" documented
check "the components are everything" same "$work/whole" "$work/parts"

# ---- a module's project, after the installation was moved
prefix=$work/elsewhere
mv "$work/whole" "$prefix"
strict="-Wall -Wextra -Werror -pedantic"
by_cmake() {
    cmake -S "$root/checks/packages/consumer" -B "$work/consumer" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" \
        -DCMAKE_C_COMPILER="$CC" -DCMAKE_CXX_COMPILER="$CXX" -DCMAKE_C_FLAGS="$strict" -DCMAKE_CXX_FLAGS="$strict" &&
        cmake --build "$work/consumer"
}
check "find_package" by_cmake
too_new() {
    sed 's/at-server 0.1/at-server 99.0/' "$root/checks/packages/consumer/CMakeLists.txt" >"$work/new/CMakeLists.txt"
    ! cmake -S "$work/new" -B "$work/new/build" -G Ninja -DCMAKE_PREFIX_PATH="$prefix" >"$work/log" 2>&1 &&
        grep -q 99.0 "$work/log"
}
mkdir "$work/new"
check "find_package refuses another version" too_new

pc=$(find "$prefix" -name at-server.pc -printf %h)
config() { PKG_CONFIG_PATH=$pc pkg-config "$@" at-server; }
by_pkg_config() {
    # The flags are words.
    # shellcheck disable=SC2046,SC2086
    "$CC" -std=c11 $strict $(config --cflags) "$root/checks/packages/consumer/module.c" -o "$work/module_pc_c" \
        $(config --libs) &&
        "$CXX" -std=c++20 $strict $(config --cflags) "$root/checks/packages/consumer/module.cpp" -o "$work/module_pc_cpp" \
            $(config --libs)
}
check "pkg-config" by_pkg_config
examples() {
    local example
    for example in "$prefix"/share/doc/at-server/examples/*.c; do
        # shellcheck disable=SC2046,SC2086
        "$CC" -std=c11 -D_POSIX_C_SOURCE=200809L $strict $(config --cflags) "$example" -o "$work/example" $(config --libs) ||
            return
    done
    [[ -s $work/example ]]
}
check "the examples that were installed" examples
check "pkg-config tells the version" test "$(config --modversion)" = "$("$prefix/bin/atctl" --version | sed 's/.* //')"

# ---- what was built asks a server, all of it installed
answers=$("$root/scripts/sandbox" -- "${BASH_SOURCE[0]}" --inside "$prefix" \
    "$work"/consumer/module_{c,cpp} "$work"/module_pc_{c,cpp})
# shellcheck disable=SC2001
# (The simulated modem's signal changes.)
check "each module is answered" diff <(printf '%s: rssi N\n' module_c module_cpp module_pc_c module_pc_cpp) \
    <(echo "$answers" | sed 's/ [1-9][0-9]*$/ N/')

((failures == 0))
