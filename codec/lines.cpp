#include <string.h>

#include "codec/atcode.h"
#include "commands/atdecode.h"
#include "platform/config.h"
#include "platform/log.h"
#include "records/report.h"
#include "records/state.h"
#include "text/atpublic.h"
#include "text/literals.h"

// The scan of one framed response into its result class, name and parameter text, line by line.

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

// Everything that a line is tested for, found in one walk over it.
enum Name : uint8_t {
    kCmsError,
    kCmeError,
    kVoiceNoCarrier,
    kHangUp,
    kZpstm,
    kZmtime,
    kZdist,
    kZfdist,
    kZunsupport,
    kZsmsr,
    kZsti,
    kZginp,
    kZgink,
    kClip,
    kCcwa,
    kRingbackReport,
    kZvconnect,
    kCmti,
    kZrefresh,
    kZvmti,
    kZvmail,
    kCdsi,
    kZclas,
    kZconstat,
    kCgev,
    kZnitz,
    kCusd,
    kZlockband,
    kZlockf,
    kZconv,
    kZgipdns,
    kZpbic,
    kMode,
    kXwT352,
    kConn,
    kCend,
    kZcpi,
    kHrssilvl,
    kRssi,
    kSimst,
    kSrvst,
    kBoot,
    kStin,
    kDsflowrpt,
    kOk,
    kError,
    kRingback,
    kRingbackLocal,
    kNoCarrier,
    kBusy,
    kNotSupport,
    kZend,
    kZsimrefresh,
    kLineBreak,
    kNames,
};
constexpr const char* kNameTexts[] = {
    "CMS ERROR",  "CME ERROR",    "VOICE NO CARRIER ",
    "HANGUP",     "ZPSTM",        "+ZMTime",
    "+ZDIST",     "+ZFDIST",      "+ZUnsupport",
    "+ZSMSR",     "+ZSTI",        "+ZGINP",
    "+ZGINK",     "+CLIP",        "+CCWA",
    "+RINGBACK",  "ZVCONNECT",    "+CMTI",
    "ZREFRESH",   "+ZVMTI",       "ZVMAIL",
    "+CDSI",      "+ZCLAS",       "+ZCONSTAT",
    "+CGEV",      "+ZNITZ",       "+CUSD",
    "+ZLOCKBAND", "+ZLOCKF",      "+ZCONV",
    "+ZGIPDNS",   "+ZPBIC",       "^MODE",
    "XW_T352",    "^CONN",        "^CEND",
    "+ZCPI",      "^HRSSILVL",    "^RSSI",
    "^SIMST",     "^SRVST",       "^BOOT",
    "^STIN",      "^DSFLOWRPT",   "OK",
    "ERROR",      "RINGBACK",     "RINGBACKLOCAL",
    "NO CARRIER", "BUSY",         "not support",
    "+ZEND",      "+ZSIMREFRESH", "\r\n",
};
static_assert(sizeof kNameTexts / sizeof kNameTexts[0] == kNames);
constexpr auto kIndex = literals::MakeIndex(kNameTexts, "\":");

using NameSet = uint64_t;
static_assert(kNames <= 64);

template <typename... More>
constexpr NameSet Set(More... names) {
    return ((NameSet{1} << names) | ...);
}
constexpr NameSet Range(Name first, Name last) {
    return (Set(last) << 1) - Set(first);
}

// SIM toolkit events: where their parameters begin, and as what they are reported. "+ZUnsupport" is longer
// than what is skipped and goes out as "+ZFDIST"; the toolkit module expects it so.
struct ToolkitEvent {
    Name name;
    size_t skip;
    uint16_t command;
};
constexpr ToolkitEvent kToolkitEvents[] = {
    {kZpstm, 8, 0x0709},  {kZmtime, 9, 0x0710},     {kZdist, 8, 0x0706},
    {kZfdist, 9, 0x0711}, {kZunsupport, 9, 0x0711}, {kZsmsr, 8, 0x0705},
    {kZsti, 7, 0x0702},   {kZginp, 8, 0x070A},      {kZgink, 8, 0x070C},
};
constexpr NameSet kToolkit = Range(kZpstm, kZgink);
static_assert(kToolkitEvents[0].name == kZpstm && kToolkitEvents[8].name == kZgink);

