#ifndef AT_COMMANDS_ROWS_SIM_H
#define AT_COMMANDS_ROWS_SIM_H

#include "commands/atdecode.h"
#include "commands/atencode.h"
#include "commands/list_file.h"
#include "commands/records_sim.h"
#include "commands/row.h"

// The commands of the SIM, PINs and locks.

inline constexpr Record kCpinSetPara =
    AT_RECORD(AT_CPIN_SET_PARA_T, 64, AT_FIELD(pin, 0, "PIN, or PUK when a new PIN is given"),
              AT_FIELD(new_pin, 32, "new PIN"));
inline constexpr Record kCpinReadRes =
    AT_RECORD(AT_CPIN_READ_RES_PARA_T, 32, AT_FIELD(status, 0, "READY, SIM PIN, SIM PUK, ..."));

inline constexpr Record kCimiExecRes =
    AT_RECORD(AT_CIMI_EXEC_RES_PARA_T, 36, AT_FIELD(imsi, 0, "subscriber identity"));

inline constexpr Record kCpwdSetPara =
    AT_RECORD(AT_CPWD_SET_PARA_T, 30, AT_FIELD(fac, 0, "facility"), AT_FIELD(old_pwd, 10, "password in use"),
              AT_FIELD(new_pwd, 20, "password to come"));
inline constexpr Record kClckSetPara =
    AT_RECORD(AT_CLCK_SET_PARA_T, 28, AT_FIELD(fac, 0, "facility"),
              AT_FIELD(mode, 12, "0 unlock, 1 lock, 2 query"), AT_FIELD(passwd, 16, "password"));
inline constexpr Record kClckSetRes =
    AT_RECORD(AT_CLCK_SET_RES_PARA_T, 8, AT_FIELD(status, 0, "0 not active, 1 active"),
              AT_FIELD(service_class, 4, "class of services"));
