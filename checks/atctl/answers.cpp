#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <nlohmann/json.hpp>
#include <random>
#include <sstream>

#include "checks/atctl/support.h"
#include "tools/atctl/answer.h"
#include "tools/atctl/describe.h"
#include "tools/atctl/find_command.h"
#include "tools/atctl/meaning.h"
#include "tools/atctl/print_answer.h"

namespace {

FileContent NoFile(const char*, size_t) {
    return {{}, "not asked for"};
}

Decoded DecodeAs(const std::string& call, uint8_t result, const Bytes& paras,
                 std::optional<uint16_t> told = std::nullopt, const FileReader& reader = NoFile) {
    const Call found = FindCall(call);
    return Decode(*found.row, Res(found.row->id, found.type, result, paras, told), reader);
}

template <typename T>
T Get(const Decoded& decoded, const std::string& name) {
    for (const Value& value : decoded.fields)
        if (name == value.field->name) return std::get<T>(value.value);
    ADD_FAILURE() << "no field " << name;
    return T();
}

std::vector<std::string> Names(const Decoded& decoded) {
    std::vector<std::string> names;
    for (const Value& value : decoded.fields)
        names.emplace_back(value.field->name);
    return names;
}

std::string Printed(const std::string& call, const Decoded& decoded) {
    std::ostringstream out;
    PrintAnswer(out, Look(), *FindCall(call).row, decoded);
    return out.str();
}

nlohmann::ordered_json Json(const std::string& call, const Decoded& decoded) {
    return AnswerJson(*FindCall(call).row, decoded);
}

Bytes Call64(int32_t id, const std::string& number) {
    return Integers({id, 0, 0, 0, 0}) + Text(number, 32) + Integers({129, 0, 0});
}

Bytes CallList(int32_t count) {
    Bytes list = Integers({count});
    for (int32_t i = 1; i <= 20; ++i)
        list = list + (i <= count ? Call64(i, "555010" + std::to_string(i)) : Bytes(64));
    return list;
}

Bytes OperatorList(int32_t count) {
    Bytes list = Integers({count});
    for (int32_t i = 0; i < 100; ++i)
        list = list + (i < count ? Integers({2}) + Text("Net " + std::to_string(i), 68) + Text("N", 20) +
                                       Text("26201", 12) + Text("7", 24)
                                 : Bytes(128));
    return list;
}

// Records that no command has now, of every type and kind.
struct ODD_T {
    float level;
    int32_t number;
    uint64_t mask;
    char code[8];
};
constexpr Record kOdd = AT_RECORD(ODD_T, 24, AT_FIELD(level, 0, "dB"), AT_FIELD(number, 4, "0 off, 1 on"),
                                  AT_FIELD(mask, 8, ""), AT_BYTES(code, 16, ""));
constexpr Row OddRow(const Answer& answer) {
    return {
        .position = 1, .id = 1, .name = "+ODD", .decode = {.kind = DecodeKind::answers, .answers = {answer}}};
}
constexpr Row kOddRow = OddRow({.types = kRead, .record = &kOdd});
constexpr Row kShortRow = OddRow({.types = kRead, .record = &kOdd, .length = 8});
constexpr Row kCutRow = OddRow({.types = kRead, .record = &kOdd, .length = 24, .carried = 12});
constexpr Row kTextRow = {.position = 1, .id = 1, .name = "+ODD", .decode = {.kind = DecodeKind::text}};

}  // namespace

TEST(DecodeAnswer, FieldsByName) {
    const Decoded decoded = DecodeAs("+CSQ", AT_RESULT_OK, Integers({20, 0}));
    EXPECT_EQ(Names(decoded), (std::vector<std::string>{"rssi", "ber"}));
    EXPECT_EQ(Get<int32_t>(decoded, "rssi"), 20);
    EXPECT_EQ(decoded.text, "");
}

TEST(DecodeAnswer, TheFormChoosesTheRecord) {
    const Decoded set = DecodeAs("+CPMS=", AT_RESULT_OK, Integers({1, 10, 2, 20, 3, 30}));
    EXPECT_EQ(Get<int32_t>(set, "total3"), 30);
    const Decoded read = DecodeAs("+CPMS?", AT_RESULT_OK,
                                  Text("SM", 12) + Integers({1, 10}) + Text("ME", 12) + Integers({2, 20}) +
                                      Text("0123456789AB", 12) + Integers({3, 30}));
    EXPECT_EQ(Get<std::string>(read, "mem1"), "SM");
    EXPECT_EQ(Get<std::string>(read, "mem3"), "0123456789AB");  // full, without a NUL
    EXPECT_EQ(Get<int32_t>(read, "used3"), 3);
}

