#ifndef AT_COMMANDS_ROWS_CALLS_H
#define AT_COMMANDS_ROWS_CALLS_H

#include "commands/atdecode.h"
#include "commands/atencode.h"
#include "commands/list_file.h"
#include "commands/records_calls.h"
#include "commands/row.h"

// The commands of calls and supplementary services.

inline constexpr Record kVtsSetPara = AT_RECORD(AT_VTS_SET_PARA_T, 10, AT_FIELD(dtmf, 0, "tones"));
inline constexpr Record kZvocloopbkSetPara =
    AT_RECORD(AT_ZVOCLOOPBK_SET_PARA_T, 10, AT_FIELD(text, 0, "finished parameters"));

inline constexpr Record kClvlSetPara =
    AT_RECORD(AT_CLVL_SET_PARA_T, 4, AT_FIELD(level, 0, "loudspeaker volume"));
inline constexpr Record kClvlReadRes =
    AT_RECORD(AT_CLVL_READ_RES_PARA_T, 4, AT_FIELD(level, 0, "loudspeaker volume"));

inline constexpr Record kCmvlSetPara = AT_RECORD(AT_CMVL_SET_PARA_T, 4, AT_FIELD(level, 0, "volume"));
inline constexpr Record kCmvlReadRes = AT_RECORD(AT_CMVL_READ_RES_PARA_T, 4, AT_FIELD(level, 0, "volume"));

inline constexpr Record kZcallSetPara = AT_RECORD(AT_ZCALL_SET_PARA_T, 1, AT_BYTES(value, 0, "not sent"));
inline constexpr Record kZcallRes =
    AT_RECORD(AT_ZCALL_READ_RES_PARA_T, 1, AT_BYTES(value, 0, "one character"));

inline constexpr Record kCcfcSetPara = AT_RECORD(
    AT_CCFC_SET_PARA_T, 52,
    AT_FIELD(reason, 0, "0 always, 1 busy, 2 no reply, 3 not reachable, 4 all, 5 all but always"),
    AT_FIELD(mode, 4, "0 disable, 1 enable, 2 query, 3 register, 4 erase"), AT_FIELD(number, 8, "forward to"),
    AT_FIELD(type, 40, "not read: 145 for a number that begins with +, else 129"),
    AT_FIELD(classx, 44, "sum of 1 voice, 2 data, 4 fax, ..."),
    AT_FIELD(time, 48, "seconds without a reply"));
inline constexpr Record kCcfcSetRes = AT_RECORD(
    AT_CCFC_SET_RES_PARA_T, 48, AT_FIELD(status, 0, "0 not active, 1 active"),
    AT_FIELD(classx, 4, "sum of 1 voice, 2 data, 4 fax, ..."), AT_FIELD(number, 8, "forwarded to"),
    AT_FIELD(type, 40, "145 international, 129 other"), AT_FIELD(time, 44, "seconds without a reply"));

inline constexpr Record kCcwaSetPara =
    AT_RECORD(AT_CCWA_SET_PARA_T, 8, AT_FIELD(n, 0, "1 reports of waiting calls"),
              AT_FIELD(mode, 4, "0 disable, 1 enable, 2 query"));
inline constexpr Record kCcwaSetRes =
    AT_RECORD(AT_CCWA_SET_RES_PARA_T, 8, AT_FIELD(wait_status, 0, "0 not active, 1 active"),
              AT_FIELD(type, 4, "class: sum of 1 voice, 2 data, 4 fax, ..."));
inline constexpr Record kCcwaReadRes = AT_RECORD(
    AT_CCWA_READ_RES_PARA_T, 8, AT_FIELD(wait_status, 0, "always 0"), AT_FIELD(type, 4, "always 0"));

inline constexpr Record kClipSetPara =
    AT_RECORD(AT_CLIP_SET_PARA_T, 4, AT_FIELD(n, 0, "1 reports of the caller's number"));
inline constexpr Record kClipReadRes =
    AT_RECORD(AT_CLIP_READ_RES_PARA_T, 4, AT_FIELD(n, 0, "1 reports of the caller's number"));
inline constexpr Record kClirSetPara =
    AT_RECORD(AT_CLIR_SET_PARA_T, 4, AT_FIELD(n, 0, "0 as subscribed, 1 hide our number, 2 show it"));

inline constexpr Record kChldSetPara =
    AT_RECORD(AT_CHLD_SET_PARA_T, 4,
              AT_FIELD(n, 0, "0 release held calls, 1 release active ones, 2 swap, 3 join, 4 transfer"));
inline constexpr Record kChldReadRes =
    AT_RECORD(AT_CHLD_READ_RES_PARA_T, 8, AT_FIELD(value1, 0, "always 0"), AT_FIELD(value2, 4, "always 0"));

