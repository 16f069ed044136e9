#include <string.h>

#include <memory>
#include <random>

#include "checks/support/parameter_text.h"
#include "checks/unit/vectors.h"
#include "commands/catalog.h"

// What holds for every row, whatever it says.

namespace {

// A request record whose integers are all `number` and whose texts all lack their NUL.
std::string FullRecord(const Record& record, int32_t number) {
    std::string bytes(record.size, 'T');
    for (size_t i = 0; i < record.count; ++i)
        if (record.fields[i].type == FieldType::i32)
            memcpy(bytes.data() + record.fields[i].offset, &number, 4);
    return bytes;
}

}  // namespace

TEST(EveryRow, NullArgumentsAreSafe) {
    auto line = std::make_unique<AT_CMD_LINE_T>();
    auto parsed = std::make_unique<AT_RES_LINE_T>();
    _BK_AT_CMD_T request = {};
    _BK_AT_RES_T response = {};
    for (const AT_CMD_ITEM_T& item : g_astAtCmdTable) {
        for (uint8_t type = 0; type <= 5; ++type) {
            request.ucCmdType = type;
            response.ucCmdType = type;
            if (item.pfnMakeCmd != nullptr) {
                item.pfnMakeCmd(nullptr, nullptr);
                item.pfnMakeCmd(nullptr, &request);
                item.pfnMakeCmd(line.get(), nullptr);
                EXPECT_STREQ(line->strCmdParas, "") << item.acCmdName;
            }
            item.pfnParseRes(nullptr, nullptr);
            item.pfnParseRes(nullptr, parsed.get());
            item.pfnParseRes(&response, nullptr);
            EXPECT_EQ(response.usParaLen, 0) << item.acCmdName;
        }
    }
}

TEST(EveryRow, OnlyASetOfExactlyTheRecordSizePrints) {
    StartWith(kModule);
    for (const Row& row : kCatalog) {
        if (row.encode.record == nullptr) continue;
        const std::string record = FullRecord(*row.encode.record, 3);
        for (uint8_t type : {EXEC, READ, TEST_})
            EXPECT_EQ(Encoded(row.id, type, record), "") << row.name;
        EXPECT_EQ(Encoded(row.id, SET, record.substr(1)), "") << row.name << " one byte short";
        EXPECT_EQ(Encoded(row.id, SET, record + "T"), "") << row.name << " one byte long";
        EXPECT_EQ(Encoded(row.id, SET, record, 0), "") << row.name << " of no length";
        EXPECT_EQ(Encoded(row.id, SET, record, 65535), "") << row.name << " of all lengths";
        if (row.encode.kind == EncodeKind::record || row.encode.kind == EncodeKind::copy) {
            EXPECT_NE(Encoded(row.id, SET, record), "") << row.name;
        }
    }
}

TEST(EveryRow, RecordsWithoutAnyNulStayWithinTheLine) {
    StartWith(kModule);
    for (const Row& row : kCatalog) {
        if (row.encode.record == nullptr) continue;
        for (int32_t number : {INT32_MIN, -1, 0, 1, 2, 3, INT32_MAX}) {
            const std::string text = Encoded(row.id, SET, FullRecord(*row.encode.record, number));
            EXPECT_LT(text.size(), 512U) << row.name;
            if (!row.encode.may_be_cut) {
                EXPECT_LT(text.size(), 511U) << row.name;
            }
        }
    }
}

TEST(EveryRow, CommandsWithoutParametersPrintNone) {
    StartWith(kModule);
    for (const Row& row : kCatalog) {
        if (row.encode.kind != EncodeKind::none) continue;
        for (uint8_t type : {EXEC, SET, READ, TEST_})
            EXPECT_EQ(Encoded(row.id, type, std::string(64, '1')), "") << row.name;
    }
}

TEST(EveryRow, ReportsAreNotSendable) {
    for (const Row& row : kCatalog)
        EXPECT_EQ(Encoded(row.id, EXEC) == "(not sendable)", row.encode.kind == EncodeKind::absent)
            << row.name;
}

namespace {

const Answer* AnswerFor(const Row& row, uint8_t type) {
    for (const Answer& answer : row.decode.answers)
        if ((answer.types >> type & 1) != 0) return &answer;
    return nullptr;
}

bool Serves(const Row& row, uint8_t type) {
    const bool every_type = row.decode.kind == DecodeKind::text && row.decode.answers[0].types == 0;
    return every_type || AnswerFor(row, type) != nullptr;
}

void ExpectWhatTheRowSays(const Row& row, uint8_t type, const std::string& text, const Decoded& got) {
    if (row.decode.kind == DecodeKind::text && Serves(row, type)) {
        EXPECT_EQ(got.length, std::min<int>(633, static_cast<int>(text.size())));
        return;
    }
    const Answer* answer = AnswerFor(row, type);
    if (answer == nullptr) {
        EXPECT_TRUE(got.Untouched());
        return;
    }
    if (answer->result_test && (got.Untouched() || got.length == 2)) return;
    const size_t size = answer->record == nullptr ? 0 : answer->record->size;
    const int length = answer->length != 0 ? answer->length : static_cast<int>(size);
    if (row.decode.kind == DecodeKind::custom) {
        // May leave the length alone, but announces no other.
        EXPECT_TRUE(got.length == kUntouchedLength || got.length == length) << got.length;
        return;
    }
    EXPECT_EQ(got.length, length);
    EXPECT_EQ(got.paras.find_first_not_of('\xa5', size), std::string::npos) << "written behind the record";
}

}  // namespace

// Any text, under any type and mode: the decoder stays in its record, leaves types alone that it does not
// serve, announces the length that its row says, and serves every type that its row says.
TEST(EveryRow, DecodesAnyText) {
    std::mt19937 random(11);
    for (const Row& row : kCatalog) {
        bool changed[6] = {};
        for (const char* mode : {kModule, kOtherCard}) {
            StartWith(mode);
            for (int round = 0; round < 60 && !HasFailure(); ++round) {
                const std::string text = ParameterText(random);
                for (uint8_t type = 0; type <= 5; ++type) {
                    SCOPED_TRACE(std::string(row.name) + " type " + std::to_string(type) + " on " + text);
                    const Decoded got = Decode(row.id, type, text);
                    ExpectWhatTheRowSays(row, type, text, got);
                    if (!got.Untouched()) changed[type] = true;
                }
            }
        }
        for (uint8_t type = 0; type <= 5 && !HasFailure(); ++type)
            EXPECT_EQ(changed[type], Serves(row, type)) << row.name << " type " << int{type};
    }
}