TEST(DecodeAnswer, AShortRecordGivesWhatIsThere) {
    EXPECT_EQ(Names(DecodeAs("+CSQ", AT_RESULT_OK, Integers({20, 0}), 4)),
              (std::vector<std::string>{"rssi"}));
    EXPECT_EQ(Names(DecodeAs("+CSQ", AT_RESULT_OK, Integers({20, 0}), 7)),
              (std::vector<std::string>{"rssi"}));
    EXPECT_TRUE(Names(DecodeAs("+CSQ", AT_RESULT_OK, Integers({20, 0}), 3)).empty());
    const Decoded cut = DecodeAs("+CPIN?", AT_RESULT_OK, Text("SIM PIN", 32), 3);
    EXPECT_EQ(Get<std::string>(cut, "status"), "SIM");
}

TEST(DecodeAnswer, AFilledRecordWithoutALengthIsRead) {
    EXPECT_EQ(Get<int32_t>(DecodeAs("+CSQ", AT_RESULT_OK, Integers({20, 0}), 0), "rssi"), 20);
    EXPECT_TRUE(Names(DecodeAs("+CSQ", AT_RESULT_OK, Integers({0, 0}), 0)).empty());
}

TEST(DecodeAnswer, ALengthBeyondTheMessageIsNotBelieved) {
    EXPECT_EQ(Names(DecodeAs("+CSQ", AT_RESULT_OK, Integers({20, 0}), 65535)).size(), 2U);
    EXPECT_EQ(DecodeAs("+CFUN=", AT_RESULT_OK, Bytes(634, 'x'), 65535).text, std::string(634, 'x'));
}

TEST(DecodeAnswer, EveryTypeOfField) {
    ODD_T odd = {-1.5F, 1, UINT64_MAX, {'1', '2', '3', '4', '5', '6', '7', '8'}};
    Bytes bytes(sizeof odd);
    memcpy(bytes.data(), &odd, sizeof odd);
    const Decoded decoded = Decode(kOddRow, Res(1, AT_CMD_TYPE_READ, 1, bytes), NoFile);
    EXPECT_EQ(Get<float>(decoded, "level"), -1.5F);
    EXPECT_EQ(Get<uint64_t>(decoded, "mask"), UINT64_MAX);
    EXPECT_EQ(Get<std::string>(decoded, "code"), "12345678");
    std::ostringstream out;
    PrintAnswer(out, Look(), kOddRow, decoded);
    EXPECT_EQ(out.str(),
              "+ODD?: OK\n"
              "  level   -1.5                  (dB)\n"
              "  number  1                     (on)\n"
              "  mask    18446744073709551615\n"
              "  code    12345678\n");
    EXPECT_EQ(AnswerJson(kOddRow, decoded)["fields"]["mask"], UINT64_MAX);
}

TEST(DecodeAnswer, AnAnswerMayTellAnotherLengthThanItCarries) {
    Bytes bytes = Bytes(16) + Text("12345678", 8);
    EXPECT_EQ(Get<std::string>(Decode(kShortRow, Res(1, AT_CMD_TYPE_READ, 1, bytes, 8), NoFile), "code"),
              "12345678");
    const Decoded cut = Decode(kCutRow, Res(1, AT_CMD_TYPE_READ, 1, bytes, 24), NoFile);
    EXPECT_EQ(Names(cut), (std::vector<std::string>{"level", "number"}));
}

TEST(DecodeAnswer, TextIsText) {
    const Decoded decoded = Decode(kTextRow, Res(1, AT_CMD_TYPE_SET, 1, Text("menu 1", 7), 6), NoFile);
    EXPECT_EQ(decoded.text, "menu 1");
    EXPECT_EQ(DecodeAs("+CFUN=", AT_RESULT_OK, Text("OK", 2)).text, "OK");
    // An answer without a line of the command's own.
    const Decoded ok = DecodeAs("+CSQ", AT_RESULT_OK, Text("OK", 2));
    EXPECT_EQ(ok.text, "OK");
    EXPECT_TRUE(ok.fields.empty());
}

