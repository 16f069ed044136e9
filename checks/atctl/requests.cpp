#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "checks/atctl/support.h"
#include "tools/atctl/describe.h"
#include "tools/atctl/find_command.h"
#include "tools/atctl/request.h"
#include "tools/shared/exit_status.h"

namespace {

Bytes Build(const std::string& call, const std::vector<std::string>& arguments) {
    return BuildRequest(FindCall(call), arguments);
}

Bytes Build(const Row& row, uint8_t type, const std::vector<std::string>& arguments) {
    return BuildRequest({&row, type}, arguments);
}

template <typename... From>
std::string Refusal(const From&... from) {
    try {
        Build(from...);
        return "accepted";
    } catch (const Misuse& misuse) {
        return misuse.what();
    }
}

using Words = std::vector<std::string>;

// Of every type a field can have.
struct MIXED_T {
    int32_t number;
    float level;
    uint64_t mask;
    char name[4];
    char code[4];
};
constexpr Record kMixed = AT_RECORD(MIXED_T, 24, AT_FIELD(number, 0, ""), AT_FIELD(level, 4, ""),
                                    AT_FIELD(mask, 8, ""), AT_FIELD(name, 16, ""), AT_BYTES(code, 20, ""));
constexpr Row kMixedRow = {
    .position = 1,
    .id = 1,
    .name = "+MIXED",
    .encode = {.kind = EncodeKind::record, .record = &kMixed, .forms = {{"%d", {"number"}}}}};

struct COPY_T {
    char text[10];
};
constexpr Record kCopy = AT_RECORD(COPY_T, 10, AT_FIELD(text, 0, ""));
constexpr Row kCopyRow = {.position = 1,
                          .id = 1,
                          .name = "+COPY",
                          .encode = {.kind = EncodeKind::copy, .record = &kCopy, .forms = {{"%s"}}}};

}  // namespace

TEST(BuildRequest, FormsWithoutFieldsCarryNothing) {
    EXPECT_TRUE(Build("+CSQ", {}).empty());
    EXPECT_TRUE(Build("+CREG?", {}).empty());
    EXPECT_TRUE(Build("+COPS=?", {}).empty());
    EXPECT_TRUE(Build("+CREG", {}).empty());
}

TEST(BuildRequest, ValuesInOrder) {
    EXPECT_EQ(Build("+CFUN=", {"1"}), Integers({1}));
    EXPECT_EQ(Build("+CMGD=", {"3", "0"}), Integers({3, 0}));
    EXPECT_EQ(Build("+CPMS=", {"SM", "ME", "MT"}), Text("SM", 10) + Text("ME", 10) + Text("MT", 10));
    EXPECT_EQ(Build("+COPS=", {"1", "2", "\"26201\"", "7"}),
              Integers({1, 2}) + Text("\"26201\"", 64) + Integers({7}));
}

TEST(BuildRequest, ValuesByNameInAnyOrder) {
    EXPECT_EQ(Build("+CMGD=", {"flag=4", "index=1"}), Integers({1, 4}));
    EXPECT_EQ(Build("+CPMS=", {"SM", "mem3=MT", "mem2=ME"}),
              Text("SM", 10) + Text("ME", 10) + Text("MT", 10));
}

TEST(BuildRequest, AValueByNameMayHoldAnEqualsSignAndBeEmpty) {
    EXPECT_EQ(Build("+CPMS=", {"mem1=a=b", "mem2=", "mem3="}), Text("a=b", 10) + Text("", 20));
    // No name could look like this, so it is a value.
    EXPECT_EQ(Build("+CPIN=", {"12=4"}), Text("12=4", 64));
}

TEST(BuildRequest, WhatTheShortestLineLeavesOutMayBeMissing) {
    EXPECT_EQ(Build("+CPIN=", {"1234"}), Text("1234", 64));
    EXPECT_EQ(Build("+CPIN=", {"12345678", "4321"}), Text("12345678", 32) + Text("4321", 32));
    EXPECT_EQ(Refusal("+CPIN=", Words{"new_pin=4321"}),
              "+CPIN= takes 2 fields (pin new_pin); pin is missing");
}

TEST(BuildRequest, EveryTypeOfField) {
    const Bytes bytes = Build(kMixedRow, AT_CMD_TYPE_SET, {"-7", "1.5", "0xFFFFFFFFFFFFFFFF", "abc", "wxyz"});
    MIXED_T mixed;
    ASSERT_EQ(bytes.size(), sizeof mixed);
    memcpy(&mixed, bytes.data(), sizeof mixed);
    EXPECT_EQ(mixed.number, -7);
    EXPECT_EQ(mixed.level, 1.5F);
    EXPECT_EQ(mixed.mask, UINT64_MAX);
    EXPECT_STREQ(mixed.name, "abc");
    EXPECT_EQ(std::string(mixed.code, 4), "wxyz");
}

