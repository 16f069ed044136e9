#include <stdlib.h>
#include <unistd.h>

#include "platform/log.h"
#include "server/at_server.h"
#include "text/atpublic.h"

static constexpr char kLogSource[] = "at_server";

int main() {
    InitServer();
    if (OpenModemPort() != 0) {
        AT_LOG(LOG_ERR, "Open serial port failed!");
        exit(-1);
    }
    const int queue = CreateServerQueue();
    if (queue == -1) {
        AT_LOG(LOG_ERR, "create message  queue error!");
        exit(-1);
    }
    kvx_sleep(1000);
    if (StartResponseThread() != 0) {
        AT_LOG(LOG_ERR, "create at collect thread error!");
        exit(-1);
    }
    AT_LOG(LOG_CRIT, "Server initialization completed.");
    AT_LOG(LOG_CRIT, "AT Server is running.");
    RequestLoop(queue);
}
