#!/usr/bin/env bash
# Builds platform/example as a router's library in each form, the daemon with it by AT_PLATFORM, and has the two make
# an exchange in a sandbox. Then libraries that cannot serve: what is wrong with them must be said while configuring.
#   library_check.sh DIRECTORY-OF-ATCTL-AND-MODEMSIM WORK-DIRECTORY      exit 77 where there can be no sandbox
set -u
root=$(cd -P -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd -P)
# shellcheck source=checks/support/world.sh
. "$root/checks/support/world.sh"
# shellcheck source=checks/support/verdict.sh
. "$root/checks/support/verdict.sh"

if [[ $1 = --inside ]]; then
    tools=$2 daemon=$3
    start_world "$tools" default "$daemon"
    "$tools/atctl" send +CSQ --timeout 10
    exit
fi

tools=$1 work=$2
"$root/scripts/sandbox" -- true || exit 77
rm -rf "$work"
mkdir -p "$work"

# library OUTPUT FLAG...: the example as OUTPUT, whose ending says which form is meant.
library() {
    local output=$1
    shift
    case $output in
        *.so) "$CC" -std=c11 -O2 -fPIC -shared -pthread -I"$root" "$@" "$root/platform/example/router.c" -o "$output" ;;
        *.o) "$CC" -std=c11 -O2 -pthread -I"$root" "$@" -c "$root/platform/example/router.c" -o "$output" ;;
        *.a) library "${output%.a}.o" "$@" && ar rcs "$output" "${output%.a}.o" ;;
    esac
}

# configure LIBRARIES: into $work/build, the output in $work/log. Always the same directory: the daemon itself is
# compiled once, only its link changes.
configure() {
    cmake -S "$root" -B "$work/build" -G Ninja -DCMAKE_C_COMPILER="$CC" -DCMAKE_CXX_COMPILER="$CXX" \
        -DCMAKE_BUILD_TYPE=Debug -DAT_PLATFORM="$1" -DAT_BUILD_TOOLS=OFF -DAT_BUILD_CHECKS=OFF >"$work/log" 2>&1
}
builds() { configure "$1" && cmake --build "$work/build" --target at-server >"$work/log" 2>&1; }
daemon=$work/build/bin/at-server

# serves NAME LIBRARIES: the daemon is built with it and answers.
serves() {
    local answer
    if ! builds "$2"; then
        failed "$1: the daemon is not built: $(tail -n 15 "$work/log")"
        return
    fi
    answer=$("$root/scripts/sandbox" -- "${BASH_SOURCE[0]}" --inside "$tools" "$daemon" 2>&1)
    if [[ $answer = *'+CSQ'*': OK'*rssi* ]]; then passed "$1"; else failed "$1: no answer to +CSQ: $answer"; fi
}

# refused NAME TEXT LIBRARIES: configuring fails and says TEXT.
refused() {
    if configure "$3"; then
        failed "$1: configured all the same"
    elif [[ $(tr -s ' \n' '  ' <"$work/log") != *"$2"* ]]; then
        failed "$1: does not say '$2': $(tail -n 15 "$work/log")"
    else
        passed "$1"
    fi
}

library "$work/librouter.a"
serves "a static library" "$work/librouter.a"
needed=$(readelf -d "$daemon" 2>/dev/null | sed -n 's/.*NEEDED.*\[\(.*\)\]/\1/p' | tr '\n' ' ')
if [[ $needed = 'libc.so.6 ' ]]; then passed "it needs the C library alone"; else failed "the daemon needs $needed"; fi

library "$work/librouter.so"
serves "a shared library" "$work/librouter.so"
needed=$(readelf -d "$daemon" | sed -n 's/.*NEEDED.*\[\(.*\)\]/\1/p' | tr '\n' ' ')
if [[ $needed = *'librouter.so '* && $needed != */* ]]; then
    passed "the router finds it by its name"
else
    failed "the daemon needs $needed"
fi

library "$work/router.o"
if builds "$work/router.o"; then passed "an object file"; else failed "an object file: $(tail -n 15 "$work/log")"; fi

# A static library that needs another one.
library "$work/libpart.a" -Dcfg_set=part_set
echo 'int backend(const char*, const char*); int cfg_set(const char* k, const char* v) { return backend(k, v); }' \
    >"$work/front.c"
echo 'int part_set(const char*, const char*); int backend(const char* k, const char* v) { return part_set(k, v); }' \
    >"$work/backend.c"
"$CC" -c "$work/front.c" -o "$work/front.o" && "$CC" -c "$work/backend.c" -o "$work/backend.o"
ar rcs "$work/libfront.a" "$work/front.o" "$work/libpart.o" && ar rcs "$work/libbackend.a" "$work/backend.o" "$work/libpart.o"
if builds "$work/libfront.a;$work/libbackend.a"; then
    passed "a library with another one behind it"
else
    failed "a library with another one behind it: $(tail -n 15 "$work/log")"
fi
refused "the same without it" "cannot be linked: $work/libfront.a" "$work/libfront.a"

refused "a missing function" "lacks cfg_set:" "$work/libpart.a"
echo 'int nothing_of_use;' >"$work/empty.c"
"$CC" -c "$work/empty.c" -o "$work/empty.o" && ar rcs "$work/libempty.a" "$work/empty.o"
refused "no function at all" "lacks cfg_get, cfg_set, CreateSoftTimer:" "$work/libempty.a"
echo 'text' >"$work/libtext.so"
refused "a file that is no library" "cannot be linked: $work/libtext.so" "$work/libtext.so"
refused "an empty name" "AT_PLATFORM is empty" ""
refused "no such file" "there is no library $work/libnone.a" "$work/libnone.a"

((failures == 0))
