#include <sys/stat.h>

#include "checks/dialogue/conversation.h"
#include "platform/platform.h"

// Short messages: sending, storing, reading, listing, and what the modem reports of them.

namespace {

const std::string kPdu = "0011000A9121436587F90000AA0BE8329BFD4697D9EC37";
const std::string kDelivered = "07911326040000F0040B911346610089F60000208062917314080CC8F71D14969741F977FD07";

std::string SendRecord(const std::string& pdu) {
    return I32({18}) + Text(pdu, 500);
}
std::string StoreRecord(const std::string& pdu) {
    return I32({18, 2}) + Text(pdu, 500);
}
std::string NewMessage(const std::string& memory, int index) {
    return Text(memory, 12) + I32({index});
}

class MessageTalks : public Conversation {
  protected:
    // The modem asks for the text with a prompt that no line break follows.
    static void AnswerSending(const std::string& line, const std::string& pdu, const std::string& result) {
        TheModem().SetAnswer(Answers({{line, "\r\n> "}, {pdu, result}}));
    }
};

TEST_F(MessageTalks, MessageIsSentAtThePrompt) {
    TheModem().SetAnswer(Silence);
    sms.Ask(0x0108, kSet, SendRecord(kPdu));
    ASSERT_TRUE(TheModem().WaitForLine("AT+CMGS=18"));
    EXPECT_EQ(ConfigValue("sending_sms"), "1");
    Say("\r\n> ");
    ASSERT_TRUE(TheModem().WaitForLine(kPdu));
    EXPECT_EQ(TheModem().Bytes(), "AT+CMGS=18\r" + kPdu + "\x1a");
    EXPECT_EQ(ConfigValue("sending_sms"), "1");
    Say("\r\n+CMGS: 12\r\n\r\nOK\r\n");
    EXPECT_EQ(Next(sms), Answer(sms, 0x0108, kSet, 1, I32({12}) + Text("", 504)));
    EXPECT_EQ(ConfigValue("sending_sms"), "0");
}

TEST_F(MessageTalks, AcknowledgementOfTheServiceCentreComesWithTheReference) {
    AnswerSending("AT+CMGS=18", kPdu, "\r\n+CMGS: 13,\"0791\"\r\n\r\nOK\r\n");
    sms.Ask(0x0108, kSet, SendRecord(kPdu));
    EXPECT_EQ(Next(sms), Answer(sms, 0x0108, kSet, 1, I32({13}) + Text("0791", 504)));
}

TEST_F(MessageTalks, LongestMessageFillsItsRecord) {
    const std::string pdu(500, 'A');
    AnswerSending("AT+CMGS=18", pdu, "\r\n+CMGS: 14\r\n\r\nOK\r\n");
    sms.Ask(0x0108, kSet, I32({18}) + pdu);
    EXPECT_EQ(Next(sms), Answer(sms, 0x0108, kSet, 1, I32({14}) + Text("", 504)));
    EXPECT_EQ(TheModem().Bytes(), "AT+CMGS=18\r" + pdu + "\x1a");
}

TEST_F(MessageTalks, MessageIsSentToAnEchoingModem) {
    TheModem().SetAnswer([](const std::string& line) {
        if (line == kPdu) return line + "\x1a\r\n+CMGS: 15\r\n\r\nOK\r\n";
        return line + "\r" + (line == "AT+CMGS=18" ? "\r\n> " : PlainAnswer(line));
    });
    sms.Ask(0x0108, kSet, SendRecord(kPdu));
    EXPECT_EQ(Next(sms), Answer(sms, 0x0108, kSet, 1, I32({15}) + Text("", 504)));
    EXPECT_EQ(TheModem().Bytes(), "AT+CMGS=18\r" + kPdu + "\x1a");
}

TEST_F(MessageTalks, RefusedMessageLeavesTheSendingMark) {
    AnswerSending("AT+CMGS=18", kPdu, "\r\n+CMS ERROR: 500\r\n");
    sms.Ask(0x0108, kSet, SendRecord(kPdu));
    EXPECT_EQ(Next(sms), Answer(sms, 0x0108, kSet, 3, "500"));
    EXPECT_EQ(ConfigValue("sending_sms"), "1") << "only an answer with a reference takes it back";
}

TEST_F(MessageTalks, PromptSurvivesWhatArrivesBeforeIt) {
    TheModem().SetAnswer(Silence);
    sms.Ask(0x0108, kSet, SendRecord(kPdu));
    ASSERT_TRUE(TheModem().WaitForLine("AT+CMGS=18"));
    Say("\r\n+CREG: 1\r\n\r\n+CMTI: \"SM\",4\r\n\r\n+CGEV: NW DETACH\r\n");
    EXPECT_EQ(Next(sms), Report(sms, 0x0110, 1, NewMessage("SM", 4)));
    EXPECT_EQ(Next(sim), Report(sim, 0x052D, 6, I32({1}) + Text("", 32)));
    EXPECT_EQ(TheModem().Bytes(), "AT+CMGS=18\r") << "reports are not taken for the prompt";
    Say("\r\n> ");
    ASSERT_TRUE(TheModem().WaitForLine(kPdu));
    Say("\r\n+CMGS: 16\r\n");
    Say("\r\n+CREG: 5\r\n");
    Say("\r\nOK\r\n");
    EXPECT_EQ(Next(sms), Answer(sms, 0x0108, kSet, 1, I32({16}) + Text("", 504)));
    EXPECT_EQ(Next(sim), Report(sim, 0x052D, 6, I32({5}) + Text("", 32)));
    EXPECT_EQ(TheModem().Bytes(), "AT+CMGS=18\r" + kPdu + "\x1a");
}

TEST_F(MessageTalks, CallWhileSendingIsTakenForThePrompt) {
    TheModem().SetAnswer(Silence);
    sms.Ask(0x0108, kSet, SendRecord(kPdu));
    ASSERT_TRUE(TheModem().WaitForLine("AT+CMGS=18"));
    Say("\r\nRING\r\n");
    ASSERT_TRUE(TheModem().WaitForLine(kPdu));
    Say("\r\n+CMGS: 17\r\n\r\nOK\r\n");
    EXPECT_EQ(Next(sms), Answer(sms, 0x0108, kSet, 1, I32({17}) + Text("", 504)));
    EXPECT_EQ(TheModem().Bytes(), "AT+CMGS=18\r" + kPdu + "\x1a");
}

TEST_F(MessageTalks, MessageIsStored) {
    TheModem().SetAnswer(Silence);
    sms.Ask(0x010A, kSet, StoreRecord(kPdu));
    ASSERT_TRUE(TheModem().WaitForLine("AT+CMGW=18,2"));
    Say("\r\n> ");
    ASSERT_TRUE(TheModem().WaitForLine(kPdu));
    EXPECT_EQ(TheModem().Bytes(), "AT+CMGW=18,2\r" + kPdu + "\x1a");
    Say("\r\n+CMGW: 7\r\n\r\nOK\r\n");
    EXPECT_EQ(Next(sms), Answer(sms, 0x010A, kSet, 1, I32({7})));
    EXPECT_TRUE(Log().WaitFor("Parse_Cmgw_Res==tPara.index=7"));
}

TEST_F(MessageTalks, ReportsDoNotFeedThePromptOfAMessageToBeStored) {
    TheModem().SetAnswer(Silence);
    sms.Ask(0x010A, kSet, StoreRecord(kPdu));
    ASSERT_TRUE(TheModem().WaitForLine("AT+CMGW=18,2"));
    Say("\r\n+CGEV: NW DETACH\r\n\r\n^NOROW: 1\r\n\r\n+CMTI: \"SM\",4\r\n\r\n> ");
    EXPECT_EQ(Next(sms), Report(sms, 0x0110, 1, NewMessage("SM", 4)));
    ASSERT_TRUE(TheModem().WaitForLine(kPdu));
    Say("\r\n+CMGW: 7\r\n\r\nOK\r\n");
    EXPECT_EQ(Next(sms), Answer(sms, 0x010A, kSet, 1, I32({7})));
    EXPECT_EQ(TheModem().Bytes(), "AT+CMGW=18,2\r" + kPdu + "\x1a");
}

TEST_F(MessageTalks, AnnouncedMessageIsReadAndDeleted) {
    cfg_set("sms_cmgr_send", "0");
    TheModem().SetAnswer(Answers({{"AT+CMGR=8", "\r\n+CMGR: 1,,24\r\n" + kDelivered + "\r\n\r\nOK\r\n"},
                                  {"AT+CMGD=8, 0", "\r\nOK\r\n"}}));
    Say("\r\n+CMTI: \"SM\",8\r\n");
    EXPECT_EQ(Next(sms), Report(sms, 0x0110, 1, NewMessage("SM", 8)));
    EXPECT_TRUE(Log().WaitFor("tPara.memory:SM    tPara.index:8 "));

    sms.Ask(0x0107, kSet, I32({8}));
    const std::string record = I32({0, 1}) + Text("", 36) + I32({24}) + Text(kDelivered, 704);
    EXPECT_EQ(Next(sms), Answer(sms, 0x0107, kSet, 1, record.substr(0, 512), 752));
    EXPECT_EQ(ConfigValue("sms_cmgr_send"), "1");

    sms.Ask(0x010B, kSet, I32({8, 0}));
    EXPECT_EQ(Next(sms), Answer(sms, 0x010B, kSet, 1, "OK", 0));
    EXPECT_EQ(TheModem().Bytes(), "AT+CMGR=8\rAT+CMGD=8, 0\r");
}

TEST_F(MessageTalks, AbsentMessageIsAnError) {
    TheModem().SetAnswer(Answers({{"AT+CMGR=9", "\r\n+CMS ERROR: 321\r\n"}}));
    sms.Ask(0x0107, kSet, I32({9}));
    EXPECT_EQ(Next(sms), Answer(sms, 0x0107, kSet, 3, "321"));
}

TEST_F(MessageTalks, ListTravelsInItsFile) {
    TheModem().SetAnswer(
        Answers({{"AT+CMGL=4", "\r\n+CMGL: 1,0,,24\r\n" + kDelivered + "\r\n+CMGL: 5,1,\"Ann Lee\",18\r\n" +
                                   kPdu + "\r\n\r\nOK\r\n"}}));
    sms.Ask(0x0106, kSet, I32({4}));
    EXPECT_EQ(Next(sms), Answer(sms, 0x0106, kSet, 1, "", 50564));
    const std::string list = I32({2}) + I32({1, 0}) + Text("", 264) + I32({24}) + Text(kDelivered, 356) +
                             I32({5, 1}) + Text("Ann Lee", 264) + I32({18}) + Text(kPdu, 356);
    EXPECT_EQ(ShowFile("/etc_rw/config/smsbak"), FileOf(list, 50564));
}

TEST_F(MessageTalks, ReportInsideAListIsNotPartOfIt) {
    TheModem().SetAnswer(Answers({{"AT+CMGL=4", "\r\n+CMGL: 1,0,,24\r\n" + kDelivered +
                                                    "\r\n+CREG: 2\r\n\r\n+CMTI: \"ME\",3\r\n\r\nOK\r\n"}}));
    sms.Ask(0x0106, kSet, I32({4}));
    EXPECT_EQ(Next(sms), Report(sms, 0x0110, 1, NewMessage("ME", 3)));
    EXPECT_EQ(Next(sms), Answer(sms, 0x0106, kSet, 1, "", 50564));
    EXPECT_EQ(Next(sim), Report(sim, 0x052D, 6, I32({2}) + Text("", 32)));
    const std::string list = I32({1}) + I32({1, 0}) + Text("", 264) + I32({24}) + Text(kDelivered, 356);
    EXPECT_EQ(ShowFile("/etc_rw/config/smsbak"), FileOf(list, 50564));
}

TEST_F(MessageTalks, ListOfAnOtherCardReadsAMissingNameAs9) {
    const OtherCard card;
    TheModem().SetAnswer(Answers({{"AT+CMGL=0", "\r\n+CMGL: 1,0,,24\r\n" + kDelivered + "\r\n\r\nOK\r\n"}}));
    sms.Ask(0x0106, kSet, I32({0}));
    EXPECT_EQ(Next(sms), Answer(sms, 0x0106, kSet, 1, "", 50564));
    // There the missing name reads as the digit 9, which takes the place of the length.
    const std::string list = I32({1}) + I32({1, 0}) + Text("", 264) + I32({9}) + Text("24", 356);
    EXPECT_EQ(ShowFile("/etc_rw/config/smsbak"), FileOf(list, 50564));
}

TEST_F(MessageTalks, CellBroadcastComesWithItsPage) {
    Say("\r\n+CBM: 88\r\n00A1B2C3D4E5\r\n");
    EXPECT_EQ(Next(sms), Report(sms, 0x0115, 1, I32({88}) + Text("00A1B2C3D4E5", 508)));
    EXPECT_TRUE(Log().WaitFor(">>>+CBM over"));
}

TEST_F(MessageTalks, StatusReportComesWithItsPdu) {
    Say("\r\n+CDS: 26\r\n06330C91447700091032\r\n");
    EXPECT_EQ(Next(sms), Report(sms, 0x0119, 1, I32({26}) + Text("06330C91447700091032", 508)));
    Say("\r\n+CDSI: \"SR\",51\r\n");
    EXPECT_EQ(Next(sms), Report(sms, 0x0112, 1, NewMessage("SR", 51)));
}

TEST_F(MessageTalks, StatusReportInsideAnAnswerBringsItsPdu) {
    TheModem().SetAnswer(Answers({{"AT+CFUN?", "\r\n+CFUN: 1\r\n\r\n+CDS: 26\r\n0633FF\r\n\r\nOK\r\n"}}));
    other.Ask(0x0544, kRead);
    EXPECT_EQ(Next(other), Answer(other, 0x0544, kRead, 1, I32({1})));
    EXPECT_EQ(Next(sms), Report(sms, 0x0119, 1, I32({26}) + Text("0633FF", 508)));
}

TEST_F(MessageTalks, BroadcastGluedBehindAnAnswerIsReportedWithBoth) {
    TheModem().SetAnswer(Answers({{"AT+CFUN?", "\r\n+CFUN: 1\r\n\r\nOK\r\n\r\n+CBM: 88\r\n00A1\r\n"}}));
    other.Ask(0x0544, kRead);
    EXPECT_EQ(Next(other), Answer(other, 0x0544, kRead, 1, I32({1})));
    const std::string page = Report(sms, 0x0115, 1, I32({88}) + Text("00A1", 508));
    EXPECT_EQ(Next(sms), page);
    EXPECT_EQ(Next(sms), page);
}

TEST_F(MessageTalks, VoiceMailIsAnnouncedInBothWays) {
    Say("\r\n+ZVMTI: \"VM\",2\r\n");
    EXPECT_EQ(Next(sms), Report(sms, 0x0117, 1, NewMessage("VM", 2)));
    Say("\r\n+ZVMAIL: 1\r\n");
    EXPECT_EQ(Next(sms), Report(sms, 0x0118, 1, I32({1})));
    Say("\r\nZVMAIL: 0\r\n");
    EXPECT_EQ(Next(sms), Report(sms, 0x0118, 1, I32({0})));
}

TEST_F(MessageTalks, ClassMessageIsReportedAtOnce) {
    Say("\r\n+ZCLAS: 24,\"" + kDelivered + "\"\r\n");
    EXPECT_EQ(Next(sms), Report(sms, 0x0521, 1, I32({24}) + Text(kDelivered, 500)));
}

TEST_F(MessageTalks, RefreshOfTheSimReachesTheMessageModule) {
    Say("\r\nZREFRESH: \"6F3C\",\"1\"\r\n");
    EXPECT_EQ(Next(sms), Report(sms, 0x011A, 1, Text("6F3C", 36) + Text("1", 36)));
}

TEST_F(MessageTalks, ReportsOfAnOtherCardAreTheSameButForTheRefresh) {
    const OtherCard card;
    Say("\r\n+CMTI: \"SM\",8\r\n");
    EXPECT_EQ(Next(sms), Report(sms, 0x0110, 1, NewMessage("SM", 8)));
    Say("\r\n+CDSI: \"SR\",51\r\n");
    EXPECT_EQ(Next(sms), Report(sms, 0x0112, 1, NewMessage("SR", 51)));
    Say("\r\n+ZVMTI: \"VM\",2\r\n");
    EXPECT_EQ(Next(sms), Report(sms, 0x0117, 1, NewMessage("VM", 2)));
    Say("\r\n+ZVMAIL: 1\r\n");
    EXPECT_EQ(Next(sms), Report(sms, 0x0118, 1, I32({1})));
    Say("\r\n+ZCLAS: 24,\"" + kDelivered + "\"\r\n");
    EXPECT_EQ(Next(sms), Report(sms, 0x0521, 1, I32({24}) + Text(kDelivered, 500)));
    Say("\r\n+CBM: 88\r\n00A1\r\n");
    EXPECT_EQ(Next(sms), Report(sms, 0x0115, 1, I32({88}) + Text("00A1", 508)));
    Say("\r\n+CDS: 26\r\n0633\r\n");
    EXPECT_EQ(Next(sms), Report(sms, 0x0119, 1, I32({26}) + Text("0633", 508)));
    // Its name stands in no list of that scan and has no row.
    Say("\r\nZREFRESH: \"6F3C\",\"1\"\r\n");
    Say("\r\nZVMAIL: 0\r\n");
    Settle();
}

TEST_F(MessageTalks, MessageOfAnOtherCardIsSentAndReadTheSame) {
    const OtherCard card;
    AnswerSending("AT+CMGS=18", kPdu, "\r\n+CMGS: 12\r\n\r\nOK\r\n");
    sms.Ask(0x0108, kSet, SendRecord(kPdu));
    EXPECT_EQ(Next(sms), Answer(sms, 0x0108, kSet, 1, I32({12}) + Text("", 504)));
    EXPECT_EQ(TheModem().Bytes(), "AT+CMGS=18\r" + kPdu + "\x1a");
    TheModem().SetAnswer(
        Answers({{"AT+CMGR=8", "\r\n+CMGR: 1,\"Ann Lee\",24\r\n" + kDelivered + "\r\n\r\nOK\r\n"}}));
    sms.Ask(0x0107, kSet, I32({8}));
    const std::string record = I32({0, 1}) + Text("Ann Lee", 36) + I32({24}) + Text(kDelivered, 704);
    EXPECT_EQ(Next(sms), Answer(sms, 0x0107, kSet, 1, record.substr(0, 512), 752));
}

}  // namespace