// Reports that are recognised by their text later, so their lines are kept whole.
constexpr NameSet kCallsAndHangUps = Set(kVoiceNoCarrier, kHangUp);
constexpr NameSet kModuleWhole = Range(kClip, kZnitz);
constexpr NameSet kGenericWhole = kCallsAndHangUps | kToolkit |
                                  Set(kClip, kCcwa, kRingbackReport, kZvconnect, kCmti, kCdsi, kZvmti, kZconv,
                                      kZconstat, kCgev, kZgipdns, kZpbic, kMode);
constexpr NameSet kGenericVendor = Range(kConn, kDsflowrpt) | Set(kMode);
constexpr NameSet kWholeResults = Set(kRingback, kRingbackLocal, kNoCarrier, kVoiceNoCarrier);

// One line of a response.
struct Line {
    const char* text;
    const char* end;          // of what is looked at: at most 1023 characters from the start
    const char* colon;        // the first ":" outside quotes, or null
    const char* colon_blank;  // the first ": " outside quotes, or null
    NameSet names;            // what stands in it outside quotes

    bool Has(NameSet any) const { return (names & any) != 0; }
    size_t Length() const { return static_cast<size_t>(end - text); }
    size_t LengthFrom(const char* from) const { return from < end ? static_cast<size_t>(end - from) : 0; }
};

// Notes the names that start at `start` and end in the line.
void NoteNames(const char* start, Line& line) {
    for (const auto* entry = kIndex.Entries(*start);; ++entry) {
        if (start[1] == entry->text[1] && line.LengthFrom(start) >= entry->length &&
            strncmp(start, entry->text, entry->length) == 0)
            line.names |= NameSet{1} << entry->number;
        if (entry->last_of_character) return;
    }
}

// Walks over the text from `text` to its end, or with `to_break` to the first line break outside quotes.
// Returns where it stopped.
const char* Read(const char* text, bool to_break, Line& line) {
    const char* const most = text + (to_break ? kParaLineSize - 1 : kModemTextSize);
    line = {.text = text, .end = most, .colon = nullptr, .colon_blank = nullptr, .names = 0};
    uint32_t opens = literals::kAlways;
    const char* at = text;
    for (;; ++at) {
        at = literals::Walk(kIndex.masks.data(), at, opens);
        const literals::ByteMasks& masks = kIndex.masks[static_cast<unsigned char>(*at)];
        if ((opens & masks.follows & ~literals::kAlways) != 0) {
            if (*at != '\n')
                NoteNames(at - 1, line);
            else if (to_break) {
                --at;
                break;
            }
        }
        opens = masks.opens;
        if (*at == '\0') break;
        if (*at == ':' && at < most) {
            if (line.colon == nullptr) line.colon = at;
            if (line.colon_blank == nullptr && at + 1 < most && at[1] == ' ') line.colon_blank = at;
        } else if (*at == '"') {
            at = literals::SkipQuoted(at + 1);
            if (*at == '\0') break;
        }
    }
    if (at < most) line.end = at;
    return at;
}

// The parameter text under construction, with its length.
struct Paras {
    AT_RES_LINE_T& res_line;
    size_t used;

    explicit Paras(AT_RES_LINE_T& target) : res_line(target), used(strlen(target.strResParas)) {}

    bool Empty() const { return used == 0; }
    void Append(const char* text, size_t length) {
        const size_t room = sizeof res_line.strResParas - 1 - used;
        if (length > room) length = room;
        memcpy(res_line.strResParas + used, text, length);
        used += length;
        res_line.strResParas[used] = '\0';
    }
    // The line from `from` on.
    void Append(const Line& line, const char* from) { Append(from, line.LengthFrom(from)); }
    void Append(const Line& line) { Append(line, line.text); }
    void Set(const Line& line, size_t skip) {
        Clear();
        Append(line, line.text + skip);
    }
    void Clear() {
        used = 0;
        res_line.strResParas[0] = '\0';
    }
};

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

bool PushToolkitEvent(Paras& paras, const Line& line) {
    if (!line.Has(kToolkit)) return false;
    const ToolkitEvent* event = kToolkitEvents;
    while (!line.Has(Set(event->name)))
        ++event;
    paras.Set(line, event->skip);
    _BK_AT_RES_T& res = NewPushed(event->command, kReportType, AT_RESULT_OK);
    Parse_Text_Res(&res, &paras.res_line);
    send_auto_report(AT_MODULE_TOOLKIT, event->command, kReportType, &res);
    paras.Clear();
    return true;
}

