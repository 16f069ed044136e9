#!/usr/bin/env bash
# How long the tools take for --help and --version: startup_check.sh BIN-DIRECTORY. Processor time, which a busy machine
# does not lengthen; the median of 20 runs of each must stay below 50 ms.
set -u
bin=$1
limit=50
runs=20
failures=0
TIMEFORMAT='%U %S'

# Milliseconds of user and system time that a command takes.
processor_time() {
    local user system
    read -r user system < <({ time "$@" >/dev/null 2>&1; } 2>&1)
    echo $((10#${user/[.,]/} + 10#${system/[.,]/}))
}

for tool in atctl cfgctl modemsim; do
    [[ -x $bin/$tool ]] || continue
    for option in --help --version; do
        times=()
        for ((i = 0; i < runs; ++i)); do times+=("$(processor_time "$bin/$tool" "$option")"); done
        "$bin/$tool" "$option" >/dev/null || { echo "FAILED  $tool $option ends with $?"; failures=1; }
        mapfile -t times < <(printf '%s\n' "${times[@]}" | sort -n)
        median=${times[runs / 2]}
        echo "$tool $option: $median ms of processor time (median of $runs, at most ${times[-1]})"
        ((median < limit)) || { echo "FAILED  that is not below $limit ms"; failures=1; }
    done
done
exit $failures
