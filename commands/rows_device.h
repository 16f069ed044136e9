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

inline constexpr Record kGmrExecRes =
    AT_RECORD(AT_GMR_EXEC_RES_PARA_T, 68, AT_FIELD(version, 0, "firmware version"));
inline constexpr Record kZvnExecRes =
    AT_RECORD(AT_ZVN_EXEC_RES_PARA_T, 136, AT_FIELD(text1, 0, "version"),
              AT_FIELD(text2, 68, "second version, with its closing bracket"));
inline constexpr Record kHverExecRes =
    AT_RECORD(AT_HVER_EXEC_RES_PARA_T, 68, AT_FIELD(version, 0, "hardware version"));
inline constexpr Record kHwverExecRes =
    AT_RECORD(AT_HWVER_EXEC_RES_PARA_T, 68, AT_FIELD(version, 0, "hardware version"));
inline constexpr Record kGsnExecRes = AT_RECORD(AT_GSN_EXEC_RES_PARA_T, 15, AT_BYTES(sn, 0, "serial number"));
inline constexpr Record kCgmrExecRes =
    AT_RECORD(AT_CGMR_EXEC_RES_PARA_T, 68, AT_FIELD(version, 0, "firmware version"));
inline constexpr Record kZversionExecRes =
    AT_RECORD(AT_ZVERSION_EXEC_RES_PARA_T, 68, AT_FIELD(version, 0, "firmware version"));
inline constexpr Record kCgmmExecRes = AT_RECORD(AT_CGMM_EXEC_RES_PARA_T, 32, AT_FIELD(model, 0, "model"));
inline constexpr Record kCgmiExecRes = AT_RECORD(AT_CGMI_EXEC_RES_PARA_T, 64, AT_FIELD(maker, 0, "maker"));
inline constexpr Record kCnumExecRes =
    AT_RECORD(AT_CNUM_EXEC_RES_PARA_T, 32,
              AT_FIELD(number, 0, "first word of the answer: the name, or the number where there is none"));
inline constexpr Record kZcellinfoReadRes =
    AT_RECORD(AT_ZCELLINFO_READ_RES_PARA_T, 32, AT_FIELD(value1, 0, "the modem's own"),
              AT_FIELD(value2, 4, "the modem's own"), AT_FIELD(cell, 8, "cell"),
              AT_FIELD(value3, 28, "the modem's own"));
inline constexpr Record kZcellsiginfoExecRes =
    AT_RECORD(AT_ZCELLSIGINFO_EXEC_RES_PARA_T, 480, AT_FIELD(text, 0, "as the modem sent it"));
inline constexpr Record kZsinrExecRes = AT_RECORD(
    AT_ZSINR_EXEC_RES_PARA_T, 32, AT_FIELD(value1, 0, "signal to interference"), AT_FIELD(value2, 4, ""),
    AT_FIELD(value3, 8, ""), AT_FIELD(value4, 12, ""), AT_FIELD(value5, 16, ""), AT_FIELD(value6, 20, ""),
    AT_FIELD(value7, 24, ""), AT_FIELD(value8, 28, ""));
inline constexpr Record kZairinfoExecRes =
    AT_RECORD(AT_ZAIRINFO_EXEC_RES_PARA_T, 8, AT_FIELD(value1, 0, "the modem's own"),
              AT_FIELD(value2, 4, "the modem's own"));
inline constexpr Record kZrtempExecRes = AT_RECORD(
    AT_ZRTEMP_EXEC_RES_PARA_T, 24, AT_FIELD(value1, 0, "temperatures"), AT_FIELD(value2, 4, ""),
    AT_FIELD(value3, 8, ""), AT_FIELD(value4, 12, ""), AT_FIELD(value5, 16, ""), AT_FIELD(value6, 20, ""));