void PushUssd(Paras& paras, const Line& line) {
    paras.Set(line, sizeof "+CUSD: " - 1);
    _BK_AT_RES_T& res = NewPushed(kUssdCommand, kReportType, AT_RESULT_OK);
    Parse_CUSD_Res(&res, &paras.res_line);
    send_auto_report(AT_MODULE_USSD, kUssdCommand, kReportType, &res);
    paras.Set(line, 0);
}

// True when the whole line is a USSD error; it has then been reported and stands alone in the parameters.
bool PushUssdError(Paras& paras, const Line& line) {
    for (const char* error : kUssdErrors) {
        const size_t length = strlen(error);
        if (line.Length() != length || memcmp(line.text, error, length) != 0) continue;
        _BK_AT_RES_T& res = NewPushed(kUssdCommand, kUssdErrorType, AT_RESULT_CME_ERROR);
        res.usParaLen = static_cast<uint16_t>(length);
        memcpy(res.aucParas, error, length + 1);
        send_auto_report_ussd_error(AT_MODULE_USSD, kUssdCommand, kUssdErrorType, &res);
        paras.Set(line, 0);
        return true;
    }
    return false;
}

// "CMS ERROR" and "CME ERROR" lines: the class, and the text behind ": ".
bool TakeErrorLine(Paras& paras, const Line& line, uint8_t cme_result) {
    if (!line.Has(Set(kCmsError, kCmeError))) return false;
    paras.res_line.Result = line.Has(Set(kCmsError)) ? uint8_t{AT_RESULT_CMS_ERROR} : cme_result;
    paras.Append(line, line.colon_blank + 2);
    return true;
}

// The band that the modem reports for a lock, kept for the user interface while `bandmode` says that the lock
// is in use.
bool TakeBandLine(Paras& paras, const Line& line, Name name, const char* band_mode, const char* key) {
    if (!line.Has(Set(name)) || !ConfigIs("bandmode", band_mode)) return false;
    paras.Append(line);
    const char* from = line.colon + 1;
    char band[4];
    size_t length = line.LengthFrom(from);
    if (length > sizeof band - 1) length = sizeof band - 1;
    memcpy(band, from, length);
    band[length] = '\0';
    cfg_set(key, band);
    return true;
}

// A line "name: parameters" whose parameters start at `from`. The first one names the response; more of that
// name are joined with ";". -1, with nothing done, for another name.
int TakeNamedLine(Paras& paras, const Line& line, const char* colon, const char* from) {
    AT_RES_LINE_T& res_line = paras.res_line;
    auto length = static_cast<size_t>(colon - line.text);
    if (length > sizeof res_line.strCmdName - 1) length = sizeof res_line.strCmdName - 1;
    if (res_line.strCmdName[0] == '\0') {
        memcpy(res_line.strCmdName, line.text, length);
        res_line.strCmdName[length] = '\0';
    } else if (strncmp(res_line.strCmdName, line.text, length) == 0 && res_line.strCmdName[length] == '\0') {
        paras.Append(";", 1);
    } else {
        return -1;
    }
    paras.Append(line, from);
    return 0;
}

// A line with ": " of the module's own data cards. -1 when it was dropped.
int TakeModuleNamedLine(Paras& paras, const Line& line) {
    // A USSD error is also an error of the command: its text stands in the answer a second time.
    if (line.Has(Set(kCmeError))) PushUssdError(paras, line);
    const bool after_ussd = g_last_atcmd == kUssdCommand;
    if (TakeErrorLine(paras, line, after_ussd ? AT_RESULT_USSD_ERROR : AT_RESULT_CME_ERROR)) return 0;
    if (line.Has(kCallsAndHangUps)) {
        paras.Append(line);
        return 0;
    }
    if (PushToolkitEvent(paras, line)) return 0;
    if (line.Has(kModuleWhole)) {
        paras.Append(line);
        return 0;
    }
    if (line.Has(Set(kCusd))) {
        PushUssd(paras, line);
        return 0;
    }
    // The two keys differ in case; the readers of both exist.
    if (TakeBandLine(paras, line, kZlockband, "2", "LTE_band")) return 0;
    if (TakeBandLine(paras, line, kZlockf, "4", "LTE_Band")) return 0;
    return TakeNamedLine(paras, line, line.colon_blank, line.colon_blank + 2);
}

