#include <string.h>

#include <random>
#include <vector>

#include "checks/support/report_vector.h"
#include "records/state.h"
#include "reports/routing.h"
#include "text/atpublic.h"

// The routing table finds its literals in one walk over the text. Here each is looked for on its own, in
// order, with Find_Sub_Str, and both must agree: on every pair of literals and on random text.

namespace {

struct PlainRow {
    const char* literal;
    uint16_t target;  // 0: no report
    uint16_t id;
    uint8_t type;
};

const std::vector<PlainRow> kBeforePrompt = {
    {"ZREFRESH: ", 0x100a, 0x011A, 1},
    {"+CMTI: ", 0x100a, 0x0110, 1},
    {"+ZVMTI: ", 0x100a, 0x0117, 1},
    {"+CDSI: ", 0x100a, 0x0112, 1},
};

const std::vector<PlainRow> kBehindPrompt = {
    {"RINGBACK:", 0x1002, 0x053D, 1},
    {"RINGBACKLOCAL", 0x1002, 0x053D, 1},
    {"RINGBACK", 0x1002, 0x053D, 1},
    {"VOICE NO CARRIER : ", 0x1002, 0x040E, 1},
    {"VOICE NO CARRIER: ", 0x1002, 0x040E, 1},
    {"VOICE NO CARRIER ", 0x1002, 0x040E, 1},
    {"STOPRING", 0x1002, 0x040C, 1},
    {"RING", 0x1002, 0x0407, 1},
    {"+CLIP: ", 0x1002, 0x0513, 1},
    {"+CCWA: ", 0x1002, 0x052C, 1},
    {"VOICE CONNECT", 0x1002, 0x040D, 1},
    {"ANSWER", 0x1002, 0x040A, 1},
    {"ZVCONNECT: ", 0, 0, 0},
    {"CONNECT", 0x1002, 0x040D, 1},
    {"HANGUP:", 0x1002, 0x0408, 1},
    {"+ZCLAS: ", 0x100a, 0x0521, 1},
    {"ZVMAIL: ", 0x100a, 0x0118, 1},
    {"^CONN", 0x1002, 0x0541, 1},
    {"^CEND", 0x1002, 0x0542, 1},
    {"+ZCPI", 0x1002, 0x055E, 1},
    {"OK", 0x1002, 0x0408, 1},
    {"^HRSSILVL:", 0x1003, 0x0550, 1},
    {"+ZCONSTAT: ", 0x1022, 0x0625, 1},
    {"+ZGIPDNS: ", 0x1022, 0x0627, 1},
    {"+ZICCID: ", 0x1003, 0x0629, 6},
    {"+CREG: ", 0x1003, 0x052D, 6},
    {"+CGREG: ", 0x1003, 0x0553, 6},
    {"+CEREG: ", 0x1003, 0x0552, 6},
    {"+ZNITZ: ", 0x100e, 0x063E, 1},
    {"+ZUPCI: ", 0x1003, 0x0630, 6},
    {"+ZUEND: ", 0x1003, 0x0632, 6},
    {"+ZEND", 0x1019, 0x0708, 1},
    {"+ZSIMREFRESH", 0x1003, 0x0646, 6},
};

std::vector<PlainRow> AllRows() {
    std::vector<PlainRow> rows = kBeforePrompt;
    rows.insert(rows.end(), kBehindPrompt.begin(), kBehindPrompt.end());
    return rows;
}

struct Outcome {
    int written = 0;  // PDUs written to the modem
    std::vector<uint32_t> reports;
    bool operator==(const Outcome&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Outcome& outcome) {
    out << outcome.written << " written, reports:" << std::hex;
    for (uint32_t report : outcome.reports)
        out << ' ' << report;
    return out << std::dec;
}

uint32_t Key(uint16_t target, uint16_t id, uint8_t type) {
    return static_cast<uint32_t>(target & 0xff) << 24 | static_cast<uint32_t>(id) << 8 | type;
}

class RoutingOrder : public ReportVectors {
  protected:
    Outcome Plain(const std::string& text, uint16_t id, uint16_t pending, bool may_prompt) {
        auto first = [&](const std::vector<PlainRow>& rows) -> const PlainRow* {
            for (const PlainRow& row : rows)
                if (Find_Sub_Str(text.c_str(), row.literal) != nullptr) return &row;
            return nullptr;
        };
        Outcome outcome;
        const PlainRow* row = first(kBeforePrompt);
        if (row == nullptr && id == 0x0108) {
            outcome.reports.push_back(Key(0x100a, 0x0108, 2));
            return outcome;
        }
        if (row == nullptr && may_prompt &&
            ((pending == 0x0108 && Find_Sub_Str(text.c_str(), "+CGEV: ") == nullptr) || pending == 0x010A)) {
            outcome.written = 1;
            return outcome;
        }
        if (row == nullptr) row = first(kBehindPrompt);
        if (row != nullptr && row->target != 0)
            outcome.reports.push_back(Key(row->target, row->id, row->type));
        return outcome;
    }

