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

inline constexpr Record kCscaSetPara =
    AT_RECORD(AT_CSCA_SET_PARA_T, 64, AT_FIELD(sca, 0, "address of the service centre"));
inline constexpr Record kCscaReadRes =
    AT_RECORD(AT_CSCA_READ_RES_PARA_T, 72, AT_FIELD(sca, 0, "address of the service centre"),
              AT_FIELD(tosca, 36, "145 international, 129 other"));

inline constexpr Record kCmgsSetPara = AT_RECORD(
    AT_CMGS_SET_PARA_T, 504, AT_FIELD(length, 0, "octets of the PDU without its service centre address"),
    AT_FIELD(pdu, 4, "the message, hexadecimal; sent at the prompt"));
inline constexpr Record kCmgsSetRes =
    AT_RECORD(AT_CMGS_SET_RES_PARA_T, 508, AT_FIELD(mr, 0, "message reference"),
              AT_FIELD(ackpdu, 4, "acknowledgement, hexadecimal"));
inline constexpr Record kCmgwSetPara = AT_RECORD(
    AT_CMGW_SET_PARA_T, 508, AT_FIELD(length, 0, "octets of the PDU without its service centre address"),
    AT_FIELD(stat, 4, "0 unread, 1 read, 2 unsent, 3 sent"),
    AT_FIELD(pdu, 8, "the message, hexadecimal; sent at the prompt"));
inline constexpr Record kCmgwSetRes =
    AT_RECORD(AT_CMGW_SET_RES_PARA_T, 4, AT_FIELD(index, 0, "place in the storage"));

inline constexpr Record kZtagSetPara = AT_RECORD(
    AT_ZTAG_SET_PARA_T, 8, AT_FIELD(value1, 0, "the modem's own"), AT_FIELD(value2, 4, "the modem's own"));

inline constexpr Record kCnmiSetPara =
    AT_RECORD(AT_CNMI_SET_PARA_T, 20, AT_FIELD(mode, 0, "reports while the line is busy, 0 to 3"),
              AT_FIELD(mt, 4, "new messages: 0 none, 1 their place, 2 themselves, 3 class 3 themselves"),
              AT_FIELD(bm, 8, "cell broadcast: 0 none, 2 itself"),
              AT_FIELD(ds, 12, "status reports: 0 none, 1 themselves, 2 their place"),
              AT_FIELD(bfr, 16, "what is buffered: 0 sent, 1 cleared"));
inline constexpr Record kCnmiReadRes =
    AT_RECORD(AT_CNMI_READ_RES_PARA_T, 20, AT_FIELD(mode, 0, "reports while the line is busy, 0 to 3"),
              AT_FIELD(mt, 4, "new messages: 0 none, 1 their place, 2 themselves, 3 class 3 themselves"),
              AT_FIELD(bm, 8, "cell broadcast: 0 none, 2 itself"),
              AT_FIELD(ds, 12, "status reports: 0 none, 1 themselves, 2 their place"),
              AT_FIELD(bfr, 16, "what is buffered: 0 sent, 1 cleared"));

inline constexpr Record kCmmsSetPara =
    AT_RECORD(AT_CMMS_SET_PARA_T, 4,
              AT_FIELD(mode, 0, "keep the link between messages: 0 no, 1 until a pause, 2 always"));

inline constexpr Record kZvmailReadRes =
    AT_RECORD(AT_ZVMAIL_READ_RES_PARA_T, 4, AT_FIELD(flag, 0, "1 voice mail is waiting"));

inline constexpr Record kNewMessageRes =
    AT_RECORD(AT_CMTI_NOTIFY_RES_PARA_T, 16, AT_FIELD(memory, 0, "storage of the new message"),
              AT_FIELD(index, 12, "its place there"));
inline constexpr Log kNewMessageLog = {"tPara.memory:%s    tPara.index:%d "};

inline constexpr Record kZclasRes =
    AT_RECORD(AT_ZCLAS_NOTIFY_RES_PARA_T, 504, AT_FIELD(length, 0, "octets of the PDU"),
              AT_FIELD(pdu, 4, "a message for the display, hexadecimal"));

inline constexpr Record kCmgrSetPara =
    AT_RECORD(AT_CMGR_SET_PARA_T, 4, AT_FIELD(index, 0, "place in the storage"));
