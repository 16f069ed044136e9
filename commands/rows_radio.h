#ifndef AT_COMMANDS_ROWS_RADIO_H
#define AT_COMMANDS_ROWS_RADIO_H

#include "commands/atdecode.h"
#include "commands/atencode.h"
#include "commands/list_file.h"
#include "commands/records_radio.h"
#include "commands/row.h"

// The commands of radio modes and bands.

inline constexpr Record kCfunSetPara =
    AT_RECORD(AT_CFUN_SET_PARA_T, 4, AT_FIELD(fun, 0, "0 minimum, 1 full, 4 radio off"));
inline constexpr Record kCfunReadRes =
    AT_RECORD(AT_CFUN_READ_RES_PARA_T, 4, AT_FIELD(fun, 0, "0 minimum, 1 full, 4 radio off"));

inline constexpr Record kSysconfigSetPara =
    AT_RECORD(AT_SYSCONFIG_SET_PARA_T, 16, AT_FIELD(cm_mode, 0, "radio mode"), AT_FIELD(rband, 4, "band"),
              AT_FIELD(value3, 8, "the modem's own"), AT_FIELD(value4, 12, ""));
inline constexpr Record kSysconfigReadRes =
    AT_RECORD(AT_SYSCONFIG_READ_RES_PARA_T, 16, AT_FIELD(cm_mode, 0, "radio mode"),
              AT_FIELD(rband, 4, "band"), AT_FIELD(value3, 8, "the modem's own"), AT_FIELD(value4, 12, ""));
inline constexpr Record kSyscfgSetPara =
    AT_RECORD(AT_SYSCFG_SET_PARA_T, 48, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(value2, 4, ""),
              AT_FIELD(band, 8, "band"), AT_FIELD(value3, 40, "the modem's own"), AT_FIELD(value4, 44, ""));
inline constexpr Record kSyscfgReadRes =
    AT_RECORD(AT_SYSCFG_READ_RES_PARA_T, 48, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(value2, 4, ""),
              AT_FIELD(band, 8, "band"), AT_FIELD(value3, 40, "the modem's own"), AT_FIELD(value4, 44, ""));
inline constexpr Record kPrefmodeSetPara =
    AT_RECORD(AT_PREFMODE_SET_PARA_T, 4, AT_FIELD(mode, 0, "radio mode"));
inline constexpr Record kPrefmodeReadRes =
    AT_RECORD(AT_PREFMODE_READ_RES_PARA_T, 4, AT_FIELD(mode, 0, "radio mode"));
inline constexpr Record kPrefnettypeSetPara =
    AT_RECORD(AT_PREFNETTYPE_SET_PARA_T, 4, AT_FIELD(type, 0, "network type"));
inline constexpr Record kPrefnettypeReadRes =
    AT_RECORD(AT_PREFNETTYPE_READ_RES_PARA_T, 4, AT_FIELD(type, 0, "network type"));
inline constexpr Record kQcsysmodeReadRes =
    AT_RECORD(AT_QCSYSMODE_READ_RES_PARA_T, 32, AT_FIELD(mode, 0, "radio mode, as the modem sent it"));

inline constexpr Record kBandSetPara = AT_RECORD(AT_BAND_SET_PARA_T, 4, AT_FIELD(band, 0, "band"));
inline constexpr Record kBandReadRes =
    AT_RECORD(AT_BAND_READ_RES_PARA_T, 36, AT_FIELD(band, 0, "band"),
              AT_FIELD(desc, 4, "empty whenever the modem separates the two by a comma"));
inline constexpr Record kZbandiSetPara = AT_RECORD(AT_ZBANDI_SET_PARA_T, 4, AT_FIELD(value, 0, "band"));
inline constexpr Record kZlockbandSetPara =
    AT_RECORD(AT_ZLOCKBAND_SET_PARA_T, 16, AT_FIELD(text, 0, "finished AT syntax"));
