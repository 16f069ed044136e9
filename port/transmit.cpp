#include "port/transmit.h"

#include <string.h>
#include <sys/times.h>

#include "platform/config.h"
#include "platform/log.h"
#include "port/com.h"
#include "records/state.h"

static constexpr char kLogSource[] = "at_server";

static constexpr int kErrorLineNotWritten = 42505;

int send_at_cmd(const char* line) {
    if (line == nullptr) {
        AT_LOG(LOG_ERR, "send AT buf para is NULL!");
        return 1;
    }
    if (PortSend(g_iFdCom, line, static_cast<unsigned>(strlen(line))) == -1) {
        AT_LOG(LOG_ERR, "[error]:Send AT command Error!error code:%d", kErrorLineNotWritten);
        return 1;
    }
    AT_LOG(LOG_DEBUG, "Send AT command SUCCESS!");
    return 0;
}

void send_resolve_at(const char* line) {
    const bool watched = ConfigIs("WatchDog_Setting_Option", "on");
    if (send_at_cmd(line) == 0) {
        g_at_send_time.store(static_cast<uint32_t>(times(nullptr)), std::memory_order_relaxed);
        AT_LOG(LOG_INFO, "Send AT Command SUCCESS! Waiting for AT response.");
        g_at_statistics.send.fetch_add(1, std::memory_order_relaxed);
        if (watched) AtStatistics.written.fetch_add(1, std::memory_order_relaxed);
        return;
    }
    AT_LOG(LOG_ERR, "[error]:Send Error,error code : %d\t (---make sure the serial port is OK!!!)\n ",
           kErrorLineNotWritten);
    cfg_set("port_stat", "port_close");
    AT_LOG(LOG_ERR, "Postponed failure! Reset modem from usb host! ");
    cfg_set("usb_reset", "activated");
    // The request stays in flight, so that its time-out answers it; only the loop is let go.
    g_at_processing.store(0, std::memory_order_release);
}
