#include <string.h>

#include <set>

#include "checks/unit/vectors.h"
#include "commands/catalog.h"

TEST(Table, Facts) {
    std::set<uint16_t> ids;
    int reports = 0;
    size_t longest = 0;
    for (const AT_CMD_ITEM_T& item : g_astAtCmdTable) {
        ids.insert(item.usCmdID);
        reports += item.pfnMakeCmd == nullptr;
        longest = std::max(longest, strlen(item.acCmdName));
    }
    EXPECT_EQ(std::size(g_astAtCmdTable), 186U);
    EXPECT_EQ(ids.size(), 185U);
    EXPECT_EQ(reports, 30);
    EXPECT_EQ(longest, 53U);
    EXPECT_EQ(sizeof(AT_CMD_ITEM_T::acCmdName), 66U);
}

TEST(FindById, CimiIsTheFirstOfItsTwoRows) {
    int index = -1;
    ASSERT_EQ(Bk_Find_Cmd_By_Id(0x0111, &index), 0);
    EXPECT_EQ(index, 18);
    EXPECT_EQ(g_astAtCmdTable[77].usCmdID, 0x0111);
    EXPECT_STREQ(g_astAtCmdTable[77].acCmdName, g_astAtCmdTable[18].acCmdName);
}

// Nothing finds the second one, but whoever walks the table may call it.
TEST(Rows, BothRowsOfCimiDoTheSame) {
    for (const uint8_t type : {EXEC, SET, READ, TEST_}) {
        std::string lines[2];
        _BK_AT_RES_T answers[2] = {};
        for (int i = 0; i < 2; ++i) {
            const AT_CMD_ITEM_T& row = g_astAtCmdTable[i == 0 ? 18 : 77];
            _BK_AT_CMD_T request = {};
            request.usCmdID = 0x0111;
            request.ucCmdType = type;
            AT_CMD_LINE_T line = {};
            row.pfnMakeCmd(&line, &request);
            lines[i] = line.strCmdParas;
            AT_RES_LINE_T text = {};
            strcpy(text.strResParas, "\"460001234567890\"");
            answers[i].ucCmdType = type;
            row.pfnParseRes(&answers[i], &text);
        }
        EXPECT_EQ(lines[0], lines[1]) << int{type};
        EXPECT_EQ(memcmp(&answers[0], &answers[1], sizeof answers[0]), 0) << int{type};
        EXPECT_EQ(answers[1].usParaLen, type == EXEC ? 36 : 0);
    }
}

TEST(FindById, EveryIdIsFoundAndItsNeighboursAreNot) {
    for (uint32_t id = 0; id <= 0xffff; ++id) {
        int index = -1;
        const bool in_table = CatalogRow(static_cast<uint16_t>(id)) != nullptr;
        ASSERT_EQ(Bk_Find_Cmd_By_Id(static_cast<uint16_t>(id), &index), in_table ? 0 : 1) << id;
        if (in_table)
            EXPECT_EQ(g_astAtCmdTable[index].usCmdID, id);
        else
            EXPECT_EQ(index, -1) << "written though not found";
    }
}

TEST(FindById, NoPlaceForTheIndex) {
    EXPECT_EQ(Bk_Find_Cmd_By_Id(0x0604, nullptr), 1);
}

TEST(FindById, GroupByteWithoutARow) {
    int index = -1;
    EXPECT_EQ(Bk_Find_Cmd_By_Id(0x0102, &index), 1);
}

TEST(FindByName, EveryNameIsFound) {
    for (const AT_CMD_ITEM_T& item : g_astAtCmdTable) {
        int index = -1;
        ASSERT_EQ(Bk_Find_Cmd_By_Name(&index, item.acCmdName), 0) << item.acCmdName;
        EXPECT_EQ(g_astAtCmdTable[index].usCmdID, item.usCmdID);
    }
}

TEST(FindByName, WholeNamesOnly) {
    int index = -1;
    for (const char* name : {"+CS", "+CSQQ", "+csq", " +CSQ", "+CSQ ", "d"}) {
        EXPECT_EQ(Bk_Find_Cmd_By_Name(&index, name), -1) << name;
        EXPECT_EQ(index, -1);
    }
    EXPECT_EQ(Bk_Find_Cmd_By_Name(nullptr, "+CSQ"), -1);
    EXPECT_EQ(Bk_Find_Cmd_By_Name(&index, nullptr), -1);
}

TEST(Rows, EveryRowHasACodec) {
    std::string missing;
    for (const Row& row : kCatalog) {
        if (row.encode.kind == EncodeKind::pending) missing += std::string("\n  encoder of ") + row.name;
        if (row.decode.kind == DecodeKind::pending) missing += std::string("\n  decoder of ") + row.name;
    }
    EXPECT_EQ(missing, "") << "not written yet";
}

// As many vectors as the encoder has forms and the decoder has answers, at least.
TEST(Rows, EveryRowHasAVector) {
    for (const Row& row : kCatalog) {
        int forms = row.encode.kind == EncodeKind::dial;
        for (const Form& form : row.encode.forms)
            forms += form.format != nullptr;
        EXPECT_GE(EncodeVectors()[row.id], forms) << "encoder of " << row.name;
        int answers = row.decode.kind == DecodeKind::text;
        for (const Answer& answer : row.decode.answers)
            answers += answer.types != 0;
        EXPECT_GE(DecodeVectors()[row.id], answers) << "decoder of " << row.name;
    }
}

