#ifndef AT_REPORTS_REPORT_CATALOG_H
#define AT_REPORTS_REPORT_CATALOG_H

#include "commands/rows_calls.h"
#include "commands/rows_data.h"
#include "commands/rows_network.h"
#include "commands/rows_sms.h"
#include "commands/rows_toolkit.h"
#include "reports/report_records.h"

// Every report that the server sends: to whom, under which id and type, and what it carries. The daemon takes
// its ids and layouts from here (its text is left to tools), so that what reads reports reads what is sent.

struct ReportInfo {
    uint16_t id = 0;
    uint16_t module = 0;  // AT_MODULE_...
    uint8_t type = 1;     // ucCmdType
    const char* name = nullptr;
    const char* title = nullptr;          // a few words for people
    Optional<const Record*> record = {};  // left out: text, as the modem said it
    Optional<const char*> file = {};      // the record travels in this file, not in the message
    const char* note = "";                // what else people have to know of it
};

// Of a report's description only what sending needs: its words stay out of the daemon.
struct Destination {
    int target = 0;
    uint16_t id = 0;
    uint8_t type = 0;
};
consteval Destination To(const ReportInfo& report) {
    return {report.module, report.id, report.type};
}

// ---- Records that only reports have

inline constexpr Record kZrefreshRes =
    AT_RECORD(AT_ZREFRESH_NOTIFY_RES_PARA_T, 72, AT_FIELD(file_id, 0, "file of the SIM"),
              AT_FIELD(text, 36, "the modem's own"));
inline constexpr Record kZvmailRes =
    AT_RECORD(AT_ZVMAIL_NOTIFY_RES_PARA_T, 4, AT_FIELD(vm_flag, 0, "1 voice mail is waiting"));
inline constexpr Record kBroadcastRes = AT_RECORD(
    AT_CBM_NOTIFY_RES_PARA_T, 512, AT_FIELD(length, 0, "octets of the PDU"), AT_FIELD(pdu, 4, "hexadecimal"));
inline constexpr Record kZiccidRes =
    AT_RECORD(AT_ZICCID_NOTIFY_RES_PARA_T, 64, AT_FIELD(iccid, 0, "number of the card"));
inline constexpr Record kCregRes =
    AT_RECORD(AT_CREG_NOTIFY_RES_PARA_T, 36, AT_FIELD(state, 0, kRegistrationStates),
              AT_FIELD(lac, 4, "location area, hexadecimal"), AT_FIELD(cellid, 20, "cell, hexadecimal"));
inline constexpr Record kCgregRes =
    AT_RECORD(AT_CGREG_NOTIFY_RES_PARA_T, 60, AT_FIELD(state, 0, kRegistrationStates),
              AT_FIELD(lac, 4, "location area, hexadecimal"), AT_FIELD(cellid, 20, "cell, hexadecimal"),
              AT_FIELD(act, 36, "access technology"), AT_FIELD(rac, 40, "routing area, hexadecimal"),
              AT_FIELD(sub_act, 56, "the modem's own"));
inline constexpr Record kCeregRes =
    AT_RECORD(AT_CEREG_NOTIFY_RES_PARA_T, 44, AT_FIELD(state, 0, kRegistrationStates),
              AT_FIELD(tac, 4, "tracking area, hexadecimal"), AT_FIELD(cellid, 20, "cell, hexadecimal"),
              AT_FIELD(act, 36, "access technology"), AT_FIELD(sub_act, 40, "the modem's own"));

// ---- Messages

inline constexpr ReportInfo kSimFileReport = {0x011A,     AT_MODULE_SMS,       1,
                                              "ZREFRESH", "SIM files changed", &kZrefreshRes};
inline constexpr ReportInfo kNewMessageReport = {0x0110,  AT_MODULE_SMS, 1,
                                                 "+CMTI", "new message", &kNewMessageRes};
inline constexpr ReportInfo kNewVoiceMailReport = {
    0x0117, AT_MODULE_SMS, 1, "+ZVMTI", "new voice mail message", &kNewMessageRes};
inline constexpr ReportInfo kStoredStatusReport = {
    0x0112, AT_MODULE_SMS, 1, "+CDSI", "new status report stored", &kNewMessageRes};
inline constexpr ReportInfo kMessageSentReport = {0x0108,  AT_MODULE_SMS,  2,
                                                  "+CMGS", "message sent", &kCmgsSetRes};
inline constexpr ReportInfo kClassMessageReport = {
    0x0521, AT_MODULE_SMS, 1, "+ZCLAS", "message for the display", &kZclasRes};
