#ifndef AT_COMMANDS_ROWS_PHONEBOOK_H
#define AT_COMMANDS_ROWS_PHONEBOOK_H

#include "commands/atdecode.h"
#include "commands/atencode.h"
#include "commands/list_file.h"
#include "commands/records_phonebook.h"
#include "commands/row.h"

// The commands of the phonebook.

inline constexpr Record kCpbsSetPara = AT_RECORD(AT_CPBS_SET_PARA_T, 20, AT_FIELD(storage, 0, "SM, ME, ..."));
inline constexpr Record kCpbsReadRes =
    AT_RECORD(AT_CPBS_READ_RES_PARA_T, 15, AT_FIELD(storage, 0, "with its quotation marks"),
              AT_FIELD(usedEntries, 5, "entries"), AT_FIELD(totalEntries, 10, "places"));

inline constexpr Record kCpbrSetPara =
    AT_RECORD(AT_CPBR_SET_PARA_T, 8, AT_FIELD(first, 0, "place of the first entry"),
              AT_FIELD(last, 4, "of the last one; 0: the first alone"));
inline constexpr Record kCpbrEntry =
    AT_RECORD(AT_CPBR_ENTRY_T, 220, AT_FIELD(index, 0, "place"), AT_FIELD(number, 4, "phone number"),
              AT_FIELD(type, 88, "145 international, 129 other"), AT_FIELD(text, 92, "name"));
inline constexpr Record kCpbrSetRes =
    MakeList(AT_RECORD(AT_CPBR_SET_RES_PARA_T, 22004, AT_FIELD(count, 0, "entries")), kCpbrEntry, 4, 100);
inline constexpr Record kCpbrTestRes =
    AT_RECORD(AT_CPBR_TEST_RES_PARA_T, 16, AT_FIELD(first, 0, "first place"), AT_FIELD(last, 4, "last place"),
              AT_FIELD(number_length, 8, "longest number"), AT_FIELD(text_length, 12, "longest text"));

inline constexpr Record kCpbwSetPara = AT_RECORD(
    AT_CPBW_SET_PARA_T, 220, AT_FIELD(index, 0, "place; 0: the first free one"),
    AT_FIELD(number, 4, "phone number; it and text empty: deletes the entry"),
    AT_FIELD(type, 88, "145 international, 129 other, 0: the modem's choice"), AT_FIELD(text, 92, "name"));

inline constexpr Record kZcpbrEntry =
    AT_RECORD(AT_ZCPBR_ENTRY_T, 452, AT_FIELD(index, 0, "place"), AT_FIELD(number, 4, "phone number"),
              AT_FIELD(name, 88, "name"), AT_FIELD(text2, 152, "second text"),
              AT_FIELD(text3, 236, "third text"), AT_FIELD(text4, 320, "fourth text"));
inline constexpr Record kZcpbrSetRes =
    MakeList(AT_RECORD(AT_ZCPBR_SET_RES_PARA_T, 45204, AT_FIELD(count, 0, "entries")), kZcpbrEntry, 4, 100);
inline constexpr Record kZcpbrTestRes = AT_RECORD(
    AT_ZCPBR_TEST_RES_PARA_T, 28, AT_FIELD(first, 0, "first place"), AT_FIELD(last, 4, "last place"),
    AT_FIELD(number_length, 8, "longest number"), AT_FIELD(name_length, 12, "longest name"),
    AT_FIELD(text2_length, 16, "longest second text"), AT_FIELD(text3_length, 20, "longest third text"),
    AT_FIELD(text4_length, 24, "longest fourth text"));

inline constexpr Record kZcpbwSetPara =
    AT_RECORD(AT_ZCPBW_SET_PARA_T, 456, AT_FIELD(index, 0, "place; 0: the first free one"),
              AT_FIELD(number, 4, "phone number; all texts empty: deletes the entry"),
              AT_FIELD(type, 88, "145 international, 129 other, 0: the modem's choice"),
              AT_FIELD(name, 92, "name"), AT_FIELD(text2, 156, "second text"),
              AT_FIELD(text3, 240, "third text"), AT_FIELD(text4, 324, "fourth text"));

inline constexpr Record kCscsSetPara =
    AT_RECORD(AT_CSCS_SET_PARA_T, 10, AT_FIELD(chset, 0, "character set: GSM, UCS2, ..."));

