#include "checks/support/plain_delivery.h"

#include <gtest/gtest.h>
#include <string.h>

#include <utility>
#include <vector>

#include "checks/support/fake_modem.h"
#include "checks/support/fake_platform.h"
#include "checks/support/fake_queue.h"
#include "checks/support/modem_lines.h"
#include "codec/framing.h"
#include "records/payload.h"
#include "records/state.h"
#include "reports/response.h"

// The delivery step does what its plain form does, however the text is cut and whatever is pending.

namespace {

using std::string;

// What is read, and the command that is made pending before; kept for what is pending anyway.
struct Read {
    string text;
    int pending;
};
constexpr int kKeep = -1;

struct Done {
    std::vector<std::vector<unsigned char>> sent;
    std::vector<std::pair<string, string>> writes;
    std::vector<string> waiting;  // after each read
    string heard;                 // by the modem
    uint16_t last = 0;
    unsigned char prompt = 0;
    bool operator==(const Done&) const = default;
};

void PrintTo(const Done& done, std::ostream* out) {
    *out << "{sent " << done.sent.size() << ", written " << done.writes.size() << ", heard "
         << Printable(done.heard) << ", waiting after each read:";
    for (const string& text : done.waiting)
        *out << " \"" << Printable(text) << '"';
    *out << "}";
}

template <typename Receive, typename Waiting>
Done DoneBy(const char* card, const std::vector<Read>& reads, Receive receive, Waiting waiting) {
    Platform().Reset();
    Platform().config["data_card_mode"] = card;
    Queues().Reset();
    Queues().CreateModules();
    Queues().Create(0x2345);
    ClearPendingRequest();
    g_last_atcmd = 0;
    g_sms_prompt = 0;
    FakeModem modem;
    Done done;
    for (const Read& read : reads) {
        if (read.pending != kKeep) {
            ClearPendingRequest();
            if (read.pending != 0) g_at_msg.lMsgType = 7;
            g_at_msg.usSourceModuleID = 0x2345;
            PendingRequest()->usCmdID = static_cast<uint16_t>(read.pending);
            PendingRequest()->ucCmdType = static_cast<uint8_t>(1 + read.pending % 3);
        }
        receive(read.text);
        done.waiting.push_back(waiting());
    }
    for (const FakeMessage& message : Queues().sent)
        done.sent.push_back(message.body);
    done.writes = Platform().writes;
    done.heard = modem.Heard();
    done.last = g_last_atcmd;
    done.prompt = g_sms_prompt;
    ClearPendingRequest();
    ForgetReceived();
    return done;
}

Done ByDaemon(const char* card, const std::vector<Read>& reads) {
    ForgetReceived();
    const auto receive = [](const string& text) {
        static char chunk[kModemTextSize];
        memcpy(chunk, text.c_str(), text.size() + 1);
        ProcessReceived(chunk);
    };
    return DoneBy(card, reads, receive, [] { return string(gStrResAtBuffer); });
}

Done ByPlainForm(const char* card, const std::vector<Read>& reads) {
    PlainDelivery plain;
    return DoneBy(
        card, reads, [&](const string& text) { plain.Receive(text); }, [&] { return plain.Waiting(); });
}

class PlainDeliveryOf : public testing::TestWithParam<const char*> {
  protected:
    static void Compare(const std::vector<Read>& reads) {
        const Done done = ByDaemon(GetParam(), reads);
        ASSERT_EQ(done, ByPlainForm(GetParam(), reads));
        sent_ += done.sent.size();
        heard_ += done.heard.size();
    }
    static void SetUpTestSuite() { sent_ = heard_ = 0; }
    static size_t sent_, heard_;
};
size_t PlainDeliveryOf::sent_;
size_t PlainDeliveryOf::heard_;

std::vector<Read> Cut(const string& stream, RandomText& random) {
    std::vector<Read> reads;
    const unsigned most = 1 + random.Below(80);
    for (size_t at = 0; at < stream.size();) {
        const size_t size = 1 + random.Below(most);
        reads.push_back({stream.substr(at, size), random.Below(4) == 0 ? AnyPending(random) : kKeep});
        at += size;
    }
    return reads;
}

TEST_P(PlainDeliveryOf, LinesAsModemsSendThem) {
    RandomText random(0x5eed0040);
    for (int round = 0; round < 2'500; ++round)
        ASSERT_NO_FATAL_FAILURE(Compare(Cut(ModemLines(random, 16), random))) << round;
    EXPECT_GT(sent_, 2'000u);
    EXPECT_GT(heard_, 100u);
}

TEST_P(PlainDeliveryOf, TheDebrisOfMarkers) {
    RandomText random(0x5eed0041);
    for (int round = 0; round < 2'500; ++round) {
        string stream = random.Next(25);
        for (char& c : stream)
            if (c == '\0') c = ' ';
        ASSERT_NO_FATAL_FAILURE(Compare(Cut(stream, random))) << round;
    }
}

TEST_P(PlainDeliveryOf, ABufferThatRunsFull) {
    const string piece = "\r\n" + string(29'998, 'x');
    ASSERT_NO_FATAL_FAILURE(
        Compare({{piece, 0x0106}, {piece, kKeep}, {piece, kKeep}, {piece, kKeep}, {"\r\nOK\r\n", kKeep}}));
}

INSTANTIATE_TEST_SUITE_P(EachCardMode, PlainDeliveryOf, testing::Values("KVX_LTE", "other"));

}  // namespace
