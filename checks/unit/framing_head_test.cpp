#include <gtest/gtest.h>
#include <string.h>

#include <string>
#include <utility>
#include <vector>

#include "checks/support/log_capture.h"
#include "checks/support/plain_framing.h"
#include "codec/framing.h"

namespace {

using std::string;

// The head split: result, what stands in both buffers afterwards, and what was logged.
struct PlainHead {
    int result = 1;
    string buffer;
    string out;
    bool prompt = false;
    const char* log = nullptr;
};

PlainHead PlainSplitHead(const string& buffer) {
    PlainHead head;
    head.buffer = buffer;
    if (buffer.empty()) {
        head.log = "already split end";
        return head;
    }
    if (buffer.rfind("\r\n", 0) != 0) {
        head.log = "must be start with \r\n";
        return head;
    }
    for (const char* marker : kHeadMarkerList) {
        const size_t match = PlainFind(buffer, marker);
        if (match == kNone) continue;
        if (match < 2 || buffer.compare(match - 2, 2, "\r\n") != 0) {
            head.log = "at format or name may be error,must be start with \r\n";
            return head;
        }
        size_t end = match + 2;
        if (buffer.compare(match, 2, "> ") == 0) {
            head.prompt = true;
        } else {
            end = PlainFind(buffer, "\r\n", match);
            if (end == kNone) {
                head.log = "at format may be error,must be end with \r\n";
                return head;
            }
            end += 2;
        }
        head.result = 0;
        head.out = buffer.substr(match - 2, end - (match - 2));
        head.buffer.erase(match - 2, end - (match - 2));
        return head;
    }
    head.result = 0;
    head.out = buffer;
    head.buffer.clear();
    return head;
}

struct Head {
    int result;
    string buffer;
    string out;
    bool prompt;
};

Head SplitHead(const string& content) {
    std::vector<char> buffer(content.begin(), content.end());
    buffer.resize(content.size() + 8, '\0');
    std::vector<char> out(content.size() + 8, '#');
    g_sms_prompt = 0;
    const int result = Split_At_Res_Head(buffer.data(), out.data());
    return {result, buffer.data(), out[0] == '#' ? "" : out.data(), g_sms_prompt != 0};
}

}  // namespace

TEST(SplitAtResHead, NothingToSplit) {
    char text[8] = "";
    char out[8] = "";
    for (auto [buffer, target] : {std::pair<char*, char*>{nullptr, out}, {text, out}, {text, nullptr}}) {
        ClearLog();
        EXPECT_EQ(Split_At_Res_Head(buffer, target), 1);
        EXPECT_TRUE(Logged("already split end", "atcode", 7));
    }
    strcpy(text, "\r\nOK");
    ClearLog();
    EXPECT_EQ(Split_At_Res_Head(text, nullptr), 1);
    EXPECT_TRUE(Logged("already split end", "atcode", 7));
    EXPECT_STREQ(text, "\r\nOK");
}

TEST(SplitAtResHead, MustStartWithALineBreak) {
    for (const char* text : {"RING\r\n", "\rRING\r\n", "\n\r\nRING\r\n"}) {
        ClearLog();
        const Head head = SplitHead(text);
        EXPECT_EQ(head.result, 1);
        EXPECT_EQ(head.buffer, text);
        EXPECT_TRUE(Logged("must be start with \r\n", "atcode", 7));
    }
}

TEST(SplitAtResHead, EveryMarkerIsMovedWithItsLine) {
    for (const string marker : kHeadMarkerList) {
        if (marker == "STOPRING\r\n") continue;  // holds "RING", see below
        const bool has_break = marker.find("\r\n") != kNone;
        const string line = marker == "> " ? "\r\n> " : "\r\n" + marker + (has_break ? "" : "x\r\n");
        const Head head = SplitHead(line + "\r\nrest\r\n");
        EXPECT_EQ(head.result, 0) << Printable(marker);
        EXPECT_EQ(head.out, line);
        EXPECT_EQ(head.buffer, "\r\nrest\r\n");
        EXPECT_EQ(head.prompt, marker == "> ");
    }
}

TEST(SplitAtResHead, OrderOfTheTableDecidesNotTheOrderOfTheText) {
    const Head head = SplitHead("\r\nRING\r\n\r\nBUSY\r\n");
    EXPECT_EQ(head.result, 0);
    EXPECT_EQ(head.out, "\r\nBUSY\r\n");
    EXPECT_EQ(head.buffer, "\r\nRING\r\n");
}

TEST(SplitAtResHead, EveryPairOfMarkersInBothOrders) {
    for (const string first : kHeadMarkerList) {
        for (const string second : kHeadMarkerList) {
            const string text = "\r\n" + first + "\r\n" + second + "\r\n";
            const PlainHead expected = PlainSplitHead(text);
            const Head head = SplitHead(text);
            EXPECT_EQ(head.result, expected.result) << Printable(text);
            EXPECT_EQ(head.out, expected.out) << Printable(text);
            EXPECT_EQ(head.buffer, expected.buffer) << Printable(text);
        }
    }
}

