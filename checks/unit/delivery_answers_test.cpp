#include "checks/unit/delivery.h"

// What is an answer, whom it reaches, and the step that reads and counts.

namespace {

TEST_F(Delivery, AnswerWithARecord) {
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "\r\n+CSQ: 20,99\r\n\r\nOK\r\n", {Signal(20)});
}

TEST_F(Delivery, AnswerWithEcho) {
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "AT+CSQ\r\r\n+CSQ: 20,99\r\n\r\nOK\r\n", {Signal(20)});
}

TEST_F(Delivery, NameWithoutABlankBehindItsColonDecodesToZerosWithTheModulesOwnCards) {
    // So does the built-in answer of the test responder.
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "\r\n+CSQ:20,60\r\n\r\nOK\r\n", {Signal(0)});
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "\r\n+CSQ:20,60\r\n\r\nOK\r\n", {Signal(20)}, "other");
}

TEST_F(Delivery, PlainOk) {
    ExpectEverySplit(0x0001, AT_CMD_TYPE_EXEC, "\r\nOK\r\n", {Answer(0x0001, 1, 1, 0, "OK")});
}

TEST_F(Delivery, ErrorTextTravels) {
    ExpectEverySplit(0x0301, AT_CMD_TYPE_READ, "\r\n+CME ERROR: 10\r\n", {Answer(0x0301, 3, 4, 2, "10")});
}

TEST_F(Delivery, ListOfCallsArrivesWithAllItsCalls) {
    Pend(0x0518, AT_CMD_TYPE_READ);
    Feed("\r\n+CLCC: 1,0,0,0,0,\"5550123\",129,0,0\r\n+CLCC: 2,1,5,0,0,\"5550124\",129,0,0\r\n\r\nOK\r\n");
    ASSERT_EQ(Queues().sent.size(), 1U);
    const _BK_AT_RES_T res = Queues().sent[0].Response();
    int32_t count = 0;
    memcpy(&count, res.aucParas, sizeof count);
    EXPECT_EQ(count, 2);
    EXPECT_EQ(res.usParaLen, 1284);
}

TEST_F(Delivery, VolumeEndsWithItsOwnOk) {
    // Its name is an end marker, so that framing alone would end at the first line and leave an OK behind.
    Sent level = Answer(0x0514, AT_CMD_TYPE_READ, 1, 4, "\x03");
    level.text = Registration(3).text;
    ExpectEverySplit(0x0514, AT_CMD_TYPE_READ, "\r\n+CLVL: 3\r\n\r\nOK\r\n", {level});
}

TEST_F(Delivery, DataLengthIsTheParameterLengthAndSix) {
    Pend(0x0604, AT_CMD_TYPE_EXEC);
    Feed("\r\n+CSQ: 20,99\r\n\r\nOK\r\n");
    EXPECT_EQ(Queues().sent.at(0).Record().usDataLen, 14);
    EXPECT_EQ(Queues().sent.at(0).type, 7);
    EXPECT_EQ(g_at_msg.lMsgType, -1);
    EXPECT_EQ(g_last_atcmd, 0x0604);
}

TEST_F(Delivery, AnswerWithNothingOutstandingHasType1) {
    Pend(0x0401, AT_CMD_TYPE_EXEC);
    g_at_msg.lMsgType = -1;  // a dial
    Feed("\r\nOK\r\n");
    ASSERT_EQ(Queues().sent.size(), 1U);
    EXPECT_EQ(Queues().sent[0].type, 1);
    EXPECT_EQ(Queues().sent[0].Record().usTargetModuleID, kRequester);
}

TEST_F(Delivery, TwoResponsesInOneReadAndAThirdThatCompletesLater) {
    Pend(0x0604, AT_CMD_TYPE_EXEC);
    Feed("\r\n+CSQ: 20,99\r\n\r\nOK\r\n\r\nRING\r\n\r\n+CMTI: \"SM\"");
    EXPECT_EQ(Queues().sent.size(), 2U);
    EXPECT_STREQ(gStrResAtBuffer, "\r\n+CMTI: \"SM\"");
    Feed(",3\r\n");
    EXPECT_EQ(Queues().sent.size(), 3U);
    EXPECT_STREQ(gStrResAtBuffer, "");
}