inline constexpr Record kZnckSetPara = AT_RECORD(AT_ZNCK_SET_PARA_T, 32, AT_FIELD(code, 0, "unlock code"));
inline constexpr Record kZnckSetRes =
    AT_RECORD(AT_ZNCK_SET_RES_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kCrsmSetPara =
    AT_RECORD(AT_CRSM_SET_PARA_T, 20, AT_FIELD(command, 0, "SIM command"), AT_FIELD(file_id, 4, "file"),
              AT_FIELD(p1, 8, "first parameter"), AT_FIELD(p2, 12, "second parameter"),
              AT_FIELD(p3, 16, "third parameter"));
inline constexpr Record kCrsmSetRes =
    AT_RECORD(AT_CRSM_SET_RES_PARA_T, 72, AT_FIELD(sw1, 0, "first status byte of the SIM"),
              AT_FIELD(sw2, 4, "second status byte"), AT_FIELD(response, 8, "data, hexadecimal"));
inline constexpr Record kZlklistReadRes =
    AT_RECORD(AT_ZLKLIST_READ_RES_PARA_T, 512, AT_FIELD(text, 0, "locks, as the modem sent them"));
inline constexpr Record kZpinpukTestRes =
    AT_RECORD(AT_ZPINPUK_TEST_RES_PARA_T, 8, AT_FIELD(value1, 0, "attempts left"), AT_FIELD(value2, 4, ""));
inline constexpr Record kZsecExecRes =
    AT_RECORD(AT_ZSEC_EXEC_RES_PARA_T, 8, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(value2, 4, ""));
inline constexpr Record kZusimExecRes =
    AT_RECORD(AT_ZUSIM_EXEC_RES_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kZusimrRes =
    AT_RECORD(AT_ZUSIMR_RES_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kCpinVReadRes =
    AT_RECORD(AT_CPIN_V_READ_RES_PARA_T, 20, AT_FIELD(retr_times, 0, "attempts left for what is asked now"),
              AT_FIELD(num_puk1, 4, "attempts left: PUK1"), AT_FIELD(num_pin1, 8, "PIN1"),
              AT_FIELD(num_puk2, 12, "PUK2"), AT_FIELD(num_pin2, 16, "PIN2"));
inline constexpr Record kCpincExecRes =
    AT_RECORD(AT_CPINC_EXEC_RES_PARA_T, 16, AT_FIELD(PinNum1, 0, "attempts left: PIN1"),
              AT_FIELD(PinNum2, 4, "PIN2"), AT_FIELD(PukNum1, 8, "PUK1"), AT_FIELD(PukNum2, 12, "PUK2"));
inline constexpr Record kPinnumReadRes =
    AT_RECORD(AT_PINNUM_READ_RES_PARA_T, 16, AT_FIELD(value1, 0, "attempts left"), AT_FIELD(value2, 4, ""),
              AT_FIELD(value3, 8, ""), AT_FIELD(value4, 12, ""));
inline constexpr Record kZuinitSetPara =
    AT_RECORD(AT_ZUINIT_SET_PARA_T, 16, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(value2, 4, ""),
              AT_FIELD(value3, 8, ""), AT_FIELD(value4, 12, ""));
inline constexpr Record kZuinitSetRes =
    AT_RECORD(AT_ZUINIT_SET_RES_PARA_T, 16, AT_FIELD(uiccstate, 0, "state of the card"),
              AT_FIELD(appmode, 4, "its application"), AT_FIELD(iccid, 8, "the modem's own"),
              AT_FIELD(phase, 12, "the modem's own"));
inline constexpr Record kZustatSetPara =
    AT_RECORD(AT_ZUSTAT_SET_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kZurdyRes =
    AT_RECORD(AT_ZURDY_RES_PARA_T, 8, AT_FIELD(appmode, 0, "the card's application"),
              AT_FIELD(initresult, 4, "how its start went"));
inline constexpr Record kZimsiExecRes =
    AT_RECORD(AT_ZIMSI_EXEC_RES_PARA_T, 36, AT_FIELD(imsi, 0, "subscriber identity"));

inline constexpr char kCpinVLog[] =
    "tPara.retr_times:%d,tPara.num_puk1:%d,tPara.num_pin1:%d,tPara.num_puk2:%d,tPara.num_pin2:%d";

inline constexpr Row kSimRows[] = {
    {.position = 10,
     .id = 0x0301,
     .name = "+CPIN",
     .title = "PIN state and PIN entry",
     .encode = {.kind = EncodeKind::record,
                .record = &kCpinSetPara,
                .forms = {{.format = "\"%s\"", .when = {{"new_pin", Test::absent}}},
                          {.format = "\"%s\",\"%s\""}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kSet},
                            {.types = kRead, .record = &kCpinReadRes, .from = From::whole}}}},
    {.position = 11,
     .id = 0x0302,
     .name = "+CPWD",
     .title = "password change",
     .encode = {.kind = EncodeKind::record, .record = &kCpwdSetPara, .forms = {{"\"%s\",\"%s\",\"%s\""}}},
     .decode = {.kind = DecodeKind::answers, .answers = {{.types = kSet}}}},
    {.position = 18,
     .id = 0x050C,
     .name = "+ZIMSI",
     .title = "subscriber identity (IMSI)",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead,
                             .record = &kZimsiExecRes,
                             .from = From::normalised,
                             .format = "%32s"}}}},
    {.position = 19,
     .id = 0x0111,
     .name = "+CIMI",
     .title = "subscriber identity (IMSI)",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers =
                    {{.types = kExec, .record = &kCimiExecRes, .from = From::normalised, .format = "%32s"}}}},
    {.position = 34,
     .id = 0x0527,
     .name = "+ZSEC",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead,
                             .record = &kZsecExecRes,
                             .from = From::normalised,
                             .format = "%d %d"}}}},
    {.position = 35,
     .id = 0x0528,
     .name = "+ZNCK",
     .title = "network unlock",
     .encode = {.kind = EncodeKind::record, .record = &kZnckSetPara, .forms = {{"\"%s\""}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kSet | kRead, .record = &kZnckSetRes, .format = "%d"}}}},
    {.position = 39,
     .id = 0x0511,
     .name = "+CLCK",
     .title = "facility locks",
     .encode = {.kind = EncodeKind::record,
                .record = &kClckSetPara,
                .forms = {{.format = "\"%s\",%d", .when = {{"passwd", Test::absent}}}, {"\"%s\",%d,\"%s\""}}},
     .decode = {.kind = DecodeKind::custom,
                .answers = {{.types = kSet,
                             .record = &kClckSetRes,
                             .from = From::normalised,
                             .format = "%d %d",
                             .result_test = true}},
                .function = Parse_CLCK_Res}},
    {.position = 42,
     .id = 0x052E,
     .name = "+ZLKLIST",
     .title = "list of locks",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead | kTest,
                             .record = &kZlklistReadRes,
                             .from = From::whole,
                             .length = 128}}}},
    {.position = 43,
     .id = 0x0531,
     .name = "+ZPINPUK",
     .title = "PIN and PUK attempts left",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kTest, .record = &kZpinpukTestRes, .format = "%d,%d"}}}},
    {.position = 44,
     .id = 0x051C,
     .name = "+ZUSIMR",
     .title = "state of the card",
     .encode = kReportOnly,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kEveryType, .record = &kZusimrRes, .format = "%d"}}}},
    {.position = 65,
     .id = 0x0205,
     .name = "+ZUSIM",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kSet | kRead,
                             .record = &kZusimExecRes,
                             .from = From::normalised,
                             .format = "%d "}}}},
    {.position = 66,
     .id = 0x0545,
     .name = "+CRSM",
     .title = "SIM file access",
     .encode = {.kind = EncodeKind::record, .record = &kCrsmSetPara, .forms = {{"%d,%d,%d,%d,%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kSet,
                             .record = &kCrsmSetRes,
                             .from = From::normalised,
                             .format = "%d %d %34s"}}}},
    {.position = 74,
     .id = 0x060E,
     .name = "^CPIN",
     .title = "PIN state and attempts left",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::custom,
                .answers = {{.types = kSet},
                            {.types = kRead,
                             .record = &kCpinVReadRes,
                             .from = From::normalised,
                             .format = "%d %d %d %d %d",
                             .log = {kCpinVLog},
                             .note = "a line without READY and without a comma is answered without the "
                                     "record"}},
                .function = Parse_CPIN_V_Res}},
    {.position = 78,
     .id = 0x0111,
     .name = "+CIMI",
     .title = "subscriber identity (IMSI)",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec,
                             .record = &kCimiExecRes,
                             .from = From::normalised,
                             .format = "%32s"}}}},
    {.position = 93,
     .id = 0x054C,
     .name = "+CPINC",
     .title = "PIN and PUK attempts left",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec,
                             .record = &kCpincExecRes,
                             .format = "%d,%d,%d,%d",
                             .log_text = "CPINC==pResLine->strResParas=%s",
                             .log =
                                 {"tPara.PinNum1:%d,tPara.PinNum2:%d,tPara.PukNum1:%d,tPara.PukNum2:%d"}}}}},
    {.position = 102,
     .id = 0x0613,
     .name = "%PINNUM",
     .title = "PIN and PUK attempts left",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead, .record = &kPinnumReadRes, .format = "%d,%d,%d,%d"}}}},
    {.position = 143,
     .id = 0x0638,
     .name = "+ZUINIT",
     .title = "card start",
     .encode = {.kind = EncodeKind::record, .record = &kZuinitSetPara, .forms = {{"%d,%d,%d,%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kSet | kRead,
                             .record = &kZuinitSetRes,
                             .from = From::normalised,
                             .format = "%d %d %d %d ",
                             .log_text = "==ZUINIT===pResLine->strResParas=%s",
                             .log = {"tPara.uiccstate:%d,tPara.appmode:%d,tPara.iccid:%d,tPara.phase:%d"}}}}},
    {.position = 144,
     .id = 0x0639,
     .name = "+ZUSTAT",
     .title = "state of the card",
     .encode = {.kind = EncodeKind::record, .record = &kZustatSetPara, .forms = {{"%d"}}},
     .decode = kResultOnly},
    {.position = 145,
     .id = 0x063A,
     .name = "+ZURDY",
     .title = "card ready",
     .encode = kReportOnly,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kEveryType,
                             .record = &kZurdyRes,
                             .format = "%d,%d",
                             .log = {"tPara.appmode:%d ,tPara.initresult:%d"}}}}},
    {.position = 164,
     .id = 0x0629,
     .name = "+ZICCID",
     .title = "card identity (ICCID)",
     .encode = kReportOnly,
     .decode = {.kind = DecodeKind::custom, .function = Parse_ZICCID_Res}},
};

#endif
