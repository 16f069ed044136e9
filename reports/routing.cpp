#include "reports/routing.h"

#include <string.h>

#include <array>
#include <span>

#include "platform/log.h"
#include "platform/platform.h"
#include "port/transmit.h"
#include "records/report.h"
#include "records/state.h"
#include "reports/report_catalog.h"
#include "text/atpublic.h"
#include "text/scan.h"

namespace {

constexpr char kLogSource[] = "response";

constexpr uint16_t kAt = kProbeReport.id;
constexpr uint16_t kCmgs = kMessageSentReport.id;
constexpr uint16_t kCmgw = 0x010A;
constexpr uint16_t kCcfc = kMoreDivertsReport.id;
constexpr uint16_t kCcwa = kMoreWaitingReport.id;

constexpr int kCmdTypeStk = 35;          // +ZUPCI: the one proactive command whose text the module wants
constexpr size_t kRequestPduSize = 500;  // the PDU's array in the records of +CMGS and +CMGW
constexpr char kEndOfMessage = 0x1A;

// --- the rows --------------------------------------------------------------------------------------------

// A report on its way: the response and where in its text the row's literal stands.
struct ReportRow;

struct Report {
    const ReportRow* row;
    _BK_AT_RES_T* res;
    const char* at;
    size_t length;  // of the text from `at` on
};

// When a row applies.
enum class Trigger : uint8_t {
    has_text,     // its literal stands in the text
    is_cmgs,      // the response itself is that of +CMGS
    cmgs_prompt,  // +CMGS is pending and the literal does not stand in the text
    cmgw_prompt,  // +CMGW is pending
};

enum class Action : uint8_t {
    forward,     // send the response as it is
    decode,      // read the record from the normalised text and send it
    decode_raw,  // read the record from the text as it stands and send it
    prepare,     // send what the function leaves in the response
    handle,      // the function does everything
};

// The record that a row decodes into.
struct Layout {
    std::span<const FieldRef> fields;
    uint16_t size;          // bytes
    uint32_t restored = 0;  // bit n: put back in field n what normalising hid
};

template <const ReportInfo& report>
constexpr auto kFieldsOf = [] {
    std::array<FieldRef, report.record->count> fields{};
    for (size_t i = 0; i < fields.size(); i++)
        fields[i] = report.record->fields[i].Ref();
    return fields;
}();
template <const ReportInfo& report>
consteval Layout LayoutOf(uint32_t restored = 0) {
    return {kFieldsOf<report>, static_cast<uint16_t>(report.record->size), restored};
}

struct ReportRow {
    Trigger test = Trigger::has_text;
    const char* literal = nullptr;
    Action action = Action::forward;
    bool clears = false;  // ends the request in flight
    Destination to = {};
    const char* format = nullptr;
    const Layout* record = nullptr;
    void (*run)(Report& report) = nullptr;
    void (*note)(const unsigned char* record) = nullptr;  // logs the decoded record
};

constexpr Layout kRefresh = LayoutOf<kSimFileReport>();
constexpr Layout kNewMessage = LayoutOf<kNewMessageReport>();
constexpr Layout kClassMessage = LayoutOf<kClassMessageReport>(0b10);
constexpr Layout kVoiceMail = LayoutOf<kVoiceMailReport>();
constexpr Layout kHdrSignal = LayoutOf<kHdrSignalReport>();
constexpr Layout kConnection = LayoutOf<kConnectionReport>();
constexpr Layout kAddresses = LayoutOf<kAddressReport>(0b1111100);
constexpr Layout kIccid = LayoutOf<kIccidReport>();
constexpr Layout kCreg = LayoutOf<kCregReport>(0b110);
constexpr Layout kCgreg = LayoutOf<kCgregReport>(0b10110);
constexpr Layout kCereg = LayoutOf<kCeregReport>(0b110);
constexpr Layout kTime = LayoutOf<kTimeReport>();
constexpr Layout kToolkitText = LayoutOf<kToolkitTextReport>(0b10000);
constexpr Layout kToolkitEnd = LayoutOf<kToolkitEndReport>();

void AnswerCmgsPrompt(Report& report);
void AnswerCmgwPrompt(Report& report);
void TakeCallingNumber(Report& report);
void NoteCallState(Report& report);
void ReportLateOk(Report& report);
void DecodeToolkitText(Report& report);
void NoteNewMessage(const unsigned char* record);
void NoteConnection(const unsigned char* record);

using enum Action;

// clang-format off
// The first row that applies decides. A longer literal stands before the shorter one that it contains.
constexpr ReportRow kRows[] = {
    {.literal = "ZREFRESH: ", .action = decode, .to = To(kSimFileReport), .format = "ZREFRESH: %32s %32s", .record = &kRefresh},
    {.literal = "+CMTI: ", .action = decode, .to = To(kNewMessageReport), .format = "+CMTI: %10s %d", .record = &kNewMessage, .note = NoteNewMessage},
    {.literal = "+ZVMTI: ", .action = decode, .to = To(kNewVoiceMailReport), .format = "+ZVMTI: %10s %d", .record = &kNewMessage},
    {.literal = "+CDSI: ", .action = decode, .to = To(kStoredStatusReport), .format = "+CDSI: %10s %d", .record = &kNewMessage},
    {.test = Trigger::is_cmgs, .to = To(kMessageSentReport)},
    // While a message is being sent, whatever else arrives is taken for the modem's "> ".
    {.test = Trigger::cmgs_prompt, .literal = "+CGEV: ", .action = handle, .run = AnswerCmgsPrompt},
    {.test = Trigger::cmgw_prompt, .action = handle, .run = AnswerCmgwPrompt},
    {.literal = "RINGBACK:", .to = To(kRingbackReport)},
    {.literal = "RINGBACKLOCAL", .to = To(kRingbackReport)},
    {.literal = "RINGBACK", .to = To(kRingbackReport)},
    {.literal = "VOICE NO CARRIER : ", .to = To(kNoCarrierReport)},
    {.literal = "VOICE NO CARRIER: ", .to = To(kNoCarrierReport)},
    {.literal = "VOICE NO CARRIER ", .to = To(kNoCarrierReport)},
    {.literal = "STOPRING", .to = To(kStopRingReport)},
    {.literal = "RING", .to = To(kRingReport)},
    {.literal = "+CLIP: ", .action = prepare, .to = To(kCallingNumberReport), .run = TakeCallingNumber},
    {.literal = "+CCWA: ", .to = To(kCallWaitingReport)},
    {.literal = "VOICE CONNECT", .clears = true, .to = To(kConnectReport)},
    {.literal = "ANSWER", .clears = true, .to = To(kAnswerReport)},
    {.literal = "ZVCONNECT: ", .action = handle, .run = NoteCallState},
    {.literal = "CONNECT", .clears = true, .to = To(kConnectReport)},
    {.literal = "HANGUP:", .to = To(kHangUpReport)},
    {.literal = "+ZCLAS: ", .action = decode, .to = To(kClassMessageReport), .format = "+ZCLAS: %d %499s", .record = &kClassMessage},
    {.literal = "ZVMAIL: ", .action = decode, .to = To(kVoiceMailReport), .format = "ZVMAIL: %d", .record = &kVoiceMail},
    {.literal = "^CONN", .clears = true, .to = To(kCallBeginReport)},
    {.literal = "^CEND", .clears = true, .to = To(kCallEndReport)},
    {.literal = "+ZCPI", .clears = true, .to = To(kCallStateReport)},
    {.literal = "OK", .action = handle, .clears = true, .run = ReportLateOk},
    {.literal = "^HRSSILVL:", .action = decode_raw, .to = To(kHdrSignalReport), .format = "^HRSSILVL:%2s", .record = &kHdrSignal},
    {.literal = "+ZCONSTAT: ", .action = decode_raw, .to = To(kConnectionReport), .format = "+ZCONSTAT: %d", .record = &kConnection, .note = NoteConnection},
    {.literal = "+ZGIPDNS: ", .action = decode, .to = To(kAddressReport), .format = "+ZGIPDNS: %d %d %8s %59s %59s %59s %59s", .record = &kAddresses},
    {.literal = "+ZICCID: ", .action = decode_raw, .to = To(kIccidReport), .format = "+ZICCID: %63s", .record = &kIccid},
    {.literal = "+CREG: ", .action = decode, .to = To(kCregReport), .format = "+CREG: %d %15s %15s", .record = &kCreg},
    {.literal = "+CGREG: ", .action = decode, .to = To(kCgregReport), .format = "+CGREG: %d %15s %15s %d %15s %d", .record = &kCgreg},
    {.literal = "+CEREG: ", .action = decode, .to = To(kCeregReport), .format = "+CEREG: %d %15s %15s %d %d", .record = &kCereg},
    {.literal = "+ZNITZ: ", .action = decode, .to = To(kTimeReport), .format = "+ZNITZ: %d %d %d %d %d %d %d %d", .record = &kTime},
    {.literal = "+ZUPCI: ", .action = prepare, .to = To(kToolkitTextReport), .format = "+ZUPCI: %d %d %d %d %511s", .record = &kToolkitText, .run = DecodeToolkitText},
    {.literal = "+ZUEND: ", .action = decode, .to = To(kToolkitEndReport), .format = "+ZUEND: %d", .record = &kToolkitEnd},
    {.literal = "+ZEND", .to = To(kToolkitLeaveReport)},
    {.literal = "+ZSIMREFRESH", .to = To(kSimRefreshReport)},
};
// clang-format on

constexpr int kRowCount = sizeof kRows / sizeof kRows[0];
static_assert(kRowCount == 40);

consteval bool BeginsWith(const char* text, const char* head) {
    while (*head != '\0')
        if (*text++ != *head++) return false;
    return true;
}

// Not that `run` is set where it is called: a sanitizer keeps compilers from telling a function from null
// here.
consteval bool RowsAreSound() {
    for (const ReportRow& row : kRows) {
        if (row.test != Trigger::is_cmgs && row.test != Trigger::cmgw_prompt && row.literal == nullptr)
            return false;
        if ((row.action == handle) != (row.to.target == 0)) return false;
        const bool decodes = row.action == decode || row.action == decode_raw;
        if (decodes && row.record == nullptr) return false;
        if (row.record == nullptr) continue;
        if (row.record->size > AT_RESPONSE_PARAS_SIZE || row.record->fields.size() > 32) return false;
        if (!BeginsWith(row.format, row.literal) || !ScanFits(row.format, row.record->fields)) return false;
    }
    return true;
}
static_assert(RowsAreSound());

// --- looking for the literals ----------------------------------------------------------------------------

using RowSet = uint64_t;
static_assert(kRowCount <= 64);

// The rows that have a literal, chained by its first character; row numbers begin at 1, 0 ends a chain.
struct LiteralIndex {
    std::array<uint8_t, 128> first{};
    std::array<uint8_t, kRowCount + 1> next{};
    std::array<uint8_t, kRowCount + 1> length{};
};

consteval LiteralIndex IndexLiterals() {
    LiteralIndex index;
    for (int row = kRowCount; row > 0; row--) {
        const char* literal = kRows[row - 1].literal;
        if (literal == nullptr) continue;
        size_t length = 0;
        while (literal[length] != '\0')
            length++;
        const size_t c = static_cast<unsigned char>(literal[0]);
        index.length[static_cast<size_t>(row)] = static_cast<uint8_t>(length);
        index.next[static_cast<size_t>(row)] = index.first[c];
        index.first[c] = static_cast<uint8_t>(row);
    }
    return index;
}

constexpr LiteralIndex kLiterals = IndexLiterals();

// Where each row's literal stands first in a text; valid for the rows of `found`.
struct Found {
    RowSet found = 0;
    uint16_t at[kRowCount];
};

// One walk over the text finds what Find_Sub_Str would find for each literal: the first place outside double
// quotes.
void FindLiterals(const char* text, size_t length, Found& result) {
    bool quoted = false;
    for (size_t i = 0; i < length; i++) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        if (c == '"') quoted = !quoted;
        if (quoted || c >= kLiterals.first.size()) continue;
        for (size_t row = kLiterals.first[c]; row != 0; row = kLiterals.next[row]) {
            const RowSet bit = RowSet{1} << (row - 1);
            if ((result.found & bit) != 0 || length - i < kLiterals.length[row]) continue;
            if (memcmp(text + i, kRows[row - 1].literal, kLiterals.length[row]) != 0) continue;
            result.found |= bit;
            result.at[row - 1] = static_cast<uint16_t>(i);
        }
    }
}

