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

inline constexpr Record kCindReadRes =
    AT_RECORD(AT_CIND_READ_RES_PARA_T, 32, AT_FIELD(indicator1, 0, "first indicator, in the modem's order"),
              AT_FIELD(indicator2, 4, ""), AT_FIELD(indicator3, 8, ""), AT_FIELD(indicator4, 12, ""),
              AT_FIELD(indicator5, 16, ""), AT_FIELD(indicator6, 20, ""), AT_FIELD(indicator7, 24, ""),
              AT_FIELD(indicator8, 28, ""));

inline constexpr Record kSysinfoExecRes =
    AT_RECORD(AT_SYSINFO_EXEC_RES_PARA_T, 28, AT_FIELD(srv_status, 0, "service"),
              AT_FIELD(srv_domain, 4, "domain of it"), AT_FIELD(roam_status, 8, "roaming"),
              AT_FIELD(sys_mode, 12, "radio technology"), AT_FIELD(sim_state, 16, "SIM"),
              AT_FIELD(value6, 20, "the modem's own"), AT_FIELD(sys_submode, 24, "finer radio technology"));

inline constexpr char kSysinfoLog[] =
    "srv_status=%d,srv_domain=%d,roam_status=%d,sys_mode=%d,sim_state=%d,sys_submode=%d";

inline constexpr Record kZrssiExecRes = AT_RECORD(
    AT_ZRSSI_EXEC_RES_PARA_T, 28, AT_FIELD(slot0, 0, "2G: value 1; WCDMA: value 1; 4G: value 3"),
    AT_FIELD(slot1, 4, "3G: value 1; WCDMA: value 3"), AT_FIELD(slot2, 8, "3G: value 2; WCDMA: value 2"),
    AT_FIELD(slot3, 12, "4G: value 1"), AT_FIELD(slot4, 16, "4G: value 2"),
    AT_FIELD(slot5, 20, "never filled"), AT_FIELD(slot6, 24, "4G: value 4"));

inline constexpr Record kHrssilvlRes =
    AT_RECORD(AT_HRSSILVL_RES_PARA_T, 8, AT_FIELD(hdr_rssi, 0, "HDR signal level"));

inline constexpr Record kNwstateExecRes =
    AT_RECORD(AT_NWSTATE_EXEC_RES_PARA_T, 56, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(text1, 4, ""),
              AT_FIELD(text2, 20, ""), AT_FIELD(text3, 36, ""), AT_FIELD(value2, 52, ""));

inline constexpr Record kZlacellidExecRes = AT_RECORD(
    AT_ZLACELLID_EXEC_RES_PARA_T, 24, AT_FIELD(value1, 0, "location areas and cells, in the modem's order"),
    AT_FIELD(value2, 4, ""), AT_FIELD(value3, 8, ""), AT_FIELD(value4, 12, ""), AT_FIELD(value5, 16, ""),
    AT_FIELD(value6, 20, ""));

inline constexpr Record kZpasReadRes =
    AT_RECORD(AT_ZPAS_READ_RES_PARA_T, 104, AT_FIELD(text1, 0, "the modem's own"), AT_FIELD(text2, 68, ""));
inline constexpr Record kZpasrRes = AT_RECORD(AT_ZPASR_RES_PARA_T, 68, AT_FIELD(text, 0, "the modem's own"));

inline constexpr Record kZdonReadRes =
    AT_RECORD(AT_ZDON_READ_RES_PARA_T, 380, AT_FIELD(text1, 0, "the modem's own"), AT_FIELD(text2, 68, ""),
              AT_FIELD(text3, 104, ""), AT_FIELD(text4, 140, ""), AT_FIELD(text5, 208, ""),
              AT_FIELD(text6, 276, ""), AT_FIELD(text7, 344, ""));
inline constexpr Record kZopsReadRes =
    AT_RECORD(AT_ZOPS_READ_RES_PARA_T, 380, AT_FIELD(text1, 0, "the modem's own"), AT_FIELD(text2, 68, ""),
              AT_FIELD(text3, 104, ""), AT_FIELD(text4, 140, ""), AT_FIELD(text5, 208, ""),
              AT_FIELD(text6, 276, ""), AT_FIELD(text7, 344, ""));
inline constexpr char kOperatorTexts[] = "%64s %32s %32s %64s %64s %64s %32s";
inline constexpr Record kZdonrRes =
    AT_RECORD(AT_ZDONR_RES_PARA_T, 212, AT_FIELD(text1, 0, "the modem's own"), AT_FIELD(text2, 68, ""),
              AT_FIELD(text3, 104, ""), AT_FIELD(text4, 140, ""), AT_FIELD(text5, 176, ""));

