#include <string.h>

#include "codec/atcode.h"
#include "platform/config.h"
#include "platform/log.h"
#include "port/com.h"
#include "records/handover.h"
#include "records/payload.h"
#include "records/queue.h"
#include "records/state.h"
#include "reports/broadcast.h"
#include "reports/response.h"
#include "reports/sorting.h"
#include "test/attest.h"
#include "text/atpublic.h"

static constexpr char kLogSource[] = "response";

namespace {

constexpr int kErrorAnswerNotSent = 42506;
constexpr unsigned kReadSize = 102'400;

// What the test responder made of a read. Not touched while test mode is off.
char g_responder_text[kTestOutputSize];

// The answer or report under way.
MSG_BUF g_message;

// Where the last report line was taken out of gStrResAtBuffer.
Continuation g_continuation;

// What is known of gStrResAtBuffer, so that a read costs what it brought. The offsets of the last three count
// from where the text begins that has not been handled.
struct Known {
    BufferedText buffered;
    SortingMemory sorting;
    GrowingSearch broadcast;
    GrowingSearch status_report;

    void DropFront(size_t count) {
        sorting.DropFront(count);
        broadcast.Remove(0, count);
        status_report.Remove(0, count);
    }
    void RemoveLines(size_t begin, size_t end, const Continuation& follows) {
        sorting.RemoveLines(begin, end, follows);
        broadcast.Remove(begin, end);
        status_report.Remove(begin, end);
    }
};
Known g_known;

// Where the echo of the next line may stand: at the start of the buffered text, when nothing precedes it or
// what did has been handled, or behind the line break that was left there in front of a report.
enum class EchoPlace { none, start, behind_break };
EchoPlace g_echo_place = EchoPlace::start;

// Whether the last response took the line break behind it along, so that what follows begins a line.
bool g_at_line_start;

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

// Parses one response (NUL-terminated) and delivers or routes it.
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

// Where the text goes on behind an echo. Pre-processing drops an echo at the start of the buffer, but not one
// that arrives in the same read as the response before it, or behind a line break that a report left. An echo
// whose own line break has not come is left to pre-processing.
char* SkipEcho(char* text) {
    if (g_echo_place == EchoPlace::none) return text;
    char* const follows = text + (g_echo_place == EchoPlace::behind_break ? 2 : 0);
    if (follows[0] == '\0' || (follows[0] == 'A' && follows[1] == '\0')) return text;
    g_echo_place = EchoPlace::none;
    if (follows[0] != 'A' || follows[1] != 'T') return text;
    g_continuation = {};
    char* const line_break = Find_Sub_Str(follows, "\r\n");
    return line_break != nullptr ? line_break : follows;
}

// Takes the lines from `begin` to `end` out of the text; returns where it begins then. Whichever is shorter
// moves: what stood before them or what stands behind.
char* TakeOut(char* text, char* begin, char* end) {
    auto before = static_cast<size_t>(begin - text);
    // Of nothing but line breaks one is enough.
    const bool only_breaks = before >= 2 && strspn(text, "\r\n") >= before;
    g_echo_place = only_breaks ? EchoPlace::behind_break : EchoPlace::none;
    if (only_breaks) {
        g_known.DropFront(before - 2);
        before = 2;
    }
    g_known.RemoveLines(before, before + static_cast<size_t>(end - begin), g_continuation);

    const size_t behind = g_known.buffered.length - static_cast<size_t>(end - gStrResAtBuffer);
    if (only_breaks || before <= behind) {
        memmove(end - before, begin - before, before);
        return end - before;
    }
    memmove(begin, end, behind + 1);
    g_known.buffered.length -= static_cast<size_t>(end - begin);
    if (g_continuation.at != nullptr) g_continuation.at = begin;
    return text;
}

// Handles the responses in the buffered text one after the other; returns where the unfinished rest begins.
char* HandleResponses(char* text) {
    for (;;) {
        char* const behind_echo = SkipEcho(text);
        if (behind_echo != text) g_known.DropFront(static_cast<size_t>(behind_echo - text));
        text = behind_echo;
        const Response response =
            NextResponse(text, PendingCommand::Current(), g_continuation, g_known.sorting);
        if (response.cut == Cut::nothing) return text;
        g_continuation = response.continuation;
        char* const begin = text + (response.begin - text);
        char* const end = text + (response.end - text);
        g_at_line_start = end[-1] == '\n';

        if (response.cut != Cut::leftover) {
            // Both look past the response: a broadcast is reported with each response framed up to it.
            const char* const broadcast = g_known.broadcast.Find(text, "+CBM:", 5);
            if (broadcast != nullptr) cbm_resolve(broadcast);
            const char* const status_report = g_known.status_report.Find(text, "+CDS: ", 6);
            if (status_report != nullptr) cds_resolve(status_report);
            const char kept = *end;
            *end = '\0';
            HandleResponse(begin, response.cut, response.in_answer);
            *end = kept;
        }
        if (response.cut == Cut::framed) {
            g_echo_place = EchoPlace::start;
            g_known.DropFront(static_cast<size_t>(end - text));
            text = end;
        } else {
            text = TakeOut(text, begin, end);
        }
    }
}

// A line that begins a read, where the last one ended with the line break of a handled response, would be
// dropped by pre-processing with everything else in front of the first line break. It gets one; an echo is
// to be dropped. For an empty buffer.
void OpenLine(const char* text) {
    if (!g_at_line_start) return;
    if (text[0] == '\0' || text[0] == '\r' || strncmp(text, "AT", 2) == 0 || strcmp(text, "A") == 0) return;
    memcpy(gStrResAtBuffer, "\r\n", 3);
    g_known.buffered.length = 2;
    if (g_continuation.at != nullptr) g_continuation.at = gStrResAtBuffer + 2;
}

// The unfinished rest becomes the buffer's content.
void CarryOver(char* rest) {
    size_t length = g_known.buffered.length - static_cast<size_t>(rest - gStrResAtBuffer);
    // A rest that begins in the middle of a line gets the line break that pre-processing looks for; an echo
    // is to be dropped by it.
    const bool bare = length != 0 && rest[0] != '\r' && strncmp(rest, "AT", 2) != 0;
    const size_t shift = bare && length + 2 <= kMaxBuffered ? 2 : 0;
    char* const moved = gStrResAtBuffer + shift;
    if (moved != rest) {
        if (g_continuation.at != nullptr) g_continuation.at = moved + (g_continuation.at - rest);
        memmove(moved, rest, length + 1);
        g_known.buffered.line_break = {};
    }
    if (shift != 0) {
        memcpy(gStrResAtBuffer, "\r\n", 2);
        if (g_echo_place == EchoPlace::start) g_echo_place = EchoPlace::behind_break;
        g_known = {};
    }
    length += shift;
    g_known.buffered.length = length;
    if (length == 0) g_echo_place = EchoPlace::start;

    if (length >= kMaxBuffered) {
        AT_LOG(LOG_ERR, "receive buffer is full, %d characters without a complete response dropped",
               static_cast<int>(length));
        ForgetReceived();
    }
}

}  // namespace