bool Applies(const ReportRow& row, bool has_literal, const _BK_AT_RES_T& res, bool may_prompt) {
    switch (row.test) {
        case Trigger::has_text:
            return has_literal;
        case Trigger::is_cmgs:
            return res.usCmdID == kCmgs;
        case Trigger::cmgs_prompt:
            return may_prompt && PendingRequest()->usCmdID == kCmgs && !has_literal;
        case Trigger::cmgw_prompt:
            return may_prompt && PendingRequest()->usCmdID == kCmgw;
    }
    return false;
}

// --- what the rows do ------------------------------------------------------------------------------------

void SetParas(_BK_AT_RES_T& res, const void* record, uint16_t size) {
    memcpy(res.aucParas, record, size);
    res.usParaLen = size;
}

void Send(const Destination& to, const _BK_AT_RES_T* res) {
    send_auto_report(to.target, to.id, to.type, res);
}

// The text from the literal on, terminated; it is shorter than a parameter line.
void CopyText(const Report& report, char (&line)[kParaLineSize]) {
    memcpy(line, report.at, report.length);
    line[report.length] = '\0';
}
static_assert(AT_RESPONSE_PARAS_SIZE < kParaLineSize);

// Reads the row's record from `line` into `record`, which has room for any of them.
void ReadRecord(const ReportRow& row, char (&line)[kParaLineSize], unsigned char* record) {
    if (row.action != decode_raw) PreProc_Res_ParaLine(line);
    memset(record, 0, row.record->size);
    ScanRecord(line, row.format, row.record->fields, record);
    for (size_t i = 0; i < row.record->fields.size(); i++)
        if ((row.record->restored >> i & 1U) != 0)
            Restore_String_Para(reinterpret_cast<char*>(record + row.record->fields[i].offset));
}