inline constexpr Record kZcaiExecRes =
    AT_RECORD(AT_ZCAI_EXEC_RES_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kZltelcSetPara =
    AT_RECORD(AT_ZLTELC_SET_PARA_T, 12, AT_FIELD(value1, 0, "the modem's own"),
              AT_FIELD(value2, 4, "left out with value3 when both are 0"), AT_FIELD(value3, 8, ""));
inline constexpr Record kZltelcReadRes =
    AT_RECORD(AT_ZLTELC_READ_RES_PARA_T, 12, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(value2, 4, ""),
              AT_FIELD(value3, 8, ""));
inline constexpr Record kZemciSetPara =
    AT_RECORD(AT_ZEMCI_SET_PARA_T, 4, AT_FIELD(n, 0, "0 ends the reports"));
inline constexpr Record kTrafficwarningSetPara =
    AT_RECORD(AT_TRAFFICWARNING_SET_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kAtdogSetPara =
    AT_RECORD(AT_ATDOG_SET_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kZdogrefSetPara =
    AT_RECORD(AT_ZDOGREF_SET_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kZdogrefExecRes =
    AT_RECORD(AT_ZDOGREF_EXEC_RES_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kFotactrSetPara =
    AT_RECORD(AT_FOTACTR_SET_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kFotactrExecRes =
    AT_RECORD(AT_FOTACTR_EXEC_RES_PARA_T, 8, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(value2, 4, ""));
inline constexpr Record kZamtmodeSetPara =
    AT_RECORD(AT_ZAMTMODE_SET_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kZledctrlSetPara =
    AT_RECORD(AT_ZLEDCTRL_SET_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kZpcmfreSetPara =
    AT_RECORD(AT_ZPCMFRE_SET_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kZpcmfreSetRes =
    AT_RECORD(AT_ZPCMFRE_SET_RES_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kZimsrSetPara =
    AT_RECORD(AT_ZIMSR_SET_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kZimsrExecRes =
    AT_RECORD(AT_ZIMSR_EXEC_RES_PARA_T, 36, AT_FIELD(text, 0, "the modem's own"));

inline constexpr Row kDeviceRows[] = {
    {.position = 8,
     .id = 0x0001,
     .name = "",
     .title = "attention check",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers, .answers = {{.types = kExec}}}},
    {.position = 21,
     .id = 0x0602,
     .name = "+GMR",
     .title = "firmware version",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead, .record = &kGmrExecRes, .format = "%64s"}}}},
    {.position = 22,
     .id = 0x0607,
     .name = "+ZVN",
     .title = "versions",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead, .record = &kZvnExecRes, .format = "%64s [%64s]"}}}},
    {.position = 27,
     .id = 0x0603,
     .name = "+CGSN",
     .title = "serial number (IMEI)",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead, .record = &kCgsnExecRes, .format = "%32s"}}}},
    {.position = 67,
     .id = 0x0546,
     .name = "+ZLEDCTRL",
     .title = "LEDs",
     .encode = {.kind = EncodeKind::record, .record = &kZledctrlSetPara, .forms = {{"%d"}}},
     .decode = kResultOnly},
    {.position = 72,
     .id = 0x0543,
     .name = "^HVER",
     .title = "hardware version",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead,
                             .record = &kHverExecRes,
                             .from = From::normalised,
                             .format = "%67s"}}}},
    {.position = 76,
     .id = 0x060C,
     .name = "+GSN",
     .title = "serial number (IMEI)",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead, .record = &kGsnExecRes, .format = "%15s"}}}},
    {.position = 77,
     .id = 0x053F,
     .name = "^HWVER",
     .title = "hardware version",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead,
                             .record = &kHwverExecRes,
                             .from = From::normalised,
                             .format = "%67s"}}}},
    {.position = 79,
     .id = 0x060D,
     .name = "+CGMR",
     .title = "firmware version",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead, .record = &kCgmrExecRes, .format = "%64s"}}}},
    {.position = 82,
     .id = 0x0548,
     .name = "+ZPCMFRE",
     .encode = {.kind = EncodeKind::record, .record = &kZpcmfreSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kSet | kRead, .record = &kZpcmfreSetRes, .format = "%d"}}}},
    {.position = 99,
     .id = 0x0610,
     .name = "+CGMM",
     .title = "model",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead, .record = &kCgmmExecRes, .from = From::whole}}}},
    {.position = 108,
     .id = 0x0554,
     .name = "!=\"setusimMode useFakeUsim=0\"",
     .title = "modem debug line",
     .encode = kNoParameters,
     .decode = kResultOnly},
    {.position = 109,
     .id = 0x0555,
     .name = "!=\"clearscanconfig\"",
     .title = "modem debug line",
     .encode = kNoParameters,
     .decode = kResultOnly},
    {.position = 110,
     .id = 0x0556,
     .name = "!=\"addscanfreq 40 38950\"",
     .title = "modem debug line",
     .encode = kNoParameters,
     .decode = kResultOnly},
    {.position = 111,
     .id = 0x055B,
     .name = "!=\"setDlParams target-rx-psd=-1500 min-backoff-adc=0\"",
     .title = "modem debug line",
     .encode = kNoParameters,
     .decode = kResultOnly},
    {.position = 112,
     .id = 0x0557,
     .name = "!=\"filterLog +mac/ra\"",
     .title = "modem debug line",
     .encode = kNoParameters,
     .decode = kResultOnly},
    {.position = 113,
     .id = 0x0558,
     .name = "!=\"mac:setPduLogLevel type=rar\"",
     .title = "modem debug line",
     .encode = kNoParameters,
     .decode = kResultOnly},
    {.position = 114,
     .id = 0x0559,
     .name = "!=\"poweron\"",
     .title = "modem debug line",
     .encode = kNoParameters,
     .decode = kResultOnly},
    {.position = 115,
     .id = 0x055A,
     .name = "+CNUM",
     .title = "own number",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead,
                             .record = &kCnumExecRes,
                             .from = From::normalised,
                             .format = "%30s"}}}},
    {.position = 120,
     .id = 0x061A,
     .name = "+ZCELLINFO",
     .title = "serving cell",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::custom,
                .answers = {{.types = kRead,
                             .record = &kZcellinfoReadRes,
                             .format = "%d, %d, %19s, %d\n",
                             .note = "a line without a comma is answered without the record"}},
                .function = Parse_ZCELLINFO_Res}},
    {.position = 137,
     .id = 0x050A,
     .name = "+ZRST",
     .title = "modem reset",
     .encode = kNoParameters,
     .decode = kResultOnly},
    {.position = 150,
     .id = 0x0622,
     .name = "+ZSOFTRESET",
     .title = "modem reset",
     .encode = kNoParameters,
     .decode = kResultOnly},
    {.position = 153,
     .id = 0x0621,
     .name = "+ZLTELC",
     .encode = {.kind = EncodeKind::record,
                .record = &kZltelcSetPara,
                .forms = {{.format = "%d", .when = {{"value2", Test::absent}, {"value3", Test::absent}}},
                          {"%d,%d,%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kSet},
                            {.types = kRead, .record = &kZltelcReadRes, .format = "%d,%d,%d"}}}},
    {.position = 154,
     .id = 0x063F,
     .name = "+ZCAI",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead, .record = &kZcaiExecRes, .format = "%d"}}}},
    {.position = 157,
     .id = 0x0640,
     .name = "+ZRTEMP",
     .title = "temperatures",
     .encode = kNoParameters,
     .decode =
         {.kind = DecodeKind::answers,
          .answers = {{.types = kExec | kRead, .record = &kZrtempExecRes, .format = "%d,%d,%d,%d,%d,%d"}}}},
    {.position = 163,
     .id = 0x061B,
     .name = "+CGMI",
     .title = "maker",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead, .record = &kCgmiExecRes, .from = From::whole}}}},
    {.position = 165,
     .id = 0x062A,
     .name = "+ZEMCI",
     .title = "periodic cell reports",
     .encode = {.kind = EncodeKind::custom,
                .record = &kZemciSetPara,
                .forms = {{"%d"}},
                .log = "make zemci finished\n",
                .function = Make_ZEMCI_Cmd},
     .decode = {.kind = DecodeKind::custom, .function = Parse_ZEMCI_Res}},
    {.position = 166,
     .id = 0x062B,
     .name = "+FOTACTR",
     .title = "firmware over the air",
     .encode = {.kind = EncodeKind::record, .record = &kFotactrSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kSet | kRead, .record = &kFotactrExecRes, .format = "%d,%d"}}}},
    {.position = 167,
     .id = 0x062C,
     .name = "^ZVERSION",
     .title = "firmware version",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead, .record = &kZversionExecRes, .format = "%64s"}}}},
    {.position = 169,
     .id = 0x062D,
     .name = "+ZAMTMODE",
     .title = "test mode",
     .encode = {.kind = EncodeKind::record, .record = &kZamtmodeSetPara, .forms = {{"%d"}}},
     .decode = kResultOnly},
    {.position = 170,
     .id = 0x062E,
     .name = "+ZDOGREF",
     .title = "modem's watchdog",
     .encode = {.kind = EncodeKind::record, .record = &kZdogrefSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kSet | kRead, .record = &kZdogrefExecRes, .format = "%d"}}}},
    {.position = 175,
     .id = 0x055D,
     .name = "+ZSINR",
     .title = "signal to interference",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead,
                             .record = &kZsinrExecRes,
                             .format = "%d,%d,%d,%d,%d,%d,%d,%d"}}}},
    {.position = 176,
     .id = 0x0633,
     .name = "+ZAIRINFO",
     .title = "radio status",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead, .record = &kZairinfoExecRes, .format = "%d,%f"}}}},
    {.position = 177,
     .id = 0x0634,
     .name = "+ATDOG",
     .title = "modem's watchdog",
     .encode = {.kind = EncodeKind::record, .record = &kAtdogSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::answers, .answers = {{.types = kExec}}}},
    {.position = 178,
     .id = 0x0635,
     .name = "+ZTRC",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers, .answers = {{.types = kExec}}}},
    {.position = 179,
     .id = 0x0636,
     .name = "+ZCELLSIGINFO",
     .title = "signal of the cells",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead, .record = &kZcellsiginfoExecRes, .from = From::whole}}}},
    {.position = 181,
     .id = 0x0641,
     .name = "+ZIMSR",
     .encode =
         {.kind = EncodeKind::record, .record = &kZimsrSetPara, .forms = {{"%d"}}, .log = "send AT+ZIMSR=%s"},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead,
                             .record = &kZimsrExecRes,
                             .from = From::normalised,
                             .format = "%32s"}}}},
    {.position = 182,
     .id = 0x0642,
     .name = "+TRAFFICWARNING",
     .title = "warning about traffic",
     .encode = {.kind = EncodeKind::record, .record = &kTrafficwarningSetPara, .forms = {{"%d"}}},
     .decode = kResultOnly},
    {.position = 183,
     .id = 0x0643,
     .name = "+ZRESET",
     .title = "modem reset",
     .encode = kNoParameters,
     .decode = kResultOnly},
};

#endif
