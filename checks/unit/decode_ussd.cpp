#include <syslog.h>

#include "checks/support/log_capture.h"
#include "checks/unit/vectors.h"

namespace {

const std::string kFile = "/etc/cusd";

std::string Ussd(int32_t mode, const std::string& text, int32_t type) {
    return Bytes().I32(mode).Text(text, 816).I32(type).data;
}

// What a text makes of the file; the message carries the length alone.
std::string FileFor(const std::string& text) {
    StartWith(kModule);
    const Decoded got = Decode(0x0532, SET, text);
    if (Files().Content(kFile) == "(none)")
        EXPECT_TRUE(got.Untouched());
    else
        EXPECT_EQ(got.length, 824);
    EXPECT_EQ(got.paras.find_first_not_of('\xa5'), std::string::npos);
    EXPECT_TRUE(Logged("===>>Parse_CUSD_Res<<===", "atdecode"));
    return Files().Content(kFile);
}

}  // namespace

ENCODE_VECTOR(0x0532, Cusd, SetPrintsTheTextAsGiven) {
    EXPECT_EQ(Encoded(0x0532, SET, Bytes().I32(1).Text("\"*100#\"", 36).I32(15).data), "1,\"*100#\",15");
    EXPECT_EQ(Encoded(0x0532, SET, Bytes().I32(1).Text("", 36).I32(0).data), "1,,0");
}
ENCODE_VECTOR(0x0532, Cusd, SetOfTwoPrintsTwoAlone) {
    EXPECT_EQ(Encoded(0x0532, SET, Bytes().I32(2).Text("\"*100#\"", 36).I32(15).data), "2");
}

DECODE_VECTOR(0x0532, Cusd, TextAndScheme) {
    EXPECT_EQ(FileFor("0,\"Balance: 5\",15"), Ussd(0, "Balance: 5", 15));
    EXPECT_TRUE(Logged("Parse_CUSD_Res::tPara.mode=0, tPara.str=Balance: 5,  tPara.type=15", "atdecode"));
}
TEST(Cusd, TextWithCommasAndQuotesEndsAtTheLastQuote) {
    EXPECT_EQ(FileFor("1,\"a,\"b\",c\",72"), Ussd(1, "a,\"b\",c", 72));
    EXPECT_EQ(FileFor("1,\"a,b\""), Ussd(1, "a,b", 0));
}
TEST(Cusd, SchemeOfAtMostTwoCharacters) {
    EXPECT_EQ(FileFor("1,\"a\",123"), Ussd(1, "a", 12));
    EXPECT_EQ(FileFor("1,\"a\",7"), Ussd(1, "a", 7));
    EXPECT_EQ(FileFor("1,\"a\","), Ussd(1, "a", 0));
    EXPECT_EQ(FileFor("1,\"a\",x5"), Ussd(1, "a", 0));
    EXPECT_EQ(FileFor("1,\"a\", 15"), Ussd(1, "a", 1)) << "a blank is one of the two";
    EXPECT_EQ(FileFor("1,\"a,15b\""), Ussd(1, "a,15b", 15)) << "also inside the quotes";
}
TEST(Cusd, ModeAlone) {
    EXPECT_EQ(FileFor("2"), Ussd(2, "", 0));
    EXPECT_EQ(FileFor("99999999999"), Ussd(INT32_MAX, "", 0));
    EXPECT_EQ(FileFor("\"2\""), Ussd(0, "", 0));
    EXPECT_EQ(FileFor(""), Ussd(0, "", 0));
}
TEST(Cusd, ACommaWithoutQuotesGivesNothing) {
    EXPECT_EQ(FileFor("1,a,15"), "(none)");
    EXPECT_EQ(FileFor("1,\"a,15"), "(none)");
}
TEST(Cusd, OkGivesNothing) {
    EXPECT_EQ(FileFor("OK"), "(none)");
    EXPECT_TRUE(LoggedPart("Parse_CUSD_Res::pRes->aucParas="));
    EXPECT_EQ(FileFor("OK "), Ussd(0, "", 0)) << "near";
}
TEST(Cusd, TextLongerThanItsArray) {
    EXPECT_EQ(FileFor("1,\"" + std::string(815, 'x') + "\",15"), Ussd(1, std::string(815, 'x'), 15));
    EXPECT_EQ(FileFor("1,\"" + std::string(816, 'x') + "\",15"), Ussd(1, std::string(815, 'x'), 15));
}
TEST(Cusd, EmptyTextAndBlanks) {
    EXPECT_EQ(FileFor("0,\"\",15"), Ussd(0, "", 15));
    EXPECT_EQ(FileFor("0,\" a \t\",15"), Ussd(0, " a \t", 15)) << "raw";
    EXPECT_EQ(FileFor("0,\"a\";1,\"b\",72"), Ussd(0, "a\";1,\"b", 72));
}
TEST(Cusd, TheFileIsReplacedWhole) {
    StartWith(kModule);
    Decode(0x0532, SET, "1,\"a long text\",72");
    Decode(0x0532, SET, "2");
    EXPECT_EQ(Files().Content(kFile), Ussd(2, "", 0));
}
TEST(Cusd, SetOnly) {
    StartWith(kModule);
    for (uint8_t type : {EXEC, READ, TEST_})
        EXPECT_TRUE(Decode(0x0532, type, "2").Untouched());
}
TEST(Cusd, AFileThatCannotBeOpenedIsLogged) {
    StartWith(kModule);
    Files().refused = kFile;
    EXPECT_EQ(Decode(0x0532, SET, "0,\"a\",15").length, 824);
    EXPECT_TRUE(Logged("Parse_CUSD_Res open file failed.", "atdecode", LOG_CRIT));
}
