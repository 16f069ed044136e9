#ifndef AT_COMMANDS_ROWS_SMS_H
#define AT_COMMANDS_ROWS_SMS_H

#include "commands/atdecode.h"
#include "commands/atencode.h"
#include "commands/list_file.h"
#include "commands/records_sms.h"
#include "commands/row.h"

// The commands of the short message service.

inline constexpr Record kCpmsSetPara =
    AT_RECORD(AT_CPMS_SET_PARA_T, 30, AT_FIELD(mem1, 0, "storage to read and delete from"),
              AT_FIELD(mem2, 10, "storage to write to and send from"),
              AT_FIELD(mem3, 20, "storage for received messages"));
inline constexpr Record kCpmsSetRes = AT_RECORD(
    AT_CPMS_SET_RES_PARA_T, 24, AT_FIELD(used1, 0, "messages in mem1"), AT_FIELD(total1, 4, "places in mem1"),
    AT_FIELD(used2, 8, "messages in mem2"), AT_FIELD(total2, 12, "places in mem2"),
    AT_FIELD(used3, 16, "messages in mem3"), AT_FIELD(total3, 20, "places in mem3"));
inline constexpr Record kCpmsReadRes = AT_RECORD(
    AT_CPMS_READ_RES_PARA_T, 60, AT_FIELD(mem1, 0, "storage to read and delete from"),
    AT_FIELD(used1, 12, "messages in mem1"), AT_FIELD(total1, 16, "places in mem1"),
    AT_FIELD(mem2, 20, "storage to write to and send from"), AT_FIELD(used2, 32, "messages in mem2"),
    AT_FIELD(total2, 36, "places in mem2"), AT_FIELD(mem3, 40, "storage for received messages"),
    AT_FIELD(used3, 52, "messages in mem3"), AT_FIELD(total3, 56, "places in mem3"));

inline constexpr Record kCmgfSetPara = AT_RECORD(AT_CMGF_SET_PARA_T, 4, AT_FIELD(mode, 0, "0 PDU, 1 text"));
inline constexpr Record kCmgfReadRes =
    AT_RECORD(AT_CMGF_READ_RES_PARA_T, 4, AT_FIELD(mode, 0, "0 PDU, 1 text"));

inline constexpr Record kCmgdSetPara =
    AT_RECORD(AT_CMGD_SET_PARA_T, 8, AT_FIELD(index, 0, "place in the storage"),
              AT_FIELD(flag, 4, "0 the message at index, 1 to 4 all of a growing set"));

inline constexpr Record kCmglSetPara =
    AT_RECORD(AT_CMGL_SET_PARA_T, 4, AT_FIELD(stat, 0, "0 unread, 1 read, 2 unsent, 3 sent, 4 all"));
inline constexpr Record kCmglMessage = AT_RECORD(
    AT_CMGL_MESSAGE_T, 632, AT_FIELD(index, 0, "place in the storage"),
    AT_FIELD(stat, 4, "0 unread, 1 read, 2 unsent, 3 sent"), AT_FIELD(alpha, 8, "name of the other party"),
    AT_FIELD(length, 272, "octets of the PDU without its service centre address"),
    AT_FIELD(pdu, 276, "the message, hexadecimal"));
inline constexpr Record kCmglSetRes =
    MakeList(AT_RECORD(AT_CMGL_SET_RES_PARA_T, 50564, AT_FIELD(count, 0, "messages")), kCmglMessage, 4, 80);

inline constexpr Row kSmsRows[] = {
    {.position = 9,
     .id = 0x0103,
     .name = "+CPMS",
     .title = "message storages",
     .encode = {.kind = EncodeKind::record, .record = &kCpmsSetPara, .forms = {{"\"%s\",\"%s\",\"%s\""}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kSet, .record = &kCpmsSetRes, .format = "%d,%d,%d,%d,%d,%d"},
                            {.types = kRead,
                             .record = &kCpmsReadRes,
                             .from = From::normalised,
                             .format = "%10s %d %d %10s %d %d %10s %d %d"}}}},
    {.position = 29, .id = 0x0105, .name = "+CSCA"},
    {.position = 30, .id = 0x0108, .name = "+CMGS"},
    {.position = 31,
     .id = 0x0104,
     .name = "+CMGF",
     .title = "message format",
     .encode = {.kind = EncodeKind::record, .record = &kCmgfSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead, .record = &kCmgfReadRes, .format = "%d"}}}},
    {.position = 32, .id = 0x010A, .name = "+CMGW"},
    {.position = 33, .id = 0x0114, .name = "+ZTAG", .decode = kResultOnly},
    {.position = 49,
     .id = 0x0106,
     .name = "+CMGL",
     .title = "message list",
     .encode = {.kind = EncodeKind::record, .record = &kCmglSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::custom,
                .answers = {{.types = kSet,
                             .record = &kCmglSetRes,
                             .from = From::normalised,
                             .format = "%d %d %260s %d %355s",
                             .file = kSmsListFile}},
                .function = Parse_Cmgl_Res}},
    {.position = 50, .id = 0x0107, .name = "+CMGR"},
    {.position = 51, .id = 0x0110, .name = "+CMTI", .encode = kReportOnly},
    {.position = 52, .id = 0x0112, .name = "+CDSI", .encode = kReportOnly},
    {.position = 53,
     .id = 0x010B,
     .name = "+CMGD",
     .title = "message deletion",
     .encode = {.kind = EncodeKind::record, .record = &kCmgdSetPara, .forms = {{"%d, %d"}}},
     .decode = {.kind = DecodeKind::answers, .answers = {{.types = kSet}}}},
    {.position = 54, .id = 0x010E, .name = "+CNMI"},
    {.position = 55, .id = 0x0116, .name = "+CMMS", .decode = kResultOnly},
    {.position = 56, .id = 0x0117, .name = "+ZVMTI", .encode = kReportOnly},
    {.position = 57, .id = 0x0118, .name = "+ZVMAIL", .encode = kNoParameters},
    {.position = 58, .id = 0x0521, .name = "+ZCLAS", .encode = kReportOnly},
};

#endif