void ProcessReceived(char* received) {
    AT_LOG(LOG_DEBUG, "acComReceive=%s", received);
    char* text = AtResponseText(received, g_responder_text) == received ? received : g_responder_text;
    AT_LOG(LOG_DEBUG, "pAtRes=%s", text);

    if (gStrResAtBuffer[0] == '\0') {
        g_known = {};
        OpenLine(text);
    }
    if (AppendReceived(gStrResAtBuffer, text, g_known.buffered) != 0) {
        g_continuation = {};
        g_known = {.buffered = g_known.buffered, .sorting = {}, .broadcast = {}, .status_report = {}};
    }
    CarryOver(HandleResponses(gStrResAtBuffer));
}

uint32_t on_recieve_at() {
    const bool watched = ConfigIs("WatchDog_Setting_Option", "on");
    const int length = PortRecv(g_iFdCom, g_acSioBuf, kReadSize, g_sPortInfo.ulSpeed);
    if (length <= 0) return 1;
    g_acSioBuf[length] = '\0';
    if (watched) AtStatistics.read.fetch_add(1, std::memory_order_relaxed);

    // A line is written only after its request was handed over, so what answers it finds it in place.
    HandoverTake();

    AT_LOG(LOG_INFO, "Receive AT response ok,RecvLen(chars) =  %d.", length);
    AT_LOG(LOG_INFO, "\n------------------------------------\n%s-------------------RecvLen:%d-----",
           g_acSioBuf, length);
    ProcessReceived(g_acSioBuf);
    return 0;
}

void ForgetReceived() {
    gStrResAtBuffer[0] = '\0';
    g_known = {};
    g_continuation = {};
    g_echo_place = EchoPlace::start;
    g_at_line_start = false;
}

bool DropUnfinishedQuote() {
    bool quoted = false;
    for (const char* at = gStrResAtBuffer; *at != '\0'; ++at)
        if (*at == '"') quoted = !quoted;
    if (!quoted) return false;
    AT_LOG(LOG_WARNING, "unfinished text with an open quote dropped: %.80s", gStrResAtBuffer);
    ForgetReceived();
    return true;
}
