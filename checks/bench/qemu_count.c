/* A plugin of qemu's user emulation that counts the instructions which a program executes between two marks.
 * A mark is a call of close() with a descriptor that cannot be: -77 starts at zero, -78 prints what was
 * counted since, one number to a line on standard error.
 *
 * Debian does not ship the header of this interface; what is used of it is declared here. */

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>

struct qemu_plugin_tb; /* a stretch of translated code that is run from its start */
typedef void OnTranslation(uint64_t plugin, struct qemu_plugin_tb* stretch);
typedef void OnCall(uint64_t plugin, unsigned cpu, int64_t call, uint64_t a1, uint64_t a2, uint64_t a3,
                    uint64_t a4, uint64_t a5, uint64_t a6, uint64_t a7, uint64_t a8);
enum { kAdd64 = 0 };

extern void qemu_plugin_register_vcpu_tb_trans_cb(uint64_t plugin, OnTranslation* callback);
extern size_t qemu_plugin_tb_n_insns(const struct qemu_plugin_tb* stretch);
extern void qemu_plugin_register_vcpu_tb_exec_inline(struct qemu_plugin_tb* stretch, int operation,
                                                     void* target, uint64_t operand);
extern void qemu_plugin_register_vcpu_syscall_cb(uint64_t plugin, OnCall* callback);

__attribute__((visibility("default"))) int qemu_plugin_version = 1;

static uint64_t g_count;

static void Translated(uint64_t plugin, struct qemu_plugin_tb* stretch) {
    (void)plugin;
    qemu_plugin_register_vcpu_tb_exec_inline(stretch, kAdd64, &g_count, qemu_plugin_tb_n_insns(stretch));
}

static void Called(uint64_t plugin, unsigned cpu, int64_t call, uint64_t a1, uint64_t a2, uint64_t a3,
                   uint64_t a4, uint64_t a5, uint64_t a6, uint64_t a7, uint64_t a8) {
    (void)plugin, (void)cpu, (void)call, (void)a2, (void)a3, (void)a4, (void)a5, (void)a6, (void)a7, (void)a8;
    const int32_t mark = (int32_t)a1;
    if (mark == -77) g_count = 0;
    if (mark == -78) fprintf(stderr, "%llu\n", (unsigned long long)g_count);
}

__attribute__((visibility("default"))) int qemu_plugin_install(uint64_t plugin, const void* about, int count,
                                                               char** arguments) {
    (void)about, (void)count, (void)arguments;
    qemu_plugin_register_vcpu_tb_trans_cb(plugin, Translated);
    qemu_plugin_register_vcpu_syscall_cb(plugin, Called);
    return 0;
}
