#include "codec/framing.h"

#include <gtest/gtest.h>
#include <string.h>

#include <algorithm>
#include <string>
#include <vector>

#include "checks/support/plain_framing.h"

namespace {

using std::string;

PlainEnd FindEnd(const string& text) {
    g_sms_prompt = 0;
    const char* end = Find_At_Res_End_Flg(text.c_str());
    if (end == nullptr) {
        EXPECT_EQ(g_sms_prompt, 0) << Printable(text);
        return {};
    }
    return {static_cast<size_t>(end - text.c_str()), g_sms_prompt != 0};
}

// A buffer that is as large as the real one.
struct Buffer {
    std::vector<char> text = std::vector<char>(kModemTextSize);
    int complete = -1;

    int Add(const string& chunk) {
        std::vector<char> received(chunk.begin(), chunk.end());
        received.resize(std::max<size_t>(chunk.size() + 1, 16), '\0');
        return Bk_PreProcess_SIO_Rdata(text.data(), &complete, received.data());
    }
    string Text() const { return text.data(); }
    void Set(const string& content) { memcpy(text.data(), content.c_str(), content.size() + 1); }
};

// Everything that the delivery of literally framed text would take out of a sequence of chunks.
struct Stream {
    std::vector<string> responses;
    string rest;
    bool operator==(const Stream&) const = default;
};

Stream Frame(const std::vector<string>& chunks) {
    static Buffer buffer;
    buffer.text[0] = '\0';
    Stream stream;
    for (const string& chunk : chunks) {
        buffer.Add(chunk);
        const char* from = buffer.text.data();
        if (buffer.complete == 1) {
            while (const char* end = Find_At_Res_End_Flg(from)) {
                stream.responses.emplace_back(from, end);
                from = end;
            }
        }
        const string rest = from;
        buffer.Set(rest);
    }
    stream.rest = buffer.Text();
    return stream;
}

Stream PlainFrame(const std::vector<string>& chunks) {
    Stream stream;
    for (const string& chunk : chunks) {
        PlainPreProcess(stream.rest, chunk);
        for (PlainEnd end = PlainFindEnd(stream.rest); end.end != kNone; end = PlainFindEnd(stream.rest)) {
            stream.responses.push_back(stream.rest.substr(0, end.end));
            stream.rest.erase(0, end.end);
        }
    }
    return stream;
}

std::vector<string> Bytes(const string& text) {
    std::vector<string> bytes;
    for (const char byte : text)
        bytes.emplace_back(1, byte);
    return bytes;
}

// What modems send, each response between line breaks of its own.
constexpr const char* kStreams[] = {
    "\r\n+CSQ: 20,99\r\n\r\nOK\r\n",
    "\r\n+CMTI: \"SM\",3\r\n\r\n+CSQ: 20,99\r\n\r\nOK\r\n",
    "\r\n+CPBR: 1,\"+441234\",145,\"OK\r\nBUSY\r\nERROR\r\n\"\r\n\r\nOK\r\n\r\nRING\r\n",
    "\r\n+CME ERROR: 10\r\n\r\n+CMS ERROR: 305\r\n\r\nERROR\r\n",
    "\r\nRINGBACKLOCAL\r\n\r\n+RINGBACK: 1\r\n\r\nVOICE NO CARRIER: 16\r\n\r\n^CEND:1,0,16\r\n",
    "\r\nCOMMAND NOT SUPPORT\r\n\r\nnot support\r\n\r\n^RSSI:17\r\n\r\n+ZMACR: 1\r\n",
    "\r\n\r\n\r\nOK\r\n\r\n\r\n+CUSD: 0,\"a\"\r\n",
};

}  // namespace

TEST(FindAtResEndFlg, NullAndEmptyHaveNoEnd) {
    EXPECT_EQ(Find_At_Res_End_Flg(nullptr), nullptr);
    EXPECT_EQ(Find_At_Res_End_Flg(""), nullptr);
}

TEST(FindAtResEndFlg, EveryMarkerEndsAtItsLineBreak) {
    for (const string marker : kEndMarkerList) {
        const bool has_break = marker.find("\r\n") != kNone;
        const string text = "\r\n" + marker + (has_break ? "" : "x\r\n");
        EXPECT_EQ(FindEnd(text + "\r\nrest"), (PlainEnd{text.size(), false})) << Printable(marker);
    }
}

