#ifndef AT_COMMANDS_ROWS_DEVICE_H
#define AT_COMMANDS_ROWS_DEVICE_H

#include "commands/atdecode.h"
#include "commands/atencode.h"
#include "commands/list_file.h"
#include "commands/records_device.h"
#include "commands/row.h"

// The commands of device identity and radio status.

inline constexpr Record kCgsnExecRes =
    AT_RECORD(AT_CGSN_EXEC_RES_PARA_T, 32, AT_BYTES(sn, 0, "serial number"));

inline constexpr Row kDeviceRows[] = {
    {.position = 8,
     .id = 0x0001,
     .name = "",
     .title = "attention check",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers, .answers = {{.types = kExec}}}},
    {.position = 21, .id = 0x0602, .name = "+GMR", .encode = kNoParameters},
    {.position = 22, .id = 0x0607, .name = "+ZVN", .encode = kNoParameters},
    {.position = 27,
     .id = 0x0603,
     .name = "+CGSN",
     .title = "serial number (IMEI)",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead, .record = &kCgsnExecRes, .format = "%32s"}}}},
    {.position = 67, .id = 0x0546, .name = "+ZLEDCTRL", .decode = kResultOnly},
    {.position = 72, .id = 0x0543, .name = "^HVER", .encode = kNoParameters},
    {.position = 76, .id = 0x060C, .name = "+GSN", .encode = kNoParameters},
    {.position = 77, .id = 0x053F, .name = "^HWVER", .encode = kNoParameters},
    {.position = 79, .id = 0x060D, .name = "+CGMR", .encode = kNoParameters},
    {.position = 82, .id = 0x0548, .name = "+ZPCMFRE"},
    {.position = 99, .id = 0x0610, .name = "+CGMM", .encode = kNoParameters},
    {.position = 108,
     .id = 0x0554,
     .name = "!=\"setusimMode useFakeUsim=0\"",
     .encode = kNoParameters,
     .decode = kResultOnly},
    {.position = 109,
     .id = 0x0555,
     .name = "!=\"clearscanconfig\"",
     .encode = kNoParameters,
     .decode = kResultOnly},
    {.position = 110,
     .id = 0x0556,
     .name = "!=\"addscanfreq 40 38950\"",
     .encode = kNoParameters,
     .decode = kResultOnly},
    {.position = 111,
     .id = 0x055B,
     .name = "!=\"setDlParams target-rx-psd=-1500 min-backoff-adc=0\"",
     .encode = kNoParameters,
     .decode = kResultOnly},
    {.position = 112,
     .id = 0x0557,
     .name = "!=\"filterLog +mac/ra\"",
     .encode = kNoParameters,
     .decode = kResultOnly},
    {.position = 113,
     .id = 0x0558,
     .name = "!=\"mac:setPduLogLevel type=rar\"",
     .encode = kNoParameters,
     .decode = kResultOnly},
    {.position = 114, .id = 0x0559, .name = "!=\"poweron\"", .encode = kNoParameters, .decode = kResultOnly},
    {.position = 115, .id = 0x055A, .name = "+CNUM", .encode = kNoParameters},
    {.position = 120, .id = 0x061A, .name = "+ZCELLINFO", .encode = kNoParameters},
    {.position = 137, .id = 0x050A, .name = "+ZRST", .encode = kNoParameters, .decode = kResultOnly},
    {.position = 150, .id = 0x0622, .name = "+ZSOFTRESET", .encode = kNoParameters, .decode = kResultOnly},
    {.position = 153, .id = 0x0621, .name = "+ZLTELC"},
    {.position = 154, .id = 0x063F, .name = "+ZCAI", .encode = kNoParameters},
    {.position = 157, .id = 0x0640, .name = "+ZRTEMP", .encode = kNoParameters},
    {.position = 163, .id = 0x061B, .name = "+CGMI", .encode = kNoParameters},
    {.position = 165, .id = 0x062A, .name = "+ZEMCI"},
    {.position = 166, .id = 0x062B, .name = "+FOTACTR"},
    {.position = 167, .id = 0x062C, .name = "^ZVERSION", .encode = kNoParameters},
    {.position = 169, .id = 0x062D, .name = "+ZAMTMODE", .decode = kResultOnly},
    {.position = 170, .id = 0x062E, .name = "+ZDOGREF"},
    {.position = 175, .id = 0x055D, .name = "+ZSINR", .encode = kNoParameters},
    {.position = 176, .id = 0x0633, .name = "+ZAIRINFO", .encode = kNoParameters},
    {.position = 177, .id = 0x0634, .name = "+ATDOG"},
    {.position = 178, .id = 0x0635, .name = "+ZTRC", .encode = kNoParameters},
    {.position = 179, .id = 0x0636, .name = "+ZCELLSIGINFO", .encode = kNoParameters},
    {.position = 181, .id = 0x0641, .name = "+ZIMSR"},
    {.position = 182, .id = 0x0642, .name = "+TRAFFICWARNING", .decode = kResultOnly},
    {.position = 183, .id = 0x0643, .name = "+ZRESET", .encode = kNoParameters, .decode = kResultOnly},
};

#endif
