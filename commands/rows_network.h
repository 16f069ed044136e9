#ifndef AT_COMMANDS_ROWS_NETWORK_H
#define AT_COMMANDS_ROWS_NETWORK_H

#include "commands/atdecode.h"
#include "commands/atencode.h"
#include "commands/list_file.h"
#include "commands/records_network.h"
#include "commands/row.h"

// The commands of network selection and registration.

inline constexpr Record kCopsSetPara = AT_RECORD(
    AT_COPS_SET_PARA_T, 76,
    AT_FIELD(mode, 0, "0 automatic, 1 manual, 2 deregister, 3 set the format only, 4 manual, then automatic"),
    AT_FIELD(format, 4, "of oper: 0 long name, 1 short name, 2 numeric"),
    AT_FIELD(oper, 8, "operator, with its quotation marks"), AT_FIELD(act, 72, "access technology"));
inline constexpr Record kCopsReadRes =
    AT_RECORD(AT_COPS_READ_RES_PARA_T, 80,
              AT_FIELD(mode, 0, "0 automatic, 1 manual, 2 deregistered, 4 manual, then automatic"),
              AT_FIELD(format, 4, "of oper: 0 long name, 1 short name, 2 numeric"),
              AT_FIELD(oper, 8, "operator"), AT_FIELD(act, 76, "access technology"));
inline constexpr Record kCopsOperator =
    AT_RECORD(AT_COPS_OPERATOR_T, 128, AT_FIELD(stat, 0, "0 unknown, 1 available, 2 current, 3 forbidden"),
              AT_FIELD(long_name, 4, "long name"), AT_FIELD(short_name, 72, "short name"),
              AT_FIELD(numeric, 92, "numeric code"), AT_FIELD(act, 104, "access technology"));
inline constexpr Record kCopsTestRes = MakeList(
    AT_RECORD(AT_COPS_TEST_RES_PARA_T, 12804, AT_FIELD(count, 0, "operators found")), kCopsOperator, 4, 100);

inline constexpr Record kCregSetPara =
    AT_RECORD(AT_CREG_SET_PARA_T, 4,
              AT_FIELD(n, 0, "0 no reports, 1 reports of the state, 2 reports with the location"));
inline constexpr Record kCgregSetPara =
    AT_RECORD(AT_CGREG_SET_PARA_T, 4,
              AT_FIELD(n, 0, "0 no reports, 1 reports of the state, 2 reports with the location"));
inline constexpr Record kCeregSetPara =
    AT_RECORD(AT_CEREG_SET_PARA_T, 4,
              AT_FIELD(n, 0, "0 no reports, 1 reports of the state, 2 reports with the location"));
inline constexpr char kRegistrationStates[] =
    "0 not registered, 1 home, 2 searching, 3 denied, 4 unknown, 5 roaming";
inline constexpr Record kCregReadRes =
    AT_RECORD(AT_CREG_READ_RES_PARA_T, 40, AT_FIELD(n, 0, "which reports are on"),
              AT_FIELD(stat, 4, kRegistrationStates), AT_FIELD(lac, 8, "location area, hexadecimal"),
              AT_FIELD(ci, 24, "cell, hexadecimal"));
inline constexpr Record kCgregReadRes =
    AT_RECORD(AT_CGREG_READ_RES_PARA_T, 64, AT_FIELD(n, 0, "which reports are on"),
              AT_FIELD(stat, 4, kRegistrationStates), AT_FIELD(lac, 8, "location area, hexadecimal"),
              AT_FIELD(ci, 24, "cell, hexadecimal"), AT_FIELD(act, 40, "access technology"),
              AT_FIELD(rac, 44, "routing area, hexadecimal"),
              AT_FIELD(sub_act, 60, "the modem's own finer access technology"));
inline constexpr Record kCeregReadRes =
    AT_RECORD(AT_CEREG_READ_RES_PARA_T, 48, AT_FIELD(n, 0, "which reports are on"),
              AT_FIELD(stat, 4, kRegistrationStates), AT_FIELD(tac, 8, "tracking area, hexadecimal"),
              AT_FIELD(ci, 24, "cell, hexadecimal"), AT_FIELD(act, 40, "access technology"),
              AT_FIELD(sub_act, 44, "the modem's own finer access technology"));

inline constexpr Record kCsqExecRes = AT_RECORD(
    AT_CSQ_EXEC_RES_PARA_T, 8, AT_FIELD(rssi, 0, "0..31 in steps of 2 dB from -113 dBm, 99 unknown"),
    AT_FIELD(ber, 4, "bit error rate; 0 whenever the modem separates the two by a comma"));

inline constexpr Record kCfunSetPara =
    AT_RECORD(AT_CFUN_SET_PARA_T, 4, AT_FIELD(fun, 0, "0 minimum, 1 full, 4 radio off"));
inline constexpr Record kCfunReadRes =
    AT_RECORD(AT_CFUN_READ_RES_PARA_T, 4, AT_FIELD(fun, 0, "0 minimum, 1 full, 4 radio off"));