void Decode(const ReportRow& row, Report& report) {
    char line[kParaLineSize];
    unsigned char record[AT_RESPONSE_PARAS_SIZE];
    CopyText(report, line);
    ReadRecord(row, line, record);
    SetParas(*report.res, record, row.record->size);
    if (row.note != nullptr) row.note(record);
}

void NoteNewMessage(const unsigned char* record) {
    AT_CMTI_NOTIFY_RES_PARA_T para;
    memcpy(&para, record, sizeof para);
    AT_LOG(LOG_DEBUG, "tPara.memory:%s    tPara.index:%d ", para.memory, para.index);
}

void NoteConnection(const unsigned char* record) {
    AT_ZCONSTAT_NOTIFY_RES_PARA_T para;
    memcpy(&para, record, sizeof para);
    AT_LOG(LOG_DEBUG, "ZCONSTAT stat:%d", para.stat);
}

// Writes the PDU of the pending request, which stands at `offset` of its parameters and may lack its NUL.
void AnswerPrompt(size_t offset, const char* command) {
    char message[kRequestPduSize + 2];
    const char* pdu = reinterpret_cast<const char*>(PendingRequest()->aucParas) + offset;
    const size_t length = strnlen(pdu, kRequestPduSize);
    memcpy(message, pdu, length);
    message[length] = kEndOfMessage;
    message[length + 1] = '\0';
    send_at_cmd(message);
    AT_LOG(LOG_DEBUG, "-->>>>>>mLstcmd == %s--msg_tmp=%s", command, message);
}

