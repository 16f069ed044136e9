#include <benchmark/benchmark.h>
#include <string.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

#include "checks/bench/samples.h"
#include "checks/support/plain_lines.h"
#include "checks/support/plain_rows.h"
#include "codec/atcode.h"
#include "commands/catalog.h"

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

// Runs `work` for each of the rows and says which takes longest, by the shortest time of each: what else the
// machine does makes times longer only.
template <typename Work>
void EveryRow(benchmark::State& state, const std::vector<const Row*>& rows, Work work) {
    using Clock = std::chrono::steady_clock;
    std::vector<Clock::duration> least(rows.size(), Clock::duration::max());
    for (auto _ : state) {
        for (size_t i = 0; i < rows.size(); ++i) {
            const auto start = Clock::now();
            work(*rows[i]);
            least[i] = std::min(least[i], Clock::now() - start);
        }
    }
    const auto slowest = std::max_element(least.begin(), least.end());
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(rows.size()));
    state.SetLabel(std::to_string(rows.size()) + " rows; slowest " +
                   rows[size_t(slowest - least.begin())]->name + " " +
                   std::to_string(std::chrono::nanoseconds(*slowest).count()) + " ns");
}

AT_CMD_LINE_T g_unused_line;

bool HasPlainEncoder(const Row& row) {
    return CatalogRow(row.id) == &row && PlainEncode(row, g_unused_line, {});
}
bool HasPlainDecoder(const Row& row) {
    _BK_AT_RES_T response{};
    return PlainDecode(row, response, g_line);
}
bool IsSendable(const Row& row) {
    return row.encode.kind != EncodeKind::absent;
}
bool IsAny(const Row&) {
    return true;
}

std::vector<const Row*> RowsThat(bool (*wanted)(const Row&)) {
    std::vector<const Row*> rows;
    for (const Row& row : kCatalog)
        if (wanted(row)) rows.push_back(&row);
    return rows;
}

// A set of each command with a record of its size.
template <typename Make>
void Encode(benchmark::State& state, bool (*wanted)(const Row&), Make make) {
    _BK_AT_CMD_T request{};
    request.ucCmdType = AT_CMD_TYPE_SET;
    for (size_t i = 0; i + 1 < sizeof request.aucParas; i += 4)
        request.aucParas[i] = '1';
    char line[1024];
    EveryRow(state, RowsThat(wanted), [&](const Row& row) {
        request.usCmdID = row.id;
        request.usParaLen = static_cast<uint16_t>(row.encode.record != nullptr ? row.encode.record->size : 0);
        make(line, request);
        benchmark::DoNotOptimize(line[0]);
    });
}

template <typename Parse>
void Decode(benchmark::State& state, bool (*wanted)(const Row&), Parse parse) {
    static constexpr char kText[] = "1,2,3,\"5550123\",145,\"name of it\",7,8,9,10";
    _BK_AT_RES_T response{};
    g_line.Result = AT_RESULT_OK;
    EveryRow(state, RowsThat(wanted), [&](const Row& row) {
        for (uint8_t type = AT_CMD_TYPE_EXEC; type <= AT_CMD_TYPE_READ; ++type) {
            memcpy(g_line.strResParas, kText, sizeof kText);
            response.usCmdID = row.id;
            response.ucCmdType = type;
            response.ucResult = AT_RESULT_OK;
            parse(row, response);
        }
    });
}

void AddRows() {
    const auto make = [](char* line, const _BK_AT_CMD_T& request) {
        Bk_Generate_At_Cmd_Line(line, &request);
    };
    const auto parse = [](const Row& row, _BK_AT_RES_T& response) {
        g_astAtCmdTable[row.position - 1].pfnParseRes(&response, &g_line);
    };
    const auto plain_parse = [](const Row& row, _BK_AT_RES_T& response) {
        PlainDecode(row, response, g_line);
    };
    const auto add = [](const char* name, auto run) { benchmark::RegisterBenchmark(name, run); };
    using benchmark::State;
    add("encoding/every row once", [=](State& state) { Encode(state, IsSendable, make); });
    add("encoding/rows with a plain form", [=](State& state) { Encode(state, HasPlainEncoder, make); });
    add("plain/encoding/rows with a plain form",
        [](State& state) { Encode(state, HasPlainEncoder, PlainGenerate); });
    add("decoding/every row under three types", [=](State& state) { Decode(state, IsAny, parse); });
    add("decoding/rows with a plain form", [=](State& state) { Decode(state, HasPlainDecoder, parse); });
    add("plain/decoding/rows with a plain form",
        [=](State& state) { Decode(state, HasPlainDecoder, plain_parse); });
}

[[maybe_unused]] const bool kAdded = [] {
    AddParse("short answer", kShortAnswer);
    AddParse("list of 80 messages", MessageList());
    AddParse("report", "\r\n+CMTI: \"SM\",3\r\n");
    AddRows();
    return true;
}();

}  // namespace