inline constexpr Record kZvconnectRes =
    AT_RECORD(AT_ZVCONNECT_NOTIFY_RES_PARA_T, 4,
              AT_FIELD(state, 0, "0 no call, 1 call over 2G or 3G, 2 call over LTE"));

inline constexpr Record kClccCall = AT_RECORD(
    AT_CLCC_CALL_T, 64, AT_FIELD(id, 0, "number of the call"), AT_FIELD(dir, 4, "0 we call, 1 we are called"),
    AT_FIELD(stat, 8, "0 active, 1 held, 2 dialling, 3 alerting, 4 incoming, 5 waiting"),
    AT_FIELD(mode, 12, "0 voice, 1 data, 2 fax"), AT_FIELD(mpty, 16, "1 part of a conference"),
    AT_FIELD(number, 20, "the other party"), AT_FIELD(type, 52, "145 international, 129 other"),
    AT_FIELD(extra1, 56, "the modem's own"), AT_FIELD(extra2, 60, "the modem's own"));
inline constexpr Record kClccReadRes =
    MakeList(AT_RECORD(AT_CLCC_READ_RES_PARA_T, 1284, AT_FIELD(count, 0, "calls")), kClccCall, 4, 20);
inline constexpr char kClccFormat[] = "%d %d %d %d %d %31s %d %d %d";

inline constexpr Record kCusdSetPara = AT_RECORD(
    AT_CUSD_SET_PARA_T, 44, AT_FIELD(n, 0, "2 ends the dialogue"),
    AT_FIELD(str, 4, "USSD string, with its quotation marks"), AT_FIELD(dcs, 40, "data coding scheme"));
inline constexpr Record kCusdSetRes =
    AT_RECORD(AT_CUSD_SET_RES_PARA_T, 824,
              AT_FIELD(mode, 0, "0 over, 1 the network waits for an answer, 2 ended by the network"),
              AT_FIELD(str, 4, "text of the network"), AT_FIELD(type, 820, "data coding scheme"));

