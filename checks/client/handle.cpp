#include "checks/client/handle.h"

#include <sys/ipc.h>
#include <sys/msg.h>

Client Open(const at_client_options& options) {
    at_client* client = nullptr;
    const at_client_error error = at_client_open(&options, &client);
    EXPECT_EQ(error, AT_CLIENT_OK) << at_client_error_text(error);
    EXPECT_NE(client, nullptr);
    return Client(client);
}

at_client_stats StatsOf(const Client& client) {
    at_client_stats stats;
    at_client_get_stats(client.get(), &stats);
    return stats;
}

size_t Waiting(int queue) {
    msqid_ds state = {};
    return msgctl(queue, IPC_STAT, &state) == 0 ? state.msg_qnum : SIZE_MAX;
}