TEST(DecodeAnswer, ALineThatTheServerPassedOnIsText) {
    const Decoded line = DecodeAs("+ZLOCKBAND=", AT_RESULT_OK, Text("+ZLOCKBAND: 41", 14));
    EXPECT_EQ(line.text, "+ZLOCKBAND: 41");
    EXPECT_TRUE(line.fields.empty());
    EXPECT_EQ(Get<int32_t>(DecodeAs("+ZLOCKBAND=", AT_RESULT_OK, Text("+ZLO", 4)), "value"), 0x4f4c5a2b);
}

TEST(DecodeAnswer, WhatIsNeitherIsShownAsBytes) {
    const Decoded decoded = DecodeAs("+CFUN=", AT_RESULT_OK, Integers({1, 2}));
    EXPECT_EQ(decoded.raw, Integers({1, 2}));
    EXPECT_NE(Printed("+CFUN=", decoded).find("8 bytes without a description:\n  0000  "), std::string::npos);
    EXPECT_EQ(Json("+CFUN=", decoded)["raw"].get<std::string>().size(), 16U);
}

TEST(DecodeAnswer, ErrorsCarryTheModemsText) {
    const Decoded decoded = DecodeAs("+CPIN?", AT_RESULT_CME_ERROR, Text("10", 2));
    EXPECT_EQ(decoded.text, "10");
    EXPECT_EQ(Printed("+CPIN?", decoded),
              "+CPIN?  PIN state and PIN entry: modem error (CME)\n  text  10  (no SIM is inserted)\n");
    EXPECT_EQ(Json("+CPIN?", decoded)["text_meaning"], "no SIM is inserted");
    // Of the very length of the record that a good answer has.
    EXPECT_EQ(DecodeAs("+CSQ", AT_RESULT_CME_ERROR, Text("SIM busy", 8)).text, "SIM busy");
    EXPECT_EQ(DecodeAs("+CSQ", AT_RESULT_ERROR, {}).text, "");
}

TEST(DecodeAnswer, ARecordBesideAnErrorIsARecord) {
    EXPECT_EQ(Get<int32_t>(DecodeAs("+CSQ", AT_RESULT_ERROR, Integers({20, 0})), "rssi"), 20);
}

TEST(DecodeAnswer, TheServersOwnAnswersAreTexts) {
    const Decoded timeout = DecodeAs("+CSQ", AT_RESULT_TIMEOUT, {}, 512);
    EXPECT_EQ(timeout.text, "");
    EXPECT_TRUE(timeout.fields.empty());
    EXPECT_EQ(Printed("+CSQ", timeout), "+CSQ  signal quality: the modem gave no answer in time\n");
    EXPECT_EQ(DecodeAs("+CSQ", AT_RESULT_BUSY, Text("ppp_connecting", 14), 512).text, "ppp_connecting");
}

TEST(DecodeAnswer, AListThatIsCutGivesItsWholeEntries) {
    const Decoded decoded = DecodeAs("+CLCC?", AT_RESULT_OK, CallList(12), 1284);
    EXPECT_EQ(decoded.entries_told, 12U);
    ASSERT_EQ(decoded.entries.size(), 9U);  // (634 - 4) / 64
    EXPECT_EQ(std::get<std::string>(decoded.entries[8][5].value), "5550109");
    EXPECT_NE(Printed("+CLCC?", decoded).find("9 of 12 entries fit the message"), std::string::npos);
}

TEST(DecodeAnswer, AListsCountIsNotBelieved) {
    Bytes list = CallList(2);
    list[0] = list[1] = list[2] = list[3] = 0x7F;
    EXPECT_EQ(DecodeAs("+CLCC?", AT_RESULT_OK, list, 1284).entries_told, 20U);
    list[0] = list[1] = list[2] = list[3] = 0xFF;
    EXPECT_TRUE(DecodeAs("+CLCC?", AT_RESULT_OK, list, 1284).entries.empty());
}

