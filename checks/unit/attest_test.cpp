#include "test/attest.h"

#include <gtest/gtest.h>
#include <string.h>
#include <syslog.h>

#include <memory>

#include "checks/support/fake_platform.h"
#include "checks/support/log_capture.h"
#include "checks/support/work_directory.h"
#include "records/state.h"

namespace {

const std::string kReceived = "\r\n+FROM: modem\r\n\r\nOK\r\n";

// What the four built-in reports begin with.
const std::string kCmti = "\r\n+CMTI: \"SM\",8\r\n";
const std::string kCdsi = "\r\n+CDSI: \"SR\",51\r\n";
const std::string kCbm = "\r\n+CBM: 100\r\n";
const std::string kZvmail = "\r\n+ZVMAIL: 1\r\n";

class AtTest : public testing::Test {
  protected:
    void SetUp() override {
        Platform().Reset();
        Platform().config["AT_Test"] = "on";
        ClearLog();
        ClearPendingRequest();
        memset(g_cmd_str, 0, sizeof g_cmd_str);
        g_at_test_progress = {0, 1};
        out_ = std::make_unique<char[]>(kTestOutputSize);
    }
    void TearDown() override { ClearPendingRequest(); }

    void Pending(uint16_t id, uint8_t type) {
        g_at_msg.lMsgType = 1;
        PendingRequest()->usCmdID = id;
        PendingRequest()->ucCmdType = type;
    }
    void PendingIndex(int32_t index) { memcpy(PendingRequest()->aucParas, &index, sizeof index); }
    void NoReportsLeft() { g_at_test_progress.next_builtin = 4; }
    void Line(const std::string& line) {
        ASSERT_LT(line.size(), sizeof g_cmd_str);
        strcpy(g_cmd_str, line.c_str());
    }
    void Ini(const std::string& content) { directory_.Write("etc_rw/config/AT_Test.ini", content); }

    std::string Run(const std::string& received = kReceived) {
        memset(out_.get(), 'x', kTestOutputSize);
        TestForAtResponse(received.c_str(), out_.get());
        return out_.get();
    }