TEST(BuildRequest, FieldsThatNoLineShowsAreRequired) {
    EXPECT_EQ(Refusal(kMixedRow, uint8_t{AT_CMD_TYPE_SET}, Words{"1", "1", "1", "abc"}),
              "+MIXED= takes 5 fields (number level mask name code); code is missing");
}

TEST(BuildRequest, IntegersReachTheirLimitsAndNoFurther) {
    EXPECT_EQ(Build("+CFUN=", {"-2147483648"}), Integers({INT32_MIN}));
    EXPECT_EQ(Build("+CFUN=", {"2147483647"}), Integers({INT32_MAX}));
    EXPECT_EQ(Build("+CFUN=", {"+5"}), Integers({5}));
    EXPECT_EQ(Build("+CFUN=", {"0x10"}), Integers({16}));
    const std::string range = "+CFUN=: fun is -2147483648 to 2147483647; ";
    EXPECT_EQ(Refusal("+CFUN=", Words{"2147483648"}), range + "2147483648 is out of range");
    EXPECT_EQ(Refusal("+CFUN=", Words{"-2147483649"}), range + "-2147483649 is out of range");
    EXPECT_EQ(Refusal("+CFUN=", Words{"99999999999999999999999"}),
              range + "99999999999999999999999 is out of range");
    EXPECT_EQ(Refusal(kMixedRow, uint8_t{AT_CMD_TYPE_SET}, Words{"1", "1", "-1", "a", "b"}),
              "+MIXED=: mask is 0 to 18446744073709551615; -1 is out of range");
}

TEST(BuildRequest, WhatIsNoNumberIsRefused) {
    for (const char* text : {"", "x", "1x", " 1", "1 ", "0x", "-", "--1", "1.5"})
        EXPECT_EQ(Refusal("+CFUN=", Words{text}),
                  "+CFUN=: fun is a number, not \"" + std::string(text) + "\"");
    for (const char* text : {"", "x", "1.5x", "nan", "inf"})
        EXPECT_EQ(Refusal(kMixedRow, uint8_t{AT_CMD_TYPE_SET}, Words{"1", text, "1", "a", "b"}),
                  "+MIXED=: level is a number, not \"" + std::string(text) + "\"");
}

TEST(BuildRequest, TextsFillTheirArrayButForTheNul) {
    EXPECT_EQ(Build("+CPIN=", {std::string(31, '1')}), Text(std::string(31, '1'), 64));
    EXPECT_EQ(Refusal("+CPIN=", Words{std::string(32, '1')}),
              "+CPIN=: pin holds at most 31 bytes; the text has 32");
    EXPECT_EQ(Refusal(kMixedRow, uint8_t{AT_CMD_TYPE_SET}, Words{"1", "1", "1", "abcd", "b"}),
              "+MIXED=: name holds at most 3 bytes; the text has 4");
    EXPECT_EQ(Refusal(kMixedRow, uint8_t{AT_CMD_TYPE_SET}, Words{"1", "1", "1", "abc", "12345"}),
              "+MIXED=: code holds at most 4 bytes; the text has 5");
}

TEST(BuildRequest, ControlCharactersWouldBreakTheLine) {
    EXPECT_EQ(Refusal("+CPIN=", Words{"12\r3"}),
              "+CPIN=: pin holds the control character \\x0d, which would break the line to the modem");
    EXPECT_NE(Refusal("D", Words{"1\x1a"}).find("\\x1a"), std::string::npos);
}

TEST(BuildRequest, CopiedTextIsTheWholeRecord) {
    EXPECT_EQ(Build(kCopyRow, AT_CMD_TYPE_SET, {"1,\"2\",3"}), Text("1,\"2\",3", 10));
    EXPECT_EQ(Refusal(kCopyRow, uint8_t{AT_CMD_TYPE_SET}, Words{"0123456789"}),
              "+COPY=: text holds at most 9 bytes; the text has 10");
}

