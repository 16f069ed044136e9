#include <stdio.h>
#include <stdlib.h>

#include "checks/support/log_capture.h"
#include "checks/unit/vectors.h"

// Lists that travel in files.

namespace {

const std::string kSmsFile = "/etc_rw/config/smsbak";
const std::string kCallFile = "/etc_rw/config/clcclist";

std::string Message(int32_t index, int32_t stat, const std::string& alpha, int32_t length,
                    const std::string& pdu) {
    return Bytes().I32(index).I32(stat).Text(alpha, 264).I32(length).Text(pdu, 356).data;
}

}  // namespace

// ---- +CMGL
// ---------------------------------------------------------------------------------------------------------

DECODE_VECTOR(0x0106, Cmgl, TwoMessages) {
    StartWith(kModule);
    const Decoded got = Decode(0x0106, SET, "1,1,\"A B\",23,\"0791AB\";2,0,,24,\"0792CD\"");
    EXPECT_EQ(got.length, 50564);
    EXPECT_EQ(got.paras[0], '\0');
    EXPECT_EQ(got.paras.find_first_not_of('\xa5', 1), std::string::npos);
    const std::string file = Files().Content(kSmsFile);
    ASSERT_EQ(file.size(), 50564U);
    EXPECT_EQ(file.substr(0, 4), Bytes().I32(2).data);
    EXPECT_EQ(file.substr(4, 632), Message(1, 1, "A B", 23, "0791AB"));
    EXPECT_EQ(file.substr(636, 632), Message(2, 0, "", 24, "0792CD"));
    EXPECT_EQ(file.find_first_not_of('\0', 4 + 2 * 632), std::string::npos);
    for (const char* text :
         {"tParasList.nCount=2", "the Reserved is not null", "the Reserved is null",
          "tPara.smslist[i].pdu=0792CD", "write to smsbak file OK, len=50564!", "BakSms OK!"})
        EXPECT_TRUE(Logged(text, "atdecode")) << text;
}
TEST(Cmgl, QuotedEmptyNameInBothModes) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        Decode(0x0106, SET, "1,1,\"\",23,\"0791AB\"");
        EXPECT_EQ(Files().Content(kSmsFile).substr(4, 632), Message(1, 1, "", 23, "0791AB")) << mode;
    }
}
// With other cards an empty field reads as the digit 9, which takes the place of the length.
TEST(Cmgl, MissingNameWithOtherCards) {
    StartWith(kOtherCard);
    Decode(0x0106, SET, "1,1,,23,\"0791AB\"");
    EXPECT_EQ(Files().Content(kSmsFile).substr(4, 632), Message(1, 1, "", 9, "23"));
}
TEST(Cmgl, NoMessages) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x0106, SET, "OK").length, 50564);
    EXPECT_EQ(Files().Content(kSmsFile), Bytes().Zeros(50564).data);
}
TEST(Cmgl, EightyOneAndAHundredAndOneMessagesGiveEighty) {
    for (int messages : {80, 81, 100, 101, 150}) {
        StartWith(kModule);
        std::string text;
        for (int i = 1; i <= messages; ++i)
            text += (i > 1 ? ";" : "") + std::to_string(i) + ",1,,20,\"AB\"";
        EXPECT_EQ(Decode(0x0106, SET, text).length, 50564);
        const std::string file = Files().Content(kSmsFile);
        ASSERT_EQ(file.size(), 50564U);
        EXPECT_EQ(file.substr(0, 4), Bytes().I32(80).data);
        EXPECT_EQ(file.substr(4 + 79 * 632, 632), Message(80, 1, "", 20, "AB"));
    }
}
TEST(Cmgl, ALineWithoutTwoCommasAbortsTheListing) {
    for (const char* text : {"1", "1,1", "1,1,,20,\"AB\";2,1", "x"}) {
        StartWith(kModule);
        EXPECT_TRUE(Decode(0x0106, SET, text).Untouched()) << text;
        EXPECT_EQ(Files().Content(kSmsFile), "(none)") << text;
    }
}
TEST(Cmgl, ALineThatDoesNotMatchIsListedWithWhatItHas) {
    StartWith(kModule);
    Decode(0x0106, SET, "x,y,z;5,,\"n\",7,\"AB\";6,1,\"n\";7,99999999999,\"n\",-99999999999,\"CD\"");
    EXPECT_EQ(Files().Content(kSmsFile).substr(0, 4 + 4 * 632),
              Bytes().I32(4).data + Message(0, 0, "", 0, "") + Message(5, 0, "", 0, "") +
                  Message(6, 1, "n", 0, "") + Message(7, INT32_MAX, "n", INT32_MIN, "CD"));
}
TEST(Cmgl, SeparatorsInsideQuotesAreText) {
    StartWith(kModule);
    Decode(0x0106, SET, "1,1,\"a;b,c\td\",20,\"AB\"");
    EXPECT_EQ(Files().Content(kSmsFile).substr(0, 636),
              Bytes().I32(1).data + Message(1, 1, "a;b,c\td", 20, "AB"));
}
TEST(Cmgl, TextsLongerThanTheirFields) {
    StartWith(kModule);
    Decode(0x0106, SET, "1,1,,20,\"" + std::string(400, 'A') + "\"");
    EXPECT_EQ(Files().Content(kSmsFile).substr(4, 632), Message(1, 1, "", 20, std::string(355, 'A')));
    Decode(0x0106, SET, "1,1,\"" + std::string(260, 'n') + "\",20,\"AB\"");
    EXPECT_EQ(Files().Content(kSmsFile).substr(4, 632), Message(1, 1, std::string(260, 'n'), 20, "AB"));
}
TEST(Cmgl, NothingOfAnEarlierListIsLeft) {
    StartWith(kModule);
    Decode(0x0106, SET, "1,1,\"name\",20,\"ABCDEF\";2,1,,20,\"ABCDEF\"");
    Decode(0x0106, SET, "7,0,,1,\"A\"");
    EXPECT_EQ(Files().Content(kSmsFile),
              Bytes().I32(1).data + Message(7, 0, "", 1, "A") + std::string(79 * 632, '\0'));
}
TEST(Cmgl, SetOnly) {
    StartWith(kModule);
    for (uint8_t type : {EXEC, READ, TEST_})
        EXPECT_TRUE(Decode(0x0106, type, "1,1,,20,\"AB\"").Untouched());
    EXPECT_EQ(Files().Content(kSmsFile), "(none)");
}
TEST(Cmgl, AShortWriteIsLoggedAndAnswered) {
    StartWith(kModule);
    Files().full = kSmsFile;
    EXPECT_EQ(Decode(0x0106, SET, "1,1,,20,\"AB\"").length, 50564);
    EXPECT_TRUE(Logged("write to smsbak file faild, len=0!", "atdecode"));
    EXPECT_TRUE(Logged("BakSms faild!", "atdecode"));
}
TEST(CmglDeathTest, AFileThatCannotBeOpenedEndsTheProcess) {
    StartWith(kModule);
    Files().refused = kSmsFile;
    const auto decode = [] {
        atexit([] { fputs(LoggedLines().back().text.c_str(), stderr); });
        Decode(0x0106, SET, "1,1,,20,\"AB\"");
    };
    EXPECT_EXIT(decode(), testing::ExitedWithCode(1), "fopen\\( /etc_rw/config/smsbak , 'w\\+'\\) error!$");
}

