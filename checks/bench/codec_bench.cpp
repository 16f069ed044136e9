#include <benchmark/benchmark.h>
#include <string.h>

#include <chrono>
#include <functional>
#include <string>

#include "checks/bench/samples.h"
#include "checks/support/plain_lines.h"
#include "codec/atcode.h"

// Parsing, and the encoders and decoders of all rows.

namespace {

AT_RES_LINE_T g_line;

template <typename Scan>
void Parse(benchmark::State& state, const std::string& text, Scan scan) {
    for (auto _ : state) {
        g_line.Result = 0;
        g_line.strCmdName[0] = '\0';
        g_line.strResParas[0] = '\0';
        scan(&g_line, text.c_str());
        benchmark::DoNotOptimize(g_line.Result);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<int64_t>(text.size()));
}

void AddParse(const std::string& name, const std::string& text) {
    benchmark::RegisterBenchmark(("parsing/" + name).c_str(), [text](benchmark::State& state) {
        Parse(state, text, Bk_PreParse_At_Res_Lines);
    });
    benchmark::RegisterBenchmark(("plain/parsing/" + name).c_str(),
                                 [text](benchmark::State& state) { Parse(state, text, PlainScanModule); });
}

// Runs `work` for every row and says which row takes longest.
template <typename Work>
void EveryRow(benchmark::State& state, Work work) {
    using Clock = std::chrono::steady_clock;
    std::array<Clock::duration, kAtCmdTableSize> spent{};
    size_t rows = 0;
    for (auto _ : state) {
        rows = 0;
        for (size_t row = 0; row < kAtCmdTableSize; ++row) {
            const auto start = Clock::now();
            if (!work(g_astAtCmdTable[row])) continue;
            spent[row] += Clock::now() - start;
            ++rows;
        }
    }
    size_t slowest = 0;
    for (size_t row = 1; row < kAtCmdTableSize; ++row)
        if (spent[row] > spent[slowest]) slowest = row;
    const auto nanoseconds = std::chrono::nanoseconds(spent[slowest]).count() / int64_t(state.iterations());
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(rows));
    state.SetLabel(std::to_string(rows) + " rows; slowest " + g_astAtCmdTable[slowest].acCmdName + " " +
                   std::to_string(nanoseconds) + " ns");
}

void Encode(benchmark::State& state) {
    _BK_AT_CMD_T request{};
    request.ucCmdType = AT_CMD_TYPE_SET;
    for (size_t i = 0; i + 1 < sizeof request.aucParas; i += 4)
        request.aucParas[i] = '1';
    char line[1024];
    EveryRow(state, [&](const AT_CMD_ITEM_T& row) {
        if (row.pfnMakeCmd == nullptr) return false;
        request.usCmdID = row.usCmdID;
        AT_CMD_LINE_T made{};
        // The encoder names the size that it wants when it is given another one.
        request.usParaLen = 0;
        request.usParaLen = static_cast<uint16_t>(row.pfnMakeCmd(&made, &request));
        Bk_Generate_At_Cmd_Line(line, &request);
        return true;
    });
}

void Decode(benchmark::State& state) {
    static constexpr char kText[] = "1,2,3,\"5550123\",145,\"name of it\",7,8,9,10";
    _BK_AT_RES_T response{};
    g_line.Result = AT_RESULT_OK;
    EveryRow(state, [&](const AT_CMD_ITEM_T& row) {
        for (uint8_t type = AT_CMD_TYPE_EXEC; type <= AT_CMD_TYPE_READ; ++type) {
            memcpy(g_line.strResParas, kText, sizeof kText);
            response.usCmdID = row.usCmdID;
            response.ucCmdType = type;
            response.ucResult = AT_RESULT_OK;
            row.pfnParseRes(&response, &g_line);
        }
        return true;
    });
}

[[maybe_unused]] const bool kAdded = [] {
    AddParse("short answer", kShortAnswer);
    AddParse("list of 80 messages", MessageList());
    AddParse("report", "\r\n+CMTI: \"SM\",3\r\n");
    benchmark::RegisterBenchmark("encoding/every row once", Encode);
    benchmark::RegisterBenchmark("decoding/every row under three types", Decode);
    return true;
}();

}  // namespace
