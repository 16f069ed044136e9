#include "records/state.h"

#include <string.h>

MSG_BUF g_at_msg;
char g_cmd_str[kLineSize];
uint16_t g_last_atcmd;
std::atomic<uint32_t> g_at_processing;
std::atomic<uint32_t> g_atd_warting;
std::atomic<uint32_t> g_at_send_time;
AT_STATISTICS_T g_at_statistics;
AT_WATCHDOG_STATISTICS_T AtStatistics;

void ClearPendingRequest() {
    memset(&g_at_msg, 0, sizeof g_at_msg);
    g_at_msg.lMsgType = -1;
}