inline constexpr ReportInfo kVoiceMailReport = {0x0118,   AT_MODULE_SMS, 1,
                                                "ZVMAIL", "voice mail",  &kZvmailRes};
inline constexpr ReportInfo kBroadcastReport = {0x0115, AT_MODULE_SMS,         1,
                                                "+CBM", "cell broadcast page", &kBroadcastRes};
inline constexpr ReportInfo kStatusReport = {0x0119, AT_MODULE_SMS,   1,
                                             "+CDS", "status report", &kBroadcastRes};

// ---- Calls

inline constexpr ReportInfo kRingbackReport = {0x053D, AT_MODULE_CALL, 1, "RINGBACK", "ringing over there"};
inline constexpr ReportInfo kNoCarrierReport = {0x040E, AT_MODULE_CALL, 1, "VOICE NO CARRIER", "call ended"};
inline constexpr ReportInfo kStopRingReport = {0x040C, AT_MODULE_CALL, 1, "STOPRING", "ringing stopped"};
inline constexpr ReportInfo kRingReport = {0x0407, AT_MODULE_CALL, 1, "RING", "incoming call"};
inline constexpr ReportInfo kCallingNumberReport = {
    0x0513, AT_MODULE_CALL, 1, "+CLIP", "calling number", {}, {}, "The number alone."};
inline constexpr ReportInfo kCallWaitingReport = {0x052C, AT_MODULE_CALL, 1, "+CCWA", "call waiting"};
inline constexpr ReportInfo kConnectReport = {0x040D, AT_MODULE_CALL, 1, "CONNECT", "call connected"};
inline constexpr ReportInfo kAnswerReport = {0x040A, AT_MODULE_CALL, 1, "ANSWER", "call answered"};
inline constexpr ReportInfo kHangUpReport = {0x0408, AT_MODULE_CALL, 1, "HANGUP", "call hung up"};
inline constexpr ReportInfo kCallBeginReport = {0x0541, AT_MODULE_CALL, 1, "^CONN", "call connected"};
inline constexpr ReportInfo kCallEndReport = {0x0542, AT_MODULE_CALL, 1, "^CEND", "call ended"};
inline constexpr ReportInfo kCallStateReport = {0x055E, AT_MODULE_CALL, 1, "+ZCPI", "call state"};
// Whatever follows an answer of these two commands is sent as a further line of it.
inline constexpr char kFurtherNote[] =
    "After an answer to this command every report comes under this id until another command has been "
    "answered: look at the length before you take it for the record.";
inline constexpr ReportInfo kMoreDivertsReport = {
    0x052B, AT_MODULE_CALL, 2, "+CCFC", "further line of the call diverts", &kCcfcSetRes, {}, kFurtherNote};
inline constexpr ReportInfo kMoreWaitingReport = {
    0x052C, AT_MODULE_CALL, 2, "+CCWA", "further line of the call waiting state", &kCcwaSetRes,
    {},     kFurtherNote};

// ---- SIM and registration

inline constexpr ReportInfo kProbeReport = {0x0001, AT_MODULE_SIM, 1, "AT", "the modem answers the probe"};
inline constexpr ReportInfo kHdrSignalReport = {0x0550,      AT_MODULE_SIM, 1,
                                                "^HRSSILVL", "HDR signal",  &kHrssilvlRes};
inline constexpr ReportInfo kIccidReport = {0x0629, AT_MODULE_SIM, 6, "+ZICCID", "card number", &kZiccidRes};
inline constexpr ReportInfo kCregReport = {
    0x052D, AT_MODULE_SIM, 6, "+CREG", "circuit-switched registration", &kCregRes};
inline constexpr ReportInfo kCgregReport = {
    0x0553, AT_MODULE_SIM, 6, "+CGREG", "packet-switched registration", &kCgregRes};
inline constexpr ReportInfo kCeregReport = {0x0552,   AT_MODULE_SIM,      6,
                                            "+CEREG", "LTE registration", &kCeregRes};
inline constexpr ReportInfo kToolkitTextReport = {
    0x0630, AT_MODULE_SIM, 6, "+ZUPCI", "proactive command of the SIM", &kZupciRes};
inline constexpr ReportInfo kToolkitEndReport = {
    0x0632, AT_MODULE_SIM, 6, "+ZUEND", "end of the toolkit session", &kZuendRes};
inline constexpr ReportInfo kSimRefreshReport = {0x0646, AT_MODULE_SIM, 6, "+ZSIMREFRESH", "SIM refreshed"};

// ---- Data connection, time

inline constexpr ReportInfo kConnectionReport = {0x0625,      AT_MODULE_DATA,    1,
                                                 "+ZCONSTAT", "data connection", &kZconstatRes};