inline constexpr Row kCallsRows[] = {
    {.position = 1,
     .id = 0x0401,
     .name = "D",
     .title = "dial",
     .encode = {.kind = EncodeKind::dial},
     .decode = kResultOnly},
    {.position = 2,
     .id = 0x0404,
     .name = "A",
     .title = "answer a call",
     .encode = kNoParameters,
     .decode = kResultOnly},
    {.position = 3,
     .id = 0x0403,
     .name = "+CHUP",
     .title = "hang up",
     .encode = kNoParameters,
     .decode = kResultOnly},
    {.position = 4,
     .id = 0x0411,
     .name = "+ZVOCLOOPBK",
     .title = "voice loopback",
     .encode = {.kind = EncodeKind::custom,
                .record = &kZvocloopbkSetPara,
                .forms = {{"%s"}},
                .log = "pCmdLine->strCmdParas= %s ",
                .function = Make_ZVOCLOOPBK_Cmd},
     .decode = kResultOnly},
    {.position = 5,
     .id = 0x0409,
     .name = "+VTS",
     .title = "DTMF tones",
     .encode = {.kind = EncodeKind::copy, .record = &kVtsSetPara, .forms = {{"%s"}}},
     .decode = kResultOnly},
    {.position = 6,
     .id = 0x0514,
     .name = "+CLVL",
     .title = "loudspeaker volume",
     .encode = {.kind = EncodeKind::record, .record = &kClvlSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead, .record = &kClvlReadRes, .format = "%d"}}}},
    {.position = 7,
     .id = 0x0519,
     .name = "+CMVL",
     .title = "second volume",
     .encode = {.kind = EncodeKind::record, .record = &kCmvlSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead, .record = &kCmvlReadRes, .format = "%d"}}}},
    // The line never carries the record's one character, though modules send it.
    {.position = 26,
     .id = 0x0525,
     .name = "+ZCALL",
     .title = "call state",
     .encode = {.kind = EncodeKind::none, .record = &kZcallSetPara},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kSet | kRead, .record = &kZcallRes, .format = "%c"}}}},
    {.position = 38,
     .id = 0x052B,
     .name = "+CCFC",
     .title = "call forwarding",
     .encode = {.kind = EncodeKind::custom,
                .record = &kCcfcSetPara,
                .forms = {{.format = "%d,%d,%s,%d,%d,0,0,%d",
                           .args = {{"reason", "mode", "number", "type", "classx", "time"}},
                           .when = {{"mode", Test::equals, 3}, {"reason", Test::equals, 2}}},
                          {.format = "%d,%d,%s,%d,%d", .when = {{"mode", Test::equals, 3}}},
                          {"%d,%d"}},
                .function = Make_CCFC_Cmd},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kSet,
                             .record = &kCcfcSetRes,
                             .from = From::normalised,
                             .format = "%d %d %31s %d   %d",
                             .result_test = true,
                             .log_text = "pResLine->strResParas=%s"}}}},
    {.position = 40,
     .id = 0x052C,
     .name = "+CCWA",
     .title = "call waiting",
     .encode = {.kind = EncodeKind::record, .record = &kCcwaSetPara, .forms = {{"%d,%d"}}},
     .decode = {.kind = DecodeKind::custom,
                .answers = {{.types = kSet,
                             .record = &kCcwaSetRes,
                             .from = From::normalised,
                             .format = "%d %d",
                             .result_test = true,
                             .note = "a line with a blank behind its colon goes out as a report, and the "
                                     "answer is the OK"},
                            {.types = kRead, .record = &kCcwaReadRes, .from = From::normalised}},
                .function = Parse_CCWA_Res}},
    {.position = 41,
     .id = 0x0513,
     .name = "+CLIP",
     .title = "caller's number",
     .encode = {.kind = EncodeKind::record, .record = &kClipSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead,
                             .record = &kClipReadRes,
                             .from = From::normalised,
                             .format = "%d",
                             .note = "always 0: the line goes out as a report"}}}},
    {.position = 47,
     .id = 0x053D,
     .name = "+RINGBACK",
     .title = "ringback tone",
     .encode = kReportOnly,
     .decode = {.kind = DecodeKind::custom, .function = Parse_RINGBACK_Res}},
    {.position = 48,
     .id = 0x053E,
     .name = "+CHLD",
     .title = "calls on hold",
     .encode = {.kind = EncodeKind::record,
                .record = &kChldSetPara,
                .forms = {{"%d"}},
                .log = "call_hold  pCmdLine->strCmdParas = %s"},
     .decode = {.kind = DecodeKind::answers, .answers = {{.types = kRead, .record = &kChldReadRes}}}},
    {.position = 83,
     .id = 0x0541,
     .name = "^CONN",
     .title = "call connected",
     .encode = kReportOnly,
     .decode = kResultOnly},
    {.position = 84,
     .id = 0x0542,
     .name = "^CEND",
     .title = "call ended",
     .encode = kReportOnly,
     .decode = kResultOnly},
    {.position = 85,
     .id = 0x040F,
     .name = "+CDV",
     .title = "dial a voice call",
     .encode = {.kind = EncodeKind::dial},
     .decode = kResultOnly},
    {.position = 86,
     .id = 0x0410,
     .name = "+CHV",
     .title = "hang up a voice call",
     .encode = kNoParameters,
     .decode = kResultOnly},
    {.position = 91,
     .id = 0x0532,
     .name = "+CUSD",
     .title = "USSD dialogue",
     .encode = {.kind = EncodeKind::record,
                .record = &kCusdSetPara,
                .forms = {{.format = "%d", .when = {{"n", Test::equals, 2}}}, {"%d,%s,%d"}}},
     .decode = {.kind = DecodeKind::custom,
                .answers = {{.types = kSet,
                             .record = &kCusdSetRes,
                             .file = kUssdFile,
                             .note = "while data_card_mode is KVX_LTE or KVX_WCDMA the file comes with the "
                                     "report; after OK alone the answer is that text, 2 bytes, and the file "
                                     "stays as it was"}},
                .function = Parse_CUSD_Res}},
    {.position = 92,
     .id = 0x053C,
     .name = "+CLIR",
     .title = "our number at the other party",
     .encode = {.kind = EncodeKind::record, .record = &kClirSetPara, .forms = {{"%d"}}},
     .decode = kResultOnly},
    {.position = 98,
     .id = 0x0551,
     .name = "+ZCHUPD",
     .title = "hang up",
     .encode = kNoParameters,
     .decode = kResultOnly},
    {.position = 161,
     .id = 0x0518,
     .name = "+CLCC",
     .title = "current calls",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::custom,
                .answers = {{.types = kRead,
                             .record = &kClccReadRes,
                             .from = From::normalised,
                             .format = kClccFormat,
                             .carried = AT_RESPONSE_PARAS_SIZE},
                            {.types = kExec,
                             .record = &kClccReadRes,
                             .from = From::normalised,
                             .format = kClccFormat,
                             .file = kCallListFile,
                             .note = "without a call the file stays as it was"}},
                .function = Parse_CLCC_Res}},
    {.position = 180,
     .id = 0x055E,
     .name = "+ZCPI",
     .title = "call progress",
     .encode = kReportOnly,
     .decode = kResultOnly},
    {.position = 184,
     .id = 0x0413,
     .name = "ZVCONNECT",
     .title = "state of a call",
     .note = "the server keeps it under the keys call_cs_status and volte_cs_status",
     .encode = kReportOnly,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kEveryType, .record = &kZvconnectRes, .format = "%d"}}}},
};

#endif