    Outcome Routed(const std::string& text, uint16_t id, uint16_t pending, bool may_prompt) {
        Pending(pending);
        Queues().sent.clear();
        for (auto& queue : Queues().waiting)
            queue.second.clear();
        MSG_BUF message = {};
        _BK_AT_RES_T response = {};
        response.usCmdID = id;
        response.usParaLen = static_cast<uint16_t>(text.size());
        memcpy(response.aucParas, text.data(), std::min(text.size(), sizeof response.aucParas));
        memcpy(message.aucDataBuf, &response, sizeof response);
        RouteReport(&message, {.may_prompt = may_prompt, .may_clear = true});
        Outcome outcome;
        outcome.written = static_cast<int>(modem_.Written().size());  // an empty PDU: one byte each
        for (const FakeMessage& sent : Queues().sent)
            outcome.reports.push_back(
                Key(sent.Record().usTargetModuleID, sent.Response().usCmdID, sent.Response().ucCmdType));
        ClearLog();
        return outcome;
    }
};

TEST_F(RoutingOrder, EveryLiteralAloneIsTakenByItsRow) {
    for (const PlainRow& row : AllRows()) {
        const Outcome outcome = Routed(row.literal, 0, 0, true);
        if (row.target == 0)
            EXPECT_TRUE(outcome.reports.empty()) << row.literal;
        else
            EXPECT_EQ(outcome.reports, std::vector<uint32_t>{Key(row.target, row.id, row.type)})
                << row.literal;
    }
}

TEST_F(RoutingOrder, EveryLiteralWithoutItsLastCharacterAgreesWithThePlainOrder) {
    for (const PlainRow& row : AllRows()) {
        std::string text = row.literal;
        text.pop_back();
        EXPECT_EQ(Routed(text, 0, 0, true), Plain(text, 0, 0, true)) << text;
    }
}

TEST_F(RoutingOrder, OfTwoLiteralsTheEarlierRowDecides) {
    const std::vector<PlainRow> rows = AllRows();
    for (size_t i = 0; i < rows.size(); i++)
        for (size_t j = 0; j < rows.size(); j++) {
            const std::string text = std::string(rows[i].literal) + ";" + rows[j].literal;
            EXPECT_EQ(Routed(text, 0, 0, true), Plain(text, 0, 0, true)) << text;
        }
}

TEST_F(RoutingOrder, RandomTextAgreesWithThePlainOrder) {
    std::mt19937 random(20'261'121);
    auto pick = [&](size_t count) { return std::uniform_int_distribution<size_t>(0, count - 1)(random); };
    const std::vector<PlainRow> rows = AllRows();
    const char* const crumbs[] = {"\"", "\"", ",",      " ",       ":", "\r\n", "1",  "RIN",  "G", "BACK",
                                  "+",  "Z",  "VOICE ", "+CGEV: ", "O", "K",    "^C", "\xFE", "x"};
    const uint16_t ids[] = {0, 0, 0, 0x0108, 0x0107};
    const uint16_t pendings[] = {0, 0, 0x0604, 0x0108, 0x010A};
    int routed = 0;
    for (int round = 0; round < 20'000; round++) {
        std::string text;
        for (size_t parts = pick(8); parts > 0; parts--) {
            if (pick(3) == 0) {
                std::string literal = rows[pick(rows.size())].literal;
                text += literal.substr(0, pick(4) == 0 ? pick(literal.size() + 1) : literal.size());
            } else {
                text += crumbs[pick(std::size(crumbs))];
            }
        }
        const uint16_t id = ids[pick(std::size(ids))];
        const uint16_t pending = pendings[pick(std::size(pendings))];
        const bool may_prompt = pick(4) != 0;
        const Outcome plain = Plain(text, id, pending, may_prompt);
        ASSERT_EQ(Routed(text, id, pending, may_prompt), plain) << text;
        routed += !plain.reports.empty();
    }
    EXPECT_GT(routed, 2'000);
}

TEST_F(RoutingOrder, PlainListHoldsEveryRowWithAText) {
    EXPECT_EQ(AllRows().size(), 37U);
}

}  // namespace