TEST(FindAtResEndFlg, NoMarkerMatchesWhenACharacterIsMissingOrAnother) {
    for (const string marker : kEndMarkerList) {
        for (size_t at = 0; at < marker.size(); ++at) {
            string shorter = marker;
            shorter.erase(at, 1);
            string other = marker;
            other[at] = other[at] == '~' ? '!' : '~';
            for (const string& text :
                 {"\r\n" + shorter + "\r\n", "\r\n" + other + "\r\n", "\r\n" + shorter, other})
                EXPECT_EQ(FindEnd(text), PlainFindEnd(text)) << Printable(text);
        }
    }
}

TEST(FindAtResEndFlg, MarkersOfErrorsMatchWithAndWithoutThePlus) {
    EXPECT_EQ(FindEnd("\r\nCME ERROR: 10\r\n").end, 17u);
    EXPECT_EQ(FindEnd("\r\n+CME ERROR: 10\r\n").end, 18u);
    EXPECT_EQ(FindEnd("\r\n+CMS ERROR: 305\r\n").end, 19u);
}

TEST(FindAtResEndFlg, ErrorNumberWithoutALineBreakIsNotComplete) {
    EXPECT_EQ(FindEnd("\r\n+CME ERROR: 10").end, kNone);
    EXPECT_EQ(FindEnd("\r\n+CME ERROR: 10\r").end, kNone);
}

TEST(FindAtResEndFlg, ReportIsCompleteByItself) {
    EXPECT_EQ(FindEnd("\r\n+CMTI: \"SM\",3\r\n").end, 17u);
}

TEST(FindAtResEndFlg, EarliestMarkerWinsWhateverItsPlaceInTheTable) {
    EXPECT_EQ(FindEnd("\r\n^RSSI:17\r\n\r\nOK\r\n").end, 12u);
    EXPECT_EQ(FindEnd("\r\nOK\r\n\r\n^RSSI:17\r\n").end, 6u);
}

TEST(FindAtResEndFlg, PromptNeedsNoLineBreak) {
    EXPECT_EQ(FindEnd("\r\n> "), (PlainEnd{4, true}));
    EXPECT_EQ(FindEnd("\r\n>"), PlainEnd{});
}

TEST(FindAtResEndFlg, PromptWithALineBreakBehindItEndsThereAndIsNoPrompt) {
    EXPECT_EQ(FindEnd("\r\n> \r\n"), (PlainEnd{6, false}));
}

TEST(FindAtResEndFlg, PromptBehindAnotherMarkerWithoutLineBreakEndsTheResponse) {
    EXPECT_EQ(FindEnd("+CMTI: 1 > x"), (PlainEnd{11, true}));
}

TEST(FindAtResEndFlg, PromptFlagIsNeverCleared) {
    g_sms_prompt = 1;
    EXPECT_NE(Find_At_Res_End_Flg("\r\nOK\r\n"), nullptr);
    EXPECT_EQ(Find_At_Res_End_Flg("\r\nO"), nullptr);
    EXPECT_EQ(g_sms_prompt, 1);
}

TEST(FindAtResEndFlg, QuotedMarkersAndLineBreaksEndNothing) {
    EXPECT_EQ(FindEnd("\r\n+CPBR: 1,\"OK\r\n\"\r\n").end, kNone);
    const string quoted_break = "\r\n+CMTI: \"a\r\nb\",1\r\n";
    EXPECT_EQ(FindEnd(quoted_break).end, quoted_break.size());
    EXPECT_EQ(FindEnd("\r\n+CMTI: \"a\r\n").end, kNone);
    EXPECT_EQ(FindEnd("\"\r\nOK\r\n").end, kNone);
}

TEST(FindAtResEndFlg, OkNeedsItsOwnLineBreak) {
    EXPECT_EQ(FindEnd("\r\nOK").end, kNone);
    EXPECT_EQ(FindEnd("\r\nOK \r\n").end, kNone);
    EXPECT_EQ(FindEnd("\r\nLOOK\r\n").end, 8u);
}

