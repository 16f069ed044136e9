#include "checks/client/support.h"

#include <linux/capability.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

at_client_options OptionsFor(key_t server_key, unsigned flags) {
    at_client_options options = {};
    options.module = AT_CLIENT_ANY_MODULE;
    options.flags = flags;
    options.server_key = server_key;
    return options;
}

at_client_error RefusedOpening(const at_client_options& options) {
    at_client* client = reinterpret_cast<at_client*>(1);
    const at_client_error error = at_client_open(&options, &client);
    EXPECT_EQ(client, nullptr);
    return error;
}

bool QueueExists(key_t key) {
    return msgget(key, 0) >= 0;
}

int QueueOf(const Client& client) {
    return msgget(at_client_module(client.get()), 0);
}

void Fill(int queue) {
    Wire message;
    message.type = 1;
    int count = 0;
    while (count < 10000 && PutInto(queue, message))
        ++count;
    ASSERT_GT(count, 0);
    ASSERT_LT(count, 10000);
}

Wire Report(uint16_t module, uint16_t cmd_id, int32_t value) {
    return Report(module, cmd_id, AT_CMD_TYPE_EXEC, Integers({value}));
}

void PutReport(const Client& client, int32_t value) {
    ASSERT_TRUE(PutInto(QueueOf(client), Report(at_client_module(client.get()), 0x0110, value)));
}

int32_t ValueOf(const at_client_message& message) {
    int32_t value = -1;
    EXPECT_EQ(at_client_record(&message, &value, sizeof value), AT_CLIENT_OK);
    return value;
}

bool InChild(const std::function<bool()>& act) {
    const pid_t pid = fork();
    if (pid == 0) _exit(act() ? 0 : 1);
    int status = -1;
    return waitpid(pid, &status, 0) == pid && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

LivingChild::LivingChild(const std::function<bool()>& act) {
    int told[2];
    int hold[2];
    if (pipe(told) != 0 || pipe(hold) != 0) return;
    pid_ = fork();
    if (pid_ == 0) {
        close(hold[1]);
        const char good = act() ? 'y' : 'n';
        const ssize_t written = write(told[1], &good, 1);
        char end;
        const ssize_t got = read(hold[0], &end, 1);  // until the parent closes its side
        _exit(written == 1 && got == 0 ? 0 : 1);
    }
    close(told[1]);
    close(hold[0]);
    hold_ = hold[1];
    char good = 'n';
    good_ = read(told[0], &good, 1) == 1 && good == 'y';
    close(told[0]);
}

LivingChild::~LivingChild() {
    close(hold_);
    if (pid_ > 0) waitpid(pid_, nullptr, 0);
}

void WithoutPrivileges(const std::function<void()>& act) {
    // Capabilities are a thread's own.
    std::thread([&] {
        __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
        __user_cap_data_struct data[2] = {};
        EXPECT_EQ(syscall(SYS_capget, &header, data), 0);
        data[0].effective &= ~(1U << CAP_IPC_OWNER);
        EXPECT_EQ(syscall(SYS_capset, &header, data), 0);
        act();
    }).join();
}