TEST(DecodeAnswer, AListInAFileIsReadFromThere) {
    std::string path;
    size_t size = 0;
    const FileReader reader = [&](const char* asked, size_t bytes) -> FileContent {
        path = asked;
        size = bytes;
        return {OperatorList(3), ""};
    };
    const Decoded decoded = DecodeAs("+COPS=?", AT_RESULT_OK, {}, 12804, reader);
    EXPECT_EQ(path, "/etc_rw/config/copslist");
    EXPECT_EQ(size, 12804U);
    EXPECT_EQ(Get<int32_t>(decoded, "count"), 3);
    ASSERT_EQ(decoded.entries.size(), 3U);
    EXPECT_EQ(Printed("+COPS=?", decoded),
              "+COPS=?  operator choice and search: OK\n"
              "  count  3  (operators found)\n"
              "  stat         long_name  short_name  numeric  act\n"
              "  2 (current)  Net 0      N           26201    7\n"
              "  2 (current)  Net 1      N           26201    7\n"
              "  2 (current)  Net 2      N           26201    7\n");
    const auto json = Json("+COPS=?", decoded);
    EXPECT_EQ(json["entries"].size(), 3U);
    EXPECT_EQ(json["entries"][1]["long_name"], "Net 1");
    EXPECT_EQ(json["fields"]["count"], 3);
    EXPECT_EQ(json["file"], "/etc_rw/config/copslist");
}

TEST(DecodeAnswer, AFileThatCannotBeReadIsSaid) {
    const auto reader = [](const char*, size_t) -> FileContent { return {{}, "No such file or directory"}; };
    const Decoded decoded = DecodeAs("+COPS=?", AT_RESULT_OK, {}, 12804, reader);
    EXPECT_TRUE(decoded.entries.empty());
    EXPECT_EQ(Printed("+COPS=?", decoded),
              "+COPS=?  operator choice and search: OK\n"
              "  the answer is in the file /etc_rw/config/copslist, which cannot be used: No such file or "
              "directory\n");
    EXPECT_EQ(Json("+COPS=?", decoded)["file_error"], "No such file or directory");
}

TEST(DecodeAnswer, NoFileIsReadWhenTheAnswerDoesNotTellIt) {
    const auto reader = [](const char*, size_t) -> FileContent {
        ADD_FAILURE() << "the file was read";
        return {};
    };
    EXPECT_EQ(DecodeAs("+COPS=?", AT_RESULT_OK, Text("OK", 2), 2, reader).text, "OK");
    EXPECT_EQ(DecodeAs("+COPS=?", AT_RESULT_CME_ERROR, Text("30", 2), 2, reader).text, "30");
    EXPECT_EQ(DecodeAs("+COPS=?", AT_RESULT_TIMEOUT, {}, 512, reader).text, "");
    EXPECT_EQ(DecodeAs("+CMGL=", AT_RESULT_CMS_ERROR, Text("310", 3), 3, reader).text, "310");
}

TEST(AnswerJson, HasAlwaysTheSameKeys) {
    const auto json = Json(
        "+CREG?", DecodeAs("+CREG?", AT_RESULT_OK, Integers({2, 1}) + Text("00C3", 16) + Text("0001A2", 16)));
    EXPECT_EQ(json.dump(),
              R"({"command":"+CREG","type":"read","id":1325,"result":1,"result_text":"OK",)"
              R"("fields":{"n":2,"stat":1,"lac":"00C3","ci":"0001A2"},"text":"","para_len":40})");
    const auto bare = Json("+CFUN=", DecodeAs("+CFUN=", AT_RESULT_ERROR, {}));
    EXPECT_EQ(bare.dump(), R"({"command":"+CFUN","type":"set","id":1348,"result":2,"result_text":"error",)"
                           R"("text":"","para_len":0})");
}

TEST(AnswerJson, BytesThatAreNotUtf8AreEscaped) {
    const auto json = Json("+CPIN?", DecodeAs("+CPIN?", AT_RESULT_OK, Text("a\xFF\"\n\xC3\xA9", 32)));
    EXPECT_EQ(json["fields"]["status"], "a\\xff\"\n\xC3\xA9");
    EXPECT_EQ(json["fields"].dump(), "{\"status\":\"a\\\\xff\\\"\\n\xC3\xA9\"}");
}

TEST(PrintAnswer, MeaningsNarrowToTheValue) {
    static constexpr Field kList = {"f", FieldType::i32, 0, 4, "of it: 0 long, 1 short, then long, 12 other"};
    static constexpr Field kRange = {"f", FieldType::i32, 0, 4, "0 the one, 1 to 4 all of a set"};
    static constexpr Field kPlain = {"f", FieldType::i32, 0, 4, "0..31 in steps of 2 dB, 99 unknown"};
    EXPECT_EQ(MeaningOf({&kList, int32_t{0}}), "long");
    EXPECT_EQ(MeaningOf({&kList, int32_t{1}}), "short, then long");
    EXPECT_EQ(MeaningOf({&kList, int32_t{12}}), "other");
    EXPECT_EQ(MeaningOf({&kList, int32_t{2}}), kList.meaning);
    EXPECT_EQ(MeaningOf({&kRange, int32_t{0}}), "the one");
    EXPECT_EQ(MeaningOf({&kRange, int32_t{1}}), kRange.meaning);
    EXPECT_EQ(MeaningOf({&kPlain, int32_t{99}}), "unknown");
    EXPECT_EQ(MeaningOf({&kPlain, int32_t{20}}), kPlain.meaning);
}

