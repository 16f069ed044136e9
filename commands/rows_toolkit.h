#ifndef AT_COMMANDS_ROWS_TOOLKIT_H
#define AT_COMMANDS_ROWS_TOOLKIT_H

#include "commands/atdecode.h"
#include "commands/atencode.h"
#include "commands/list_file.h"
#include "commands/row.h"

// The commands of the SIM toolkit.

inline constexpr Row kToolkitRows[] = {
    {.position = 121, .id = 0x0701, .name = "+ZSTM", .encode = kNoParameters},
    {.position = 122, .id = 0x0702, .name = "+ZSTI", .encode = kReportOnly, .decode = kWholeText},
    {.position = 123, .id = 0x0703, .name = "+ZSELM", .decode = kWholeText},
    {.position = 124, .id = 0x0704, .name = "+ZSELI", .decode = kWholeText},
    {.position = 125, .id = 0x0705, .name = "+ZSMSR", .encode = kReportOnly, .decode = kWholeText},
    {.position = 126, .id = 0x0706, .name = "+ZDIST", .encode = kReportOnly, .decode = kWholeText},
    {.position = 127, .id = 0x0711, .name = "+ZFDIST", .encode = kReportOnly, .decode = kWholeText},
    {.position = 128, .id = 0x0707, .name = "+ZBK", .decode = kWholeText},
    {.position = 129, .id = 0x0709, .name = "+ZPSTM", .encode = kReportOnly, .decode = kWholeText},
    {.position = 130, .id = 0x070A, .name = "+ZGINP", .encode = kReportOnly, .decode = kWholeText},
    {.position = 131, .id = 0x070B, .name = "+ZINPR", .decode = kResultOnly},
    {.position = 132, .id = 0x070C, .name = "+ZGINK", .encode = kReportOnly, .decode = kWholeText},
    {.position = 133, .id = 0x070D, .name = "+ZINKR", .decode = kResultOnly},
    {.position = 134, .id = 0x070E, .name = "+ZDISTR", .encode = kNoParameters, .decode = kResultOnly},
    {.position = 135, .id = 0x070F, .name = "+ZUnsupport", .encode = kReportOnly, .decode = kResultOnly},
    {.position = 171, .id = 0x062F, .name = "+ZUTP", .decode = kResultOnly},
    {.position = 172, .id = 0x0630, .name = "+ZUPCI", .encode = kReportOnly},
    {.position = 173, .id = 0x0631, .name = "+ZUTR", .decode = kResultOnly},
    {.position = 174, .id = 0x0632, .name = "+ZUEND", .encode = kReportOnly},
};

#endif
