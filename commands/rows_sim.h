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
    {.position = 11, .id = 0x0302, .name = "+CPWD"},
    {.position = 18, .id = 0x050C, .name = "+ZIMSI", .encode = kNoParameters},
    {.position = 19,
     .id = 0x0111,
     .name = "+CIMI",
     .title = "subscriber identity (IMSI)",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers =
                    {{.types = kExec, .record = &kCimiExecRes, .from = From::normalised, .format = "%32s"}}}},
    {.position = 34, .id = 0x0527, .name = "+ZSEC", .encode = kNoParameters},
    {.position = 35, .id = 0x0528, .name = "+ZNCK"},
    {.position = 39, .id = 0x0511, .name = "+CLCK"},
    {.position = 42, .id = 0x052E, .name = "+ZLKLIST", .encode = kNoParameters},
    {.position = 43, .id = 0x0531, .name = "+ZPINPUK", .encode = kNoParameters},
    {.position = 44, .id = 0x051C, .name = "+ZUSIMR", .encode = kReportOnly},
    {.position = 65, .id = 0x0205, .name = "+ZUSIM", .encode = kNoParameters},
    {.position = 66, .id = 0x0545, .name = "+CRSM"},
    {.position = 74, .id = 0x060E, .name = "^CPIN", .encode = kNoParameters},
    {.position = 78,
     .id = 0x0111,
     .name = "+CIMI",
     .title = "subscriber identity (IMSI)",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers =
                    {{.types = kExec, .record = &kCimiExecRes, .from = From::normalised, .format = "%32s"}}}},
    {.position = 93, .id = 0x054C, .name = "+CPINC", .encode = kNoParameters},
    {.position = 102, .id = 0x0613, .name = "%PINNUM", .encode = kNoParameters},
    {.position = 143, .id = 0x0638, .name = "+ZUINIT"},
    {.position = 144, .id = 0x0639, .name = "+ZUSTAT", .decode = kResultOnly},
    {.position = 145, .id = 0x063A, .name = "+ZURDY", .encode = kReportOnly},
    {.position = 164, .id = 0x0629, .name = "+ZICCID", .encode = kReportOnly},
};

#endif
