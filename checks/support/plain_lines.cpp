#include "checks/support/plain_lines.h"

#include <string.h>

#include "codec/atcode.h"
#include "commands/atdecode.h"
#include "platform/config.h"
#include "platform/log.h"
#include "records/report.h"
#include "records/state.h"
#include "text/atpublic.h"

static constexpr char kLogSource[] = "atcode";

namespace {

constexpr uint16_t kUssdCommand = 0x0532;
constexpr int kUssdErrorType = 6;
constexpr int kReportType = 2;

constexpr const char* kUssdErrors[] = {
    "+CME ERROR: retry operation",
    "+CME ERROR: network timeout",
    "+CME ERROR: unknown network message",
    "+CME ERROR: service not available",
    "+CME ERROR: unknown subscriber",
    "+CME ERROR: network rejected request",
    "+CME ERROR: incorrect password",
    "+CME ERROR: unknown class specified",
    "+CME ERROR: unknown",
    "+CME ERROR: deflected to own number",
    "+CME ERROR: invalid deflected to number",
};

// SIM toolkit events: where their parameters begin, and as what they are reported. "+ZUnsupport" is longer
// than what is skipped and goes out as "+ZFDIST"; the toolkit module expects it so.
struct ToolkitEvent {
    const char* name;
    size_t skip;
    uint16_t command;
};
constexpr ToolkitEvent kToolkitEvents[] = {
    {"ZPSTM", 8, 0x0709},   {"+ZMTime", 9, 0x0710},     {"+ZDIST", 8, 0x0706},
    {"+ZFDIST", 9, 0x0711}, {"+ZUnsupport", 9, 0x0711}, {"+ZSMSR", 8, 0x0705},
    {"+ZSTI", 7, 0x0702},   {"+ZGINP", 8, 0x070A},      {"+ZGINK", 8, 0x070C},
};

// Reports that are recognised by their text later, so their lines are kept whole.
constexpr const char* kModuleWholeLines[] = {
    "+CLIP",  "+CCWA", "+RINGBACK", "ZVCONNECT", "+CMTI", "ZREFRESH", "+ZVMTI",
    "ZVMAIL", "+CDSI", "+ZCLAS",    "+ZCONSTAT", "+CGEV", "+ZNITZ",
};
constexpr const char* kGenericWholeLines[] = {
    "+CLIP",  "+CCWA",     "+RINGBACK", "ZVCONNECT", "+CMTI",  "+CDSI", "+ZVMTI",
    "+ZCONV", "+ZCONSTAT", "+CGEV",     "+ZGIPDNS",  "+ZPBIC", "^MODE",
};
constexpr const char* kGenericVendorLines[] = {
    "^CONN",  "^CEND",  "+ZCPI", "^HRSSILVL", "^MODE",      "^RSSI",
    "^SIMST", "^SRVST", "^BOOT", "^STIN",     "^DSFLOWRPT",
};
constexpr const char* kWholeResultLines[] = {"RINGBACK", "RINGBACKLOCAL", "NO CARRIER", "VOICE NO CARRIER "};

template <size_t count>
bool ContainsAny(const char* line, const char* const (&names)[count]) {
    for (const char* name : names)
        if (Find_Sub_Str(line, name) != nullptr) return true;
    return false;
}

void AppendParas(AT_RES_LINE_T& res_line, const char* text, size_t length) {
    const size_t used = strlen(res_line.strResParas);
    const size_t room = sizeof res_line.strResParas - 1 - used;
    if (length > room) length = room;
    memcpy(res_line.strResParas + used, text, length);
    res_line.strResParas[used + length] = '\0';
}

void AppendParas(AT_RES_LINE_T& res_line, const char* text) {
    AppendParas(res_line, text, strlen(text));
}

void SetParas(AT_RES_LINE_T& res_line, const char* text) {
    res_line.strResParas[0] = '\0';
    AppendParas(res_line, text);
}

// What follows the first `skip` characters of a line, or its end where it is shorter.
const char* Skip(const char* line, size_t skip) {
    return line + strnlen(line, skip);
}

// What follows the name and ": " of a line that has one.
const char* AfterColonBlank(const char* line) {
    return Find_Sub_Str(line, ": ") + 2;
}

// A response record for a report that is pushed out of the scan. Cleared before each use; response thread
// only.
_BK_AT_RES_T g_pushed;

_BK_AT_RES_T& NewPushed(uint16_t command, int type, uint8_t result) {
    memset(&g_pushed, 0, sizeof g_pushed);
    g_pushed.usCmdID = command;
    g_pushed.ucCmdType = static_cast<uint8_t>(type);
    g_pushed.ucResult = result;
    return g_pushed;
}

bool PushToolkitEvent(AT_RES_LINE_T& res_line, const char* line) {
    for (const ToolkitEvent& event : kToolkitEvents) {
        if (Find_Sub_Str(line, event.name) == nullptr) continue;
        SetParas(res_line, Skip(line, event.skip));
        _BK_AT_RES_T& res = NewPushed(event.command, kReportType, AT_RESULT_OK);
        Parse_Text_Res(&res, &res_line);
        send_auto_report(AT_MODULE_TOOLKIT, event.command, kReportType, &res);
        res_line.strResParas[0] = '\0';
        return true;
    }
    return false;
}

void PushUssd(AT_RES_LINE_T& res_line, const char* line) {
    SetParas(res_line, Skip(line, sizeof "+CUSD: " - 1));
    _BK_AT_RES_T& res = NewPushed(kUssdCommand, kReportType, AT_RESULT_OK);
    Parse_CUSD_Res(&res, &res_line);
    send_auto_report(AT_MODULE_USSD, kUssdCommand, kReportType, &res);
    SetParas(res_line, line);
}

// "CMS ERROR" and "CME ERROR" lines: the class, and the text behind ": ".
bool TakeErrorLine(AT_RES_LINE_T& res_line, const char* line, uint8_t cme_result) {
    if (Find_Sub_Str(line, "CMS ERROR") != nullptr)
        res_line.Result = AT_RESULT_CMS_ERROR;
    else if (Find_Sub_Str(line, "CME ERROR") != nullptr)
        res_line.Result = cme_result;
    else
        return false;
    AppendParas(res_line, AfterColonBlank(line));
    return true;
}

// The band that the modem reports for a lock, kept for the user interface while `bandmode` says that the lock
// is in use.
bool TakeBandLine(AT_RES_LINE_T& res_line, const char* line, const char* name, const char* band_mode,
                  const char* key) {
    if (Find_Sub_Str(line, name) == nullptr || !ConfigIs("bandmode", band_mode)) return false;
    AppendParas(res_line, line);
    const char* from = Find_Sub_Str(line, ":") + 1;
    char band[4];
    const size_t length = strnlen(from, sizeof band - 1);
    memcpy(band, from, length);
    band[length] = '\0';
    cfg_set(key, band);
    return true;
}

// A line "name: parameters" whose parameters start at `paras`. The first one names the response; more of that
// name are joined with ";". -1, with nothing done, for another name.
int TakeNamedLine(AT_RES_LINE_T& res_line, const char* line, const char* colon, const char* paras) {
    size_t length = static_cast<size_t>(colon - line);
    if (length > sizeof res_line.strCmdName - 1) length = sizeof res_line.strCmdName - 1;
    if (res_line.strCmdName[0] == '\0') {
        memcpy(res_line.strCmdName, line, length);
        res_line.strCmdName[length] = '\0';
    } else if (strlen(res_line.strCmdName) == length && memcmp(res_line.strCmdName, line, length) == 0) {
        AppendParas(res_line, ";", 1);
    } else {
        return -1;
    }
    AppendParas(res_line, paras);
    return 0;
}

// A line with ":" of a data card that is not the module's own. -1 ends the scan.
int TakeGenericNamedLine(AT_RES_LINE_T& res_line, const char* line, const char* colon) {
    if (colon[1] != ' ') {
        if (Find_Sub_Str(line, "XW_T352") != nullptr) {
            AppendParas(res_line, line);
            return 0;
        }
        if (ContainsAny(line, kGenericVendorLines)) {
            AppendParas(res_line, line);
            AT_LOG(LOG_DEBUG, "==test4== paras is %s", res_line.strResParas);
            return 0;
        }
        return TakeNamedLine(res_line, line, colon, colon + 1);
    }
    if (TakeErrorLine(res_line, line, AT_RESULT_CME_ERROR)) return 0;
    bool whole =
        Find_Sub_Str(line, "VOICE NO CARRIER ") != nullptr || Find_Sub_Str(line, "HANGUP") != nullptr;
    for (const ToolkitEvent& event : kToolkitEvents)
        whole = whole || Find_Sub_Str(line, event.name) != nullptr;
    if (whole || ContainsAny(line, kGenericWholeLines)) {
        AppendParas(res_line, line);
        return 0;
    }
    return TakeNamedLine(res_line, line, colon, colon + 2);
}

// Whether a named line is still to come. Every line begins outside quotes, so what was found from one line
// holds for the lines behind it: the text is searched once, not once for each line.
class NamedLineAhead {
  public:
    bool From(const char* text) {
        if (!searched_ || (found_ != nullptr && found_ < text)) found_ = Find_Sub_Str(text, ": ");
        searched_ = true;
        return found_ != nullptr;
    }

