#include "checks/unit/delivery.h"

// Echoes, and what stays in the buffer between two reads.

namespace {

TEST_F(Delivery, EchoBehindALineBreakThatAReportLeftIsDropped) {
    ExpectEverySplit(0x0001, AT_CMD_TYPE_EXEC, "\r\n+CREG: 1\r\nAT\r\r\nOK\r\n",
                     {Registration(1), Answer(0x0001, 1, 1, 0, "OK")});
}

TEST_F(Delivery, EchoInTheReadOfTheResponseBeforeIsDropped) {
    // A dial is not waited for, so its OK and the echo of the next line can come in one read.
    ExpectEverySplit(0x0001, AT_CMD_TYPE_EXEC, "\r\nRING\r\nAT\r\r\nOK\r\n",
                     {{AT_MODULE_CALL, 0x0407, 1, 1, 4, "RING"}, Answer(0x0001, 1, 1, 0, "OK")});
}

TEST_F(Delivery, EchoIsDroppedInWhateverPiecesItComes) {
    ExpectEverySplit(0x0603, AT_CMD_TYPE_EXEC, "AT+CGSN\r\r\n1234\r\n\r\nOK\r\n",
                     {Answer(0x0603, AT_CMD_TYPE_EXEC, 1, 32, "1234")});
}

TEST_F(Delivery, EchoCutBehindItsFirstLetterIsDropped) {
    ExpectEverySplit(0x0001, AT_CMD_TYPE_EXEC, "AT\r\r\nOK\r\n", {Answer(0x0001, 1, 1, 0, "OK")});
    ExpectEverySplit(0x0603, AT_CMD_TYPE_EXEC, "AT+CGSN\r\r\n356938035643809\r\n\r\nOK\r\n",
                     {Answer(0x0603, AT_CMD_TYPE_EXEC, 1, 32, "356938035643809")});
}

TEST_F(Delivery, FirstLetterOfAnEchoThatIsNoneKeepsItsLine) {
    Feed("\r\nRING\r\nA");
    Feed("NSWER\r\n");
    ASSERT_EQ(Messages().size(), 2U);
    EXPECT_EQ(Messages()[1].id, 0x040A);
}

TEST_F(Delivery, AnswerThatBeginsLikeAnEchoIsNone) {
    Pend(0x0610, AT_CMD_TYPE_EXEC);
    Feed("\r\n+CREG: 1\r\n");
    Feed("\r\nATM-100\r\n\r\nOK\r\n");
    ASSERT_EQ(Messages().size(), 2U);
    EXPECT_EQ(Messages()[1].text.substr(0, 7), "ATM-100");
}

TEST_F(Delivery, RestThatBeginsInTheMiddleOfALineKeepsIt) {
    Pend(0x0604, AT_CMD_TYPE_EXEC);
    Feed("\r\n+CSQ: 20,99\r\n\r\nOK\r\n+CRE");
    EXPECT_STREQ(gStrResAtBuffer, "\r\n+CRE");
    Feed("G: 1\r\n");
    EXPECT_EQ(Messages(), (std::vector<Sent>{Signal(20), Registration(1)}));
}

TEST_F(Delivery, LinesWithoutAnEmptyOneBetweenThemMayArriveOneByOne) {
    const std::vector<Sent> expected = {{AT_MODULE_SMS, 0x0110, 1, 1, 16, "SM"},
                                        {AT_MODULE_CALL, 0x0408, 1, 1, 9, "HANGUP: 1"},
                                        Registration(5),
                                        {AT_MODULE_CALL, 0x0407, 1, 1, 4, "RING"}};
    const std::string stream = "\r\n+CMTI: \"SM\",8\r\nHANGUP: 1\r\n+CREG: 5\r\nRING\r\n";
    ExpectEverySplit(0, 0, stream, expected);
    Start("KVX_LTE");
    for (const char* line : {"\r\n+CMTI: \"SM\",8\r\n", "HANGUP: 1\r\n", "+CREG: 5\r\n", "RING\r\n"})
        Feed(line);
    EXPECT_EQ(Messages(), expected);
}

TEST_F(Delivery, MixedLinesInRandomPiecesAreTheSameAsWhole) {
    const char* const lines[] = {"RING",
                                 "+CREG: 1,\"1A2B\",\"00C3D4E5\"",
                                 "+CMTI: \"SM\",8",
                                 "+CLIP: \"5550123\",129",
                                 "^NOROW: 5",
                                 "^HRSSILVL:85",
                                 "HANGUP: 16",
                                 "+ZSTI: \"OK\",1",
                                 "+ZGIPDNS: 1,5,\"IP\",\"10.0.0.2\",\"\",\"8.8.8.8\",\"\"",
                                 "+CUSD: 1,\"a\r\nOK\r\n\",15",
                                 "VOICE NO CARRIER: 16",
                                 "+CGEV: ME DETACH",
                                 "NO CARRIER",
                                 "ZREFRESH: \"6F3C\",\"1\"",
                                 "+ZEND"};
    uint32_t state = 1;
    const auto random = [&state](size_t below) {
        state = state * 1'664'525U + 1'013'904'223U;
        return static_cast<size_t>(state >> 8U) % below;
    };
    for (int round = 0; round < 1000; ++round) {
        const char* card = round % 2 == 0 ? "KVX_LTE" : "OTHER_CARD";
        const bool asked = random(3) != 0;
        std::string stream = "\r\n";
        const auto say = [&](size_t count) {
            for (; count != 0; --count)
                stream += lines[random(std::size(lines))] + std::string(random(2) == 0 ? "\r\n" : "\r\n\r\n");
        };
        say(random(4));
        if (asked) {
            stream += "+CSQ: 20,99\r\n";
            say(random(3));
            stream += "OK\r\n";
            say(random(4));
        }
        const auto run = [&](size_t longest) {
            Start(card);
            if (asked) Pend(0x0604, AT_CMD_TYPE_EXEC);
            for (size_t at = 0; at < stream.size();) {
                const size_t length = longest == 0 ? stream.size() : 1 + random(longest);
                Feed(stream.substr(at, length));
                at += length;
            }
            return Messages();
        };
        const std::vector<Sent> whole = run(0);
        ASSERT_EQ(run(3), whole) << stream;
        ASSERT_EQ(run(40), whole) << stream;
    }
}

TEST_F(Delivery, EchoThatBeginsAReadIsDroppedBehindALineToo) {
    Feed("\r\nRING\r\n");
    Pend(0x0604, AT_CMD_TYPE_EXEC);
    Feed("AT+CSQ\r\r\n+CSQ: 20,99\r\n\r\nOK\r\n");
    EXPECT_EQ(Messages(), (std::vector<Sent>{{AT_MODULE_CALL, 0x0407, 1, 1, 4, "RING"}, Signal(20)}));
}

TEST_F(Delivery, NoiseInFrontOfTheFirstLineBreakIsDroppedAtTheStart) {
    Feed("RING\r\nRING\r\n");
    EXPECT_EQ(Messages(), (std::vector<Sent>{{AT_MODULE_CALL, 0x0407, 1, 1, 4, "RING"}}));
}

TEST_F(Delivery, FullBufferWithoutAResponseIsClearedAndLogged) {
    Feed("\r\n" + std::string(102'396, 'x'));
    EXPECT_EQ(strlen(gStrResAtBuffer), 102'398U);
    EXPECT_FALSE(LoggedPart("receive buffer is full"));
    Feed("x");
    EXPECT_STREQ(gStrResAtBuffer, "");
    EXPECT_TRUE(LoggedPart("receive buffer is full, 102399 characters"));
}

TEST_F(Delivery, OpenQuoteIsDroppedOnlyWhenThereIsOne) {
    Feed("\r\n+CSQ: 20");
    EXPECT_FALSE(DropUnfinishedQuote());
    EXPECT_STREQ(gStrResAtBuffer, "\r\n+CSQ: 20");
    Feed("\"");
    EXPECT_TRUE(DropUnfinishedQuote());
    EXPECT_STREQ(gStrResAtBuffer, "");
}

TEST_F(Delivery, OtherCardsSortTheSameWay) {
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "\r\n+CREG: 1\r\n\r\n+CSQ: 20,99\r\n\r\nOK\r\n",
                     {Registration(1), Signal(20)}, "other");
    ExpectEverySplit(0x0604, AT_CMD_TYPE_EXEC, "\r\n+CSQ: 20,99\r\n\r\n^RSSI:12\r\n\r\nOK\r\n", {Signal(20)},
                     "other");
}

}  // namespace
