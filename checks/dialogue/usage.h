#ifndef AT_CHECKS_DIALOGUE_USAGE_H
#define AT_CHECKS_DIALOGUE_USAGE_H

#include <sys/types.h>

// What a process of ours has used and holds, as the kernel tells.
struct Usage {
    double cpu_seconds = 0;  // user and system, all threads
    int descriptors = 0;
    int threads = 0;
    long data_kb = 0;       // private writable memory that it may touch: heap, stacks, static objects
    long anonymous_kb = 0;  // of that, what it has touched
    long resident_kb = 0;   // everything in memory, shared pages of files too
};

// Throws std::runtime_error when there is no such process.
Usage UsageOf(pid_t process);

// Bytes of stack that the process's threads, its first one left out, have used at most so far: the largest of
// them, from the end of the stack down to the lowest page that was ever written, so up to 4095 too many. All
// threads have to wait in a system call meanwhile, as those of an idle daemon do.
size_t StackUsed(pid_t process);

// The share of one processor that the process uses while `seconds` pass: near 0 when it sleeps in its rounds,
// near 1 when it spins.
double BusyShare(pid_t process, double seconds);

// Above it a daemon with nothing to do is said to spin. Its hundred rounds a second cost about a hundredth of
// a processor, ten times that under a sanitizer.
inline constexpr double kSpinning = 0.3;

#endif
