#include "reports/handling.h"

#include <string.h>

#include "codec/atcode.h"
#include "platform/log.h"
#include "records/payload.h"
#include "records/queue.h"
#include "records/state.h"
#include "reports/response.h"
#include "text/atpublic.h"

static constexpr char kLogSource[] = "response";

namespace {

constexpr int kErrorAnswerNotSent = 42506;

// The answer or report under way.
MSG_BUF g_message;

// Reports whose routing reads the line itself, where the decoder has already put a record.
bool RoutesByText(uint16_t command) {
    switch (command) {
        case 0x0627:  // +ZGIPDNS
        case 0x0629:  // +ZICCID
        case 0x052D:  // +CREG
        case 0x0553:  // +CGREG
        case 0x0552:  // +CEREG
        case 0x0630:  // +ZUPCI
        case 0x0632:  // +ZUEND
        case 0x0541:  // ^CONN
        case 0x0542:  // ^CEND
        case 0x055E:  // +ZCPI
        case 0x0550:  // ^HRSSILVL
        case 0x0521:  // +ZCLAS
        case 0x063E:  // +ZNITZ
        case 0x0118:  // +ZVMAIL
            return true;
        default:
            return false;
    }
}

// Puts the report line of `text` into the message, where its routing looks for it: the line named like the
// row of `command`, or else the first.
void CarryReportLine(const char* text, uint16_t command) {
    int row = 0;
    const bool known = Bk_Find_Cmd_By_Id(command, &row) == 0;
    const char* name = known ? g_astAtCmdTable[row].acCmdName : "";
    const size_t name_length = strlen(name);

    ModemLine first{};
    ModemLine chosen{};
    for (ModemLine line = ReadLine(text); !(line.Empty() && !line.complete); line = ReadLine(line.end)) {
        if (line.Empty()) continue;
        if (first.begin == nullptr) first = line;
        if (strncmp(line.begin, name, name_length) == 0 && line.begin[name_length] == ':') {
            chosen = line;
            break;
        }
    }
    if (first.begin == nullptr) return;
    if (chosen.begin == nullptr) chosen = first;

    const bool by_text = RoutesByText(command);
    if (!by_text) {
        static constexpr char kNoCarrier[] = "VOICE NO CARRIER: ";
        const char* found = Find_Sub_Str(first.begin, kNoCarrier);
        if (found == nullptr || found >= first.text_end) return;
        chosen = first;
    }
    _BK_AT_RES_T& res = ResponseOf(g_message);
    const size_t length = chosen.Length() < sizeof res.aucParas ? chosen.Length() : sizeof res.aucParas - 1;
    memcpy(res.aucParas, chosen.begin, length);
    memset(res.aucParas + length, 0, sizeof res.aucParas - length);
    res.usParaLen = static_cast<uint16_t>(length);
}

// The request record that the parser is given. What was sorted out answers no request, so that a word in it
// that looks like a result is not decoded as one. A further line of a +CCFC or +CCWA answer comes when
// nothing is pending any more; it is decoded as what it is, a line of a set answer.
const _BK_AT_CMD_T* PendingForParser(const char* text, Cut cut) {
    if (cut != Cut::framed) {
        static _BK_AT_CMD_T none;
        none.ucCmdType = PendingRequest()->ucCmdType;
        return &none;
    }
    static constexpr _BK_AT_CMD_T kFurtherLine = {
        .usCmdID = 0, .ucCmdType = AT_CMD_TYPE_SET, .aucReserved = {}, .usParaLen = 0, .aucParas = {}};
    if (PendingRequest()->usCmdID != 0) return PendingRequest();
    while (text[0] == '\r' && text[1] == '\n')
        text += 2;
    const bool further = strncmp(text, "+CCFC:", 6) == 0 || strncmp(text, "+CCWA:", 6) == 0;
    return further ? &kFurtherLine : PendingRequest();
}

void LogResponse(int is_last) {
    const _BK_AT_RES_T& res = ResponseOf(g_message);
    const int size = static_cast<int>(sizeof res.aucParas);
    const char* paras = reinterpret_cast<const char*>(res.aucParas);
    AT_LOG(LOG_DEBUG, "+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+");
    AT_LOG(LOG_DEBUG, "\t#nIsLast:%d\n", is_last);
    AT_LOG(LOG_DEBUG, "\t#AtResResult:%d\n", res.ucResult);
    AT_LOG(LOG_DEBUG, "\t#AtResParaLen:%d\n", res.usParaLen);
    AT_LOG(LOG_DEBUG, "\t#AtResParas:%.*s\n", size, paras);
    AT_LOG(LOG_DEBUG, "+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+");
    AT_LOG(LOG_DEBUG, "AT Result =%.*s", size, paras[0] != '\0' ? paras : "OK");
}

void DeliverAnswer() {
    if (send_msg_buf(&g_message) != 0)
        AT_LOG(LOG_ERR, "ERROR: send_msg_buf send msg failed, error code %d!", kErrorAnswerNotSent);
    else
        AT_LOG(LOG_NOTICE, "send AT Response to module 0x%0x OK!", g_message.usTargetModuleID);
    ClearPendingRequest();
    g_last_atcmd = ResponseOf(g_message).usCmdID;
    g_at_statistics.received.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace

void HandleResponse(const char* text, Cut cut, bool in_answer) {
    if (in_answer && strncmp(text, "BUSY", 4) == 0) {
        AT_LOG(LOG_NOTICE, "BUSY inside an answer is not the answer, dropped");
        return;
    }
    memset(&g_message, 0, sizeof g_message);
    int is_last = 0;
    const int parsed = Bk_Parse_At_Res_Message(&g_message, &is_last, text, PendingForParser(text, cut));
    _BK_AT_RES_T& res = ResponseOf(g_message);
    // What was sorted out is known to be no answer: an "OK" among its words must not be routed as one either.
    if (is_last != 0 && cut != Cut::framed) memset(&res, 0, sizeof res);
    if (parsed == -1 || cut != Cut::framed) is_last = 0;

    g_message.ulMagic = AT_MESSAGE_MAGIC;
    g_message.lMsgType = g_at_msg.lMsgType != -1 ? g_at_msg.lMsgType : 1;
    g_message.usMsgCmd = AT_MESSAGE_COMMAND;
    g_message.usDataLen = static_cast<uint16_t>(res.usParaLen + 6);
    LogResponse(is_last);
    if (is_last != 0) {
        DeliverAnswer();
        return;
    }
    AT_LOG(LOG_DEBUG, "It's  a auto reporting  message!");
    CarryReportLine(text, res.usCmdID);
    RouteReport(&g_message, {.may_prompt = cut == Cut::framed, .may_clear = !in_answer});
    g_at_statistics.report.fetch_add(1, std::memory_order_relaxed);
}
