#!/usr/bin/env bash
# docs/porting.md names exactly the functions that the daemon takes from outside.
#   porting_check.sh BUILD-DIRECTORY
set -euo pipefail
export LC_ALL=C
cd "$(dirname "$0")/../.."
archive=$1/libat_core.a

# What no object defines and is no C++ name; the C library's names for checked or newer forms stand for the plain ones, and
# what a compiler adds by itself (guards of the stack, atomics out of line) is its own affair. Another compiler may need
# what this one puts in place: the names that are known from the router's.
needed=$({ comm -23 <(nm -u "$archive" | awk '$1 == "U" { print $2 }' | sort -u) \
    <(nm --defined-only "$archive" | awk 'NF == 3 { print $3 }' | sort -u); grep -v '^#\|^$' checks/size/imports.txt; } |
    grep -v '^_Z\|^_GLOBAL_OFFSET_TABLE_$\|^__stack_chk_\|^__aarch64_' |
    sed 's/^__isoc[0-9]*_//; s/^__\(.*\)_chk$/\1/; s/^__errno_location$/errno/; s/^bcmp$/memcmp/' | sort -u)
(($(wc -l <<<"$needed") > 40)) || { echo "porting_check: only $(wc -l <<<"$needed") functions found in $archive" >&2; exit 1; }
# shellcheck disable=SC2016 # the backticks are those of the page
named=$(awk '
    /^## / { part = $0 }
    part == "## C library" && /^`/ { print }
    part ~ /^## Platform library/ && /^- `/ { print $2 }' docs/porting.md | grep -o '`[A-Za-z_0-9]*`' | tr -d '`' | sort -u)
if ! diff <(echo "$named") <(echo "$needed"); then
    echo "porting_check: docs/porting.md (left) names other functions than the daemon needs (right)" >&2
    exit 1
fi
echo "porting: $(wc -l <<<"$needed") functions"
