#include "records/report.h"

#include <string.h>

#include "platform/log.h"
#include "records/payload.h"
#include "records/queue.h"

static constexpr char kLogSource[] = "response";

static constexpr int kUssdCommand = 0x0532;

// What the two senders differ in: the name in their log lines, whose result leaves, and whether USSD text
// travels.
struct ReportSender {
    const char* name;
    bool own_result;
    bool withhold_ussd;
};

static int SendReport(const ReportSender& sender, int target, int cmd_id, int cmd_type,
                      const _BK_AT_RES_T* res) {
    if (res == nullptr) {
        AT_LOG(LOG_ERR, "ERROR: %s NULL parameter.\n", sender.name);
        return 1;
    }
    MSG_BUF message{};
    message.lMsgType = 1;
    message.usTargetModuleID = static_cast<uint16_t>(target);
    message.usSourceModuleID = AT_MODULE_SERVER;
    message.usMsgCmd = AT_MESSAGE_COMMAND;
    message.usDataLen = kReportDataLen;
    message.ulMagic = AT_MESSAGE_MAGIC;

    _BK_AT_RES_T* out = &ResponseOf(message);
    out->usCmdID = static_cast<uint16_t>(cmd_id);
    out->ucCmdType = static_cast<uint8_t>(cmd_type);
    out->ucResult = sender.own_result ? uint8_t{AT_RESULT_OK} : res->ucResult;
    out->usParaLen = res->usParaLen;
    if (!(sender.withhold_ussd && cmd_id == kUssdCommand)) {
        const size_t length = res->usParaLen < sizeof out->aucParas ? res->usParaLen : sizeof out->aucParas;
        memcpy(out->aucParas, res->aucParas, length);
    }

    if (send_msg_buf(&message) != 0) {
        AT_LOG(LOG_ERR, "ERROR: %s send msg failed.\n", sender.name);
        return 1;
    }
    AT_LOG(LOG_ERR, "%s send RES msg to 0x%04x CMD 0x%04x OK.\n", sender.name, static_cast<unsigned>(target),
           static_cast<unsigned>(cmd_id));
    return 0;
}

int send_auto_report(int target, int cmd_id, int cmd_type, const _BK_AT_RES_T* res) {
    return SendReport({"send_auto_report", true, true}, target, cmd_id, cmd_type, res);
}

int send_auto_report_ussd_error(int target, int cmd_id, int cmd_type, const _BK_AT_RES_T* res) {
    return SendReport({"send_auto_report_ussd_error", false, false}, target, cmd_id, cmd_type, res);
}
