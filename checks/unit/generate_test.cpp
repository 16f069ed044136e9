#include <gtest/gtest.h>
#include <string.h>

#include <string>

#include "checks/support/fake_platform.h"
#include "codec/atcode.h"
#include "records/state.h"

// From a request record to the line on the wire.

namespace {

using std::string;

constexpr size_t kLongestLine = 579;

struct Generated {
    int returned;
    string line;
    bool operator==(const Generated&) const = default;
};

void PrintTo(const Generated& generated, std::ostream* out) {
    *out << "{returned " << generated.returned << ", \"" << generated.line << "\"}";
}

Generated Generate(const _BK_AT_CMD_T& command) {
    char line[kLineSize];
    memset(line, '#', sizeof line);
    const int returned = Bk_Generate_At_Cmd_Line(line, &command);
    if (returned != 0 || line[0] == '#') {
        for (const char byte : line)
            EXPECT_EQ(byte, '#');
        return {returned, "(untouched)"};
    }
    return {returned, string(line, strnlen(line, sizeof line))};
}

Generated Generate(uint16_t id, uint8_t type, const string& record = "") {
    _BK_AT_CMD_T command = {};
    command.usCmdID = id;
    command.ucCmdType = type;
    command.usParaLen = static_cast<uint16_t>(record.size());
    memcpy(command.aucParas, record.data(), record.size());
    return Generate(command);
}

const Generated kRefused = {1, "(untouched)"};

}  // namespace

TEST(Generate, NullArgumentsGiveZeroAndNothingIsWritten) {
    _BK_AT_CMD_T command = {};
    command.usCmdID = 0x0604;
    command.ucCmdType = AT_CMD_TYPE_EXEC;
    char line[kLineSize] = "before";
    EXPECT_EQ(Bk_Generate_At_Cmd_Line(nullptr, &command), 0);
    EXPECT_EQ(Bk_Generate_At_Cmd_Line(line, nullptr), 0);
    EXPECT_EQ(Bk_Generate_At_Cmd_Line(nullptr, nullptr), 0);
    EXPECT_STREQ(line, "before");
}

TEST(Generate, AttentionIsTheBareLine) {
    EXPECT_EQ(Generate(0x0001, AT_CMD_TYPE_EXEC), (Generated{0, "AT\r"}));
}

TEST(Generate, TypeChoosesTheSuffix) {
    EXPECT_EQ(Generate(0x0604, 1), (Generated{0, "AT+CSQ\r"}));
    EXPECT_EQ(Generate(0x0604, 2), (Generated{0, "AT+CSQ=\r"}));
    EXPECT_EQ(Generate(0x0604, 3), (Generated{0, "AT+CSQ?\r"}));
    EXPECT_EQ(Generate(0x0604, 4), (Generated{0, "AT+CSQ=?\r"}));
}

TEST(Generate, OtherTypesAreRefused) {
    for (const int type : {0, 5, 6, 127, 128, 255})
        EXPECT_EQ(Generate(0x0604, static_cast<uint8_t>(type)), kRefused) << type;
}

TEST(Generate, DebugLineIsTheNameAsItStands) {
    EXPECT_EQ(Generate(0x0559, 1), (Generated{0, "AT!=\"poweron\"\r"}));
    EXPECT_EQ(Generate(0x055B, 1),
              (Generated{0, "AT!=\"setDlParams target-rx-psd=-1500 min-backoff-adc=0\"\r"}));
}

TEST(Generate, ReportOnlyCommandIsRefused) {
    for (const int type : {1, 2, 3, 4, 5})
        EXPECT_EQ(Generate(0x0110, static_cast<uint8_t>(type)), kRefused) << type;
}

TEST(Generate, UnknownIdIsRefused) {
    for (const uint16_t id : std::initializer_list<uint16_t>{0x0000, 0x0102, 0x0400, 0x0648, 0xFFFF})
        EXPECT_EQ(Generate(id, 1), kRefused) << id;
}