// The PDU of +CMGS stands behind its length, that of +CMGW behind its length and the message's status.
constexpr size_t kCmgsPduOffset = 4;
constexpr size_t kCmgwPduOffset = 8;
static_assert(kCmgwPduOffset + kRequestPduSize <= AT_REQUEST_PARAS_SIZE);

void AnswerCmgsPrompt(Report&) {
    AnswerPrompt(kCmgsPduOffset, "AT_CMGS_CMD");
}
void AnswerCmgwPrompt(Report&) {
    AnswerPrompt(kCmgwPduOffset, "AT_CMGW_CMD");
}

void TakeCallingNumber(Report& report) {
    char line[kParaLineSize];
    char number[kParaLineSize] = {};
    CopyText(report, line);
    findnum(line, number);
    memset(report.res->aucParas, 0, 512);
    SetParas(*report.res, number, static_cast<uint16_t>(strlen(number)));
    AT_LOG(LOG_DEBUG, "+CLIP: dest =%s\n", number);
}

// The state of a call over LTE. A line without a number says nothing of a call: it is no 0, which ends one.
void NoteCallState(Report& report) {
    static constexpr FieldRef kState[] = {{0, 4, FieldType::i32}};
    char line[kParaLineSize];
    int32_t state = -1;
    CopyText(report, line);
    ScanRecord(line, "ZVCONNECT: %d", kState, &state);
    switch (state) {
        case 0:
            cfg_set("call_cs_status", "call_idle");
            cfg_set("volte_cs_status", "call_idle");
            AT_LOG(LOG_DEBUG, "ZVCONNECT: 0 and cfg set");
            break;
        case 1:
            cfg_set("call_cs_status", "call_active");
            AT_LOG(LOG_DEBUG, "ZVCONNECT: 1 and cfg set");
            break;
        case 2:
            cfg_set("call_cs_status", "call_active");
            cfg_set("volte_cs_status", "call_active");
            AT_LOG(LOG_DEBUG, "ZVCONNECT: 2 and cfg set");
            break;
        default:
            break;
    }
}