inline constexpr Record kCmgrSetRes =
    AT_RECORD(AT_CMGR_SET_RES_PARA_T, 752, AT_FIELD(reserved, 0, "0"),
              AT_FIELD(stat, 4, "0 unread, 1 read, 2 unsent, 3 sent, 5 not told"),
              AT_FIELD(alpha, 8, "name of the other party"),
              AT_FIELD(length, 44, "octets of the PDU without its service centre address"),
              AT_FIELD(pdu, 48, "the message, hexadecimal; the first 464 characters travel"));

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
    {.position = 29,
     .id = 0x0105,
     .name = "+CSCA",
     .title = "service centre",
     .encode = {.kind = EncodeKind::record, .record = &kCscaSetPara, .forms = {{"\"%s\""}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead,
                             .record = &kCscaReadRes,
                             .from = From::normalised,
                             .format = "%32s %32s"}}}},
    {.position = 30,
     .id = 0x0108,
     .name = "+CMGS",
     .title = "send a message",
     .encode =
         {.kind = EncodeKind::custom, .record = &kCmgsSetPara, .forms = {{"%d"}}, .function = Make_Cmgs_Cmd},
     .decode = {.kind = DecodeKind::custom,
                .answers =
                    {{.types = kSet, .record = &kCmgsSetRes, .from = From::normalised, .format = "%d %500s"}},
                .function = Parse_Cmgs_Res}},
    {.position = 31,
     .id = 0x0104,
     .name = "+CMGF",
     .title = "message format",
     .encode = {.kind = EncodeKind::record, .record = &kCmgfSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead, .record = &kCmgfReadRes, .format = "%d"}}}},
    {.position = 32,
     .id = 0x010A,
     .name = "+CMGW",
     .title = "store a message",
     .encode = {.kind = EncodeKind::record, .record = &kCmgwSetPara, .forms = {{"%d,%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kSet,
                             .record = &kCmgwSetRes,
                             .format = "%d",
                             .log = {"Parse_Cmgw_Res==tPara.index=%d"}}}}},
    {.position = 33,
     .id = 0x0114,
     .name = "+ZTAG",
     .title = "tag of a message",
     .encode = {.kind = EncodeKind::record, .record = &kZtagSetPara, .forms = {{"%d,%d"}}},
     .decode = kResultOnly},
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
                             .file = kSmsListFile,
                             .note = "when a line has less than two commas the answer has no record and the "
                                     "file stays as it was"}},
                .function = Parse_Cmgl_Res}},
    {.position = 50,
     .id = 0x0107,
     .name = "+CMGR",
     .title = "read a message",
     .encode = {.kind = EncodeKind::record, .record = &kCmgrSetPara, .forms = {{"%d"}}},
     .decode = {.kind = DecodeKind::custom,
                .answers = {{.types = kSet,
                             .record = &kCmgrSetRes,
                             .from = From::normalised,
                             .format = "%d %32s %d %700s",
                             .args = {{"stat", "alpha", "length", "pdu"}},
                             .carried = 512,
                             .note = "after OK alone, as for an empty place, the answer is that text, 2 "
                                     "bytes"}},
                .function = Parse_Cmgr_Res}},
    {.position = 51,
     .id = 0x0110,
     .name = "+CMTI",
     .title = "new message",
     .encode = kReportOnly,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kEveryType,
                             .record = &kNewMessageRes,
                             .from = From::normalised,
                             .format = "%10s %d",
                             .log = kNewMessageLog}}}},
    // Not scanned: the live report is read where it is routed.
    {.position = 52,
     .id = 0x0112,
     .name = "+CDSI",
     .title = "new status report",
     .encode = kReportOnly,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kEveryType,
                             .record = &kNewMessageRes,
                             .from = From::normalised,
                             .log = kNewMessageLog}}}},
    {.position = 53,
     .id = 0x010B,
     .name = "+CMGD",
     .title = "message deletion",
     .encode = {.kind = EncodeKind::record, .record = &kCmgdSetPara, .forms = {{"%d, %d"}}},
     .decode = {.kind = DecodeKind::answers, .answers = {{.types = kSet}}}},
    {.position = 54,
     .id = 0x010E,
     .name = "+CNMI",
     .title = "reports of new messages",
     .encode = {.kind = EncodeKind::record, .record = &kCnmiSetPara, .forms = {{"%d,%d,%d,%d,%d"}}},
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead, .record = &kCnmiReadRes, .format = "%d,%d,%d,%d,%d"}}}},
    {.position = 55,
     .id = 0x0116,
     .name = "+CMMS",
     .title = "link between messages",
     .encode = {.kind = EncodeKind::record, .record = &kCmmsSetPara, .forms = {{"%d"}}},
     .decode = kResultOnly},
    {.position = 56,
     .id = 0x0117,
     .name = "+ZVMTI",
     .title = "new voice mail message",
     .encode = kReportOnly,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kEveryType,
                             .record = &kNewMessageRes,
                             .from = From::normalised,
                             .format = "%10s %d",
                             .log = kNewMessageLog}}}},
    {.position = 57,
     .id = 0x0118,
     .name = "+ZVMAIL",
     .title = "voice mail waiting",
     .encode = kNoParameters,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kRead,
                             .record = &kZvmailReadRes,
                             .format = "%d",
                             .log = {"AT_ZVMAIL_READ:tPara.flag=%d"},
                             .note = "0 while data_card_mode is KVX_LTE or KVX_WCDMA: there the line goes "
                                     "out as a report"}}}},
    {.position = 58,
     .id = 0x0521,
     .name = "+ZCLAS",
     .title = "message for the display",
     .encode = kReportOnly,
     .decode = {.kind = DecodeKind::answers,
                .answers = {{.types = kEveryType,
                             .record = &kZclasRes,
                             .from = From::normalised,
                             .format = "%d %499s"}}}},
};

#endif