TEST_F(Delivery, FailedSendStillCountsAsAnswered) {
    Pend(0x0604, AT_CMD_TYPE_EXEC);
    Queues().Reset();
    g_last_atcmd = 0;
    const auto received = g_at_statistics.received.load();
    Feed("\r\n+CSQ: 20,99\r\n\r\nOK\r\n");
    EXPECT_TRUE(Logged("ERROR: send_msg_buf send msg failed, error code 42506!", "response", 3));
    EXPECT_EQ(g_at_msg.lMsgType, -1);
    EXPECT_EQ(g_last_atcmd, 0x0604);
    EXPECT_EQ(g_at_statistics.received, received + 1);
}

// ------------------------------------------------------------------- the polling step

TEST_F(Delivery, StepWithoutDataChangesNothing) {
    FakeModem modem;
    Platform().config["WatchDog_Setting_Option"] = "on";
    AtStatistics.read = 0;
    EXPECT_EQ(on_recieve_at(), 1U);
    EXPECT_EQ(AtStatistics.read, 0U);
    EXPECT_TRUE(LoggedLines().empty());
}

TEST_F(Delivery, StepWithDataIsLoggedAndHandled) {
    FakeModem modem;
    Pend(0x0604, AT_CMD_TYPE_EXEC);
    modem.Say("\r\n+CSQ: 20,99\r\n\r\nOK\r\n");
    EXPECT_EQ(on_recieve_at(), 0U);
    EXPECT_EQ(Messages(), (std::vector<Sent>{Signal(20)}));
    EXPECT_TRUE(Logged("Receive AT response ok,RecvLen(chars) =  21.", "response"));
    EXPECT_TRUE(
        Logged("\n------------------------------------\n\r\n+CSQ: 20,99\r\n\r\nOK\r\n"
               "-------------------RecvLen:21-----",
               "response"));
    EXPECT_TRUE(Logged("acComReceive=\r\n+CSQ: 20,99\r\n\r\nOK\r\n", "response"));
    EXPECT_TRUE(Logged("pAtRes=\r\n+CSQ: 20,99\r\n\r\nOK\r\n", "response"));
    EXPECT_TRUE(Logged("send AT Response to module 0x2345 OK!", "response", 5));
}

TEST_F(Delivery, AnswerIsLoggedFieldByField) {
    const auto shown = [](const std::string& result, const std::string& length, const std::string& text,
                          const std::string& whole) {
        const std::string rule = "+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+-+";
        return std::vector<std::string>{rule,
                                        "\t#nIsLast:1\n",
                                        "\t#AtResResult:" + result + "\n",
                                        "\t#AtResParaLen:" + length + "\n",
                                        "\t#AtResParas:" + text + "\n",
                                        rule,
                                        "AT Result =" + whole};
    };
    const auto logged = [] {
        std::vector<std::string> lines;
        for (const LogLine& line : LoggedLines())
            if (line.module == "response" && line.level == 7 &&
                (line.text.starts_with("+-") || line.text.starts_with("\t#") ||
                 line.text.starts_with("AT Result")))
                lines.push_back(line.text);
        ClearLog();
        return lines;
    };
    ClearLog();
    Pend(0x0507, AT_CMD_TYPE_EXEC);
    Feed("\r\n+CME ERROR: 10\r\n");
    EXPECT_EQ(logged(), shown("4", "2", "10", "10"));
    Pend(0x010B, AT_CMD_TYPE_SET);
    Feed("\r\nERROR\r\n");
    EXPECT_EQ(logged(), shown("2", "0", "", "OK"))
        << "where there is no text it says OK, whatever the result";
}

TEST_F(Delivery, ReadsAreCountedForTheWatchdogOnlyWhileItIsOn) {
    FakeModem modem;
    AtStatistics.read = 0;
    for (const char* option : {"off", "", "On", "on "}) {
        Platform().config["WatchDog_Setting_Option"] = option;
        modem.Say("\r\nRING\r\n");
        EXPECT_EQ(on_recieve_at(), 0U);
        EXPECT_EQ(AtStatistics.read, 0U) << option;
    }
    Platform().config["WatchDog_Setting_Option"] = "on";
    modem.Say("\r\nRING\r\n");
    EXPECT_EQ(on_recieve_at(), 0U);
    EXPECT_EQ(AtStatistics.read, 1U);
    AtStatistics.read = 0;
}

TEST_F(Delivery, ReportsAreCountedAndAnnounced) {
    const uint32_t before = g_at_statistics.report;
    Feed("\r\nRING\r\n\r\n+CREG: 1\r\n");
    EXPECT_EQ(g_at_statistics.report, before + 2);
    EXPECT_TRUE(Logged("It's  a auto reporting  message!", "response"));
    EXPECT_TRUE(Logged("\t#nIsLast:0\n", "response", 7));
}

}  // namespace