TEST(BuildRequest, TheNumberOfADialIsItsOwnLength) {
    EXPECT_EQ(Build("D", {"5550123"}), Text("5550123", 7));
    EXPECT_EQ(Build("D", {"number=+15550123"}), Text("+15550123", 9));
    EXPECT_EQ(Build("D", {std::string(35, '1')}).size(), 35U);
    EXPECT_EQ(Refusal("D", Words{std::string(36, '1')}),
              "D: the number has at most 35 characters; this one has 36");
    EXPECT_EQ(Refusal("D", Words{""}), "D: the number is empty");
    EXPECT_EQ(Refusal("D", Words{"123;"}), "D: the number stands without \";\", which the server adds");
    EXPECT_EQ(Refusal("D", Words{}),
              "D takes one telephone number; 0 arguments were given, such as: atctl send D 5550123");
    EXPECT_EQ(Refusal("D=", Words{"1"}), "D= takes no fields; its execute form does: atctl send D ...");
}

TEST(BuildRequest, TheNumberOfFieldsIsChecked) {
    EXPECT_EQ(Refusal("+CFUN=", Words{}), "+CFUN= takes 1 field (fun); fun is missing");
    EXPECT_EQ(Refusal("+CFUN=", Words{"1", "2"}), "+CFUN= takes 1 field (fun); 2 were given");
    EXPECT_EQ(Refusal("+CPMS=", Words{"SM"}),
              "+CPMS= takes 3 fields (mem1 mem2 mem3); mem2, mem3 are missing");
    EXPECT_EQ(Refusal("+CPMS=", Words{"SM", "SM", "SM", "SM"}),
              "+CPMS= takes 3 fields (mem1 mem2 mem3); 4 were given");
}

TEST(BuildRequest, FieldsThatDoNotExistOrComeTwiceAreRefused) {
    EXPECT_EQ(
        Refusal("+CFUN=", Words{"fan=1"}),
        "+CFUN= has no field \"fan\"; its fields are fun (a text with \"=\" in it needs its field's name in "
        "front); did you mean fun?");
    EXPECT_EQ(Refusal("+CFUN=", Words{"fun=1", "fun=2"}), "+CFUN=: fun is given twice");
    EXPECT_EQ(Refusal("+CMGD=", Words{"1", "index=2"}), "+CMGD=: index is given twice");
    EXPECT_EQ(Refusal("+CMGD=", Words{"index=2", "1"}),
              "+CMGD=: \"1\" stands behind a field given by name; values in order come first");
}

TEST(BuildRequest, FormsThatTakeNoFieldsRefuseThem) {
    EXPECT_EQ(Refusal("+CFUN?", Words{"1"}),
              "+CFUN? takes no fields; its set form does: atctl send '+CFUN=' ...");
    EXPECT_EQ(Refusal("+CFUN", Words{"1"}),
              "+CFUN takes no fields; its set form does: atctl send '+CFUN=' ...");
    EXPECT_EQ(Refusal("+CSQ", Words{"1"}), "+CSQ takes no fields, in none of its forms");
    EXPECT_EQ(Refusal("+CSQ=", Words{"1"}), "+CSQ= takes no fields, in none of its forms");
}

TEST(BuildRequest, ReportsCannotBeSent) {
    EXPECT_EQ(Refusal("+CMTI", Words{}), "+CMTI is only reported by the modem; nobody can send it");
}

// The words of an example as a shell would make them.
Words ShellWords(const std::string& line) {
    Words words;
    bool quoted = false;
    bool open = false;
    for (size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (c == ' ' && !quoted) {
            open = false;
            continue;
        }
        if (!open) words.emplace_back();
        open = true;
        if (c == '\'')
            quoted = !quoted;
        else if (c == '\\' && !quoted)
            words.back() += line[++i];
        else
            words.back() += c;
    }
    return words;
}

TEST(Examples, EveryRowsExampleIsACallThatFits) {
    size_t seen = 0;
    for (const Row& row : Commands()) {
        if (row.encode.kind == EncodeKind::absent) {
            EXPECT_EQ(ExampleCall(row), "") << row.name;
            continue;
        }
        const Words words = ShellWords(ExampleCall(row));
        ASSERT_GE(words.size(), 3U) << row.name;
        EXPECT_EQ(words[0] + " " + words[1], "atctl send");
        const Call call = FindCall(words[2]);
        EXPECT_EQ(call.row->id, row.id);
        const Bytes bytes = BuildRequest(call, std::vector(words.begin() + 3, words.end()));
        const Record* record = RequestRecord(row, call.type);
        const size_t size = record != nullptr ? record->size : 0;
        if (!TakesNumber(row, call.type)) {
            EXPECT_EQ(bytes.size(), size) << row.name;
        }
        ++seen;
    }
    EXPECT_EQ(seen, 156U);
}
