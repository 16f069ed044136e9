#include "reports/sorting.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "checks/support/fake_platform.h"
#include "checks/support/modem_lines.h"
#include "checks/support/plain_framing.h"
#include "checks/support/plain_sorting.h"
#include "records/payload.h"
#include "records/state.h"

// Sorting that goes on where it stopped gives what sorting everything anew gives.

namespace {

using std::string;

struct Cutting {
    Cut cut;
    size_t begin, end;
    bool in_answer;
    size_t continues_at;
    bool hex_line, late_ok;
    bool operator==(const Cutting&) const = default;
};

void PrintTo(const Cutting& cutting, std::ostream* out) {
    *out << "{cut " << int(cutting.cut) << ", " << cutting.begin << " to " << cutting.end << ", in answer "
         << cutting.in_answer << ", continues at " << cutting.continues_at << ", hex " << cutting.hex_line
         << ", late " << cutting.late_ok << "}";
}

Cutting Of(const Response& response, const char* text) {
    if (response.cut == Cut::nothing) return {Cut::nothing, 0, 0, false, 0, false, false};
    const char* at = response.continuation.at;
    return {response.cut,
            static_cast<size_t>(response.begin - text),
            static_cast<size_t>(response.end - text),
            response.in_answer,
            at == nullptr ? kNowhere : static_cast<size_t>(at - text),
            response.continuation.hex_line,
            response.continuation.late_ok};
}

class Resumed : public testing::TestWithParam<const char*> {
  protected:
    void SetUp() override {
        Platform().Reset();
        Platform().config["data_card_mode"] = GetParam();
    }
    void TearDown() override { ClearPendingRequest(); }

    static PendingCommand Pend(uint16_t id) {
        ClearPendingRequest();
        PendingRequest()->usCmdID = id;
        return PendingCommand::Current();
    }

    // Lets `stream` arrive in pieces of `next_piece` characters and cuts out what NextResponse finds, as the
    // delivery does. Counts the responses by kind.
    template <typename Piece>
    void Arrive(const string& stream, RandomText& random, bool change_request, Piece next_piece) {
        PendingCommand pending = Pend(AnyPending(random));
        SortingMemory memory;
        string text;
        size_t continues_at = kNowhere;
        Continuation continuation;
        for (size_t from = 0; from < stream.size();) {
            const size_t size = next_piece();
            text += stream.substr(from, size);
            from += size;
            for (;;) {
                if (change_request && random.Below(6) == 0) pending = Pend(AnyPending(random));
                continuation.at = continues_at == kNowhere ? nullptr : text.c_str() + continues_at;
                const Response fresh = NextResponse(text.c_str(), pending, continuation);
                const Response resumed = NextResponse(text.c_str(), pending, continuation, memory);
                const Cutting cut = Of(fresh, text.c_str());
                ASSERT_EQ(Of(resumed, text.c_str()), cut) << Printable(text);
                ASSERT_EQ(Of(PlainNextResponse(text.c_str(), pending, continuation), text.c_str()), cut)
                    << Printable(text);
                ++seen_[static_cast<int>(cut.cut)];
                if (cut.cut == Cut::nothing) break;
                continuation = resumed.continuation;
                if (cut.cut == Cut::framed) {
                    text.erase(0, cut.end);
                    memory.DropFront(cut.end);
                    continues_at = kNowhere;
                    continuation = {};
                } else {
                    if (continuation.at != nullptr) continuation.at = text.c_str() + cut.begin;
                    memory.RemoveLines(cut.begin, cut.end, continuation);
                    continues_at = continuation.at == nullptr ? kNowhere : cut.begin;
                    text.erase(cut.begin, cut.end - cut.begin);
                }
            }
        }
    }

    size_t seen_[5] = {};
};

TEST_P(Resumed, EqualsFreshAndPlainForPiecesOfEverySize) {
    RandomText random(0x5eed0010);
    for (int round = 0; round < 250; ++round) {
        const string stream = ModemLines(random, 14);
        for (size_t size = 1; size <= 24; ++size)
            ASSERT_NO_FATAL_FAILURE(Arrive(stream, random, false, [size] { return size; })) << round;
    }
    for (const size_t count : seen_)
        EXPECT_GT(count, 10u);
}

TEST_P(Resumed, EqualsFreshAndPlainForRandomPiecesAndRequests) {
    RandomText random(0x5eed0011);
    for (int round = 0; round < 6'000; ++round) {
        const string stream = ModemLines(random, 16);
        const unsigned most = 1 + random.Below(60);
        ASSERT_NO_FATAL_FAILURE(Arrive(stream, random, true, [&random, most] {
            return size_t{1} + random.Below(most);
        })) << round;
    }
    for (const size_t count : seen_)
        EXPECT_GT(count, 10u);
}

TEST_P(Resumed, EqualsFreshAndPlainForTheDebrisOfMarkers) {
    RandomText random(0x5eed0012);
    for (int round = 0; round < 6'000; ++round) {
        string stream = random.Next(25);
        const unsigned most = 1 + random.Below(30);
        ASSERT_NO_FATAL_FAILURE(Arrive(stream, random, true, [&random, most] {
            return size_t{1} + random.Below(most);
        })) << round;
    }
}

INSTANTIATE_TEST_SUITE_P(EachCardMode, Resumed, testing::Values("KVX_LTE", "other"));

// One that remembers what the text is no longer must differ, or the checks above prove nothing.
TEST(SortingMemory, IsNotBelievedForAnotherText) {
    SortingMemory memory;
    const PendingCommand nothing;
    EXPECT_EQ(NextResponse("\r\nplain\r\n", nothing, {}, memory).cut, Cut::nothing);
    const char* const other = "\r\nRING!\r\nRING\r\n";
    EXPECT_EQ(NextResponse(other, nothing, {}, memory).end, other + 15);
    memory = {};
    EXPECT_EQ(NextResponse("\r\nRI", nothing, {}, memory).cut, Cut::nothing);
    EXPECT_EQ(NextResponse("\r\nRING\r\n", nothing, {}, memory).cut, Cut::framed);
}

TEST(GrowingSearch, EqualsTheSearchFromTheStartForEveryChunking) {
    RandomText random(0x5eed0013);
    for (int round = 0; round < 20'000; ++round) {
        const string text = random.Next(12);
        const string sub = round % 3 == 0 ? "\r\n" : kEndMarkerList[random.Below(82)];
        GrowingSearch search;
        for (size_t size = 0; size <= text.size(); size += 1 + random.Below(8)) {
            const string part = text.substr(0, size);
            const char* found = search.Find(part.c_str(), sub.c_str(), sub.size());
            ASSERT_EQ(found, Find_Sub_Str(part.c_str(), sub.c_str())) << Printable(part);
        }
    }
}

}  // namespace