TEST(Generate, DialEndsWithASemicolon) {
    EXPECT_EQ(Generate(0x0401, 1, "+441234"), (Generated{0, "ATD+441234;\r"}));
    EXPECT_EQ(Generate(0x0401, 1, ""), (Generated{0, "ATD;\r"}));
}

TEST(Generate, DialTakes35CharactersUpToTheFirstNul) {
    EXPECT_EQ(Generate(0x0401, 1, string(34, '7')).line, "ATD" + string(34, '7') + ";\r");
    EXPECT_EQ(Generate(0x0401, 1, string(35, '7')).line, "ATD" + string(35, '7') + ";\r");
    EXPECT_EQ(Generate(0x0401, 1, string(36, '7')).line, "ATD" + string(35, '7') + ";\r");
    EXPECT_EQ(Generate(0x0401, 1, string(632, '7')).line, "ATD" + string(35, '7') + ";\r");
    EXPECT_EQ(Generate(0x0401, 1,
                       string("12\0"
                              "34",
                              5))
                  .line,
              "ATD12;\r");
}

TEST(Generate, DialOfAnotherTypeIsTheBareLine) {
    EXPECT_EQ(Generate(0x0401, 2, "123").line, "ATD=\r");
    EXPECT_EQ(Generate(0x0401, 3, "123").line, "ATD?\r");
}

TEST(Generate, RecordOfTheWrongSizeGivesTheBareCommand) {
    EXPECT_EQ(Generate(0x0103, 2, "x").line, "AT+CPMS=\r");
    EXPECT_EQ(Generate(0x0106, 2, "abc").line, "AT+CMGL=\r");
    EXPECT_EQ(Generate(0x0106, 2, "abcde").line, "AT+CMGL=\r");
}

TEST(Generate, EveryRowTakesEveryTypeOrNone) {
    Platform().Reset();
    static constexpr const char* kSuffix[] = {"", "", "=", "?", "=?"};
    for (const AT_CMD_ITEM_T& row : g_astAtCmdTable) {
        for (uint8_t type = 1; type <= 4; ++type) {
            const Generated generated = Generate(row.usCmdID, type);
            if (row.pfnMakeCmd == nullptr) {
                EXPECT_EQ(generated, kRefused) << row.acCmdName;
                continue;
            }
            EXPECT_EQ(generated.returned, 0) << row.acCmdName;
            const string head = string("AT") + row.acCmdName + kSuffix[type];
            EXPECT_EQ(generated.line.substr(0, head.size()), head);
            EXPECT_EQ(generated.line.find('\r'), generated.line.size() - 1) << row.acCmdName;
            EXPECT_EQ(generated.line.find('\n'), string::npos) << row.acCmdName;
        }
        EXPECT_EQ(Generate(row.usCmdID, 0), kRefused);
        EXPECT_EQ(Generate(row.usCmdID, 5), kRefused);
    }
}

// Neither the length nor the content of a request is believed.
TEST(Generate, NoRequestMakesALineTooLong) {
    Platform().Reset();
    size_t longest = 0;
    for (const char* mode : {"KVX_LTE", ""}) {
        Platform().config["data_card_mode"] = mode;
        for (const AT_CMD_ITEM_T& row : g_astAtCmdTable) {
            for (const int fill : {0x78, 0xFF, 0x80, 0x00, 0x22}) {
                for (int length = 0; length <= 66'000; length += length < 700 ? 1 : 13'000) {
                    _BK_AT_CMD_T command;
                    memset(&command, fill, sizeof command);
                    command.usCmdID = row.usCmdID;
                    command.ucCmdType = AT_CMD_TYPE_SET;
                    command.usParaLen = static_cast<uint16_t>(length);
                    char line[kLineSize];
                    memset(line, '#', sizeof line);
                    if (Bk_Generate_At_Cmd_Line(line, &command) != 0) continue;
                    const size_t size = strnlen(line, sizeof line);
                    ASSERT_LE(size, kLongestLine) << row.acCmdName << " with " << length;
                    ASSERT_EQ(line[size - 1], '\r') << row.acCmdName << " with " << length;
                    longest = std::max(longest, size);
                }
            }
        }
    }
    EXPECT_GT(longest, 100u);
}
