#ifndef AT_COMMANDS_ROWS_CALLS_H
#define AT_COMMANDS_ROWS_CALLS_H

#include "commands/atdecode.h"
#include "commands/atencode.h"
#include "commands/list_file.h"
#include "commands/records_calls.h"
#include "commands/row.h"

// The commands of calls and supplementary services.

inline constexpr Record kClvlSetPara =
    AT_RECORD(AT_CLVL_SET_PARA_T, 4, AT_FIELD(level, 0, "loudspeaker volume"));
inline constexpr Record kClvlReadRes =
    AT_RECORD(AT_CLVL_READ_RES_PARA_T, 4, AT_FIELD(level, 0, "loudspeaker volume"));

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
    {.position = 4, .id = 0x0411, .name = "+ZVOCLOOPBK", .decode = kResultOnly},
    {.position = 5, .id = 0x0409, .name = "+VTS", .decode = kResultOnly},
    {.position = 6,
     .id = 0x0514,
     .name = "+CLVL",
     .title = "loudspeaker volume",
     .encode = {.kind = EncodeKind::record, .record = &kClvlSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead, .record = &kClvlReadRes, .format = "%d"}}}},
    {.position = 7, .id = 0x0519, .name = "+CMVL"},
    {.position = 26, .id = 0x0525, .name = "+ZCALL"},
    {.position = 38, .id = 0x052B, .name = "+CCFC"},
    {.position = 40, .id = 0x052C, .name = "+CCWA"},
    {.position = 41, .id = 0x0513, .name = "+CLIP"},
    {.position = 47, .id = 0x053D, .name = "+RINGBACK", .encode = kReportOnly},
    {.position = 48, .id = 0x053E, .name = "+CHLD"},
    {.position = 83, .id = 0x0541, .name = "^CONN", .encode = kReportOnly, .decode = kResultOnly},
    {.position = 84, .id = 0x0542, .name = "^CEND", .encode = kReportOnly, .decode = kResultOnly},
    {.position = 85, .id = 0x040F, .name = "+CDV", .decode = kResultOnly},
    {.position = 86, .id = 0x0410, .name = "+CHV", .encode = kNoParameters, .decode = kResultOnly},
    {.position = 91,
     .id = 0x0532,
     .name = "+CUSD",
     .title = "USSD dialogue",
     .encode = {.kind = EncodeKind::record,
                .record = &kCusdSetPara,
                .forms = {{.format = "%d", .when = {{"n", Test::equals, 2}}}, {"%d,%s,%d"}}},
     .decode = {.kind = DecodeKind::custom,
                .answers = {{.types = kSet, .record = &kCusdSetRes, .file = kUssdFile}},
                .function = Parse_CUSD_Res}},
    {.position = 92, .id = 0x053C, .name = "+CLIR", .decode = kResultOnly},
    {.position = 98, .id = 0x0551, .name = "+ZCHUPD", .encode = kNoParameters, .decode = kResultOnly},
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
                             .file = kCallListFile}},
                .function = Parse_CLCC_Res}},
    {.position = 180, .id = 0x055E, .name = "+ZCPI", .encode = kReportOnly, .decode = kResultOnly},
    {.position = 184, .id = 0x0413, .name = "ZVCONNECT", .encode = kReportOnly},
};

#endif
