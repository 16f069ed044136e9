#ifndef AT_COMMANDS_ROWS_DATA_H
#define AT_COMMANDS_ROWS_DATA_H

#include "commands/atdecode.h"
#include "commands/atencode.h"
#include "commands/list_file.h"
#include "commands/row.h"

// The commands of the data connection and PDP contexts.

inline constexpr Row kDataRows[] = {
    {.position = 12, .id = 0x0303, .name = "+CGDCONT"},
    {.position = 81, .id = 0x060F, .name = "+ZDISDATA", .encode = kNoParameters, .decode = kResultOnly},
    {.position = 101, .id = 0x0612, .name = "+CGATT"},
    {.position = 107, .id = 0x0616, .name = "$QCPDPP", .decode = kResultOnly},
    {.position = 140, .id = 0x0623, .name = "+ZGACT", .decode = kResultOnly},
    {.position = 141, .id = 0x0624, .name = "+CGACT", .decode = kResultOnly},
    {.position = 142, .id = 0x0627, .name = "+ZGIPDNS", .encode = kReportOnly},
    {.position = 146, .id = 0x063B, .name = "+ZPBIC", .encode = kReportOnly},
    {.position = 147, .id = 0x063C, .name = "+ZFLAG"},
    {.position = 148, .id = 0x0625, .name = "+ZCONSTAT", .encode = kReportOnly},
    {.position = 149, .id = 0x0626, .name = "+CGEV", .encode = kReportOnly},
    {.position = 151, .id = 0x061E, .name = "+ZEACT", .decode = kResultOnly},
    {.position = 152, .id = 0x061C, .name = "+ZSET"},
    {.position = 156, .id = 0x0620, .name = "+ZGAAT", .decode = kResultOnly},
    {.position = 159, .id = 0x0647, .name = "+ZDHCPLEASE", .decode = kResultOnly},
    {.position = 162, .id = 0x0628, .name = "$QCPBMPREF", .decode = kResultOnly},
    {.position = 168, .id = 0x0412, .name = "$QCPDPIMSCFGE", .decode = kResultOnly},
};

#endif