inline constexpr Row kPhonebookRows[] = {
    {.position = 59,
     .id = 0x0201,
     .name = "+CPBS",
     .title = "phonebook storage",
     .encode = {.kind = EncodeKind::record, .record = &kCpbsSetPara, .forms = {{"\"%s\""}}},
     .decode = {.kind = DecodeKind::custom,
                .answers = {{.types = kSet}, {.types = kRead, .record = &kCpbsReadRes, .told_as_0 = true}},
                .function = Parse_CPBS_Res}},
    {.position = 60,
     .id = 0x0202,
     .name = "+CPBR",
     .title = "read entries",
     .encode = {.kind = EncodeKind::record,
                .record = &kCpbrSetPara,
                .forms = {{.format = "%d", .when = {{"last", Test::absent}}}, {"%d,%d"}}},
     .decode = {.kind = DecodeKind::custom,
                .answers = {{.types = kSet,
                             .record = &kCpbrSetRes,
                             .from = From::normalised,
                             .format = "%d %80s %d %120s",
                             .file = kPhonebookFile},
                            {.types = kTest, .record = &kCpbrTestRes, .format = "(%d-%d),%d,%d"}},
                .function = Parse_CPBR_Res}},
    {.position = 61,
     .id = 0x0204,
     .name = "+CPBW",
     .title = "write or delete an entry",
     .encode =
         {.kind = EncodeKind::record,
          .record = &kCpbwSetPara,
          .forms =
              {{.format = "%d", .when = {{"number", Test::absent}, {"text", Test::absent}, {"index"}}},
               {.format = "", .when = {{"number", Test::absent}, {"text", Test::absent}}},
               {.format = "%d,\"%s\",%d,\"%s\"", .when = {{"index"}, {"type"}}},
               {.format = "%d,\"%s\",,\"%s\"", .args = {{"index", "number", "text"}}, .when = {{"index"}}},
               {.format = ",\"%s\",%d,\"%s\"", .args = {{"number", "type", "text"}}, .when = {{"type"}}},
               {.format = ",\"%s\",,\"%s\"", .args = {{"number", "text"}}}}},
     .decode = {.kind = DecodeKind::answers, .answers = {{.types = kSet}}}},
    {.position = 62,
     .id = 0x0206,
     .name = "+ZCPBR",
     .title = "read long entries",
     .encode = {.kind = EncodeKind::record,
                .record = &kCpbrSetPara,
                .forms = {{.format = "%d", .when = {{"last", Test::absent}}}, {"%d,%d"}}},
     .decode = {.kind = DecodeKind::custom,
                .answers = {{.types = kSet,
                             .record = &kZcpbrSetRes,
                             .from = From::normalised,
                             .format = "%d %80s %60s %80s %80s %128s",
                             .file = kPhonebookFile},
                            {.types = kTest, .record = &kZcpbrTestRes, .format = "(%d-%d),%d,%d,%d,%d,%d"}},
                .function = Parse_ZCPBR_Res}},
    {.position = 63,
     .id = 0x0207,
     .name = "+ZCPBW",
     .title = "write or delete a long entry",
     .encode = {.kind = EncodeKind::record,
                .record = &kZcpbwSetPara,
                .forms = {{.format = "%d",
                           .when = {{"number", Test::absent},
                                    {"name", Test::absent},
                                    {"text2", Test::absent},
                                    {"text3", Test::absent},
                                    {"text4", Test::absent},
                                    {"index"}}},
                          {.format = "",
                           .when = {{"number", Test::absent},
                                    {"name", Test::absent},
                                    {"text2", Test::absent},
                                    {"text3", Test::absent},
                                    {"text4", Test::absent}}},
                          {.format = "%d,\"%s\",%d,\"%s\",\"%s\",\"%s\",\"%s\"",
                           .when = {{"index"}, {"type"}}},
                          {.format = "%d,\"%s\",,\"%s\",\"%s\",\"%s\",\"%s\"",
                           .args = {{"index", "number", "name", "text2", "text3", "text4"}},
                           .when = {{"index"}}},
                          {.format = ",\"%s\",%d,\"%s\",\"%s\",\"%s\",\"%s\"",
                           .args = {{"number", "type", "name", "text2", "text3", "text4"}},
                           .when = {{"type"}}},
                          {.format = ",\"%s\",,\"%s\",\"%s\",\"%s\",\"%s\"",
                           .args = {{"number", "name", "text2", "text3", "text4"}}}}},
     .decode = {.kind = DecodeKind::answers, .answers = {{.types = kSet}}}},
    {.position = 64,
     .id = 0x0208,
     .name = "+CSCS",
     .title = "character set",
     .encode = {.kind = EncodeKind::record, .record = &kCscsSetPara, .forms = {{"\"%s\""}}},
     .decode = kResultOnly},
};

#endif
