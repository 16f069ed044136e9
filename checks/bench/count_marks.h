#ifndef AT_CHECKS_BENCH_COUNT_MARKS_H
#define AT_CHECKS_BENCH_COUNT_MARKS_H

// What is counted lies between these two: told to callgrind, or to qemu_count.c by calls that cannot succeed.

#ifdef AT_COUNT_BY_CALLGRIND

#include <valgrind/callgrind.h>

inline void CountFromHere() {
    CALLGRIND_ZERO_STATS;
}
inline void CountToHere(const char* path) {
    CALLGRIND_DUMP_STATS_AT(path);
}

#else

#include <unistd.h>

inline void CountFromHere() {
    close(-77);
}
inline void CountToHere(const char* /*path*/) {
    close(-78);
}

#endif

#endif
