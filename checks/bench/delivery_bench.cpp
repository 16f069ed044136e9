#include <benchmark/benchmark.h>
#include <string.h>

#include <algorithm>
#include <string>
#include <vector>

#include "checks/bench/samples.h"
#include "checks/support/plain_delivery.h"
#include "records/payload.h"
#include "records/state.h"
#include "reports/response.h"
#include "text/atpublic.h"

// The whole step from modem text to messages, and report routing alone.

namespace {

// The two forms of the step: each takes one read.
class Daemon {
  public:
    Daemon() { ForgetReceived(); }
    void Receive(const std::string& text, size_t at, size_t size) {
        const size_t length = std::min(size, text.size() - at);
        memcpy(chunk_.data(), text.data() + at, length);
        chunk_[length] = '\0';
        ProcessReceived(chunk_.data());
    }

  private:
    std::vector<char> chunk_ = std::vector<char>(kModemTextSize);
};

class Plain {
  public:
    void Receive(const std::string& text, size_t at, size_t size) {
        delivery_.Receive(text.substr(at, size));
    }

  private:
    PlainDelivery delivery_;
};

template <typename Form>
void Deliver(benchmark::State& state, const std::string& text, size_t size, uint16_t id, uint8_t type) {
    const uint32_t before = g_at_statistics.received.load();
    Form form;
    for (auto _ : state) {
        if (id != 0) Pend(id, type);
        for (size_t at = 0; at < text.size(); at += size)
            form.Receive(text, at, size);
    }
    if (id != 0 && g_at_statistics.received.load() - before != static_cast<uint64_t>(state.iterations()))
        state.SkipWithError("an answer was not delivered");
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

// In the order of the rows.
constexpr const char* kLiterals[] = {
    "ZREFRESH: ",
    "+CMTI: ",
    "+ZVMTI: ",
    "+CDSI: ",
    "+CGEV: ",
    "RINGBACK:",
    "RINGBACKLOCAL",
    "RINGBACK",
    "VOICE NO CARRIER : ",
    "VOICE NO CARRIER: ",
    "VOICE NO CARRIER ",
    "STOPRING",
    "RING",
    "+CLIP: ",
    "+CCWA: ",
    "VOICE CONNECT",
    "ANSWER",
    "ZVCONNECT: ",
    "CONNECT",
    "HANGUP:",
    "+ZCLAS: ",
    "ZVMAIL: ",
    "^CONN",
    "^CEND",
    "+ZCPI",
    "OK",
    "^HRSSILVL:",
    "+ZCONSTAT: ",
    "+ZGIPDNS: ",
    "+ZICCID: ",
    "+CREG: ",
    "+CGREG: ",
    "+CEREG: ",
    "+ZNITZ: ",
    "+ZUPCI: ",
    "+ZUEND: ",
    "+ZEND",
    "+ZSIMREFRESH",
};

const std::string kUnknown = "^NEWS:" + std::string(400, '7');

void Route(benchmark::State& state) {
    MSG_BUF message{};
    _BK_AT_RES_T& res = ResponseOf(message);
    ClearPendingRequest();
    for (auto _ : state) {
        memcpy(res.aucParas, kUnknown.c_str(), kUnknown.size() + 1);
        RouteReport(&message, {});
    }
}

void PlainRoute(benchmark::State& state) {
    for (auto _ : state)
        for (const char* literal : kLiterals)
            benchmark::DoNotOptimize(Find_Sub_Str(kUnknown.c_str(), literal));
}

void Add(const std::string& name, const std::string& text, size_t size, uint16_t id, uint8_t type,
         bool plain = true) {
    benchmark::RegisterBenchmark(("delivery/" + name).c_str(), [=](benchmark::State& state) {
        Deliver<Daemon>(state, text, size, id, type);
    });
    if (!plain) return;
    benchmark::RegisterBenchmark(("plain/delivery/" + name).c_str(), [=](benchmark::State& state) {
        Deliver<Plain>(state, text, size, id, type);
    });
}

[[maybe_unused]] const bool kAdded = [] {
    Add("short answer framed, parsed and decoded", kShortAnswer, 4096, 0x0604, AT_CMD_TYPE_EXEC);
    Add("list in pieces of 1", MessageList(), 1, 0x0106, AT_CMD_TYPE_SET,
        false);  // which would take two minutes
    Add("list in pieces of 16", MessageList(), 16, 0x0106, AT_CMD_TYPE_SET);
    Add("list in pieces of 115", MessageList(), 115, 0x0106, AT_CMD_TYPE_SET);
    Add("list in pieces of 4096", MessageList(), 4096, 0x0106, AT_CMD_TYPE_SET);
    Add("storm of 500 reports in one piece", Storm(500), 100'000, 0, 0);
    Add("storm of 500 reports around an answer", Storm(250) + kShortAnswer + Storm(250), 115, 0x0604,
        AT_CMD_TYPE_EXEC);
    benchmark::RegisterBenchmark("routing/report that no row takes", Route);
    benchmark::RegisterBenchmark("plain/routing/report that no row takes", PlainRoute);
    return true;
}();

}  // namespace
