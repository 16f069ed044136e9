#ifndef AT_COMMANDS_ROWS_TOOLKIT_H
#define AT_COMMANDS_ROWS_TOOLKIT_H

#include "commands/atdecode.h"
#include "commands/atencode.h"
#include "commands/list_file.h"
#include "commands/records_toolkit.h"
#include "commands/row.h"

// The commands of the SIM toolkit.

inline constexpr Record kZselmSetPara =
    AT_RECORD(AT_ZSELM_SET_PARA_T, 4, AT_FIELD(value, 0, "what was selected"));
inline constexpr Record kZseliSetPara =
    AT_RECORD(AT_ZSELI_SET_PARA_T, 4, AT_FIELD(value, 0, "what was selected"));
inline constexpr Record kZbkSetPara =
    AT_RECORD(AT_ZBK_SET_PARA_T, 4, AT_FIELD(value, 0, "where the user goes back"));
inline constexpr Record kZinprSetPara = AT_RECORD(
    AT_ZINPR_SET_PARA_T, 516, AT_FIELD(value, 0, "the modem's own"), AT_FIELD(text, 4, "what was put in"));
inline constexpr Record kZinkrSetPara = AT_RECORD(
    AT_ZINKR_SET_PARA_T, 516, AT_FIELD(value, 0, "the modem's own"), AT_FIELD(text, 4, "what was put in"));
inline constexpr Record kZutpSetPara =
    AT_RECORD(AT_ZUTP_SET_PARA_T, 128, AT_FIELD(text, 0, "finished parameters"));
inline constexpr Record kZutrSetPara =
    AT_RECORD(AT_ZUTR_SET_PARA_T, 160, AT_FIELD(cmdtype, 0, "type of the proactive command"),
              AT_FIELD(cmdqualifier, 4, "its qualifier"), AT_FIELD(cmdnum, 8, "its number"),
              AT_FIELD(result, 12, "result"), AT_FIELD(addresult, 16, "additional result"),
              AT_FIELD(codemode, 28, "coding of the text"), AT_FIELD(inputtxtn, 32, "what was put in"));

inline constexpr Record kZupciRes = [] {
    using Report = AT_ZUPCI_NOTIFY_RES_PARA_T;
    constexpr size_t values = offsetof(Report, value);
    return MakeRecord(
        "AT_ZUPCI_NOTIFY_RES_PARA_T", 528, sizeof(Report),
        {MakeField("cmdtype", FieldType::i32, 0, offsetof(Report, cmdtype), 4, "35 a text to send"),
         MakeField("value1", FieldType::i32, 4, values, 4, "the modem's own"),
         MakeField("value2", FieldType::i32, 8, values + 4, 4, "the modem's own"),
         MakeField("value3", FieldType::i32, 12, values + 8, 4, "the modem's own"),
         MakeField("txt", FieldType::text, 16, offsetof(Report, txt), sizeof(Report::txt), "text")});
}();
inline constexpr Record kZuendRes =
    AT_RECORD(AT_ZUEND_NOTIFY_RES_PARA_T, 4, AT_FIELD(result, 0, "how the session ended"));

inline constexpr Row kToolkitRows[] = {
    {.position = 121,
     .id = 0x0701,
     .name = "+ZSTM",
     .title = "toolkit menu",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::text, .answers = {{.types = kExec}}}},
    {.position = 122,
     .id = 0x0702,
     .name = "+ZSTI",
     .title = "toolkit menu of the SIM",
     .encode = kReportOnly,
     .decode = kWholeText},
    {.position = 123,
     .id = 0x0703,
     .name = "+ZSELM",
     .title = "select from the toolkit menu",
     .encode = {.kind = EncodeKind::record, .record = &kZselmSetPara, .forms = {{"%d"}}},
     .decode = kWholeText},
    {.position = 124,
     .id = 0x0704,
     .name = "+ZSELI",
     .title = "select an item",
     .encode = {.kind = EncodeKind::record, .record = &kZseliSetPara, .forms = {{"%d"}}},
     .decode = kWholeText},
    {.position = 125,
     .id = 0x0705,
     .name = "+ZSMSR",
     .title = "message sent by the SIM",
     .encode = kReportOnly,
     .decode = kWholeText},
    {.position = 126,
     .id = 0x0706,
     .name = "+ZDIST",
     .title = "text to display",
     .encode = kReportOnly,
     .decode = kWholeText},
    {.position = 127,
     .id = 0x0711,
     .name = "+ZFDIST",
     .title = "text to display",
     .encode = kReportOnly,
     .decode = kWholeText},
    {.position = 128,
     .id = 0x0707,
     .name = "+ZBK",
     .title = "go back in the toolkit",
     .encode = {.kind = EncodeKind::record, .record = &kZbkSetPara, .forms = {{"%d"}}},
     .decode = kWholeText},
    {.position = 129,
     .id = 0x0709,
     .name = "+ZPSTM",
     .title = "toolkit submenu",
     .encode = kReportOnly,
     .decode = kWholeText},
    {.position = 130,
     .id = 0x070A,
     .name = "+ZGINP",
     .title = "the SIM asks for a text",
     .encode = kReportOnly,
     .decode = kWholeText},
    {.position = 131,
     .id = 0x070B,
     .name = "+ZINPR",
     .title = "text for the SIM",
     .encode =
         {.kind = EncodeKind::record, .record = &kZinprSetPara, .forms = {{"%d,%s"}}, .may_be_cut = true},
     .decode = kResultOnly},
    {.position = 132,
     .id = 0x070C,
     .name = "+ZGINK",
     .title = "the SIM asks for a key",
     .encode = kReportOnly,
     .decode = kWholeText},
    {.position = 133,
     .id = 0x070D,
     .name = "+ZINKR",
     .title = "key for the SIM",
     .encode =
         {.kind = EncodeKind::record, .record = &kZinkrSetPara, .forms = {{"%d,%s"}}, .may_be_cut = true},
     .decode = kResultOnly},
    {.position = 134,
     .id = 0x070E,
     .name = "+ZDISTR",
     .title = "text was displayed",
     .encode = kNoParameters,
     .decode = kResultOnly},
    {.position = 135,
     .id = 0x070F,
     .name = "+ZUnsupport",
     .title = "proactive command that the modem does not know",
     .note = "it is reported as +ZFDIST",
     .encode = kReportOnly,
     .decode = kResultOnly},
    {.position = 171,
     .id = 0x062F,
     .name = "+ZUTP",
     .title = "terminal profile",
     .encode = {.kind = EncodeKind::copy, .record = &kZutpSetPara, .forms = {{"%s"}}},
     .decode = kResultOnly},
    {.position = 172,
     .id = 0x0630,
     .name = "+ZUPCI",
     .title = "proactive command",
     .encode = kReportOnly,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kEveryType,
                             .record = &kZupciRes,
                             .from = From::normalised,
                             .format = "%d %d %d %d %511s",
                             .log = {"tPara.cmdtype:%d"}}}}},
    {.position = 173,
     .id = 0x0631,
     .name = "+ZUTR",
     .title = "terminal response",
     .encode = {.kind = EncodeKind::custom,
                .record = &kZutrSetPara,
                .forms = {{"%d,%d,%d,%d,%s,%d,\"%s\""}},
                .function = Make_ZUTR_Cmd},
     .decode = kResultOnly},
    {.position = 174,
     .id = 0x0632,
     .name = "+ZUEND",
     .title = "end of a proactive session",
     .encode = kReportOnly,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kEveryType, .record = &kZuendRes, .format = "%d"}}}},
};

#endif