// A line with ":" of a data card that is not the module's own. -1 ends the scan.
int TakeGenericNamedLine(Paras& paras, const Line& line) {
    if (line.colon != line.colon_blank) {
        if (line.Has(Set(kXwT352))) {
            paras.Append(line);
            return 0;
        }
        if (line.Has(kGenericVendor)) {
            paras.Append(line);
            AT_LOG(LOG_DEBUG, "==test4== paras is %s", paras.res_line.strResParas);
            return 0;
        }
        return TakeNamedLine(paras, line, line.colon, line.colon + 1);
    }
    if (TakeErrorLine(paras, line, AT_RESULT_CME_ERROR)) return 0;
    if (line.Has(kGenericWhole)) {
        paras.Append(line);
        return 0;
    }
    return TakeNamedLine(paras, line, line.colon, line.colon + 2);
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
void TakeResultLine(Paras& paras, const Line& line, const char* rest, NamedLineAhead& named) {
    AT_RES_LINE_T& res_line = paras.res_line;
    if (line.Has(Set(kOk))) {
        res_line.Result = AT_RESULT_OK;
        if (paras.Empty()) paras.Append("OK", 2);
    } else if (line.Has(Set(kError))) {
        res_line.Result = AT_RESULT_ERROR;
    } else if (line.Has(kWholeResults)) {
        paras.Append(line);
    } else if (line.Has(Set(kBusy))) {
        res_line.Result = AT_RESULT_BUSY;
    } else if (line.Has(Set(kNotSupport))) {
        res_line.Result = AT_RESULT_ERROR;
    } else if (line.Has(Set(kZend, kZsimrefresh))) {
        paras.Append(line);
    } else if (res_line.strCmdName[0] != '\0') {
        paras.Append(",\"", 2);
        paras.Append(line);
        paras.Append("\"", 1);
    } else if (!named.From(rest)) {
        paras.Append(line);
    }
}

// Calls scan(line, rest) for each non-empty line of a framed response, with the text from the line on, until
// it returns false. What follows the last line break is not a line.
template <typename Scan>
void ForEachLine(const char* text, Scan scan) {
    Line line;
    for (const char* at; *(at = Read(text, true, line)) != '\0'; text = at + 2)
        if (line.Length() != 0 && !scan(line, text)) return;
}

}  // namespace

bool Bk_Check_Ussd_Error(AT_RES_LINE_T* pResLine, const char* line) {
    if (pResLine == nullptr || line == nullptr) return false;
    Paras paras(*pResLine);
    Line whole;
    Read(line, false, whole);
    return PushUssdError(paras, whole);
}

int Bk_PreParse_At_Res_Message(AT_RES_LINE_T* pResLine, const char* line) {
    if (pResLine == nullptr || line == nullptr) return -1;
    Paras paras(*pResLine);
    Line whole;
    Read(line, false, whole);
    return whole.colon_blank != nullptr ? TakeModuleNamedLine(paras, whole) : -1;
}

int Bk_PreParse_Result_Line(AT_RES_LINE_T* pResLine, const char* line, const char* rest) {
    if (pResLine == nullptr || line == nullptr || rest == nullptr) return -1;
    Paras paras(*pResLine);
    Line whole;
    Read(line, false, whole);
    NamedLineAhead named;
    TakeResultLine(paras, whole, rest, named);
    return 0;
}

int Bk_PreParse_At_Res_Lines(AT_RES_LINE_T* pResLine, const char* pText) {
    if (pResLine == nullptr || pText == nullptr) return -1;
    Paras paras(*pResLine);
    NamedLineAhead named;
    ForEachLine(pText, [&paras, &named](const Line& line, const char* rest) {
        if (line.colon_blank != nullptr)
            TakeModuleNamedLine(paras, line);
        else
            TakeResultLine(paras, line, rest, named);
        return true;
    });
    return 0;
}

int Bk_PreParse_At_Res_Generic(AT_RES_LINE_T* pResLine, const char* pText) {
    if (pResLine == nullptr || pText == nullptr) return -1;
    AT_LOG(LOG_DEBUG, "the framed response is %s", pText);
    int result = 0;
    Paras paras(*pResLine);
    NamedLineAhead named;
    ForEachLine(pText, [&paras, &named, &result](const Line& line, const char* rest) {
        if (line.colon != nullptr)
            result = TakeGenericNamedLine(paras, line);
        else
            TakeResultLine(paras, line, rest, named);
        return result == 0;
    });
    return result;
}