inline constexpr ReportInfo kAddressReport = {
    0x0627, AT_MODULE_DATA, 1, "+ZGIPDNS", "addresses of the data connection", &kZgipdnsRes};
inline constexpr ReportInfo kTimeReport = {0x063E, AT_MODULE_TIME, 1, "+ZNITZ", "network time", &kZnitzRes};

// ---- SIM toolkit

inline constexpr ReportInfo kToolkitMenuReport = {0x0702, AT_MODULE_TOOLKIT, 2, "+ZSTI", "toolkit menu"};
inline constexpr ReportInfo kToolkitSentReport = {0x0705, AT_MODULE_TOOLKIT, 2, "+ZSMSR",
                                                  "the SIM sent a message"};
inline constexpr ReportInfo kToolkitDisplayReport = {0x0706, AT_MODULE_TOOLKIT, 2, "+ZDIST",
                                                     "text to display"};
inline constexpr ReportInfo kToolkitLeaveReport = {0x0708, AT_MODULE_TOOLKIT, 1, "+ZEND", "toolkit ended"};
inline constexpr ReportInfo kToolkitSubmenuReport = {0x0709, AT_MODULE_TOOLKIT, 2, "+ZPSTM",
                                                     "toolkit submenu"};
inline constexpr ReportInfo kToolkitAsksTextReport = {0x070A, AT_MODULE_TOOLKIT, 2, "+ZGINP",
                                                      "the SIM asks for a text"};
inline constexpr ReportInfo kToolkitAsksKeyReport = {0x070C, AT_MODULE_TOOLKIT, 2, "+ZGINK",
                                                     "the SIM asks for a key"};
inline constexpr ReportInfo kToolkitTimeReport = {0x0710, AT_MODULE_TOOLKIT, 2, "+ZMTime", "toolkit time"};
inline constexpr ReportInfo kToolkitFixedReport = {
    0x0711,
    AT_MODULE_TOOLKIT,
    2,
    "+ZFDIST",
    "text to display, or an unsupported command",
    {},
    {},
    "`+ZUnsupport: 5` comes as `rt: 5`: it is cut where `+ZFDIST: ` would end."};

// ---- USSD

inline constexpr ReportInfo kUssdReport = {0x0532,      AT_MODULE_USSD, 2,        "+CUSD",
                                           "USSD text", &kCusdSetRes,   kUssdFile};
inline constexpr ReportInfo kUssdErrorReport = {0x0532, AT_MODULE_USSD, 6, "+CUSD", "USSD failed"};

inline constexpr const ReportInfo* kReports[] = {
    &kSimFileReport,
    &kNewMessageReport,
    &kNewVoiceMailReport,
    &kStoredStatusReport,
    &kMessageSentReport,
    &kClassMessageReport,
    &kVoiceMailReport,
    &kBroadcastReport,
    &kStatusReport,
    &kRingbackReport,
    &kNoCarrierReport,
    &kStopRingReport,
    &kRingReport,
    &kCallingNumberReport,
    &kCallWaitingReport,
    &kConnectReport,
    &kAnswerReport,
    &kHangUpReport,
    &kCallBeginReport,
    &kCallEndReport,
    &kCallStateReport,
    &kMoreDivertsReport,
    &kMoreWaitingReport,
    &kProbeReport,
    &kHdrSignalReport,
    &kIccidReport,
    &kCregReport,
    &kCgregReport,
    &kCeregReport,
    &kToolkitTextReport,
    &kToolkitEndReport,
    &kSimRefreshReport,
    &kConnectionReport,
    &kAddressReport,
    &kTimeReport,
    &kToolkitMenuReport,
    &kToolkitSentReport,
    &kToolkitDisplayReport,
    &kToolkitLeaveReport,
    &kToolkitSubmenuReport,
    &kToolkitAsksTextReport,
    &kToolkitAsksKeyReport,
    &kToolkitTimeReport,
    &kToolkitFixedReport,
    &kUssdReport,
    &kUssdErrorReport,
};

// The report of this id and type to this module; null when there is none.
constexpr const ReportInfo* FindReport(uint16_t module, uint16_t id, uint8_t type) {
    for (const ReportInfo* report : kReports)
        if (report->module == module && report->id == id && report->type == type) return report;
    return nullptr;
}

consteval bool ReportsAreSound() {
    for (const ReportInfo* report : kReports) {
        if (FindReport(report->module, report->id, report->type) != report) return false;
        if (report->record != nullptr && report->file == nullptr &&
            report->record->size > AT_RESPONSE_PARAS_SIZE)
            return false;
    }
    return true;
}
static_assert(ReportsAreSound());

#endif
