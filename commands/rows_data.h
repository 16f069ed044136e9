#ifndef AT_COMMANDS_ROWS_DATA_H
#define AT_COMMANDS_ROWS_DATA_H

#include "commands/atdecode.h"
#include "commands/atencode.h"
#include "commands/list_file.h"
#include "commands/records_data.h"
#include "commands/row.h"

// The commands of the data connection and PDP contexts.

inline constexpr Record kCgdcontSetPara =
    AT_RECORD(AT_CGDCONT_SET_PARA_T, 356, AT_FIELD(cid, 0, "number of the context"),
              AT_FIELD(PDP_type, 4, "IP, IPV6, IPV4V6 or PPP"), AT_FIELD(APN, 14, "access point name"),
              AT_FIELD(PDP_addr, 115, "address asked for"), AT_FIELD(d_comp, 148, "data compression"),
              AT_FIELD(h_comp, 152, "header compression"));
inline constexpr Record kCgattSetPara =
    AT_RECORD(AT_CGATT_SET_PARA_T, 4, AT_FIELD(state, 0, "0 detached, 1 attached"));
inline constexpr Record kCgattReadRes =
    AT_RECORD(AT_CGATT_READ_RES_PARA_T, 12, AT_FIELD(state, 0, "0 detached, 1 attached, in decimal"));
inline constexpr Record kQcpdppSetPara =
    AT_RECORD(AT_QCPDPP_SET_PARA_T, 136, AT_FIELD(cid, 0, "number of the context"),
              AT_FIELD(auth_type, 4, "0 none: the texts are left out"), AT_FIELD(text1, 8, "the modem's own"),
              AT_FIELD(text2, 72, "the modem's own"));
inline constexpr Record kZgactSetPara =
    AT_RECORD(AT_ZGACT_SET_PARA_T, 8, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(value2, 4, ""));
inline constexpr Record kCgactSetPara =
    AT_RECORD(AT_CGACT_SET_PARA_T, 8, AT_FIELD(state, 0, "0 deactivate, 1 activate"),
              AT_FIELD(cid, 4, "number of the context"));
inline constexpr Record kZflagSetPara =
    AT_RECORD(AT_ZFLAG_SET_PARA_T, 16, AT_FIELD(text, 0, "device"), AT_FIELD(value, 12, "the modem's own"));
inline constexpr Record kZflagReadRes =
    AT_RECORD(AT_ZFLAG_READ_RES_PARA_T, 16, AT_FIELD(dev, 0, "device"),
              AT_FIELD(n, 12, "0 whenever the modem separates the two by a comma"));