    WorkDirectory directory_;
    std::unique_ptr<char[]> out_;
};

std::string Transformed(std::string text) {
    text.resize(kIniLineSize);
    EXPECT_EQ(TransformATResString(text.data()), 0);
    return text.c_str();
}

// The octets of a text of hexadecimal digits.
std::vector<unsigned> Octets(const std::string& hex) {
    EXPECT_EQ(hex.size() % 2, 0U);
    EXPECT_EQ(hex.find_first_not_of("0123456789ABCDEF"), std::string::npos);
    std::vector<unsigned> octets;
    for (size_t i = 0; i + 1 < hex.size(); i += 2)
        octets.push_back(static_cast<unsigned>(std::stoul(hex.substr(i, 2), nullptr, 16)));
    return octets;
}

// The line behind the first one that begins with `head`.
std::string LineAfter(const std::string& text, const std::string& head) {
    size_t at = text.find(head);
    if (at == std::string::npos) return "";
    at = text.find("\r\n", at) + 2;
    return text.substr(at, text.find("\r\n", at) - at);
}

// All that was logged, in order; all of it for debugging.
std::vector<std::string> DebugLines() {
    std::vector<std::string> texts;
    for (const LogLine& line : LoggedLines()) {
        EXPECT_EQ(line.module, "attest");
        EXPECT_EQ(line.level, LOG_DEBUG);
        texts.push_back(line.text);
    }
    return texts;
}

// --- switched off ----------------------------------------------------------------------------------------

TEST_F(AtTest, OffHandsOnWhatWasReceived) {
    Pending(0x0604, AT_CMD_TYPE_EXEC);
    for (const char* setting : {"off", "", "ON", "on "}) {
        Platform().config["AT_Test"] = setting;
        EXPECT_EQ(Run(), kReceived);
        EXPECT_EQ(AtResponseText(kReceived.c_str(), out_.get()), kReceived.c_str());
    }
    Platform().config.erase("AT_Test");
    EXPECT_EQ(Run(), kReceived);
    EXPECT_TRUE(Logged("MakeAtResponse  off\n", "attest", LOG_DEBUG));
    EXPECT_EQ(g_at_test_progress.next_builtin, 0);
}

TEST_F(AtTest, OffDoesNotTouchTheOutput) {
    Platform().config["AT_Test"] = "off";
    out_[0] = 'x';
    EXPECT_EQ(AtResponseText(kReceived.c_str(), out_.get()), kReceived.c_str());
    EXPECT_EQ(out_[0], 'x');
}

TEST_F(AtTest, OnAnswersInTheOutput) {
    Pending(0x0604, AT_CMD_TYPE_TEST);
    EXPECT_EQ(AtResponseText(kReceived.c_str(), out_.get()), out_.get());
    EXPECT_EQ(std::string(out_.get()), "AT+CSQ=?\r\nOK\r\n" + kCmti);
}

TEST_F(AtTest, NullArgumentsDoNothing) {
    out_[0] = 'x';
    TestForAtResponse(nullptr, out_.get());
    EXPECT_EQ(AtResponseText(nullptr, out_.get()), nullptr);
    EXPECT_EQ(out_[0], 'x');
    TestForAtResponse("abc", nullptr);
    EXPECT_TRUE(LoggedLines().empty());
}

TEST_F(AtTest, WholeReadFitsTheOutputWithAReportBehindIt) {
    std::string received(kModemTextSize - 1, 'a');
    EXPECT_EQ(Run(received), received + kCmti);
    Platform().config["AT_Test"] = "off";
    EXPECT_EQ(Run(received), received);
}

TEST_F(AtTest, ReceivedTextThatIsTooLongIsCut) {
    std::string received(kTestOutputSize + 100, 'a');
    EXPECT_EQ(Run(received), received.substr(0, kTestOutputSize - 1));
    Platform().config["AT_Test"] = "off";
    EXPECT_EQ(Run(received), received.substr(0, kTestOutputSize - 1));
}

// --- the built-in list -----------------------------------------------------------------------------------

TEST_F(AtTest, ExecuteOfCsqAndOneReportWithEachOfTheFirstFourChunks) {
    Pending(0x0604, AT_CMD_TYPE_EXEC);
    const std::string answer = "AT+CSQ \r\n+CSQ:20,60\r\n\r\nOK\r\n";
    EXPECT_EQ(Run(), answer + kCmti);
    EXPECT_EQ(Run(), answer + kCdsi);
    std::string third = Run();
    EXPECT_EQ(third.substr(0, answer.size() + kCbm.size()), answer + kCbm);
    EXPECT_EQ(Run(), answer + kZvmail);
    EXPECT_EQ(Run(), answer);
    EXPECT_EQ(Run(), answer);
}

TEST_F(AtTest, StepsAreLogged) {
    Pending(0x0604, AT_CMD_TYPE_EXEC);
    Run();
    EXPECT_EQ(DebugLines(), (std::vector<std::string>{
                                "MakeAtResponse  On\n",
                                "====================BEGIN==================!\n",
                                "Open AT_Test.ini file error and make AT Res from list!\n",
                                "tAtRes->usCmdID= 0x0604 OK!\n",
                                "AT_CMD_TYPE_EXEC======\n",
                                "MakeAtRes .........AT+CSQ \r\n+CSQ:20,60\r\n\r\nOK\r\n\n",
                                "MakeAutoAtRes .........\r\n+CMTI: \"SM\",8\r\n\n",
                                "=====================END=====================!\n",
                            }));
}

TEST_F(AtTest, TypeOfARequestInTheListIsLoggedByItsName) {
    struct {
        uint8_t type;
        const char* line;
    } const types[] = {
        {AT_CMD_TYPE_EXEC, "AT_CMD_TYPE_EXEC======\n"},
        {AT_CMD_TYPE_SET, "AT_CMD_TYPE_SET======\n"},
        {AT_CMD_TYPE_READ, "AT_CMD_TYPE_READ======\n"},
        {AT_CMD_TYPE_TEST, "AT_CMD_TYPE_TEST======\n"},
    };
    for (const auto& requested : types) {
        ClearLog();
        Pending(0x0509, requested.type);
        Run();
        for (const auto& named : types)
            EXPECT_EQ(Logged(named.line, "attest", LOG_DEBUG), named.type == requested.type) << named.line;
    }
}

TEST_F(AtTest, EveryAnswerOfTheList) {
    struct {
        uint16_t id;
        uint8_t type;
        const char* text;
    } const answers[] = {
        {0x0509, AT_CMD_TYPE_SET, "AT+ZSNT=1,0,0\r\nOK\r\n"},
        {0x0509, AT_CMD_TYPE_READ, "AT+ZSNT?\r\n+ZSNT:1,0,0\r\n\r\nOK\r\n"},
        {0x0509, AT_CMD_TYPE_TEST, "AT+ZSNT=?\r\nOK\r\n"},
        {0x0507, AT_CMD_TYPE_READ,
         "AT+ZDON?\r\n+ZDON:\"test1\",460,1,\"test2\",460,2,\"ROAM_ON\"\r\n\r\nOK\r\n"},
        {0x0604, AT_CMD_TYPE_EXEC, "AT+CSQ \r\n+CSQ:20,60\r\n\r\nOK\r\n"},
        {0x0604, AT_CMD_TYPE_TEST, "AT+CSQ=?\r\nOK\r\n"},
        {0x050B, AT_CMD_TYPE_READ, "AT+ZPAS?\r\n+ZPAS:\"UMTS\",\"CS_PS\"\r\nOK\r\n"},
        {0x0526, AT_CMD_TYPE_READ, "AT+ZLACELLID?\r::\r\n1,0,0\r\n"},
        {0x0601, AT_CMD_TYPE_READ, "AT+ZRSSI?\r\n(25,90),(20/60)\r\n\r\nOK\r\n"},
    };
    NoReportsLeft();
    for (const auto& answer : answers) {
        Pending(answer.id, answer.type);
        EXPECT_EQ(Run(), answer.text);
    }
}

TEST_F(AtTest, EmptyAnswerReplacesTheReceivedText) {
    Pending(0x0604, AT_CMD_TYPE_READ);
    EXPECT_EQ(Run(), kCmti);
    NoReportsLeft();
    EXPECT_EQ(Run(), "");
    EXPECT_TRUE(Logged("AT_CMD_TYPE_READ======\n", "attest", LOG_DEBUG));
    EXPECT_TRUE(Logged("MakeAtRes .........\n", "attest", LOG_DEBUG));
}

TEST_F(AtTest, TypeOutsideTheFourIsAnEmptyAnswerToo) {
    NoReportsLeft();
    for (uint8_t type : {uint8_t{0}, uint8_t{5}, uint8_t{255}}) {
        Pending(0x0604, type);
        EXPECT_EQ(Run(), "");
    }
    EXPECT_FALSE(LoggedPart("AT_CMD_TYPE_"));
}

TEST_F(AtTest, RequestThatIsNotInTheListKeepsTheReceivedText) {
    Pending(0x0605, AT_CMD_TYPE_EXEC);
    EXPECT_EQ(Run(), kReceived + kCmti);
    EXPECT_TRUE(Logged("Don't find at Response!\n", "attest", LOG_DEBUG));
    EXPECT_TRUE(Logged("No AT Response Maked\n", "attest", LOG_DEBUG));
}

TEST_F(AtTest, NothingPendingKeepsTheReceivedText) {
    EXPECT_EQ(Run(), kReceived + kCmti);
    EXPECT_TRUE(Logged("tAtRes->usCmdID= 0x0000 OK!\n", "attest", LOG_DEBUG));
}

TEST_F(AtTest, MessageEightIsADeliverOfSixtyOctets) {
    NoReportsLeft();
    Pending(0x0107, AT_CMD_TYPE_SET);
    PendingIndex(8);
    std::string text = Run();
    EXPECT_EQ(text.substr(0, 16), "\r\n+CMGR: 0,,60\r\n");
    EXPECT_EQ(text.substr(text.size() - 8), "\r\n\r\nOK\r\n");
    std::vector<unsigned> pdu = Octets(LineAfter(text, "+CMGR: "));
    const size_t at = 1 + pdu[0];  // behind the service centre's address
    ASSERT_EQ(pdu.size() - at, 60U);
    EXPECT_EQ(pdu[at] & 3U, 0U);         // SMS-DELIVER
    EXPECT_EQ(pdu[at + 1], 10U);         // digits of the sender
    EXPECT_EQ(pdu[at + 9], 8U);          // UCS2
    const size_t length = pdu[at + 17];  // octets of text
    ASSERT_EQ(at + 18 + length, pdu.size());
    std::u16string said;
    for (size_t i = at + 18; i + 1 < pdu.size(); i += 2)
        said.push_back(static_cast<char16_t>(pdu[i] << 8 | pdu[i + 1]));
    EXPECT_EQ(said, u"Caf\u00e9 is open now \u2014 \u4f60\u597d");
}

TEST_F(AtTest, MessageFiftyOneIsAStatusReportOfTwentySixOctets) {
    NoReportsLeft();
    Pending(0x0107, AT_CMD_TYPE_SET);
    PendingIndex(51);
    std::string text = Run();
    EXPECT_EQ(text.substr(0, 15), "\r\n+CMGR: ,,26\r\n");
    EXPECT_EQ(text.substr(text.size() - 8), "\r\n\r\nOK\r\n");
    std::vector<unsigned> pdu = Octets(LineAfter(text, "+CMGR: "));
    const size_t at = 1 + pdu[0];
    ASSERT_EQ(pdu.size() - at, 26U);
    EXPECT_EQ(pdu[at] & 3U, 2U);                     // SMS-STATUS-REPORT
    const size_t address = (pdu[at + 2] + 1U) / 2U;  // octets of the recipient's digits
    EXPECT_EQ(4 + address + 7 + 7 + 1 + 1, 26U);     // both time stamps, status, parameter indicator
    EXPECT_EQ(pdu[at + 4 + address + 14], 0U);       // received by the recipient
    EXPECT_EQ(pdu[at + 4 + address + 15], 0U);       // nothing follows
}

TEST_F(AtTest, BroadcastReportHasAHundredOctets) {
    g_at_test_progress.next_builtin = 2;
    std::string text = Run("");
    EXPECT_EQ(text.substr(0, kCbm.size()), kCbm);
    std::vector<unsigned> page = Octets(LineAfter(text, "+CBM: "));
    ASSERT_EQ(page.size(), 100U);
    EXPECT_EQ(text.size(), kCbm.size() + 200 + 2);
    EXPECT_EQ(page[4], 0x01U);  // 7-bit text, English
    EXPECT_EQ(page[5], 0x11U);  // page 1 of 1
    std::string said;
    unsigned bits = 0, count = 0;
    for (size_t i = 6; i < page.size(); i++) {
        bits |= page[i] << count;
        for (count += 8; count >= 7; count -= 7, bits >>= 7)
            said.push_back(static_cast<char>(bits & 0x7f));
    }
    EXPECT_EQ(said.size(), 107U);
    EXPECT_EQ(
        said.substr(0, said.find('\r')),
        "Test broadcast: heavy snow is expected on all mountain roads tonight, please drive with care.");
    EXPECT_EQ(said.find_last_not_of('\r'), said.find('\r') - 1);
}

TEST_F(AtTest, OtherIndexesAndTypesOfCmgrAreNotInTheList) {
    NoReportsLeft();
    Pending(0x0107, AT_CMD_TYPE_SET);
    for (int32_t index : {0, 7, 9, 50, 52, 0x08000000}) {
        PendingIndex(index);
        EXPECT_EQ(Run(), kReceived);
    }
    PendingIndex(8);
    Pending(0x0107, AT_CMD_TYPE_READ);
    EXPECT_EQ(Run(), kReceived);
}

// --- the file --------------------------------------------------------------------------------------------

TEST_F(AtTest, FileAnswersTheLastLine) {
    Ini("[AT_TEST]\nAT_ITEM_REQUEST_NUM=1\n[REQUESTRES]\nAT_ITEM1=AT+CSQ::+CSQ: 5,99\\r\\n\\r\\nOK\\r\\n\n");
    Line("AT+CSQ\r");
    EXPECT_EQ(Run(), "+CSQ: 5,99\r\n\r\nOK\r\n");
    EXPECT_TRUE(
        Logged("Open AT_Test.ini file success and make AT Res from ini file!\n", "attest", LOG_DEBUG));
    EXPECT_TRUE(Logged(">>>>>>Request Num:1<<<<<<\n", "attest", LOG_DEBUG));
    EXPECT_TRUE(Logged("Find the request at response!\n", "attest", LOG_DEBUG));
    EXPECT_TRUE(Logged("Resqust str=+CSQ: 5,99\r\n\r\nOK\r\n\n", "attest", LOG_DEBUG));
    EXPECT_TRUE(Logged("No auto response cat\n", "attest", LOG_DEBUG));
    EXPECT_EQ(g_at_test_progress.next_builtin, 0);
}

TEST_F(AtTest, MissingReportCountIsNotLogged) {
    Ini("[AT_TEST]\nAT_ITEM_REQUEST_NUM=1\n[REQUESTRES]\nAT_ITEM1=AT+CSQ::OK\\r\\n\n");
    Line("AT+CSQ\r");
    EXPECT_EQ(Run(), "OK\r\n");
    EXPECT_EQ(DebugLines(), (std::vector<std::string>{
                                "MakeAtResponse  On\n",
                                "====================BEGIN==================!\n",
                                "Open AT_Test.ini file success and make AT Res from ini file!\n",
                                ">>>>>>Request Num:1<<<<<<\n",
                                "Find the request at response!\n",
                                "Resqust str=OK\r\n\n",
                                "No auto response cat\n",
                                "=====================END=====================!\n",
                            }));
}

TEST_F(AtTest, FileIsReadAnewForEachChunk) {
    Line("AT\r");
    Ini("[AT_TEST]\nAT_ITEM_REQUEST_NUM=1\n[REQUESTRES]\nAT_ITEM1=AT::one\n");
    EXPECT_EQ(Run(), "one");
    Ini("[AT_TEST]\nAT_ITEM_REQUEST_NUM=1\n[REQUESTRES]\nAT_ITEM1=AT::two\n");
    EXPECT_EQ(Run(), "two");
}

TEST_F(AtTest, LastItemLineWithoutNewlineLosesOnlyTheRepeatedCharacter) {
    Ini("[AT_TEST]\nAT_ITEM_REQUEST_NUM=1\n[REQUESTRES]\nAT_ITEM1=AT+CSQ::OK\\r\\n");
    Line("AT+CSQ\r");
    EXPECT_EQ(Run(), "OK\r\n");
}

TEST_F(AtTest, FirstItemThatContainsTheLineWins) {
    Ini("[AT_TEST]\nAT_ITEM_REQUEST_NUM=3\n[REQUESTRES]\n"
        "AT_ITEM1=AT+CGMR::one\nAT_ITEM2=AT+CSQ=?::two\nAT_ITEM3=AT+CSQ::three\n");
    Line("AT+CSQ\r");
    EXPECT_EQ(Run(), "::two");  // the offset counts from the item's start
    Line("AT+CGMR\r");
    EXPECT_EQ(Run(), "one");
}

TEST_F(AtTest, LineInTheMiddleOfAnItemCounts) {
    Ini("[AT_TEST]\nAT_ITEM_REQUEST_NUM=1\n[REQUESTRES]\nAT_ITEM1=0123456789AT+X\n");
    Line("AT+X\r");
    EXPECT_EQ(Run(), "6789AT+X");
}

TEST_F(AtTest, LineWithQuotesIsLookedForPlainly) {
    Ini("[AT_TEST]\nAT_ITEM_REQUEST_NUM=1\n[REQUESTRES]\nAT_ITEM1=AT+CPIN=\"1234\"::OK\\r\\n\n");
    Line("AT+CPIN=\"1234\"\r");
    EXPECT_EQ(Run(), "OK\r\n");
}

TEST_F(AtTest, ItemsBeyondTheCountAreNotLookedAt) {
    Ini("[AT_TEST]\nAT_ITEM_REQUEST_NUM=1\n[REQUESTRES]\nAT_ITEM1=ATA::one\nAT_ITEM2=AT+CSQ::two\n");
    Line("AT+CSQ\r");
    EXPECT_EQ(Run(), kReceived);
    EXPECT_TRUE(Logged("No Resqust be found!\n", "attest", LOG_DEBUG));
}

TEST_F(AtTest, MissingItemsAreSkippedAndDoNotRepeatTheOneBefore) {
    Ini("[AT_TEST]\nAT_ITEM_REQUEST_NUM=4\n[REQUESTRES]\nAT_ITEM1=ATA::one\nAT_ITEM4=AT+CSQ::four\n");
    Line("AT+CSQ\r");
    EXPECT_EQ(Run(), "four");
}

TEST_F(AtTest, NoRequestCount) {
    Ini("[REQUESTRES]\nAT_ITEM1=AT+CSQ::one\n");
    Line("AT+CSQ\r");
    EXPECT_EQ(Run(), kReceived);
    EXPECT_TRUE(Logged("find the AT_ITEM_REQUEST_NUM key error\n", "attest", LOG_ERR));
    EXPECT_TRUE(Logged("No Resqust be found!\n", "attest", LOG_DEBUG));
    EXPECT_FALSE(LoggedPart("Request Num"));
    EXPECT_FALSE(LoggedPart("Auto Num"));
    EXPECT_FALSE(LoggedPart("AT_ITEM_AUTO_NUM"));
}

TEST_F(AtTest, CountThatIsTooLargeIsClamped) {
    Ini("[AT_TEST]\nAT_ITEM_REQUEST_NUM=2000000000\nAT_ITEM_AUTO_NUM=99999999999\n");
    Line("AT+CSQ\r");
    EXPECT_EQ(Run(), kReceived);
    EXPECT_TRUE(Logged(">>>>>>Request Num:10000<<<<<<\n"));
    EXPECT_TRUE(Logged(">>>>>>Auto Num:10000<<<<<<\n"));
    EXPECT_EQ(g_at_test_progress.next_item, 10'001);
}

TEST_F(AtTest, NegativeCountIsNone) {
    Ini("[AT_TEST]\nAT_ITEM_REQUEST_NUM=-1\nAT_ITEM_AUTO_NUM=-1\n[REQUESTRES]\nAT_ITEM1=AT+CSQ::one\n");
    Line("AT+CSQ\r");
    EXPECT_EQ(Run(), kReceived);
    EXPECT_EQ(g_at_test_progress.next_item, 1);
}

TEST_F(AtTest, NoLastLineIsNotFound) {
    Ini("[AT_TEST]\nAT_ITEM_REQUEST_NUM=1\n[REQUESTRES]\nAT_ITEM1=AT+CSQ::one\n");
    for (const char* line : {"", "\r"}) {
        Line(line);
        EXPECT_EQ(Run(), kReceived);
    }
    EXPECT_FALSE(LoggedPart("Find the request"));
}

TEST_F(AtTest, ItemThatEndsBeforeItsAnswerIsAnEmptyAnswer) {
    Ini("[AT_TEST]\nAT_ITEM_REQUEST_NUM=1\n[REQUESTRES]\nAT_ITEM1AT+CSQ");
    Line("AT+CSQ\r");
    EXPECT_EQ(Run(), "");
    EXPECT_TRUE(Logged("Resqust str=\n", "attest", LOG_DEBUG));
}

TEST_F(AtTest, UnterminatedLastLineIsBounded) {
    Ini("[AT_TEST]\nAT_ITEM_REQUEST_NUM=1\n[REQUESTRES]\nAT_ITEM1=AT+CSQ::one\n");
    memset(g_cmd_str, 'A', sizeof g_cmd_str);
    EXPECT_EQ(Run(), kReceived);
}

TEST_F(AtTest, FileReceivedTextLongerThanALineIsHandedOnWhole) {
    Ini("[AT_TEST]\nAT_ITEM_AUTO_NUM=1\n[AUTORES]\nAT_ITEM1=\\r\\n+CMTI: \"SM\",1\\r\\n\n");
    std::string received(kModemTextSize - 1, 'a');
    EXPECT_EQ(Run(received), received + "\r\n+CMTI: \"SM\",1\r\n");
}

TEST_F(AtTest, EachReportOfTheFileIsUsedOnce) {
    Ini("[AT_TEST]\nAT_ITEM_AUTO_NUM=3\n[AUTORES]\nAT_ITEM1=\\r\\nRING\\r\\n\nAT_ITEM3=\\r\\nSTOP\\r\\n\n");
    EXPECT_EQ(Run(), kReceived + "\r\nRING\r\n");
    EXPECT_TRUE(Logged(">>>>>>Auto Num:3<<<<<<\n", "attest", LOG_DEBUG));
    EXPECT_TRUE(Logged("+strAuto=\r\nRING\r\n\n", "attest", LOG_DEBUG));
    EXPECT_EQ(Run(), kReceived + "\r\nSTOP\r\n");
    EXPECT_EQ(Run(), kReceived);
    EXPECT_TRUE(Logged("No auto response cat\n", "attest", LOG_DEBUG));
    EXPECT_EQ(g_at_test_progress.next_item, 4);
}

TEST_F(AtTest, ReportShorterThanThreeCharactersIsPassedOver) {
    Ini("[AT_TEST]\nAT_ITEM_AUTO_NUM=3\n[AUTORES]\nAT_ITEM1\nAT_ITEM2x\nAT_ITEM3xy\n");
    EXPECT_EQ(Run(), kReceived + "xy");
}

TEST_F(AtTest, FileWithoutSectionsHandsOnWhatWasReceived) {
    Ini("AT_ITEM_REQUEST_NUM=1\nAT_ITEM_AUTO_NUM=1\nAT_ITEM1=AT+CSQ::one\n");
    Line("AT+CSQ\r");
    EXPECT_EQ(Run(), kReceived);
}

TEST_F(AtTest, LongestItem) {
    // AT_ITEM1= and the newline make it a line of 1023 characters
    std::string item = "AT+CSQ::" + std::string(kIniLineSize - 1 - 10 - 8, 'v');
    Ini("[AT_TEST]\nAT_ITEM_REQUEST_NUM=1\n[REQUESTRES]\nAT_ITEM1=" + item + "\n");
    Line("AT+CSQ\r");
    EXPECT_EQ(Run(), item.substr(8));
}

// --- escapes ---------------------------------------------------------------------------------------------

TEST(TransformATResString, Escapes) {
    EXPECT_EQ(Transformed("a\\r\\nb\n"), "a\r\nb");
    EXPECT_EQ(Transformed("\\n\\r\n"), "\n\r");
}

TEST(TransformATResString, BackslashBeforeAnythingElseStays) {
    EXPECT_EQ(Transformed("a\\xb\n"), "a\\xb");
    EXPECT_EQ(Transformed("\\\\n\n"), "\\\n");  // the second backslash is handled on its own
    EXPECT_EQ(Transformed("\\t\n"), "\\t");
    EXPECT_EQ(Transformed("a\\\n"), "a\\");
}

TEST(TransformATResString, RawLineEndsAreDropped) {
    EXPECT_EQ(Transformed("a\rb\nc\r\n\n\n"), "abc");
}

TEST(TransformATResString, LastCharacterIsNotPartOfTheText) {
    EXPECT_EQ(Transformed("ab"), "a");
    EXPECT_EQ(Transformed("ab\n"), "ab");
}

TEST(TransformATResString, ShortTexts) {
    EXPECT_EQ(Transformed(""), "");
    EXPECT_EQ(Transformed("a"), "");
    EXPECT_EQ(Transformed("\n"), "");
    EXPECT_EQ(Transformed("\\"), "");
}

TEST(TransformATResString, LongestText) {
    EXPECT_EQ(Transformed(std::string(1'022, 'a') + "\n"), std::string(1'022, 'a'));
    EXPECT_EQ(Transformed(std::string(1'022, '\\') + "n"), std::string(1'021, '\\') + "\n");
}

TEST(TransformATResString, NullIsRefused) {
    EXPECT_EQ(TransformATResString(nullptr), -1);
}

}  // namespace