TEST(PrintAnswer, FieldsAreAligned) {
    EXPECT_EQ(Printed("+CSQ", DecodeAs("+CSQ", AT_RESULT_OK, Integers({20, 0}))),
              "+CSQ  signal quality: OK\n"
              "  rssi  20  (0..31 in steps of 2 dB from -113 dBm, 99 unknown)\n"
              "  ber   0   (bit error rate; 0 whenever the modem separates the two by a comma)\n");
}

TEST(PrintAnswer, ColoursOnlyWhenAskedFor) {
    std::ostringstream out;
    PrintAnswer(out, Look{true}, *FindCall("+CSQ").row, DecodeAs("+CSQ", AT_RESULT_OK, Text("OK", 2)));
    EXPECT_EQ(out.str(), "\033[1m+CSQ\033[0m  signal quality: \033[32mOK\033[0m\n");
}

// Whatever a server, a file or a modem sends: nothing breaks, and JSON stays JSON.
TEST(DecodeAnswer, AnyBytesForAnyRow) {
    std::mt19937 random(1);
    const auto bytes = [&](size_t size) {
        Bytes made(size);
        const bool text = random() % 2 == 0;
        for (uint8_t& byte : made)
            byte = static_cast<uint8_t>(text ? 'A' + random() % 26 : random());
        return made;
    };
    const FileReader reader = [&](const char*, size_t size) -> FileContent {
        return {bytes(random() % (size + 1)), ""};
    };
    size_t lists = 0;
    for (const Row& row : Commands())
        for (unsigned type = 0; type <= 6; ++type)
            for (int round = 0; round < 8; ++round) {
                _BK_AT_RES_T res =
                    Res(row.id, static_cast<uint8_t>(type), static_cast<uint8_t>(random() % 12),
                        bytes(random() % 635), static_cast<uint16_t>(random()));
                const Answer* answer = AnswerOf(row, res.ucCmdType);
                if (answer != nullptr && answer->record != nullptr && round % 2 == 0) {
                    res.ucResult = AT_RESULT_OK;
                    res.usParaLen = static_cast<uint16_t>(answer->record->size);
                }
                const Decoded decoded = Decode(row, res, reader);
                for (const auto& entry : decoded.entries)
                    lists += !entry.empty();
                std::ostringstream out;
                PrintAnswer(out, Look(), row, decoded);
                EXPECT_FALSE(out.str().empty());
                const std::string json = AnswerJson(row, decoded).dump();
                EXPECT_TRUE(nlohmann::json::accept(json)) << json;
            }
    EXPECT_GT(lists, 0U);
}

class AnswerFile : public testing::Test {
  protected:
    AnswerFile() {
        EXPECT_NE(mkdtemp(directory_), nullptr);
        path_ = std::string(directory_) + "/list";
    }
    ~AnswerFile() override {
        unlink(path_.c_str());
        rmdir(directory_);
    }
    void Write(const Bytes& bytes, time_t seconds) const {
        FILE* file = fopen(path_.c_str(), "w");
        ASSERT_NE(file, nullptr);
        EXPECT_EQ(fwrite(bytes.data(), 1, bytes.size(), file), bytes.size());
        fclose(file);
        const timespec times[2] = {{seconds, 500}, {seconds, 500}};
        EXPECT_EQ(utimensat(AT_FDCWD, path_.c_str(), times, 0), 0);
    }

    char directory_[32] = "/tmp/atctl_check.XXXXXX";
    std::string path_;
};

TEST_F(AnswerFile, IsReadWhole) {
    Write(Bytes(100, 7), 1000);
    const FileContent content = ReadAnswerFile(path_.c_str(), 100, {1000, 500});
    EXPECT_EQ(content.fault, "");
    EXPECT_EQ(content.bytes, Bytes(100, 7));
    EXPECT_EQ(ReadAnswerFile(path_.c_str(), 60, {1000, 0}).bytes.size(), 60U);
}

