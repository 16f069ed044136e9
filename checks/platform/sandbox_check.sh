#!/usr/bin/env bash
# Checks scripts/sandbox: what is private inside, what comes out, what is left behind. Exit 77 where no private world
# can be made at all.
set -u
repository=$(cd -P -- "$(dirname -- "${BASH_SOURCE[0]}")/../.." && pwd -P)
sandbox=$repository/scripts/sandbox
work=$(mktemp -d /tmp/at-sandbox-check.XXXXXX)
trap 'rm -rf "$work"' EXIT
mkdir "$work/out" "$work/in" && chmod 755 "$work" && chmod 777 "$work/out"
cd "$repository" || exit 1
failures=0
checks=0

# report NAME EXPECTED ACTUAL
report() {
    checks=$((checks + 1))
    if [[ $2 = "$3" ]]; then
        echo "ok      $1"
    else
        failures=$((failures + 1))
        printf 'FAILED  %s\n  expected: %s\n  actual:   %s\n' "$1" "$2" "$3"
    fi
}

# Waits up to five seconds until the given command succeeds.
eventually() {
    local round
    for ((round = 0; round < 250; ++round)); do
        "$@" && return 0
        sleep 0.02
    done
    return 1
}

# How many processes have $1 as an argument. A process to be found is a "sleep 60.NUMBER".
carrying() { grep -lzxF -f <(echo "$1") /proc/[0-9]*/cmdline 2>/dev/null | wc -l; }
none_carrying() { (($(carrying "$1") == 0)); }
some_carrying() { (($(carrying "$1") > 0)); }

# Everything of the machine that a run could leave behind.
machine_state() {
    ls -ld /dev/ttyUSB1 /etc_rw /.etc_rw.at-sandbox /etc/cusd /dev/log 2>&1
    ipcs -q | grep '^0x000010' # the daemon's and its modules'
    ls -d /tmp/at-sandbox.* 2>/dev/null
}

# Makes the queue with key $1.
echo 'exit !defined msgget(oct $ARGV[0], 01600);' >"$work/make_queue"

cat >"$work/inside" <<'END'
set -e
: >/etc_rw/config/file && : >/etc/cusd && : >/tmp/file && mkdir /etc_rw/config/WatchDog
ln -s pts/0 /dev/ttyUSB1 && [ -L /dev/ttyUSB1 ] && [ -c /dev/ptmx ] && [ -c /dev/null ]
[ -z "$(ipcs -q | grep 0x)" ]
[ "$(id -u)" = 0 ] && [ -r /etc/passwd ] && [ "$(pwd)" = "$1" ] && [ -x scripts/sandbox ]
END

# private NAME PREFIX...: the checks that hold in every mode, for a launcher started with PREFIX.
private() {
    local name=$1 before status out
    shift
    before=$(machine_state)
    out=$("$@" "$sandbox" --ro "$work" -- sh "$work/inside" "$repository" 2>&1)
    report "$name: the daemon's names are there and can be written" "0:" "$?:$out"
    for status in 0 1 2 77 255; do
        "$@" "$sandbox" -- sh -c "exit $status" </dev/null
        report "$name: exit status $status passes" "$status" "$?"
    done
    "$@" "$sandbox" -- sh -c 'kill -TERM $$' >/dev/null 2>&1
    report "$name: death by signal 15 is 143" 143 "$?"
    PATH=/usr/bin:/bin "$@" "$sandbox" -- no-such-command-here >/dev/null 2>&1
    report "$name: an unknown command is 127" 127 "$?"
    out=$(echo through | "$@" "$sandbox" -- cat 2>&1)
    report "$name: standard input and output pass" through "$out"
    out=$("$@" "$sandbox" --msgmnb 65536 -- cat /proc/sys/kernel/msgmnb 2>&1)
    report "$name: --msgmnb" 65536 "$out"
    out=$("$@" "$sandbox" -- bash -c 'echo /proc/self/fd/*' </dev/null 2>/dev/null 9</)
    report "$name: descriptors of the caller pass, none is added" \
        "$(bash -c 'echo /proc/self/fd/*' </dev/null 2>/dev/null 9</)" "$out"
    marker=60.$RANDOM$RANDOM
    rm -f "$work/out/"*
    "$@" "$sandbox" --ro "$work" --rw "$work/out" -- bash -c \
        "setsid sleep $marker & env -i sleep $marker & $(declare -f eventually some_carrying carrying)
         eventually some_carrying $marker && touch $work/out/started" >/dev/null 2>&1 </dev/null
    report "$name: a process stays in the background" "$work/out/started" "$(ls "$work/out/started")"
    eventually none_carrying "$marker"
    report "$name: it ends with the run" 0 "$?"
    report "$name: nothing is left behind" "$before" "$(machine_state)"
}

