#include "records/handover.h"

#include <gtest/gtest.h>
#include <string.h>
#include <time.h>

#include <set>
#include <string>
#include <thread>

#include "records/state.h"

namespace {

using std::string;

MSG_BUF Request(int32_t type) {
    MSG_BUF request;
    memset(&request, type & 0x7F, sizeof request);
    request.lMsgType = type;
    request.usSourceModuleID = static_cast<uint16_t>(type);
    return request;
}

class Handover : public testing::Test {
  protected:
    void SetUp() override {
        HandoverTake();
        ClearPendingRequest();
        strcpy(g_cmd_str, "before");
        g_at_processing = 0;
    }
    void TearDown() override { SetUp(); }
};

static_assert(TicketAfter(0) == 1);
static_assert(TicketAfter(1) == 2);
static_assert(TicketAfter(UINT32_MAX - 1) == UINT32_MAX);
static_assert(TicketAfter(UINT32_MAX) == 1);

}  // namespace

TEST_F(Handover, EmptySlotGivesNothing) {
    EXPECT_FALSE(HandoverTake());
    EXPECT_EQ(g_at_msg.lMsgType, -1);
    EXPECT_STREQ(g_cmd_str, "before");
}

TEST_F(Handover, RequestAndLineArriveWholeAndOnce) {
    const MSG_BUF request = Request(7);
    EXPECT_TRUE(HandoverPut(request, "AT+CSQ\r"));
    EXPECT_EQ(g_at_msg.lMsgType, -1);
    EXPECT_STREQ(g_cmd_str, "before");
    EXPECT_TRUE(HandoverTake());
    EXPECT_EQ(memcmp(&g_at_msg, &request, sizeof request), 0);
    EXPECT_STREQ(g_cmd_str, "AT+CSQ\r");
    ClearPendingRequest();
    EXPECT_FALSE(HandoverTake());
    EXPECT_EQ(g_at_msg.lMsgType, -1);
}

TEST_F(Handover, FullSlotRefusesTheNextRequestAndKeepsTheFirst) {
    EXPECT_TRUE(HandoverPut(Request(7), "AT+FIRST\r"));
    EXPECT_FALSE(HandoverPut(Request(8), "AT+SECOND\r"));
    EXPECT_TRUE(HandoverTake());
    EXPECT_EQ(g_at_msg.lMsgType, 7);
    EXPECT_STREQ(g_cmd_str, "AT+FIRST\r");
    EXPECT_TRUE(HandoverPut(Request(8), "AT+SECOND\r"));
    EXPECT_TRUE(HandoverTake());
    EXPECT_EQ(g_at_msg.lMsgType, 8);
}

TEST_F(Handover, RequestInFlightIsOverwritten) {
    g_at_msg = Request(3);
    EXPECT_TRUE(HandoverPut(Request(7), "AT\r"));
    EXPECT_TRUE(HandoverTake());
    EXPECT_EQ(g_at_msg.lMsgType, 7);
}

TEST_F(Handover, RequestWithoutALineLeavesTheLastOne) {
    EXPECT_TRUE(HandoverPut(Request(7), nullptr));
    EXPECT_TRUE(HandoverTake());
    EXPECT_EQ(g_at_msg.lMsgType, 7);
    EXPECT_STREQ(g_cmd_str, "before");
}

TEST_F(Handover, LineIsBoundedByItsBuffer) {
    for (const size_t length : {0u, 1022u, 1023u, 1024u, 5000u}) {
        EXPECT_TRUE(HandoverPut(Request(7), string(length, 'x').c_str()));
        EXPECT_TRUE(HandoverTake());
        EXPECT_EQ(g_cmd_str, string(std::min<size_t>(length, 1023), 'x')) << length;
    }
}

TEST_F(Handover, TicketsAreNeverZeroAndDifferFromTheOneBefore) {
    std::set<uint32_t> seen;
    for (int i = 0; i < 1000; ++i) {
        const uint32_t ticket = IssueTicket();
        EXPECT_NE(ticket, 0u);
        EXPECT_EQ(g_at_processing, ticket);
        EXPECT_TRUE(seen.insert(ticket).second);
    }
}

TEST_F(Handover, TicketInForceIsRedeemed) {
    const uint32_t ticket = IssueTicket();
    RedeemTicket(ticket);
    EXPECT_EQ(g_at_processing, 0u);
}

TEST_F(Handover, TicketOfTheRequestBeforeRedeemsNothing) {
    const uint32_t old = IssueTicket();
    const uint32_t ticket = IssueTicket();
    RedeemTicket(old);
    EXPECT_EQ(g_at_processing, ticket);
    RedeemTicket(0);
    EXPECT_EQ(g_at_processing, ticket);
}

TEST_F(Handover, NoTicketIsRedeemedWhenNoneIsInForce) {
    RedeemTicket(0);
    RedeemTicket(17);
    EXPECT_EQ(g_at_processing, 0u);
}

// One thread puts request after request, the other takes, checks and lets go on.
TEST_F(Handover, NoRequestIsLostDoubledOrMixedBetweenTwoThreads) {
    constexpr int kRequests = 20'000;
    std::atomic<bool> stop{false};
    std::thread requests([&stop] {
        for (int i = 1; i <= kRequests; ++i) {
            const string line = "AT+" + std::to_string(i) + "\r";
            while (!HandoverPut(Request(i), line.c_str()))
                if (stop) return;
            IssueTicket();
            while (g_at_processing.load(std::memory_order_acquire) != 0)
                if (stop) return;
        }
    });
    int next = 1;
    timespec begin, now;
    clock_gettime(CLOCK_MONOTONIC, &begin);
    while (next <= kRequests) {
        clock_gettime(CLOCK_MONOTONIC, &now);
        if (now.tv_sec - begin.tv_sec > 60) break;
        const uint32_t ticket = g_at_processing.load(std::memory_order_acquire);
        HandoverTake();
        if (g_at_msg.lMsgType == -1) {
            RedeemTicket(ticket);
            continue;
        }
        const MSG_BUF expected = Request(next);
        const bool whole = memcmp(&g_at_msg, &expected, sizeof expected) == 0;
        EXPECT_TRUE(whole) << next << ", got " << g_at_msg.lMsgType;
        EXPECT_EQ(g_cmd_str, "AT+" + std::to_string(next) + "\r");
        if (!whole) break;
        ClearPendingRequest();
        ++next;
    }
    stop = true;
    requests.join();
    EXPECT_EQ(next, kRequests + 1);
    EXPECT_FALSE(HandoverTake());
}
