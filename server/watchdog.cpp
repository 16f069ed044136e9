#include "server/watchdog.h"

#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "platform/config.h"
#include "platform/log.h"
#include "records/state.h"

int32_t no_at_count;

namespace {

constexpr char kLogSource[] = "at_server";
constexpr int32_t kSilentPeriods = 4;
constexpr size_t kSettingSize = 32;

void ReadSetting(const char* key, char (&value)[kSettingSize]) {
    snprintf(value, sizeof value, "%s", ConfigText(key));
}

int ToNumber(const char* text) {
    long number = strtol(text, nullptr, 10);
    return number >= INT_MAX ? INT_MAX - 1 : number < INT_MIN ? INT_MIN : static_cast<int>(number);
}

void RequestReset(int reboots) {
    char text[96];
    snprintf(text, sizeof text, "touch /etc_rw/config/WatchDog/at_abnormal%d.xml", reboots);
    if (system(text) != 0) AT_LOG(LOG_ERR, "%s failed\n", text);
    snprintf(text, sizeof text, "%d", reboots + 1);
    cfg_set("at_abnormal_reboot_count", text);
    cfg_set("HardResetModemWatchDog", "start");
    AT_LOG(LOG_ERR, "at-server check modem is abnormal,reset modem!!!\n");
}

}  // namespace

int DetectAtTimer(void*) {
    char option[kSettingSize];
    char reboot_text[kSettingSize];
    ReadSetting("WatchDog_Setting_Option", option);
    ReadSetting("at_abnormal_reboot_count", reboot_text);
    int reboots = ToNumber(reboot_text);
    AT_LOG(LOG_INFO, "at_abnormal_reboot_count=%s,num=%d!\n", reboot_text, reboots);
    if (strcmp(option, "on") != 0) return 0;
    AT_LOG(LOG_INFO, "DetectAtTimer<<<WatchDogSet=%s!\n", option);

    // A modem that is in a call or is being updated may be silent. The count outlives the exemption's end by
    // one period.
    if (ConfigIs("led_modem_updating", "1") || ConfigIs("call_cs_status", "call_active")) {
        AtStatistics.read.fetch_add(1);
        no_at_count = 0;
        return 0;
    }
    if (AtStatistics.read.exchange(0) != 0) {
        no_at_count = 0;
        AT_LOG(LOG_INFO, "at-server check modem is normal !!!\n");
        return 0;
    }
    no_at_count++;
    AT_LOG(LOG_INFO, "no_at_count=%d!\n", no_at_count);
    if (no_at_count >= kSilentPeriods) RequestReset(reboots);
    return 0;
}
