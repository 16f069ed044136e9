/* Preloaded into the daemon: its log calls can be switched while it runs, so that the costs of each way of
 * logging are measured on one process. The file named by LOG_SWITCH holds one 32-bit word: 0  the calls go to
 * the C library, as without this 1  they return at once 2  they go to the C library, whose mask lets errors
 * and worse through */

#include <dlfcn.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>
#include <sys/mman.h>
#include <syslog.h>
#include <unistd.h>

enum { kPass, kDrop, kMask };

static uint32_t g_pass_always = kPass;
static uint32_t* g_switch = &g_pass_always;
static uint32_t g_masked; /* what the mask was last set for */
static void (*g_vsyslog)(int, const char*, va_list);

__attribute__((constructor)) static void OpenSwitch(void) {
    g_vsyslog = (void (*)(int, const char*, va_list))dlsym(RTLD_NEXT, "vsyslog");
    const char* path = getenv("LOG_SWITCH");
    const int file = path != NULL ? open(path, O_RDWR | O_CLOEXEC) : -1;
    if (file < 0) return;
    void* mapped = mmap(NULL, sizeof *g_switch, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0);
    close(file);
    if (mapped != MAP_FAILED) g_switch = mapped;
}

static void Log(int level, const char* format, va_list arguments) {
    const uint32_t way = __atomic_load_n(g_switch, __ATOMIC_RELAXED);
    if (way == kDrop) return;
    if (__atomic_load_n(&g_masked, __ATOMIC_RELAXED) != way) {
        __atomic_store_n(&g_masked, way, __ATOMIC_RELAXED);
        setlogmask(way == kMask ? LOG_UPTO(LOG_ERR) : LOG_UPTO(LOG_DEBUG));
    }
    g_vsyslog(level, format, arguments);
}

void syslog(int level, const char* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    Log(level, format, arguments);
    va_end(arguments);
}

/* What a C library that checks formats makes of syslog(). */
void __syslog_chk(int level, int flag, const char* format, ...) {
    (void)flag;
    va_list arguments;
    va_start(arguments, format);
    Log(level, format, arguments);
    va_end(arguments);
}