TEST_F(AnswerFile, ThatIsOlderIsAnEarlierAnswer) {
    Write(Bytes(100, 7), 1000);
    const FileContent content = ReadAnswerFile(path_.c_str(), 100, {1000, 501});
    EXPECT_NE(content.fault.find("older than this request"), std::string::npos);
    EXPECT_TRUE(content.bytes.empty());
    EXPECT_NE(ReadAnswerFile(path_.c_str(), 100, {1001, 0}).fault, "");
}

TEST_F(AnswerFile, ThatIsShortIsSaid) {
    Write(Bytes(99, 7), 1000);
    EXPECT_EQ(ReadAnswerFile(path_.c_str(), 100, {0, 0}).fault, "it holds 99 bytes where 100 belong");
}

TEST_F(AnswerFile, ThatIsMissingOrADirectoryIsSaid) {
    EXPECT_EQ(ReadAnswerFile(path_.c_str(), 100, {0, 0}).fault, "No such file or directory");
    EXPECT_EQ(ReadAnswerFile(directory_, 100, {0, 0}).fault, "Is a directory");
}

TEST(List, HasALineForEachCommandWhereItIsNoTerminal) {
    std::ostringstream out;
    PrintList(out, Look(), CommandsWith(""));
    std::istringstream lines(out.str());
    std::string line;
    std::getline(lines, line);
    EXPECT_EQ(line.substr(0, 14), "ID     NAME   ");
    for (const Row& row : Commands()) {
        ASSERT_TRUE(std::getline(lines, line));
        EXPECT_EQ(line.find(CommandName(row) + " "), sizeof "0x0103") << line;
        EXPECT_NE(line.find(row.title), std::string::npos) << line;
    }
    EXPECT_FALSE(std::getline(lines, line));
    EXPECT_NE(
        out.str().find("0x0103 +CPMS            message storages                 -         30 > 24   > 60"),
        std::string::npos);
    EXPECT_NE(out.str().find("report only"), std::string::npos);
}

TEST(List, FitsTheTerminalAndHasEveryRow) {
    for (const size_t width : {size_t{60}, size_t{80}, size_t{95}, size_t{96}, size_t{120}}) {
        std::ostringstream out;
        PrintList(out, {false, width, true}, CommandsWith(""));
        std::istringstream lines(out.str());
        std::string line;
        while (std::getline(lines, line))
            EXPECT_LE(line.size(), width) << line;
        for (const Row& row : Commands())
            EXPECT_NE(out.str().find(row.name), std::string::npos) << row.name;
    }
}

TEST(List, TakesNamesAndTitlesInAnyCase) {
    EXPECT_EQ(CommandsWith("").size(), Commands().size());
    ASSERT_EQ(CommandsWith("SIGNAL qual").size(), 1U);
    EXPECT_STREQ(CommandsWith("csq")[0]->name, "+CSQ");
}

TEST(List, IsAnArrayOfEveryRowInJson) {
    const auto list = ListJson(CommandsWith(""));
    ASSERT_EQ(list.size(), Commands().size());
    size_t reports = 0;
    for (const auto& row : list)
        reports += row["report_only"].get<bool>();
    EXPECT_EQ(reports, 30U);
    const auto& cpms = list[8];
    EXPECT_EQ(cpms["name"], "+CPMS");
    EXPECT_EQ(cpms["types"]["set"]["request"], 30);
    EXPECT_EQ(cpms["types"]["set"]["answer"], 24);
    EXPECT_EQ(cpms["types"]["read"]["answer"], 60);
}

TEST(Show, HasFieldsLinesAndAnswers) {
    std::ostringstream out;
    PrintCommand(out, Look(), *FindCall("+CPIN").row);
    EXPECT_EQ(out.str(),
              "+CPIN  PIN state and PIN entry\n"
              "  id        0x0301\n"
              "  position  10 of 186 in the search order\n"
              "  time-out  10 s\n"
              "  execute   AT+CPIN\n"
              "  set       AT+CPIN=                       takes 64 bytes\n"
              "  read      AT+CPIN?                       gives 32 bytes\n"
              "  test      AT+CPIN=?\n"
              "  example   atctl send '+CPIN=' pin\n"
              "\n"
              "request with set: AT_CPIN_SET_PARA_T, 64 bytes\n"
              "    offset  size  type  name     meaning\n"
              "    0       32    text  pin      PIN, or PUK when a new PIN is given\n"
              "    32      32    text  new_pin  new PIN (may be left out)\n"
              "\n"
              "line, the first that fits\n"
              "  AT+CPIN=\"<pin>\"              when new_pin is not given\n"
              "  AT+CPIN=\"<pin>\",\"<new_pin>\"\n"
              "\n"
              "answer to set: the result alone\n"
              "\n"
              "answer to read: AT_CPIN_READ_RES_PARA_T, 32 bytes\n"
              "    offset  size  type  name    meaning\n"
              "    0       32    text  status  READY, SIM PIN, SIM PUK, ...\n");
}