inline constexpr Record kZlockbandSetRes =
    AT_RECORD(AT_ZLOCKBAND_SET_RES_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kZlockfSetPara = AT_RECORD(AT_ZLOCKF_SET_PARA_T, 32, AT_FIELD(band, 0, "band"),
                                                   AT_FIELD(text, 16, "left out while bandmode is 4"));
inline constexpr Record kZlockfSetRes =
    AT_RECORD(AT_ZLOCKF_SET_RES_PARA_T, 8, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(value2, 4, ""));
inline constexpr Record kZnlockbandSetPara =
    AT_RECORD(AT_ZNLOCKBAND_SET_PARA_T, 24, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(value2, 4, ""),
              AT_FIELD(mask1, 8, "bands, one bit each"), AT_FIELD(mask2, 16, "more bands"));
inline constexpr Record kZnlockbandReadRes =
    AT_RECORD(AT_ZNLOCKBAND_READ_RES_PARA_T, 16, AT_FIELD(mask1, 0, "bands, one bit each"),
              AT_FIELD(mask2, 8, "more bands"));

inline constexpr Record kZrapSetPara =
    AT_RECORD(AT_ZRAP_SET_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kZrapSetRes =
    AT_RECORD(AT_ZRAP_SET_RES_PARA_T, 16, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(value2, 4, ""),
              AT_FIELD(value3, 8, ""), AT_FIELD(value4, 12, ""));
inline constexpr Record kZrapReadRes =
    AT_RECORD(AT_ZRAP_READ_RES_PARA_T, 20, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(value2, 4, ""),
              AT_FIELD(value3, 8, ""), AT_FIELD(value4, 12, ""), AT_FIELD(value5, 16, ""));
inline constexpr Record kDdtmSetPara =
    AT_RECORD(AT_DDTM_SET_PARA_T, 8, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(value2, 4, ""));
inline constexpr Record kDdtmReadRes =
    AT_RECORD(AT_DDTM_READ_RES_PARA_T, 8, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(value2, 4, ""));
inline constexpr Record kDrapExecRes =
    AT_RECORD(AT_DRAP_EXEC_RES_PARA_T, 16, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(value2, 4, ""),
              AT_FIELD(value3, 8, ""), AT_FIELD(value4, 12, ""));
inline constexpr Record kIpsysSetPara =
    AT_RECORD(AT_IPSYS_SET_PARA_T, 8, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(value2, 4, ""));
inline constexpr Record kIpsysReadRes =
    AT_RECORD(AT_IPSYS_READ_RES_PARA_T, 8, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(value2, 4, ""));
inline constexpr Record kZpowermodeReadRes =
    AT_RECORD(AT_ZPOWERMODE_READ_RES_PARA_T, 4, AT_FIELD(mode, 0, "power mode"));
inline constexpr Record kZsleepmodExecRes =
    AT_RECORD(AT_ZSLEEPMOD_EXEC_RES_PARA_T, 4, AT_FIELD(mode, 0, "sleep mode"));

inline constexpr Row kRadioRows[] = {
    {.position = 68,
     .id = 0x0547,
     .name = "+ZBANDI",
     .title = "band",
     .encode = {.kind = EncodeKind::record, .record = &kZbandiSetPara, .forms = {{"%d"}}},
     .decode = kResultOnly},
    {.position = 69,
     .id = 0x0544,
     .name = "+CFUN",
     .title = "radio functions",
     .encode = {.kind = EncodeKind::record, .record = &kCfunSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kSet}, {.types = kRead, .record = &kCfunReadRes, .format = "%d"}}}},
    {.position = 75,
     .id = 0x054B,
     .name = "^SYSCFG",
     .title = "radio mode and band",
     .encode = {.kind = EncodeKind::record, .record = &kSyscfgSetPara, .forms = {{"%d,%d,%s,%d,%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead,
                             .record = &kSyscfgReadRes,
                             .from = From::normalised,
                             .format = "%d %d %31s %d %d "}}}},
    {.position = 80,
     .id = 0x0540,
     .name = "^PREFMODE",
     .title = "preferred radio mode",
     .encode = {.kind = EncodeKind::record, .record = &kPrefmodeSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead, .record = &kPrefmodeReadRes, .format = "%d"}}}},
    {.position = 88,
     .id = 0x052F,
     .name = "^DDTM",
     .encode = {.kind = EncodeKind::record, .record = &kDdtmSetPara, .forms = {{"%d,%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead, .record = &kDdtmReadRes, .format = "%d,%d"}}}},
    {.position = 89,
     .id = 0x0533,
     .name = "^DRAP",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec | kRead,
                             .record = &kDrapExecRes,
                             .from = From::normalised,
                             .format = "%d %d %d %d"}}}},
    {.position = 94,
     .id = 0x054D,
     .name = "$QCSYSMODE",
     .title = "radio mode in use",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kSet},
                            {.types = kRead, .record = &kQcsysmodeReadRes, .from = From::whole}}}},
    {.position = 96,
     .id = 0x054F,
     .name = "$PREFNETTYPE",
     .title = "preferred network type",
     .encode = {.kind = EncodeKind::record, .record = &kPrefnettypeSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead, .record = &kPrefnettypeReadRes, .format = "%d"}}}},
    {.position = 100,
     .id = 0x0611,
     .name = "!BAND",
     .title = "band",
     .encode = {.kind = EncodeKind::record, .record = &kBandSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kSet},
                            {.types = kRead,
                             .record = &kBandReadRes,
                             .from = From::normalised,
                             .format = "%d, %31s "}}}},
    {.position = 104,
     .id = 0x0615,
     .name = "%IPSYS",
     .encode = {.kind = EncodeKind::record, .record = &kIpsysSetPara, .forms = {{"%d,%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead, .record = &kIpsysReadRes, .format = "%d,%d"}}}},
    {.position = 118,
     .id = 0x0618,
     .name = "+ZLOCKBAND",
     .title = "band lock",
     .encode = {.kind = EncodeKind::copy, .record = &kZlockbandSetPara, .forms = {{"%s"}}},
     .decode = {.kind = DecodeKind::custom,
                .answers = {{.types = kSet | kRead,
                             .record = &kZlockbandSetRes,
                             .format = "%d",
                             .note = "while bandmode is 2 a set is answered without the record; with "
                                     "data_card_mode KVX_LTE or KVX_WCDMA by the text of the line, and a "
                                     "read by 0"}},
                .function = Parse_ZLOCKBAND_Res}},
    {.position = 119,
     .id = 0x0619,
     .name = "+ZLOCKF",
     .title = "frequency lock",
     .note = "while bandmode is 4 the second text is not sent, and with data_card_mode KVX_LTE or KVX_WCDMA "
             "the answers are zeros",
     .encode = {.kind = EncodeKind::custom,
                .record = &kZlockfSetPara,
                .forms = {{.format = "%s", .when = {{"text", Test::absent}}}, {"%s,%s"}},
                .function = Make_ZLOCKF_Cmd},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kSet, .record = &kZlockfSetRes, .format = "%d"},
                            {.types = kRead, .record = &kZlockfSetRes, .format = "%d,%d"}}}},
    {.position = 138,
     .id = 0x061D,
     .name = "+ZRAP",
     .encode = {.kind = EncodeKind::record, .record = &kZrapSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kSet, .record = &kZrapSetRes, .format = "%d,%d,%d,%d"},
                            {.types = kRead, .record = &kZrapReadRes, .format = "%d,%d,%d,%d,%d"}}}},
    {.position = 139,
     .id = 0x061F,
     .name = "^SYSCONFIG",
     .title = "radio mode and band",
     .encode = {.kind = EncodeKind::record, .record = &kSysconfigSetPara, .forms = {{"%d,%d,%d,%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead, .record = &kSysconfigReadRes, .format = "%d,%d,%d,%d "}}}},
    {.position = 158,
     .id = 0x0645,
     .name = "+ZSLEEPMOD",
     .title = "sleep mode",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kExec, .record = &kZsleepmodExecRes, .format = "%d"}}}},
    {.position = 185,
     .id = 0x055F,
     .name = "+ZNLOCKBAND",
     .title = "band lock by masks",
     .encode = {.kind = EncodeKind::record, .record = &kZnlockbandSetPara, .forms = {{"%d,%d,%llx,%llx"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead, .record = &kZnlockbandReadRes, .format = "%llx,%llx"}}}},
    {.position = 186,
     .id = 0x0560,
     .name = "+ZPOWERMODE",
     .title = "power mode",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead, .record = &kZpowermodeReadRes, .format = "%d"}}}},
};

#endif