inline constexpr Row kNetworkRows[] = {
    {.position = 13, .id = 0x0501, .name = "+ZPCB", .encode = kNoParameters},
    {.position = 14, .id = 0x0507, .name = "+ZDON", .encode = kNoParameters},
    {.position = 15, .id = 0x0508, .name = "+ZDNT", .encode = kNoParameters},
    {.position = 16, .id = 0x0509, .name = "+ZSNT"},
    {.position = 17, .id = 0x050B, .name = "+ZPAS", .encode = kNoParameters},
    {.position = 20, .id = 0x0601, .name = "+ZRSSI", .encode = kNoParameters},
    {.position = 23, .id = 0x0522, .name = "+ZSTOPT", .encode = kNoParameters, .decode = kResultOnly},
    {.position = 24, .id = 0x0520, .name = "+ZOPRT"},
    {.position = 25, .id = 0x0523, .name = "+ZSTART", .encode = kNoParameters, .decode = kResultOnly},
    {.position = 28, .id = 0x0526, .name = "+ZLACELLID", .encode = kNoParameters},
    {.position = 36, .id = 0x0529, .name = "+ZMACR", .encode = kReportOnly},
    {.position = 37, .id = 0x052A, .name = "+ZMAC", .decode = kResultOnly},
    {.position = 45, .id = 0x051D, .name = "+ZPASR", .encode = kReportOnly},
    {.position = 46, .id = 0x051E, .name = "+ZDONR", .encode = kReportOnly},
    {.position = 68, .id = 0x0547, .name = "+ZBANDI", .decode = kResultOnly},
    {.position = 69,
     .id = 0x0544,
     .name = "+CFUN",
     .title = "radio functions",
     .encode = {.kind = EncodeKind::record, .record = &kCfunSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kSet}, {.types = kRead, .record = &kCfunReadRes, .format = "%d"}}}},
    {.position = 70,
     .id = 0x0517,
     .name = "+COPS",
     .title = "operator choice and search",
     .encode = {.kind = EncodeKind::custom,
                .record = &kCopsSetPara,
                .forms = {{"%d,%d,%s,%d"}},
                .function = Make_COPS_Cmd},
     .decode = {.kind = DecodeKind::custom,
                .answers = {{.types = kSet},
                            {.types = kRead,
                             .record = &kCopsReadRes,
                             .from = From::normalised,
                             .format = "%d %d %67s %d ",
                             .log_text = "pResLine->strResParas=%s\n"},
                            {.types = kTest,
                             .record = &kCopsTestRes,
                             .from = From::normalised,
                             .format = "%d %64s %16s %10s %20s",
                             .file = kOperatorListFile}},
                .function = Parse_COPS_Res}},
    {.position = 71,
     .id = 0x0604,
     .name = "+CSQ",
     .title = "signal quality",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec, .record = &kCsqExecRes, .format = "%d%d"}}}},
    {.position = 73, .id = 0x0605, .name = "^SYSINFO", .encode = kNoParameters},
    {.position = 75, .id = 0x054B, .name = "^SYSCFG"},
    {.position = 80, .id = 0x0540, .name = "^PREFMODE"},
    {.position = 87, .id = 0x0530, .name = "^ZOPS", .encode = kNoParameters},
    {.position = 88, .id = 0x052F, .name = "^DDTM"},
    {.position = 89, .id = 0x0533, .name = "^DRAP", .encode = kNoParameters},
    {.position = 90, .id = 0x050F, .name = "+ZCIN", .decode = kResultOnly},
    {.position = 94, .id = 0x054D, .name = "$QCSYSMODE", .encode = kNoParameters},
    {.position = 95, .id = 0x054E, .name = "+CIND", .encode = kNoParameters},
    {.position = 96, .id = 0x054F, .name = "$PREFNETTYPE"},
    {.position = 97, .id = 0x0550, .name = "^HRSSILVL", .encode = kReportOnly},
    {.position = 100, .id = 0x0611, .name = "!BAND"},
    {.position = 103, .id = 0x0614, .name = "%NWSTATE", .encode = kNoParameters},
    {.position = 104, .id = 0x0615, .name = "%IPSYS"},
    {.position = 105,
     .id = 0x0552,
     .name = "+CEREG",
     .title = "LTE registration",
     .encode = {.kind = EncodeKind::record, .record = &kCeregSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead,
                             .record = &kCeregReadRes,
                             .from = From::normalised,
                             .format = "%d %d %15s %15s %d %d"}}}},
    {.position = 106, .id = 0x0637, .name = "+ZCNI", .encode = kNoParameters},
    {.position = 116, .id = 0x0617, .name = "+ZROAM"},
    {.position = 117,
     .id = 0x052D,
     .name = "+CREG",
     .title = "circuit-switched registration",
     .encode = {.kind = EncodeKind::record, .record = &kCregSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::custom,
                .answers = {{.types = kRead,
                             .record = &kCregReadRes,
                             .from = From::normalised,
                             .format = "%d %d %15s %15s"}},
                .function = Parse_CREG_Res}},
    {.position = 118, .id = 0x0618, .name = "+ZLOCKBAND"},
    {.position = 119, .id = 0x0619, .name = "+ZLOCKF"},
    {.position = 136, .id = 0x055C, .name = "+ZUMS", .decode = kResultOnly},
    {.position = 138, .id = 0x061D, .name = "+ZRAP"},
    {.position = 139, .id = 0x061F, .name = "^SYSCONFIG"},
    {.position = 155,
     .id = 0x0553,
     .name = "+CGREG",
     .title = "packet-switched registration",
     .encode = {.kind = EncodeKind::record, .record = &kCgregSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead,
                             .record = &kCgregReadRes,
                             .from = From::normalised,
                             .format = "%d %d %15s %15s %d %15s %d",
                             .log = {"tPara.stat=%d,tPara.stat=%d\n", {"stat", "stat"}}}}}},
    {.position = 158, .id = 0x0645, .name = "+ZSLEEPMOD", .encode = kNoParameters},
    {.position = 160, .id = 0x063E, .name = "+ZNITZ", .encode = kNoParameters},
    {.position = 185, .id = 0x055F, .name = "+ZNLOCKBAND"},
    {.position = 186, .id = 0x0560, .name = "+ZPOWERMODE", .encode = kNoParameters},
};

#endif
