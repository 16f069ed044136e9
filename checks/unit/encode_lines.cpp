#include <string.h>

#include "checks/unit/vectors.h"
#include "codec/atcode.h"

// Whole lines of messages, phonebook, calls and toolkit, as the modem reads them. Odd ones are pinned: the
// modems of the field know them.

namespace {

std::string Line(uint16_t id, uint8_t type, const std::string& record = "") {
    StartWith(kModule);
    _BK_AT_CMD_T request = {};
    request.usCmdID = id;
    request.ucCmdType = type;
    request.usParaLen = static_cast<uint16_t>(record.size());
    memcpy(request.aucParas, record.data(), record.size());
    char line[1024] = "(not written)";
    Bk_Generate_At_Cmd_Line(line, &request);
    return line;
}

}  // namespace

TEST(Line, ARecordOfTheWrongSizeLeavesTheBareLine) {  // pinned
    EXPECT_EQ(Line(0x0103, SET, std::string(29, 'S')), "AT+CPMS=\r");
    EXPECT_EQ(Line(0x0103, SET, std::string(31, 'S')), "AT+CPMS=\r");
    EXPECT_EQ(Line(0x0108, SET, std::string(503, '1')), "AT+CMGS=\r");
    EXPECT_EQ(Line(0x0204, SET, std::string(219, '1')), "AT+CPBW=\r");
    EXPECT_EQ(Line(0x052B, SET, std::string(53, '1')), "AT+CCFC=\r");
    EXPECT_EQ(Line(0x0631, SET, std::string(161, '1')), "AT+ZUTR=\r");
}
TEST(Line, AReadIgnoresTheRecord) {
    EXPECT_EQ(Line(0x0103, READ, std::string(30, 'S')), "AT+CPMS?\r");
    EXPECT_EQ(Line(0x0201, READ, std::string(20, 'S')), "AT+CPBS?\r");
    EXPECT_EQ(Line(0x052C, READ, std::string(8, '1')), "AT+CCWA?\r");
    EXPECT_EQ(Line(0x0202, TEST_, std::string(8, '1')), "AT+CPBR=?\r");
}
TEST(Line, ADeletionHasABlankBehindTheComma) {  // pinned
    EXPECT_EQ(Line(0x010B, SET, Bytes().I32(3).I32(0).data), "AT+CMGD=3, 0\r");
}
TEST(Line, ZcallIsAlwaysBare) {  // pinned
    EXPECT_EQ(Line(0x0525, SET, "1"), "AT+ZCALL=\r");
    EXPECT_EQ(Line(0x0525, SET, "12"), "AT+ZCALL=\r");
    EXPECT_EQ(Line(0x0525, READ, "1"), "AT+ZCALL?\r");
}
TEST(Line, TheEndOfAUssdDialogue) {  // pinned
    EXPECT_EQ(Line(0x0532, SET, Bytes().I32(2).Text("\"*100#\"", 36).I32(15).data), "AT+CUSD=2\r");
}
TEST(Line, APhonebookEntryIsDeleted) {
    EXPECT_EQ(Line(0x0204, SET, Bytes().I32(5).Zeros(216).data), "AT+CPBW=5\r");
    EXPECT_EQ(Line(0x0204, SET, Bytes().Zeros(220).data), "AT+CPBW=\r");
}
TEST(Line, APhonebookEntryInTheFirstFreePlace) {
    EXPECT_EQ(Line(0x0204, SET, Bytes().I32(0).Text("4912", 84).I32(0).Text("Ann", 128).data),
              "AT+CPBW=,\"4912\",,\"Ann\"\r");
}
TEST(Line, AForwardingRegistration) {  // pinned: the number stands unquoted
    EXPECT_EQ(Line(0x052B, SET, Bytes().I32(2).I32(3).Text("+4912", 32).I32(129).I32(1).I32(20).data),
              "AT+CCFC=2,3,+4912,145,1,0,0,20\r");
}
TEST(Line, TheLongestParameters) {
    const std::string line = Line(0x070B, SET, Bytes().I32(1).data + std::string(512, 'x'));
    EXPECT_EQ(line, "AT+ZINPR=1," + std::string(509, 'x') + "\r");
}