// ---- What the compiler refuses, asked of rows that are wrong on purpose
// ------------------------------------------------

namespace {

struct Sample {
    int32_t number;
    char text[8];
};
constexpr Record kSample = AT_RECORD(Sample, 12, AT_FIELD(number, 0, ""), AT_FIELD(text, 4, ""));

constexpr Row kGood = {.position = 1,
                       .id = 1,
                       .name = "+GOOD",
                       .encode = {.kind = EncodeKind::record, .record = &kSample, .forms = {{"%d,\"%s\""}}},
                       .decode = {.kind = DecodeKind::answers,
                                  .answers = {{.types = kRead, .record = &kSample, .format = "%d %7s"}}}};

template <typename Change>
constexpr unsigned FaultsAfter(Change change) {
    Row row = kGood;
    change(row);
    return RowFaults(row, 186);
}

}  // namespace

TEST(RowCheck, AGoodRowPasses) {
    EXPECT_EQ(RowFaults(kGood, 186), 0U);
}

TEST(RowCheck, RefusesEachFault) {
    EXPECT_EQ(FaultsAfter([](Row& row) { row.position = 0; }), kFaultPosition);
    EXPECT_EQ(FaultsAfter([](Row& row) { row.position = 187; }), kFaultPosition);
    const std::string name(64, 'N');
    EXPECT_EQ(FaultsAfter([&](Row& row) { row.name = name.c_str() + 1; }), 0U);
    EXPECT_EQ(FaultsAfter([&](Row& row) { row.name = name.c_str(); }), kFaultName);
    EXPECT_EQ(FaultsAfter([](Row& row) { row.encode.forms[0].format = "%s,%d"; }), kFaultPrintFormat);
    EXPECT_EQ(FaultsAfter([](Row& row) { row.encode.forms[0].format = "%d,%u"; }), kFaultPrintFormat);
    EXPECT_EQ(FaultsAfter([](Row& row) { row.encode.kind = EncodeKind::custom; }), kFaultKind);
    EXPECT_EQ(FaultsAfter([](Row& row) { row.encode.kind = EncodeKind::copy; }), kFaultKind);
    EXPECT_EQ(FaultsAfter([](Row& row) { row.decode.answers[0].told_as_0 = true; }), kFaultKind);
    EXPECT_EQ(FaultsAfter([](Row& row) { row.decode.answers[0].format = "%d %8s"; }), kFaultScanFormat);
    EXPECT_EQ(FaultsAfter([](Row& row) { row.decode.answers[0].format = "%d %s"; }), kFaultScanFormat);
    EXPECT_EQ(FaultsAfter([](Row& row) { row.decode.answers[0].format = "%7s %d"; }), kFaultScanFormat);
    EXPECT_EQ(FaultsAfter([](Row& row) { row.decode.answers[0].types = 0; }), kFaultTypes);
    EXPECT_EQ(FaultsAfter([](Row& row) { row.decode.answers[1] = row.decode.answers[0]; }), kFaultTypes);
    EXPECT_EQ(FaultsAfter([](Row& row) { row.decode.answers[0].log.format = "%s"; }), kFaultLogFormat);
}

TEST(RowCheck, RefusesAListThatIsNotNormalised) {
    Record list = kSample;
    list.entry = &kSample;
    list.entry_offset = 12;
    list.entry_count = 2;
    list.size = 36;
    const auto faults = [&](From from) {
        return FaultsAfter([&](Row& row) {
            row.decode.answers[0].record = &list;
            row.decode.answers[0].from = from;
        });
    };
    EXPECT_EQ(faults(From::normalised), 0U);
    EXPECT_EQ(faults(From::raw), kFaultScanFormat);
}

TEST(RowCheck, RefusesRecordsThatCannotBe) {
    Record overlapping = kSample;
    overlapping.fields[1].offset = 3;
    Record behind = kSample;
    behind.fields[1].size = 9;
    Record huge = kSample;
    huge.size = 635;
    Record long_text = kSample;
    long_text.size = 632;
    long_text.fields[1].size = 512;
    for (Record* record : {&overlapping, &behind}) {
        EXPECT_EQ(FaultsAfter([&](Row& row) { row.encode.record = record; }), kFaultOverlap);
        EXPECT_EQ(FaultsAfter([&](Row& row) { row.decode.answers[0].record = record; }), kFaultOverlap);
    }
    EXPECT_EQ(FaultsAfter([&](Row& row) { row.encode.record = &huge; }), kFaultRequestSize);
    EXPECT_EQ(FaultsAfter([&](Row& row) { row.decode.answers[0].record = &huge; }), kFaultAnswerSize);
    EXPECT_EQ(FaultsAfter([&](Row& row) { row.encode.record = &long_text; }), kFaultTooLong);
    EXPECT_EQ(FaultsAfter([&](Row& row) {
                  row.encode.record = &long_text;
                  row.encode.may_be_cut = true;
              }),
              0U);
}
