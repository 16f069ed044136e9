# Sourced by checks that are shell scripts: named verdicts, one a line, and how many of them were bad.
# shellcheck shell=bash
failures=0
passed() { echo "ok      $1"; }
failed() {
    echo "FAILED  $1"
    failures=$((failures + 1))
}
# check NAME COMMAND...: good when the command succeeds. What it said is shown when it does not.
check() {
    local name=$1 output
    shift
    if output=$("$@" 2>&1); then passed "$name"; else failed "$name: $(tail -n 20 <<<"$output")"; fi
}
# skip WHY: ctest takes the status for "not possible here".
skip() {
    echo "$(basename "${BASH_SOURCE[-1]}" .sh): $1" >&2
    exit 77
}
# needs PURPOSE COMMAND...: skips where one of the commands is missing, or who runs this is not root.
needs() {
    local purpose=$1 command
    shift
    for command; do
        command -v "$command" >/dev/null || skip "$command is missing: run scripts/setup --all on a Debian system"
    done
    ((EUID == 0)) || skip "only root can $purpose"
}
# make_packages BUILD-DIRECTORY WORK-DIRECTORY: the Debian packages, into WORK-DIRECTORY/debs
make_packages() {
    mkdir -p "$2/debs" || return
    cpack -G DEB --config "$1/CPackConfig.cmake" -B "$2/packing" >"$2/log" 2>&1 || { cat "$2/log"; return 1; }
    mv "$2"/packing/*.deb "$2/debs"
}
# overlay_of_this_machine DIRECTORY: / as it is, at DIRECTORY/root, with all changes in DIRECTORY/upper in memory. In a mount
# namespace of its own: it goes with it.
overlay_of_this_machine() {
    mount -t tmpfs none "$1" && mkdir "$1"/{upper,overlay,root} || return
    mount -t overlay overlay -o "lowerdir=/,upperdir=$1/upper,workdir=$1/overlay" "$1/root"
}