// "CONNECT" alone would be tried first if the tables were alike, and refuse the line of the longer one.
TEST(SplitAtResHead, LongerMarkerStandsBeforeTheOneItHolds) {
    EXPECT_EQ(SplitHead("\r\nVOICE CONNECT\r\n").out, "\r\nVOICE CONNECT\r\n");
    EXPECT_EQ(SplitHead("\r\nVOICE NO CARRIER\r\n").out, "\r\nVOICE NO CARRIER\r\n");
    EXPECT_EQ(SplitHead("\r\nRINGBACKLOCAL\r\n").out, "\r\nRINGBACKLOCAL\r\n");
    EXPECT_EQ(SplitHead("\r\n+RINGBACK: 1\r\n").out, "\r\n+RINGBACK: 1\r\n");
}

// "RING" stands before "STOPRING" in the table, and is not at the start of its line.
TEST(SplitAtResHead, ShorterMarkerInsideALineRefusesIt) {
    ClearLog();
    const Head head = SplitHead("\r\nSTOPRING\r\n");
    EXPECT_EQ(head.result, 1);
    EXPECT_EQ(head.buffer, "\r\nSTOPRING\r\n");
    EXPECT_TRUE(Logged("at format or name may be error,must be start with \r\n", "atcode", 7));
}

TEST(SplitAtResHead, MarkerInsideALineIsRefused) {
    ClearLog();
    EXPECT_EQ(SplitHead("\r\nx+CUSD: 1\r\n").result, 1);
    EXPECT_TRUE(Logged("at format or name may be error,must be start with \r\n", "atcode", 7));
}

TEST(SplitAtResHead, LineWithoutAnEndIsRefused) {
    ClearLog();
    const Head head = SplitHead("\r\n+CME ERROR: 10");
    EXPECT_EQ(head.result, 1);
    EXPECT_EQ(head.buffer, "\r\n+CME ERROR: 10");
    EXPECT_TRUE(Logged("at format may be error,must be end with \r\n", "atcode", 7));
}

TEST(SplitAtResHead, PromptNeedsNoEnd) {
    const Head head = SplitHead("\r\n> ");
    EXPECT_EQ(head.result, 0);
    EXPECT_EQ(head.out, "\r\n> ");
    EXPECT_EQ(head.buffer, "");
    EXPECT_TRUE(head.prompt);
}

TEST(SplitAtResHead, TextWithoutAMarkerIsMovedWhole) {
    const Head head = SplitHead("\r\n+CSQ: 20,99\r\n\r\nOK\r\n");
    EXPECT_EQ(head.result, 0);
    EXPECT_EQ(head.out, "\r\n+CSQ: 20,99\r\n\r\nOK\r\n");
    EXPECT_EQ(head.buffer, "");
    EXPECT_FALSE(head.prompt);
}

TEST(SplitAtResHead, OnlyFourBytesAreClearedBehindAWholeMove) {
    char buffer[32] = "\r\nERROR\r\n";
    char out[32] = "";
    EXPECT_EQ(Split_At_Res_Head(buffer, out), 0);
    EXPECT_EQ(memcmp(buffer, "\0\0\0\0ROR\r\n", 10), 0);
}

TEST(SplitAtResHead, NamesThatTheEndTableHasAloneAreNoMarkers) {
    for (const char* text : {"\r\n+ZNITZ: 1\r\n", "\r\n+CDS: 1\r\n", "\r\nZVMAIL: 1\r\n",
                             "\r\n+ZSIMREFRESH\r\n", "\r\nERROR\r\n", "\r\nVOICE NO CARRIER: 1\r\n"}) {
        const string followed = string(text) + "\r\nmore\r\n";
        EXPECT_EQ(SplitHead(followed).out, followed);
    }
}

TEST(SplitAtResHead, EqualsThePlainFormOnRandomText) {
    RandomText random(0x5eed0006);
    size_t moved = 0;
    for (int round = 0; round < 50'000; ++round) {
        const string text = "\r\n" + random.Next(6);
        const PlainHead expected = PlainSplitHead(text);
        const Head head = SplitHead(text);
        moved += expected.result == 0;
        ASSERT_EQ(head.result, expected.result) << Printable(text);
        ASSERT_EQ(Printable(head.out), Printable(expected.out)) << Printable(text);
        ASSERT_EQ(Printable(head.buffer), Printable(expected.buffer)) << Printable(text);
        ASSERT_EQ(head.prompt, expected.prompt) << Printable(text);
        if (round % 5'000 == 0) ClearLog();
    }
    EXPECT_GT(moved, 5'000u);
    EXPECT_LT(moved, 45'000u);
    ClearLog();
}