namespace {

std::string Shown(const std::string& name) {
    std::ostringstream out;
    PrintCommand(out, Look(), FindCommand(name));
    return out.str();
}

bool Has(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

}  // namespace

TEST(Show, TextIsTheAnswerToTheFormsThatTakeIt) {
    const std::string menu = Shown("+ZSTM");
    EXPECT_TRUE(Has(menu,
                    "                        gives text\n"
                    "  set       AT+ZSTM=\n"
                    "  read      AT+ZSTM?\n"
                    "  test      AT+ZSTM=?\n"))
        << menu;
    EXPECT_TRUE(menu.ends_with("\nanswer to execute: the modem's text\n")) << menu;
    EXPECT_TRUE(Shown("+ZBK").ends_with("\nanswer to every form: the modem's text\n"));
    EXPECT_TRUE(Shown("+ZDIST").ends_with("\nreport: the modem's text\n"));

    using Array = nlohmann::ordered_json;
    const auto json = CommandJson(FindCommand("+ZSTM"));
    EXPECT_EQ(json["answers"], Array::parse(R"([{"types": ["execute"], "text": true}])"));
    EXPECT_TRUE(json["types"]["execute"].contains("text"));
    EXPECT_FALSE(json["types"]["read"].contains("text"));
    EXPECT_EQ(CommandJson(FindCommand("+ZBK"))["answers"][0]["types"].size(), 4U);
}

TEST(Show, TellsLengthsThatAreNotTheRecords) {
    const std::string contexts = Shown("+CGDCONT");
    EXPECT_TRUE(Has(contexts, "tells 3564 bytes that do not travel\n")) << contexts;
    EXPECT_TRUE(Has(contexts, "\nanswer to set: the result alone\n")) << contexts;
    EXPECT_TRUE(Has(contexts, "\nanswer to read: the result, told as 3564 bytes that do not travel\n"))
        << contexts;
    const auto context = CommandJson(FindCommand("+CGDCONT"))["answers"][1];
    EXPECT_EQ(context["length"], 3564);
    EXPECT_FALSE(context.contains("record"));

    const std::string storage = Shown("+CPBS");
    EXPECT_TRUE(Has(storage, "gives 15 bytes, told as 0\n")) << storage;
    EXPECT_TRUE(Has(storage, "\nanswer to read: AT_CPBS_READ_RES_PARA_T, 15 bytes, told as 0\n")) << storage;
    EXPECT_EQ(CommandJson(FindCommand("+CPBS"))["answers"][1]["length"], 0);
    EXPECT_EQ(CommandJson(FindCommand("+CPBS"))["answers"][1]["size"], 15);

    EXPECT_TRUE(Has(Shown("+CGATT"), "\nanswer to read: AT_CGATT_READ_RES_PARA_T, 12 bytes, told as 4\n"));
}

TEST(Show, HasNotes) {
    const std::string locks = Shown("+CLCK");
    EXPECT_TRUE(
        Has(locks,
            "\nanswer to set: AT_CLCK_SET_RES_PARA_T, 8 bytes\n"
            "  note  after OK alone, which ends every set but a query, the answer is that text, 2 bytes\n"
            "    offset "))
        << locks;
    EXPECT_TRUE(Has(Shown("+CGDCONT"), " do not travel\n  note  when there is more than one context, "));
    EXPECT_TRUE(Has(Shown("+ZLOCKF"), "\n  note      while bandmode is 4 "));
    EXPECT_FALSE(Has(Shown("+CSQ"), "note"));

    const auto note = [](const nlohmann::ordered_json& of) { return of["note"].get<std::string>(); };
    const auto waiting = CommandJson(FindCommand("+CCWA"))["answers"];
    EXPECT_TRUE(note(waiting[0]).starts_with("after OK alone, ")) << waiting;
    EXPECT_TRUE(note(waiting[0])
                    .ends_with("; a line with a blank behind its colon goes out as a report, and "
                               "the answer is the OK"))
        << waiting;
    EXPECT_FALSE(waiting[1].contains("note"));
    EXPECT_TRUE(note(CommandJson(FindCommand("+ZLOCKF"))).starts_with("while bandmode is 4 "));
    EXPECT_FALSE(CommandJson(FindCommand("+CSQ")).contains("note"));
}

// What decides by the text alone whether there is a record says so.
TEST(Show, EveryAnswerThatMayBeOkAloneSaysSo) {
    size_t told = 0;
    for (const Row& row : Commands()) {
        const auto json = CommandJson(row);
        size_t at = 0;
        for (const Answer& answer : row.decode.answers) {
            if (answer.types == 0 || row.decode.kind == DecodeKind::text) continue;
            const auto& one = json["answers"][at++];
            if (!answer.result_test) continue;
            EXPECT_TRUE(Has(one.value("note", ""), "2 bytes")) << row.name;
            ++told;
        }
    }
    EXPECT_EQ(told, 3U);
}

TEST(Show, TellsHowLongANumberMayBe) {
    EXPECT_TRUE(Has(Shown("D"), "\nrequest with execute: a telephone number, 1 to 35 characters; "));
    EXPECT_EQ(CommandJson(FindCommand("D"))["types"]["execute"]["longest"], 35);
    EXPECT_FALSE(CommandJson(FindCommand("D"))["types"]["set"].contains("longest"));
}

TEST(Show, AnAnswerThatIsNotReadIsTheModemsOk) {
    EXPECT_TRUE(Shown("+CHUP").ends_with("\nanswer: the result; after OK alone with that text, 2 bytes\n"));
}

TEST(Show, AReportIsNoAnswerToAnything) {
    EXPECT_FALSE(Has(Shown("^CONN"), "answer"));
    EXPECT_TRUE(Has(Shown("+CMTI"), "\nreport: AT_CMTI_NOTIFY_RES_PARA_T, "));
}

TEST(Show, ReportsThatNoModuleReceivesAreToldAsSuch) {
    const std::string event = Shown("+CGEV");
    EXPECT_TRUE(Has(event, "  reported  to no module\n")) << event;
    EXPECT_TRUE(Has(event,
                    "\nreport: AT_CGEV_RES_PARA_T, 32 bytes: what the server makes of the line, which no "
                    "module receives\n"))
        << event;
    EXPECT_TRUE(CommandJson(FindCommand("+CGEV"))["reported_to"].empty());
    const std::string message = Shown("+CMTI");
    EXPECT_TRUE(Has(message, "  reported  to the module sms\n")) << message;
    EXPECT_FALSE(Has(message, "no module")) << message;
    EXPECT_EQ(CommandJson(FindCommand("+CMTI"))["reported_to"], nlohmann::ordered_json::array({"sms"}));
    EXPECT_FALSE(CommandJson(FindCommand("+CSQ")).contains("reported_to"));

    std::string nobodys;
    for (const Row& row : Commands())
        if (row.encode.kind == EncodeKind::absent && CommandJson(row)["reported_to"].empty())
            nobodys += std::string(row.name) + " ";
    EXPECT_EQ(nobodys, "+ZMACR +ZUSIMR +ZPASR +ZDONR +ZUnsupport +ZURDY +ZPBIC +CGEV ZVCONNECT ");
}

TEST(Show, EveryRowHasADescriptionInBothForms) {
    for (const Row& row : Commands()) {
        std::ostringstream out;
        PrintCommand(out, Look(), row);
        EXPECT_NE(out.str().find("position"), std::string::npos) << row.name;
        const auto json = CommandJson(row);
        EXPECT_EQ(json["id"], row.id) << row.name;
        EXPECT_EQ(json.contains("example"), row.encode.kind != EncodeKind::absent) << row.name;
    }
    const auto cops = CommandJson(*FindCall("+COPS").row);
    EXPECT_EQ(cops["request"]["fields"][2]["name"], "oper");
    EXPECT_EQ(cops["request"]["fields"][2]["offset"], 8);
    EXPECT_EQ(cops["request"]["lines"][0]["line"], "AT+COPS=<mode>,<format>,<oper>,<act>");
    EXPECT_EQ(cops["answers"][2]["entries"]["count"], 100);
    EXPECT_EQ(cops["timeout"], 180);
}