inline constexpr Record kZdntReadRes =
    AT_RECORD(AT_ZDNT_READ_RES_PARA_T, 68, AT_FIELD(text, 0, "the modem's own"));
inline constexpr Record kZpcbReadRes =
    AT_RECORD(AT_ZPCB_READ_RES_PARA_T, 68, AT_FIELD(text, 0, "the modem's own"));

inline constexpr Record kZsntSetPara =
    AT_RECORD(AT_ZSNT_SET_PARA_T, 12, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(value2, 4, ""),
              AT_FIELD(value3, 8, ""));
inline constexpr Record kZsntReadRes =
    AT_RECORD(AT_ZSNT_READ_RES_PARA_T, 12, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(value2, 4, ""),
              AT_FIELD(value3, 8, ""));

inline constexpr Record kZoprtSetPara =
    AT_RECORD(AT_ZOPRT_SET_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kZoprtReadRes =
    AT_RECORD(AT_ZOPRT_READ_RES_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kZmacSetPara =
    AT_RECORD(AT_ZMAC_SET_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kZmacrRes = AT_RECORD(AT_ZMACR_RES_PARA_T, 32, AT_FIELD(text, 0, "the modem's own"));
inline constexpr Record kZcinSetPara =
    AT_RECORD(AT_ZCIN_SET_PARA_T, 8, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(value2, 4, ""));
inline constexpr Record kZcniExecRes =
    AT_RECORD(AT_ZCNI_EXEC_RES_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kZumsSetPara =
    AT_RECORD(AT_ZUMS_SET_PARA_T, 32, AT_FIELD(text, 0, "the modem's own"));

inline constexpr Record kZroamSetPara =
    AT_RECORD(AT_ZROAM_SET_PARA_T, 15, AT_FIELD(roam, 0, "never sent to the modem"));
inline constexpr Record kZroamSetRes =
    AT_RECORD(AT_ZROAM_SET_RES_PARA_T, 15, AT_FIELD(roam, 0, "roaming setting, as the modem sent it"));

inline constexpr Record kZnitzRes = AT_RECORD(
    AT_ZNITZ_RES_PARA_T, 32, AT_FIELD(value1, 0, "the network's time, in the modem's order"),
    AT_FIELD(value2, 4, ""), AT_FIELD(value3, 8, ""), AT_FIELD(value4, 12, ""), AT_FIELD(value5, 16, ""),
    AT_FIELD(value6, 20, ""), AT_FIELD(value7, 24, ""), AT_FIELD(value8, 28, ""));

inline constexpr Row kNetworkRows[] = {
    {.position = 13,
     .id = 0x0501,
     .name = "+ZPCB",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers =
                    {{.types = kRead, .record = &kZpcbReadRes, .from = From::normalised, .format = "%64s"}}}},
    {.position = 14,
     .id = 0x0507,
     .name = "+ZDON",
     .title = "operator in use",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead,
                             .record = &kZdonReadRes,
                             .from = From::normalised,
                             .format = kOperatorTexts}}}},
    {.position = 15,
     .id = 0x0508,
     .name = "+ZDNT",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers =
                    {{.types = kRead, .record = &kZdntReadRes, .from = From::normalised, .format = "%64s"}}}},
    {.position = 16,
     .id = 0x0509,
     .name = "+ZSNT",
     .title = "network selection",
     .encode = {.kind = EncodeKind::record, .record = &kZsntSetPara, .forms = {{"%d,%d,%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead, .record = &kZsntReadRes, .format = "%d,%d,%d"}}}},
    {.position = 17,
     .id = 0x050B,
     .name = "+ZPAS",
     .title = "network in use",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead,
                             .record = &kZpasReadRes,
                             .from = From::normalised,
                             .format = "%64s %32s"}}}},
    {.position = 20,
     .id = 0x0601,
     .name = "+ZRSSI",
     .title = "signal by radio technology",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::custom,
                .answers = {{.types = kExec | kRead, .record = &kZrssiExecRes}},
                .function = Parse_ZRSSI_Res}},
    {.position = 23, .id = 0x0522, .name = "+ZSTOPT", .encode = kNoParameters, .decode = kResultOnly},
    {.position = 24,
     .id = 0x0520,
     .name = "+ZOPRT",
     .encode = {.kind = EncodeKind::record, .record = &kZoprtSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead, .record = &kZoprtReadRes, .format = "%d"}}}},
    {.position = 25, .id = 0x0523, .name = "+ZSTART", .encode = kNoParameters, .decode = kResultOnly},
    {.position = 28,
     .id = 0x0526,
     .name = "+ZLACELLID",
     .title = "location area and cell",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers =
                    {{.types = kExec | kRead, .record = &kZlacellidExecRes, .format = "%x,%x,%x,%x,%x,%x"}}}},
    {.position = 36,
     .id = 0x0529,
     .name = "+ZMACR",
     .encode = kReportOnly,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kEveryType,
                             .record = &kZmacrRes,
                             .from = From::normalised,
                             .format = "%31s"}}}},
    {.position = 37,
     .id = 0x052A,
     .name = "+ZMAC",
     .encode = {.kind = EncodeKind::record, .record = &kZmacSetPara, .forms = {{"%d"}}},
     .decode = kResultOnly},
    {.position = 45,
     .id = 0x051D,
     .name = "+ZPASR",
     .title = "network in use",
     .encode = kReportOnly,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kEveryType,
                             .record = &kZpasrRes,
                             .from = From::normalised,
                             .format = "%64s"}}}},
    {.position = 46,
     .id = 0x051E,
     .name = "+ZDONR",
     .title = "operator in use",
     .encode = kReportOnly,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kEveryType,
                             .record = &kZdonrRes,
                             .from = From::normalised,
                             .format = "%64s %32s %32s %32s %32s"}}}},
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
    {.position = 73,
     .id = 0x0605,
     .name = "^SYSINFO",
     .title = "state of service and SIM",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec,
                             .record = &kSysinfoExecRes,
                             .from = From::normalised,
                             .format = "%d %d %d %d %d %d %d",
                             .log = {kSysinfoLog,
                                     {"srv_status", "srv_domain", "roam_status", "sys_mode", "sim_state",
                                      "sys_submode"}}}}}},
    {.position = 87,
     .id = 0x0530,
     .name = "^ZOPS",
     .title = "operator in use",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead,
                             .record = &kZopsReadRes,
                             .from = From::normalised,
                             .format = kOperatorTexts}}}},
    {.position = 90,
     .id = 0x050F,
     .name = "+ZCIN",
     .encode = {.kind = EncodeKind::record, .record = &kZcinSetPara, .forms = {{"%d,%d"}}},
     .decode = kResultOnly},
    {.position = 95,
     .id = 0x054E,
     .name = "+CIND",
     .title = "indicators",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kSet},
                            {.types = kRead,
                             .record = &kCindReadRes,
                             .from = From::normalised,
                             .format = "%d %d %d %d %d %d %d %d"}}}},
    {.position = 97,
     .id = 0x0550,
     .name = "^HRSSILVL",
     .title = "HDR signal level",
     .encode = kReportOnly,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kEveryType,
                             .record = &kHrssilvlRes,
                             .from = From::normalised,
                             .format = "%7s"}}}},
    {.position = 103,
     .id = 0x0614,
     .name = "%NWSTATE",
     .title = "network state",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead,
                             .record = &kNwstateExecRes,
                             .from = From::normalised,
                             .format = "%d %15s %15s %15s %d "}}}},
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
    {.position = 106,
     .id = 0x0637,
     .name = "+ZCNI",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead, .record = &kZcniExecRes, .format = "%d"}}}},
    {.position = 116,
     .id = 0x0617,
     .name = "+ZROAM",
     .title = "roaming",
     .encode = {.kind = EncodeKind::custom, .record = &kZroamSetPara, .function = Make_Zroam_cmd},
     .decode = {.kind = DecodeKind::custom,
                .answers = {{.types = kSet | kRead, .record = &kZroamSetRes, .from = From::whole}},
                .function = Parse_ZROAM_Res}},
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
    {.position = 136,
     .id = 0x055C,
     .name = "+ZUMS",
     .encode = {.kind = EncodeKind::record, .record = &kZumsSetPara, .forms = {{"\"%s\""}}},
     .decode = kResultOnly},
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
    {.position = 160,
     .id = 0x063E,
     .name = "+ZNITZ",
     .title = "network time",
     .encode = kNoParameters,
     .decode =
         {.kind = DecodeKind::answers,
          .answers = {{.types = kEveryType,
                       .record =
                           &kZnitzRes,
                       .format =
                           "%d,%d,%d,%d,%d,%d,%d,%d",
                       .note = "zeros while data_card_mode is KVX_LTE or KVX_WCDMA: there the line goes out "
                               "as a report"}}}},
};

#endif