// An OK that is nobody's answer: of the AT that probes the modem, else of a dial whose call has ended.
void ReportLateOk(Report& report) {
    if (PendingRequest()->usCmdID == kAt) {
        Send(To(kProbeReport), report.res);
    } else {
        Send(To(kHangUpReport), report.res);
        g_atd_warting = 0;
    }
}

// The text is wanted for one proactive command alone; the others are reported by their number.
void DecodeToolkitText(Report& report) {
    const ReportRow& row = *report.row;
    char line[kParaLineSize];
    unsigned char record[sizeof(AT_ZUPCI_NOTIFY_RES_PARA_T)] = {};
    int32_t cmdtype = 0;
    CopyText(report, line);
    ScanRecord(line, "+ZUPCI: %d", row.record->fields.first(1), record);
    memcpy(&cmdtype, record, sizeof cmdtype);
    if (cmdtype == kCmdTypeStk) ReadRecord(row, line, record);
    SetParas(*report.res, record, row.record->size);
}

// While the answer of +CCFC or +CCWA is the last one that was delivered, what follows is taken for its
// further lines.
bool ForwardFurtherLine(const _BK_AT_RES_T* res) {
    if (g_last_atcmd == kCcfc)
        AT_LOG(LOG_DEBUG, "---.>>>>>>>>>>g_last_atcmd == AT_CCFC_CMD");
    else if (g_last_atcmd == kCcwa)
        AT_LOG(LOG_DEBUG, "---.>>>>>>>>>>g_last_atcmd == AT_CCWA_CMD");
    else
        return false;
    Send(g_last_atcmd == kCcfc ? To(kMoreDivertsReport) : To(kMoreWaitingReport), res);
    return true;
}

}  // namespace

void RouteReport(MSG_BUF* pRes, const RouteContext& context) {
    if (pRes == nullptr) {
        AT_LOG(LOG_ERR, "resolve_auto_report::NULL == pRes\n");
        return;
    }
    // The payload stands at an even offset, which is all that the record asks for.
    _BK_AT_RES_T& res = *static_cast<_BK_AT_RES_T*>(static_cast<void*>(pRes->aucDataBuf));
    const char* text = reinterpret_cast<const char*>(res.aucParas);
    const size_t length = strnlen(text, sizeof res.aucParas);
    AT_LOG(LOG_DEBUG, "resolve_auto_report:: the auto report is :%.*s", static_cast<int>(length), text);
    if (ForwardFurtherLine(&res)) return;

    Found literals;
    FindLiterals(text, length, literals);
    for (int i = 0; i < kRowCount; i++) {
        const ReportRow& row = kRows[i];
        const bool has_literal = (literals.found >> i & 1U) != 0;
        if (!Applies(row, has_literal, res, context.may_prompt)) continue;
        const size_t at = has_literal ? literals.at[i] : 0;
        Report report = {&row, &res, text + at, length - at};
        if (row.action == prepare || row.action == handle)
            row.run(report);
        else if (row.action != forward)
            Decode(row, report);
        if (row.action != handle) Send(row.to, &res);
        if (row.clears && context.may_clear) ClearPendingRequest();
        return;
    }
}

void resolve_auto_report(MSG_BUF* pRes) {
    RouteReport(pRes, RouteContext());
}