// ---- +CLCC
// ---------------------------------------------------------------------------------------------------------

namespace {

std::string Call(int32_t id, const std::string& number, int32_t type, int32_t extra1 = 0,
                 int32_t extra2 = 0) {
    return Bytes()
        .I32(id)
        .I32(1)
        .I32(0)
        .I32(0)
        .I32(0)
        .Text(number, 32)
        .I32(type)
        .I32(extra1)
        .I32(extra2)
        .data;
}

}  // namespace

DECODE_VECTOR(0x0518, Clcc, ReadCarriesWhatFitsAMessage) {
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        const Decoded got = Decode(0x0518, READ, "1,1,0,0,0,\"10086\",129;2,1,0,0,0,\"+4912\",145,3,4");
        EXPECT_EQ(got.length, 1284);
        EXPECT_EQ(got.paras, (Bytes().I32(2).data + Call(1, "10086", 129) + Call(2, "+4912", 145, 3, 4) +
                              std::string(634 - 132, '\0')));
        EXPECT_EQ(Files().Content(kCallFile), "(none)");
    }
}
DECODE_VECTOR(0x0518, Clcc, ExecWritesTheFile) {
    StartWith(kModule);
    const Decoded got = Decode(0x0518, EXEC, "1,1,0,0,0,\"10086\",129");
    EXPECT_EQ(got.length, 1284);
    EXPECT_EQ(got.paras.find_first_not_of('\xa5'), std::string::npos);
    EXPECT_EQ(Files().Content(kCallFile),
              Bytes().I32(1).data + Call(1, "10086", 129) + std::string(19 * 64, '\0'));
}
TEST(Clcc, ExecWithoutCallsWritesNoFile) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x0518, EXEC, "OK").length, 1284);
    EXPECT_EQ(Files().Content(kCallFile), "(none)");
}
TEST(Clcc, ReadWithoutCalls) {
    EXPECT_EQ(Decode(0x0518, READ, "OK").paras, std::string(634, '\0'));
}
TEST(Clcc, TwentyCallsAtMost) {
    for (int calls : {20, 21, 101}) {
        StartWith(kModule);
        std::string text;
        for (int i = 1; i <= calls; ++i)
            text += (i > 1 ? ";" : "") + std::to_string(i) + ",1,0,0,0,\"1\",129";
        Decode(0x0518, EXEC, text);
        const std::string file = Files().Content(kCallFile);
        ASSERT_EQ(file.size(), 1284U);
        EXPECT_EQ(file.substr(0, 4), Bytes().I32(20).data);
        EXPECT_EQ(file.substr(4 + 19 * 64), Call(20, "1", 129));
    }
}
TEST(Clcc, ANumberOfThirtyTwoDigitsIsCut) {
    StartWith(kModule);
    EXPECT_EQ(Decode(0x0518, READ, "1,1,0,0,0,\"" + std::string(31, '5') + "\",129").paras.substr(4, 64),
              Call(1, std::string(31, '5'), 129));
    EXPECT_EQ(Decode(0x0518, READ, "1,1,0,0,0,\"" + std::string(32, '5') + "\",129").paras.substr(4, 64),
              Call(1, std::string(31, '5'), 5, 129));
}
TEST(Clcc, SetAndTestAreNotServed) {
    EXPECT_TRUE(Decode(0x0518, SET, "1,1,0,0,0,\"1\",129").Untouched());
    EXPECT_TRUE(Decode(0x0518, TEST_, "1,1,0,0,0,\"1\",129").Untouched());
}
TEST(Clcc, AFileThatCannotBeOpenedIsLogged) {
    StartWith(kModule);
    Files().refused = kCallFile;
    EXPECT_EQ(Decode(0x0518, EXEC, "1,1,0,0,0,\"1\",129").length, 1284);
    EXPECT_TRUE(Logged("Parse_CLCC_Rsp open file failed.", "atdecode"));
}
