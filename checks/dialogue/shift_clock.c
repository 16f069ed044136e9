/* Preloaded into the daemon: shifts the time of day that it sees by the seconds that stand in a file, as when
 * the network tells a router the right time. Clocks that nobody can set stay as they are. */

#include <fcntl.h>
#include <stddef.h>
#include <stdint.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/time.h>
#include <time.h>
#include <unistd.h>

static const char kControlFile[] = "/tmp/clock_shift";

static volatile int64_t* g_shift; /* seconds */

__attribute__((constructor)) static void OpenControl(void) {
    const int file = open(kControlFile, O_RDWR | O_CLOEXEC);
    if (file < 0) return;
    void* mapped = mmap(NULL, sizeof *g_shift, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    if (mapped != MAP_FAILED) g_shift = mapped;
}

int clock_gettime(clockid_t clock, struct timespec* now) {
    if (syscall(SYS_clock_gettime, clock, now) != 0) return -1;
    if ((clock == CLOCK_REALTIME || clock == CLOCK_REALTIME_COARSE) && g_shift != NULL)
        now->tv_sec += (time_t)*g_shift;
    return 0;
}

int gettimeofday(struct timeval* restrict now, void* restrict zone) {
    (void)zone;
    struct timespec precise;
    if (clock_gettime(CLOCK_REALTIME, &precise) != 0) return -1;
    now->tv_sec = precise.tv_sec;
    now->tv_usec = precise.tv_nsec / 1000;
    return 0;
}

time_t time(time_t* result) {
    struct timespec now;
    if (clock_gettime(CLOCK_REALTIME, &now) != 0) return -1;
    if (result != NULL) *result = now.tv_sec;
    return now.tv_sec;
}