"$sandbox" -- true 2>"$work/reason"
if [[ $? = 2 ]]; then
    cat "$work/reason"
    exit 77
fi
if ! "$sandbox" --mode bwrap -- true 2>"$work/reason"; then
    cat "$work/reason"
    echo "only plain mode is possible: checked on the machine's own names, everything else is left out"
    private plain
    ((failures == 0)); exit
fi

# ---- namespaces ----

private own
if ((EUID == 0)); then
    nobody=(setpriv --reuid=65534 --regid=65534 --clear-groups)
    if "${nobody[@]}" test -x "$sandbox" -a -r "$repository/checks"; then
        private nobody "${nobody[@]}"
    else
        echo "left out: user 65534 cannot read $repository"
    fi
    private root-without-sys_admin setpriv --inh-caps=-all --ambient-caps=-all --bounding-set=-sys_admin
fi

# A repository that lies in one of the two is the only thing there.
held_in() {
    local rest=${repository#"$1"/}
    [[ $rest == "$repository" ]] || echo "${rest%%/*}"
}
out=$("$sandbox" -- sh -c 'touch /usr/x /var/x scripts/x 2>&1 | grep -c .; ls -A /tmp; ls -A /run; echo $HOME')
report "the machine is read-only, /tmp and /run are empty" \
    "$(echo 3; held_in /tmp; held_in /run; echo /tmp)" "$out"

"$sandbox" --rw "$work/out" --ro "$work/in" -- sh -c "echo written >$work/out/file; touch $work/in/file" 2>/dev/null
report "--ro cannot be written" 1 "$?"
report "--rw is the machine's own directory" written "$(cat "$work/out/file")"
out=$(cd "$work/in" && "$sandbox" -- pwd)
report "a working directory below /tmp is kept" "$work/in" "$out"
ln -s "$repository" "$work/link"
out=$(cd "$work/link" && scripts/sandbox -- sh -c 'pwd -P; ls scripts/sandbox' 2>&1)
report "a working directory behind a link is kept" "$repository"$'\nscripts/sandbox' "$out"
mkdir "$work/with blank"
out=$(cd "$work/with blank" && "$sandbox" --rw . -- sh -c 'touch "a b"; ls "$1"' sh 'a b' 2>&1)
report "blanks in names" "a b" "$out"

out=$("$sandbox" --room 262144 -- sh -c 'head -c 1048576 /dev/zero >/etc_rw/config/x; stat -c %s /etc_rw/config/x' 2>&1)
report "--room bounds what the configuration directory takes" 262144 "$(tail -n 1 <<<"$out")"

# Two at once: each makes queue 0x1000 for itself and waits for the other one.
meet="perl $work/make_queue 0x1000 && ls /etc_rw/config && touch $work/out/\$0 /etc_rw/config/\$0 || exit 9
      for i in \$(seq 500); do [ -e $work/out/\$1 ] && break; sleep 0.01; done
      [ -e $work/out/\$1 ] && ls /etc_rw/config && ipcs -q | grep -c 0x"
"$sandbox" --ro "$work" --rw "$work/out" -- sh -c "$meet" one two >"$work/one" &
"$sandbox" --ro "$work" --rw "$work/out" -- sh -c "$meet" two one >"$work/two"
wait $!
report "two at once see only their own queue and store" $'one\n1:two\n1' "$(cat "$work/one"):$(cat "$work/two")"

# A process of the name that the daemon kills, outside.
cp "$(command -v sleep)" "$work/udhcpc"
"$work/udhcpc" 60 &
outside=$!
"$sandbox" --ro "$work" -- sh -c "$work/udhcpc 60 & sleep 0.1
    killall -9 udhcpc || for p in /proc/[0-9]*; do grep -qx udhcpc \$p/comm && kill -9 \${p#/proc/}; done" 2>/dev/null
kill -0 $outside
report "killing by name does not reach outside" 0 "$?"
kill $outside; wait $outside 2>/dev/null

marker=60.$RANDOM$RANDOM
"$sandbox" -- sh -c "setsid sleep $marker & sleep $marker" 2>/dev/null &
launcher=$!
eventually some_carrying $marker
kill -9 $launcher
eventually none_carrying $marker
report "kill -9 of the launcher leaves no process" 0 "$?"
wait $launcher 2>/dev/null

out=$("$sandbox" -- "$sandbox" -- sh -c 'touch /etc/cusd && echo inner' 2>&1)
report "a sandbox within a sandbox" inner "$out"

# ---- misuse ----

for line in "" "--" "--rw" "--rw /nonexistent -- true" "--mode vm -- true" "--nonsense" "--msgmnb many -- true" "--room much -- true"; do
    out=$("$sandbox" $line 2>&1)
    report "misuse '$line' is 2 and one line" "2:1" "$?:$(wc -l <<<"$out")"
done
"$sandbox" --mode plain --room 262144 -- true 2>/dev/null
report "--room where no file system can be made is 77" 77 "$?"
out=$("$sandbox" --help)
report "--help" 0 "$?"

# ---- plain mode, on a machine of its own ----

# Runs a shell text as root of a machine without /etc_rw, on which plain mode finds the real names free.
on_machine() { "$sandbox" --mode bwrap --ro "$work" --rw "$work/out" -- bash -c "rm -r /etc_rw; $1"; }
export sandbox work
export plain="$sandbox --mode plain"
export -f private report eventually carrying none_carrying some_carrying machine_state
export repository

out=$(on_machine "sandbox_plain() { shift; $sandbox --mode plain \"\$@\"; }; export -f sandbox_plain
    failures=0 checks=0; private plain bash -c 'sandbox_plain \"\$@\"' -; exit \$failures")
inner=$?
echo "$out"
report "plain: all of the above" 0 "$inner"

# No namespaces and something in the way of plain mode: each mode tells why.
out=$(on_machine "touch /dev/ttyUSB1; mkdir /tmp/bin; PATH=/tmp/bin:\$PATH
    printf '#!/bin/sh\necho bwrap: Operation not permitted >&2; exit 1' >/tmp/bin/bwrap; chmod 755 /tmp/bin/bwrap
    $sandbox -- true 2>&1; echo \$?")
report "where nothing is possible each mode tells why" "sandbox: no private world can be made here:
  bwrap as root: bwrap: Operation not permitted
  bwrap with a user namespace: bwrap: Operation not permitted
  plain: /dev/ttyUSB1 exists and is left alone
2" "$out"

for kind in 'touch /dev/ttyUSB1' 'ln -s pts/0 /dev/ttyUSB1' 'mkdir /etc_rw' 'touch /etc/cusd' \
    "perl $work/make_queue 0x1022"; do
    out=$(on_machine "$kind; ls -A /dev / /etc >/tmp/before; ipcs -q >>/tmp/before; $plain -- true 2>&1; echo \$?
        ls -A /dev / /etc >/tmp/after; ipcs -q >>/tmp/after; cmp /tmp/before /tmp/after" | grep -v 'no private world')
    report "plain: after '$kind' it refuses and touches nothing" "left alone:2" \
        "$(head -n 1 <<<"$out" | grep -o 'left alone'):$(tail -n +2 <<<"$out")"
done

# The launcher is killed with everything in use; the next run clears it all away and works.
out=$(on_machine "
    before=\$(machine_state)
    $plain -- sh -c 'ln -s pts/0 /dev/ttyUSB1; touch /etc/cusd /etc_rw/config/x; perl $work/make_queue 0x1000
        setsid sleep 60.1 & env -i sleep 60.1 & touch /tmp/ready; sleep 60.1' </dev/null &
    launcher=\$!
    eventually test -e /tmp/ready || echo 'did not start'
    # Each is a sleep a moment after it was started.
    eventually eval '[ \$(carrying 60.1) = 3 ]'
    kill -9 \$launcher; rm /tmp/ready
    carrying 60.1
    [ -L /dev/ttyUSB1 ] || echo 'nothing was left by the killed run'
    $plain -- sh -c 'ls /etc_rw/config; ipcs -q | grep -c 0x; echo works'
    none_carrying 60.1 && echo ended
    [ \"\$before\" = \"\$(machine_state)\" ] && echo clean" 2>/dev/null)
report "plain: the run after a killed launcher clears up" $'3\n0\nworks\nended\nclean' "$out"

out=$(on_machine "
    $plain -- sh -c 'touch /tmp/ready; sleep 60.2' </dev/null & launcher=\$!
    eventually test -e /tmp/ready && eventually some_carrying 60.2
    kill -TERM \$launcher; wait \$launcher; echo \$?; none_carrying 60.2 && [ ! -e /etc_rw ] && echo clean" 2>/dev/null)
report "plain: SIGTERM ends the run and clears up" $'143\nclean' "$out"

out=$(on_machine "script -qec '$plain -- bash -c \"tty >/dev/null && set -m && exit 6\"' /dev/null; echo \$?
    [ ! -e /etc_rw ] && echo clean" 2>&1)
report "plain: a terminal passes, with job control" $'6\nclean' "$out"

out=$(on_machine "
    $plain -- sh -c 'touch /tmp/first; sleep 0.3; rm /tmp/first' & eventually test -e /tmp/first
    $plain -- sh -c '[ -e /tmp/first ] || echo second after first'; wait" 2>/dev/null)
report "plain: a second run waits for the first" "second after first" "$out"

out=$(on_machine "cp \$(command -v sleep) /tmp/udhcpc; /tmp/udhcpc 60 & outside=\$!
    $plain -- sh -c '/tmp/udhcpc 60 & inside=\$!; sleep 0.1; killall -9 udhcpc; wait \$inside; echo \$?'
    kill -0 \$outside && echo outside lives" 2>/dev/null)
report "plain: killall reaches only its own" $'137\noutside lives' "$out"

out=$(on_machine "old=\$(cat /proc/sys/kernel/msgmnb); $plain --msgmnb 70000 -- cat /proc/sys/kernel/msgmnb
    [ \$old = \$(cat /proc/sys/kernel/msgmnb) ] && echo restored")
report "plain: the size of the queues is put back" $'70000\nrestored' "$out"

out=$(on_machine ": >/dev/log; $plain -- true; ls /dev/log; rm /dev/log
    $plain -- perl -MSocket -e 'socket S, AF_UNIX, SOCK_DGRAM, 0; bind S, sockaddr_un(\"/dev/log\") or die'; ls /dev/log 2>&1 | wc -l
    ls /dev/log 2>/dev/null")
report "plain: a /dev/log that was there stays, one that was made goes" $'/dev/log\n1' "$out"

echo "$checks checks, $failures failures"
((failures == 0))