  private:
    const char* found_ = nullptr;
    bool searched_ = false;
};

// A line without ": ".
void TakeResultLine(AT_RES_LINE_T& res_line, const char* line, const char* rest, NamedLineAhead& named) {
    if (Find_Sub_Str(line, "OK") != nullptr) {
        res_line.Result = AT_RESULT_OK;
        if (res_line.strResParas[0] == '\0') AppendParas(res_line, "OK");
    } else if (Find_Sub_Str(line, "ERROR") != nullptr) {
        res_line.Result = AT_RESULT_ERROR;
    } else if (ContainsAny(line, kWholeResultLines)) {
        AppendParas(res_line, line);
    } else if (Find_Sub_Str(line, "BUSY") != nullptr) {
        res_line.Result = AT_RESULT_BUSY;
    } else if (Find_Sub_Str(line, "not support") != nullptr) {
        res_line.Result = AT_RESULT_ERROR;
    } else if (Find_Sub_Str(line, "+ZEND") != nullptr || Find_Sub_Str(line, "+ZSIMREFRESH") != nullptr) {
        AppendParas(res_line, line);
    } else if (res_line.strCmdName[0] != '\0') {
        AppendParas(res_line, ",\"", 2);
        AppendParas(res_line, line);
        AppendParas(res_line, "\"", 1);
    } else if (!named.From(rest)) {
        AppendParas(res_line, line);
    }
}

// Calls scan(line, rest) for each non-empty line of a framed response, with a copy of the line (cut at 1023
// characters) and the text from the line on, until it returns false. What follows the last line break is not
// a line.
template <typename Scan>
void ForEachLine(const char* text, Scan scan) {
    char line[kParaLineSize];
    for (const char* line_break; (line_break = Find_Sub_Str(text, "\r\n")) != nullptr;
         text = line_break + 2) {
        auto length = static_cast<size_t>(line_break - text);
        if (length == 0) continue;
        if (length > sizeof line - 1) length = sizeof line - 1;
        memcpy(line, text, length);
        line[length] = '\0';
        if (!scan(line, text)) return;
    }
}

}  // namespace