inline constexpr Record kZeactSetPara =
    AT_RECORD(AT_ZEACT_SET_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kZsetSetPara =
    AT_RECORD(AT_ZSET_SET_PARA_T, 24, AT_FIELD(text, 0, "setting"), AT_FIELD(value, 20, "left out below 1"));
inline constexpr Record kZsetSetRes = AT_RECORD(AT_ZSET_SET_RES_PARA_T, 24, AT_FIELD(text, 0, "setting"),
                                                AT_FIELD(value, 20, "the modem's own"));
inline constexpr Record kZdhcpleaseSetPara =
    AT_RECORD(AT_ZDHCPLEASE_SET_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kQcpbmprefSetPara =
    AT_RECORD(AT_QCPBMPREF_SET_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kZgaatSetPara =
    AT_RECORD(AT_ZGAAT_SET_PARA_T, 4, AT_FIELD(value, 0, "the modem's own"));
inline constexpr Record kQcpdpimscfgeSetPara =
    AT_RECORD(AT_QCPDPIMSCFGE_SET_PARA_T, 16, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(value2, 4, ""),
              AT_FIELD(value3, 8, ""), AT_FIELD(value4, 12, ""));
inline constexpr Record kZgipdnsRes = AT_RECORD(
    AT_ZGIPDNS_RES_PARA_T, 260, AT_FIELD(cid_num, 0, "number of the context"),
    AT_FIELD(cid1, 4, "first number of the line"), AT_FIELD(PDP_type, 8, "IP, IPV6 or IPV4V6"),
    AT_FIELD(PDP_addr, 18, "address"), AT_FIELD(gateway, 78, "gateway"),
    AT_FIELD(primary_dns, 138, "first name server"), AT_FIELD(secondary_dns, 198, "second name server"));
inline constexpr Record kZpbicRes =
    AT_RECORD(AT_ZPBIC_RES_PARA_T, 8, AT_FIELD(result, 0, "the modem's own"),
              AT_FIELD(opertype, 4, "0 whenever the modem separates the two by a comma"));
inline constexpr Record kZconstatRes =
    AT_RECORD(AT_ZCONSTAT_RES_PARA_T, 4, AT_FIELD(stat, 0, "0 the connection is down"));
inline constexpr Record kCgevRes = AT_RECORD(AT_CGEV_RES_PARA_T, 32, AT_BYTES(event, 0, "event"));

inline constexpr Row kDataRows[] = {
    {.position = 12,
     .id = 0x0303,
     .name = "+CGDCONT",
     .title = "PDP context definition",
     .encode = {.kind = EncodeKind::record,
                .record = &kCgdcontSetPara,
                .forms = {{.format = "%d,\"%s\",\"%s\",\"%s\",%d,%d", .when = {{"APN"}, {"PDP_addr"}}},
                          {.format = "%d,\"%s\",\"%s\",,%d,%d",
                           .args = {{"cid", "PDP_type", "APN", "d_comp", "h_comp"}},
                           .when = {{"APN"}}},
                          {.format = "%d,\"%s\",,\"%s\",%d,%d",
                           .args = {{"cid", "PDP_type", "PDP_addr", "d_comp", "h_comp"}},
                           .when = {{"PDP_addr"}}},
                          {.format = "%d,\"%s\",,,%d,%d",
                           .args = {{"cid", "PDP_type", "d_comp", "h_comp"}}}}},
     .decode = {.kind = DecodeKind::custom,
                .answers = {{.types = kSet},
                            {.types = kRead,
                             .length = 3564,
                             .note = "when there is more than one context, the first digit of the last "
                                     "one's number goes to the key apn_profile_num"}},
                .function = Parse_CGDCONT_Res}},
    {.position = 81, .id = 0x060F, .name = "+ZDISDATA", .encode = kNoParameters, .decode = kResultOnly},
    {.position = 101,
     .id = 0x0612,
     .name = "+CGATT",
     .title = "packet domain attachment",
     .encode = {.kind = EncodeKind::record, .record = &kCgattSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::custom,
                .answers = {{.types = kSet}, {.types = kRead, .record = &kCgattReadRes, .length = 4}},
                .function = Parse_CGATT_Res}},
    {.position = 107,
     .id = 0x0616,
     .name = "$QCPDPP",
     .title = "PDP context authentication",
     .encode = {.kind = EncodeKind::record,
                .record = &kQcpdppSetPara,
                .forms = {{.format = "%d,%d", .when = {{"auth_type", Test::absent}}},
                          {"%d,%d,\"%s\",\"%s\""}}},
     .decode = kResultOnly},
    {.position = 140,
     .id = 0x0623,
     .name = "+ZGACT",
     .encode = {.kind = EncodeKind::record, .record = &kZgactSetPara, .forms = {{"%d,%d"}}},
     .decode = kResultOnly},
    {.position = 141,
     .id = 0x0624,
     .name = "+CGACT",
     .title = "PDP context activation",
     .encode = {.kind = EncodeKind::record, .record = &kCgactSetPara, .forms = {{"%d,%d"}}},
     .decode = kResultOnly},
    {.position = 142,
     .id = 0x0627,
     .name = "+ZGIPDNS",
     .title = "addresses of a PDP context",
     .encode = kReportOnly,
     .decode = {.kind = DecodeKind::custom,
                .answers = {{.types = kEveryType,
                             .record = &kZgipdnsRes,
                             .from = From::normalised,
                             .format = "%d,%d,%59s,%59s,%9s,%59s,%59s",
                             .args = {{"cid1", "cid_num", "gateway", "PDP_addr", "PDP_type", "primary_dns",
                                       "secondary_dns"}}}},
                .function = Parse_ZGIPDNS_Res}},
    {.position = 146,
     .id = 0x063B,
     .name = "+ZPBIC",
     .title = "phonebook start",
     .encode = kReportOnly,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kEveryType,
                             .record = &kZpbicRes,
                             .from = From::normalised,
                             .format = "%d,%d"}}}},
    {.position = 147,
     .id = 0x063C,
     .name = "+ZFLAG",
     .encode = {.kind = EncodeKind::record, .record = &kZflagSetPara, .forms = {{"%s,%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead,
                             .record = &kZflagReadRes,
                             .from = From::normalised,
                             .format = "%11s, %d "}}}},
    {.position = 148,
     .id = 0x0625,
     .name = "+ZCONSTAT",
     .title = "state of the data connection",
     .encode = kReportOnly,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kEveryType, .record = &kZconstatRes, .format = "%d"}}}},
    {.position = 149,
     .id = 0x0626,
     .name = "+CGEV",
     .title = "event of the packet domain",
     .encode = kReportOnly,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kEveryType,
                             .record = &kCgevRes,
                             .from = From::normalised,
                             .format = "%32s"}}}},
    {.position = 151,
     .id = 0x061E,
     .name = "+ZEACT",
     .encode = {.kind = EncodeKind::record, .record = &kZeactSetPara, .forms = {{"%d"}}},
     .decode = kResultOnly},
    {.position = 152,
     .id = 0x061C,
     .name = "+ZSET",
     .encode = {.kind = EncodeKind::record,
                .record = &kZsetSetPara,
                .forms = {{.format = "\"%s\",%d", .when = {{"value", Test::at_least, 1}}}, {"\"%s\""}}},
     .decode = {.kind = DecodeKind::custom,
                .answers = {{.types = kSet,
                             .record = &kZsetSetRes,
                             .from = From::normalised,
                             .format = "%19s %d",
                             .note = "after OK alone the answer is that text, 2 bytes"}},
                .function = Parse_ZSET_Res}},
    {.position = 156,
     .id = 0x0620,
     .name = "+ZGAAT",
     .encode = {.kind = EncodeKind::record, .record = &kZgaatSetPara, .forms = {{"%d"}}},
     .decode = kResultOnly},
    {.position = 159,
     .id = 0x0647,
     .name = "+ZDHCPLEASE",
     .encode = {.kind = EncodeKind::record, .record = &kZdhcpleaseSetPara, .forms = {{"%d"}}},
     .decode = kResultOnly},
    {.position = 162,
     .id = 0x0628,
     .name = "$QCPBMPREF",
     .encode = {.kind = EncodeKind::record,
                .record = &kQcpbmprefSetPara,
                .forms = {{"%d"}},
                .log = "send AT$QCPBMPREF=%s\n"},
     .decode = kResultOnly},
    {.position = 168,
     .id = 0x0412,
     .name = "$QCPDPIMSCFGE",
     .encode = {.kind = EncodeKind::record,
                .record = &kQcpdpimscfgeSetPara,
                .forms = {{"%d,%d,%d,%d"}},
                .log = "send AT$QCPDPIMSCFGE=%s\n"},
     .decode = kResultOnly},
};

#endif
