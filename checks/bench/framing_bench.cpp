#include <benchmark/benchmark.h>
#include <string.h>

#include <string>
#include <vector>

#include "checks/bench/samples.h"
#include "checks/support/plain_framing.h"
#include "codec/framing.h"
#include "records/payload.h"
#include "records/state.h"
#include "reports/sorting.h"

// Buffering and framing alone: from chunks to the ends of responses.

namespace {

std::vector<std::vector<char>> Pieces(const std::string& text, size_t size) {
    std::vector<std::vector<char>> pieces;
    for (size_t at = 0; at < text.size(); at += size) {
        const std::string part = text.substr(at, size);
        pieces.emplace_back(part.begin(), part.end());
        pieces.back().resize(part.size() + 16);
    }
    return pieces;
}

// Frames `text` in pieces of `size` characters, with `id` pending.
void Frame(benchmark::State& state, const std::string& text, size_t size, uint16_t id) {
    auto pieces = Pieces(text, size);
    Pend(id, AT_CMD_TYPE_SET);
    const PendingCommand pending = PendingCommand::Current();
    size_t responses = 0;
    for (auto _ : state) {
        gStrResAtBuffer[0] = '\0';
        BufferedText buffered;
        SortingMemory memory;
        for (auto& piece : pieces) {
            AppendReceived(gStrResAtBuffer, piece.data(), buffered);
            const char* from = gStrResAtBuffer;
            for (;;) {
                const Response response = NextResponse(from, pending, {}, memory);
                if (response.cut == Cut::nothing) break;
                ++responses;
                memory.DropFront(static_cast<size_t>(response.end - from));
                from = response.end;
            }
            if (from == gStrResAtBuffer) continue;
            buffered.length -= static_cast<size_t>(from - gStrResAtBuffer);
            buffered.line_break = {};
            memmove(gStrResAtBuffer, from, buffered.length + 1);
        }
        benchmark::DoNotOptimize(responses);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

void PlainFrame(benchmark::State& state, const std::string& text, size_t size) {
    size_t responses = 0;
    for (auto _ : state) {
        std::string buffer;
        for (size_t at = 0; at < text.size(); at += size) {
            PlainPreProcess(buffer, text.substr(at, size));
            for (PlainEnd end = PlainFindEnd(buffer); end.end != kNone; end = PlainFindEnd(buffer)) {
                ++responses;
                buffer.erase(0, end.end);
            }
        }
        benchmark::DoNotOptimize(responses);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

void Add(const std::string& name, const std::string& text, size_t size, uint16_t id, bool plain = true) {
    benchmark::RegisterBenchmark(("framing/" + name).c_str(),
                                 [=](benchmark::State& state) { Frame(state, text, size, id); });
    if (!plain) return;
    benchmark::RegisterBenchmark(("plain/framing/" + name).c_str(),
                                 [=](benchmark::State& state) { PlainFrame(state, text, size); });
}

[[maybe_unused]] const bool kAdded = [] {
    const std::string list = MessageList();
    Add("short answer", kShortAnswer, 4096, 0x0604);
    Add("list in pieces of 1", list, 1, 0x0106);
    Add("list in pieces of 16", list, 16, 0x0106);
    Add("list in pieces of 115", list, 115, 0x0106);
    Add("list in pieces of 4096", list, 4096, 0x0106);
    Add("1 kB without an end in one piece", Endless(1'000), 1'000, 0x0106);
    Add("100 kB without an end in one piece", Endless(100'000), 100'000, 0x0106);
    Add("1 kB without an end in pieces of 115", Endless(1'000), 115, 0x0106);
    Add("100 kB without an end in pieces of 115", Endless(100'000), 115, 0x0106);
    Add("storm of 500 reports in one piece", Storm(500), 100'000, 0x0604);
    Add("storm of 500 reports in pieces of 115", Storm(500), 115, 0x0604);
    return true;
}();

}  // namespace