bool PlainCheckUssdError(AT_RES_LINE_T* pResLine, const char* line) {
    if (pResLine == nullptr || line == nullptr) return false;
    for (const char* error : kUssdErrors) {
        if (strcmp(line, error) != 0) continue;
        _BK_AT_RES_T& res = NewPushed(kUssdCommand, kUssdErrorType, AT_RESULT_CME_ERROR);
        const size_t length = strlen(line);
        res.usParaLen = static_cast<uint16_t>(length);
        memcpy(res.aucParas, line, length + 1);
        send_auto_report_ussd_error(AT_MODULE_USSD, kUssdCommand, kUssdErrorType, &res);
        SetParas(*pResLine, line);
        return true;
    }
    return false;
}

int PlainScanNamedLine(AT_RES_LINE_T* pResLine, const char* line) {
    if (pResLine == nullptr || line == nullptr) return -1;
    const char* colon = Find_Sub_Str(line, ": ");
    if (colon == nullptr) return -1;

    // A USSD error is also an error of the command: its text stands in the answer a second time.
    PlainCheckUssdError(pResLine, line);
    const bool after_ussd = g_last_atcmd == kUssdCommand;
    if (TakeErrorLine(*pResLine, line, after_ussd ? AT_RESULT_USSD_ERROR : AT_RESULT_CME_ERROR)) return 0;
    if (Find_Sub_Str(line, "VOICE NO CARRIER ") != nullptr || Find_Sub_Str(line, "HANGUP") != nullptr) {
        AppendParas(*pResLine, line);
        return 0;
    }
    if (PushToolkitEvent(*pResLine, line)) return 0;
    if (ContainsAny(line, kModuleWholeLines)) {
        AppendParas(*pResLine, line);
        return 0;
    }
    if (Find_Sub_Str(line, "+CUSD") != nullptr) {
        PushUssd(*pResLine, line);
        return 0;
    }
    // The two keys differ in case; the readers of both exist.
    if (TakeBandLine(*pResLine, line, "+ZLOCKBAND", "2", "LTE_band")) return 0;
    if (TakeBandLine(*pResLine, line, "+ZLOCKF", "4", "LTE_Band")) return 0;
    return TakeNamedLine(*pResLine, line, colon, colon + 2);
}

int PlainScanResultLine(AT_RES_LINE_T* pResLine, const char* line, const char* rest) {
    if (pResLine == nullptr || line == nullptr || rest == nullptr) return -1;
    NamedLineAhead named;
    TakeResultLine(*pResLine, line, rest, named);
    return 0;
}

int PlainScanModule(AT_RES_LINE_T* pResLine, const char* pText) {
    if (pResLine == nullptr || pText == nullptr) return -1;
    NamedLineAhead named;
    ForEachLine(pText, [pResLine, &named](const char* line, const char* rest) {
        if (Find_Sub_Str(line, ": ") != nullptr)
            PlainScanNamedLine(pResLine, line);
        else
            TakeResultLine(*pResLine, line, rest, named);
        return true;
    });
    return 0;
}

int PlainScanGeneric(AT_RES_LINE_T* pResLine, const char* pText) {
    if (pResLine == nullptr || pText == nullptr) return -1;
    AT_LOG(LOG_DEBUG, "the framed response is %s", pText);
    int result = 0;
    NamedLineAhead named;
    ForEachLine(pText, [pResLine, &named, &result](const char* line, const char* rest) {
        const char* colon = Find_Sub_Str(line, ":");
        if (colon != nullptr)
            result = TakeGenericNamedLine(*pResLine, line, colon);
        else
            TakeResultLine(*pResLine, line, rest, named);
        return result == 0;
    });
    return result;
}
