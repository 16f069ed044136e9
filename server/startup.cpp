#include "server/startup.h"

#include <fcntl.h>
#include <pthread.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/config.h"
#include "platform/log.h"
#include "port/com.h"
#include "records/state.h"
#include "server/transaction.h"
#include "text/atpublic.h"

static constexpr char kLogSource[] = "at_server";

static constexpr int kErrorNoQueue = 42499;
static constexpr int kErrorNoThread = 42500;
static constexpr int kLastAttempt = 100;
static constexpr char kWatchDogDirectory[] = "/etc_rw/config/WatchDog";

static void RedirectToNull(int fd, int flags) {
    const int null = open("/dev/null", flags);
    if (null < 0 || null == fd) return;
    dup2(null, fd);
    close(null);
}

static void WriteConfigDefaults() {
    static constexpr struct {
        const char* key;
        const char* value;
    } kDefaults[] = {
        {"port_stat", "port_close"},   {"usb_reset", "inactivated"}, {"data_card_mode", ""},
        {"call_cs_status", ""},        {"volte_cs_status", ""},      {"HardResetModemWatchDog", ""},
        {"tsp_modem_start_fail", "0"}, {"AT_Test", "off"},
    };
    for (const auto& entry : kDefaults)
        cfg_set(entry.key, entry.value);
}

static void MakeWatchDogDirectory() {
    if (!ConfigIs("WatchDog_Setting_Option", "on") || access(kWatchDogDirectory, F_OK) == 0) return;
    AT_LOG(LOG_INFO, "watchdog does not exist,socreate it.\n");
    if (mkdir(kWatchDogDirectory, 0777) != 0) AT_LOG(LOG_ERR, "failed to create watchdog dir.\n");
}

void InitServer() {
    ClearPendingRequest();
    openlog("at-server", LOG_PID, 0);
    RedirectToNull(STDIN_FILENO, O_RDONLY);
    RedirectToNull(STDOUT_FILENO, O_WRONLY);
    RedirectToNull(STDERR_FILENO, O_WRONLY);
    AT_LOG(LOG_CRIT, "AT Server Start ");
    AT_LOG(LOG_CRIT, " AT Server initialization...");
    WriteConfigDefaults();
    MakeWatchDogDirectory();
}

int OpenModemPort() {
    int attempt = 0;
    while (PortInit() != 0) {
        AT_LOG(LOG_ERR, "[error]:No.%d Open serial port error! ", attempt);
        if (attempt >= kLastAttempt) {
            AT_LOG(LOG_ERR, "May be modem no inserted, exit now......");
            AT_LOG(LOG_ERR, "Init failure! Reset modem from usb host! ");
            cfg_set("usb_reset", "activated");
            return -1;
        }
        kvx_sleep(500);
        ++attempt;
    }
    if (attempt > 0) {
        AT_LOG(LOG_INFO, "Modem need enough time to initialize.\n");
        sleep(3);
    }
    AT_LOG(LOG_INFO, "Open serial port SUCCESE!");

    cfg_set("data_card_mode", "KVX_LTE");
    cfg_set("lte_dial_mode", "ndis");
    cfg_set("port_stat", "port_open");
    // Without it answers are taken apart in the way of another kind of modem, and come out wrong without a
    // word.
    if (!ConfigIs("data_card_mode", "KVX_LTE"))
        AT_LOG(LOG_ERR,
               "[error]:The configuration store does not keep data_card_mode=KVX_LTE! "
               "Answers will be read wrongly. Can the store be written?");
    return 0;
}

int CreateServerQueue() {
    AT_LOG(LOG_INFO, "Creating public message queue.");
    const int queue = msgget(AT_MODULE_SERVER, IPC_CREAT | 0600);
    if (queue == -1)
        AT_LOG(LOG_ERR, "[error]:Create At_Serv_MsgID queue faild!error code:%d", kErrorNoQueue);
    else
        AT_LOG(LOG_INFO, "Creating public message queue success! At_Serv_MsgID=0x%0x\n",
               static_cast<unsigned>(queue));
    return queue;
}

int StartResponseThread() {
    pthread_t thread;
    if (pthread_create(&thread, nullptr, resolve_at_response_thread, nullptr) != 0) {
        AT_LOG(LOG_ERR, "[error]:Create resolve_at_response_thread faild!error code:%d", kErrorNoThread);
        return -1;
    }
    AT_LOG(LOG_INFO, "Creating AT collection thread success!");
    return 0;
}