TEST(FindAtResEndFlg, EqualsThePlainSearchesOnRandomText) {
    RandomText random(0x5eed0001);
    size_t complete = 0, prompts = 0;
    for (int round = 0; round < 200'000; ++round) {
        const string text = random.Next(7);
        const PlainEnd expected = PlainFindEnd(text);
        complete += expected.end != kNone;
        prompts += expected.prompt;
        ASSERT_EQ(FindEnd(text), expected) << round << ": " << Printable(text);
    }
    // The texts are of use only while all three outcomes are among them.
    EXPECT_GT(complete, 50'000u);
    EXPECT_LT(complete, 190'000u);
    EXPECT_GT(prompts, 1'000u);
}

TEST(FindAtResEndFlg, EqualsThePlainSearchesOnLongRandomText) {
    RandomText random(0x5eed0002);
    for (int round = 0; round < 500; ++round) {
        const string text = string(random.Below(500), 'x') + random.Next(200);
        ASSERT_EQ(FindEnd(text), PlainFindEnd(text)) << round << ": " << Printable(text);
    }
}

TEST(BkPreProcess, NullArgumentsAreRefused) {
    char buffer[] = "";
    char chunk[] = "OK";
    int complete = 7;
    EXPECT_EQ(Bk_PreProcess_SIO_Rdata(nullptr, &complete, chunk), -1);
    EXPECT_EQ(Bk_PreProcess_SIO_Rdata(buffer, nullptr, chunk), -1);
    EXPECT_EQ(Bk_PreProcess_SIO_Rdata(buffer, &complete, nullptr), -1);
    EXPECT_EQ(complete, 7);
    EXPECT_STREQ(buffer, "");
}

TEST(BkPreProcess, AnswerCutInTwoIsCompleteWithTheSecondHalf) {
    Buffer buffer;
    EXPECT_EQ(buffer.Add("\r\nO"), 0);
    EXPECT_EQ(buffer.complete, 0);
    EXPECT_EQ(buffer.Add("K\r\n"), 0);
    EXPECT_EQ(buffer.complete, 1);
    EXPECT_EQ(Find_At_Res_End_Flg(buffer.text.data()), buffer.text.data() + 6);
}

TEST(BkPreProcess, EchoBeforeTheFirstLineBreakIsDropped) {
    Buffer buffer;
    buffer.Add("AT+CSQ\r\r\n+CSQ: 20,99\r\n\r\nOK\r\n");
    EXPECT_EQ(buffer.Text(), "\r\n+CSQ: 20,99\r\n\r\nOK\r\n");
    EXPECT_EQ(buffer.complete, 1);
    EXPECT_EQ(FindEnd(buffer.Text()).end, buffer.Text().size());
}

TEST(BkPreProcess, EchoInAnEarlierChunkIsDroppedWithTheFirstLineBreak) {
    Buffer buffer;
    buffer.Add("AT+C");
    EXPECT_EQ(buffer.Text(), "AT+C");
    buffer.Add("SQ\r");
    EXPECT_EQ(buffer.Text(), "AT+CSQ\r");
    buffer.Add("\n+CSQ: 1");
    EXPECT_EQ(buffer.Text(), "\r\n+CSQ: 1");
    EXPECT_EQ(buffer.complete, 0);
}

TEST(BkPreProcess, QuotedLineBreakIsNotTheFirst) {
    Buffer buffer;
    buffer.Add("a\"\r\n\"b\r\nc");
    EXPECT_EQ(buffer.Text(), "\r\nc");
}

TEST(BkPreProcess, ChunkWithoutALineBreakIsKeptWhole) {
    Buffer buffer;
    buffer.Add("noise");
    EXPECT_EQ(buffer.Text(), "noise");
    buffer.Add("");
    EXPECT_EQ(buffer.Text(), "noise");
    EXPECT_EQ(buffer.complete, 0);
}

TEST(BkPreProcess, ReportAndPromptAreComplete) {
    Buffer report;
    report.Add("\r\n+CMTI: \"SM\",3\r\n");
    EXPECT_EQ(report.complete, 1);
    Buffer prompt;
    g_sms_prompt = 0;
    prompt.Add("\r\n> ");
    EXPECT_EQ(prompt.complete, 1);
    EXPECT_EQ(g_sms_prompt, 1);
}

TEST(BkPreProcess, StatusOkIsAnOkWhateverFollows) {
    for (const char* chunk : {"status=Ok", "status=Okay, done\r\nERROR\r\n", "status=Ok\r\n"}) {
        Buffer buffer;
        buffer.Add(chunk);
        EXPECT_EQ(buffer.Text(), "\r\nOK\r\n");
        EXPECT_EQ(buffer.complete, 1);
    }
}

TEST(BkPreProcess, StatusFailureIsAnErrorWhateverFollows) {
    for (const char* chunk : {"status=Failure", "status=Failure 5\r\n\r\nOK\r\n"}) {
        Buffer buffer;
        buffer.Add(chunk);
        EXPECT_EQ(buffer.Text(), "\r\nERROR\r\n");
        EXPECT_EQ(buffer.complete, 1);
    }
}

TEST(BkPreProcess, StatusWordsJoinWhatWaits) {
    Buffer buffer;
    buffer.Add("\r\n+CSQ: 1");
    buffer.Add("status=Ok");
    EXPECT_EQ(buffer.Text(), "\r\n+CSQ: 1\r\nOK\r\n");
    EXPECT_EQ(buffer.complete, 1);
}

TEST(BkPreProcess, OtherStatusWordsStay) {
    for (const char* chunk :
         {"status=OK", "status=Fail", "status=Failur", "status=O", " status=Ok", "Status=Ok"}) {
        Buffer buffer;
        buffer.Add(chunk);
        EXPECT_EQ(buffer.Text(), chunk);
        EXPECT_EQ(buffer.complete, 0);
    }
}

TEST(BkPreProcess, JoinedTextIsCutAt102399) {
    for (const size_t waiting : {1u, 50'000u, 102'397u, 102'398u, 102'399u}) {
        for (const size_t chunk : {0u, 1u, 2u, 3u, 52'398u, 52'399u, 52'400u, 102'398u, 102'399u, 102'400u}) {
            string expected = string(waiting, 'w');
            Buffer buffer;
            buffer.Set(expected);
            const string received = string(chunk, 'c');
            PlainPreProcess(expected, received);
            buffer.Add(received);
            EXPECT_TRUE(buffer.Text() == expected) << waiting << " + " << chunk;
            EXPECT_LE(buffer.Text().size(), 102'399u);
        }
    }
}

TEST(BkPreProcess, ChunkIntoTheEmptyBufferIsCutAt102399) {
    for (const size_t size : {102'398u, 102'399u, 102'400u}) {
        Buffer buffer;
        buffer.Add(string(size, 'c'));
        EXPECT_EQ(buffer.Text().size(), std::min<size_t>(size, 102'399)) << size;
    }
}

TEST(BkPreProcess, WhatPrecedesTheLineBreakDoesNotCountAgainstTheLimit) {
    Buffer buffer;
    buffer.Add("AT\r\n" + string(102'396, 'c'));
    EXPECT_EQ(buffer.Text().size(), 102'398u);
    Buffer joined;
    joined.Set("AT");
    joined.Add("\r\n" + string(102'398, 'c'));
    EXPECT_EQ(joined.Text().size(), 102'397u);
}

TEST(BkPreProcess, FinalResultBehindTheLimitIsLost) {
    Buffer buffer;
    buffer.Add("\r\n" + string(102'393, 'c') + "OK\r\n");
    EXPECT_EQ(buffer.Text().size(), 102'399u);
    EXPECT_EQ(buffer.complete, 1);
    Buffer longer;
    longer.Add("\r\n" + string(102'394, 'c') + "OK\r\n");
    EXPECT_EQ(longer.Text().size(), 102'399u);
    EXPECT_EQ(longer.complete, 0);
}

TEST(BkPreProcess, EqualsThePlainFormOnRandomChunks) {
    RandomText random(0x5eed0003);
    Buffer buffer;
    string expected;
    for (int round = 0; round < 20'000; ++round) {
        if (random.Below(6) == 0) {
            expected.clear();
            buffer.text[0] = '\0';
        }
        string chunk = random.Next(6);
        if (random.Below(20) == 0)
            chunk = "status=" + string(random.Below(2) == 0 ? "Ok" : "Failure") + chunk;
        PlainPreProcess(expected, chunk);
        buffer.Add(chunk);
        ASSERT_EQ(Printable(buffer.Text()), Printable(expected)) << round;
        ASSERT_EQ(buffer.complete, PlainFindEnd(expected).end != kNone ? 1 : 0) << round;
    }
}

TEST(BkPreProcess, EqualsThePlainFormNearTheLimit) {
    RandomText random(0x5eed0004);
    for (int round = 0; round < 60; ++round) {
        string expected = random.Next(3) + string(102'300 + random.Below(100), 'w');
        expected.resize(std::min<size_t>(expected.size(), 102'399));
        const string chunk = random.Next(12) + string(random.Below(200), 'c') + random.Next(12);
        Buffer buffer;
        buffer.Set(expected);
        PlainPreProcess(expected, chunk);
        buffer.Add(chunk);
        ASSERT_TRUE(buffer.Text() == expected) << round;
    }
}

TEST(AppendReceived, TellsHowMuchOfTheJoinedTextWasDropped) {
    char buffer[64] = "";
    char first[] = "echo";
    char second[] = " more\r\nx";
    char third[] = "y";
    EXPECT_EQ(AppendReceived(buffer, first), 0u);
    EXPECT_EQ(AppendReceived(buffer, second), 9u);
    EXPECT_STREQ(buffer, "\r\nx");
    EXPECT_EQ(AppendReceived(buffer, third), 0u);
    EXPECT_STREQ(buffer, "\r\nxy");
}

TEST(Stream, IsFramedAlikeWholeByteByByteAndSplitAnywhere) {
    for (const string text : kStreams) {
        const Stream whole = Frame({text});
        EXPECT_FALSE(whole.responses.empty());
        EXPECT_EQ(whole.rest, "") << Printable(text);
        EXPECT_EQ(whole, PlainFrame({text})) << Printable(text);
        EXPECT_EQ(whole, Frame(Bytes(text))) << Printable(text);
        for (size_t split = 1; split < text.size(); ++split)
            EXPECT_EQ(whole, Frame({text.substr(0, split), text.substr(split)}))
                << Printable(text) << " at " << split;
    }
}

// A line that does not follow a line break is lost when its break comes with a later chunk.
TEST(Stream, LineBehindAReportIsLostWhenItIsSplit) {
    const string text = "\r\n+CBM: 17\r\n0011\r\n\r\nOK\r\n";
    EXPECT_EQ(Frame({text}).responses.back(), "0011\r\n\r\nOK\r\n");
    EXPECT_EQ(Frame({text.substr(0, 14), text.substr(14)}).responses.back(), "\r\n\r\nOK\r\n");
}

TEST(Stream, TwoSplitsAtEveryPairOfPositionsFrameAlike) {
    const string text = kStreams[1];
    const Stream whole = Frame({text});
    EXPECT_EQ(whole.responses.size(), 2u);
    for (size_t first = 1; first < text.size(); ++first)
        for (size_t second = first + 1; second < text.size(); ++second)
            EXPECT_EQ(whole, Frame({text.substr(0, first), text.substr(first, second - first),
                                    text.substr(second)}));
}

TEST(Stream, EqualsThePlainFormOnRandomChunks) {
    RandomText random(0x5eed0005);
    for (int round = 0; round < 5'000; ++round) {
        std::vector<string> chunks;
        for (unsigned count = 1 + random.Below(5); count > 0; --count)
            chunks.push_back(random.Next(6));
        ASSERT_EQ(Frame(chunks), PlainFrame(chunks)) << round;
    }
}

TEST(ReadLine, TellsWhatTheLineIs) {
    const char text[] = "+CME ERROR: 1\r\nrest";
    const ModemLine line = ReadLine(text);
    EXPECT_TRUE(line.complete);
    EXPECT_EQ(line.Length(), 13u);
    EXPECT_EQ(line.end, text + 15);
    EXPECT_EQ(line.colon, text + 10);
    EXPECT_EQ(line.marker, text + 1);
    EXPECT_TRUE(line.final_result);
    EXPECT_FALSE(line.BeginsWithMarker());
}

TEST(ReadLine, UnfinishedAndEmptyLines) {
    const char text[] = "OK";
    EXPECT_FALSE(ReadLine(text).complete);
    EXPECT_FALSE(ReadLine(text).final_result);
    EXPECT_EQ(ReadLine(text).end, text + 2);
    EXPECT_TRUE(ReadLine("\r\nx").Empty());
    EXPECT_TRUE(ReadLine("\r\nx").complete);
    EXPECT_TRUE(ReadLine("").Empty());
    EXPECT_FALSE(ReadLine("").complete);
}

TEST(ReadLine, FinalResultNeedsItsWholeText) {
    for (const char* text :
         {"OK\r\n", "xOK\r\n", "ERROR\r\n", "CMS ERROR: \r\n", "not support\r\n", "COMMAND NOT SUPPORT\r\n"})
        EXPECT_TRUE(ReadLine(text).final_result) << text;
    for (const char* text : {"OK \r\n", "BUSY\r\n", "CONNECT\r\n", "\"OK\r\n\"\r\n", "+CMTI: 1\r\n"})
        EXPECT_FALSE(ReadLine(text).final_result) << text;
}
