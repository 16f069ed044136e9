#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "checks/bench/count_marks.h"
#include "checks/bench/samples.h"
#include "codec/atcode.h"
#include "platform/host_store.h"
#include "platform/platform.h"
#include "port/com.h"
#include "records/payload.h"
#include "records/state.h"
#include "reports/response.h"
#include "server/transaction.h"

// Runs each main path a fixed number of times between two marks for what counts instructions. Told to
// scripts/check-instructions on standard output: "path times".

namespace {

template <typename Run>
void Count(const char* path, int times, Run run) {
    run();  // what happens once only is not counted
    CountFromHere();
    for (int i = 0; i < times; ++i)
        run();
    CountToHere(path);
    printf("%s %d\n", path, times);
}

void Deliver(const std::string& text, size_t size, uint16_t id, uint8_t type) {
    static char chunk[kModemTextSize];
    if (id != 0) Pend(id, type);
    for (size_t at = 0; at < text.size(); at += size) {
        const size_t length = std::min(size, text.size() - at);
        memcpy(chunk, text.data() + at, length);
        chunk[length] = '\0';
        ProcessReceived(chunk);
    }
}

}  // namespace

int main() {
    char directory[] = "/tmp/counted_paths_XXXXXX";
    if (mkdtemp(directory) == nullptr) return 1;
    if (OpenStore(directory) != StoreResult::kOk || cfg_set("data_card_mode", "KVX_LTE") != 0) return 1;
    int modem[2];
    if (pipe(modem) != 0) return 1;
    g_iFdCom = modem[0];
    ClearPendingRequest();

    Count("idle-round", 200, [] { ResponseRound(); });

    const std::string list = MessageList();
    const std::string endless = Endless(100'000);
    const std::string storm = Storm(500);
    Count("short-answer", 1000, [] { Deliver(kShortAnswer, 4096, 0x0604, AT_CMD_TYPE_EXEC); });
    Count("list-in-pieces-of-115", 5, [&] { Deliver(list, 115, 0x0106, AT_CMD_TYPE_SET); });
    Count("endless-in-pieces-of-115", 5, [&] {
        ForgetReceived();
        Deliver(endless, 115, 0x0106, AT_CMD_TYPE_SET);
    });
    ForgetReceived();
    Count("storm-in-one-piece", 5, [&] {
        ClearPendingRequest();
        Deliver(storm, storm.size(), 0, 0);
    });
    Count("report", 1000, [] { Deliver("\r\n+CMTI: \"SM\",3\r\n", 4096, 0, 0); });
    _BK_AT_CMD_T request{};
    request.usCmdID = 0x0604;
    request.ucCmdType = AT_CMD_TYPE_EXEC;
    char line[1024];
    Count("command-line", 1000, [&] { Bk_Generate_At_Cmd_Line(line, &request); });

    CloseStore();
    for (const char* name : {"/data.mdb", "/lock.mdb"})
        unlink((std::string(directory) + name).c_str());
    return rmdir(directory) == 0 ? 0 : 1;
}
