#include "checks/support/plain_rows.h"

#include <string.h>

#include <memory>
#include <random>

#include "checks/support/parameter_text.h"
#include "checks/unit/vectors.h"
#include "codec/atcode.h"
#include "commands/catalog.h"

// The encoders and decoders of the rows do what their plain form does, on random records and texts.

namespace {

using std::string;

// A request with a record of the row's size, mostly, of numbers and texts of every length.
_BK_AT_CMD_T AnyRequest(const Row& row, std::mt19937& random) {
    static constexpr int32_t kNumbers[] = {0, 0, 1, 2, 3, 4, -1, INT32_MIN, INT32_MAX};
    _BK_AT_CMD_T request = {};
    request.usCmdID = row.id;
    request.ucCmdType = random() % 4 != 0 ? SET : static_cast<uint8_t>(random() % 6);
    if (row.encode.record == nullptr) return request;
    const Record& record = *row.encode.record;
    for (size_t i = 0; i < record.count; ++i) {
        const Field& field = record.fields[i];
        const bool is_text = field.type == FieldType::text || field.type == FieldType::bytes;
        const int32_t number = random() % 8 == 0 ? static_cast<int32_t>(random()) : kNumbers[random() % 9];
        if (!is_text) memcpy(request.aucParas + field.offset, &number, sizeof number);
        const size_t length = is_text ? random() % (field.size + 1u) : 0;
        for (size_t at = 0; at < length; ++at)
            request.aucParas[field.offset + at] = static_cast<uint8_t>(' ' + random() % 95);
    }
    request.usParaLen = static_cast<uint16_t>(record.size + (random() % 16 == 0 ? 1 : 0));
    return request;
}

TEST(PlainRows, EncodeWhatTheDaemonEncodes) {
    StartWith(kModule);
    std::mt19937 random(0x5eed0030);
    AT_CMD_LINE_T unused;
    size_t compared = 0;
    for (const Row& row : kCatalog) {
        if (CatalogRow(row.id) != &row) continue;  // the second row of an id is never found
        if (row.encode.kind != EncodeKind::absent && !PlainEncode(row, unused, {})) continue;
        ++compared;
        for (int i = 0; i < 200; ++i) {
            const _BK_AT_CMD_T request = AnyRequest(row, random);
            char line[1024] = "untouched";
            char plain[1024] = "untouched";
            ASSERT_EQ(Bk_Generate_At_Cmd_Line(line, &request), PlainGenerate(plain, request)) << row.name;
            ASSERT_STREQ(line, plain) << row.name;
        }
    }
    EXPECT_GT(compared, 160u);
}

TEST(PlainRows, DecodeWhatTheDaemonDecodes) {
    const auto line = std::make_unique<AT_RES_LINE_T>();
    size_t compared = 0;
    size_t written = 0;
    for (const char* mode : {kModule, kOtherCard}) {
        StartWith(mode);
        std::mt19937 random(0x5eed0031);
        for (const Row& row : kCatalog) {
            _BK_AT_RES_T plain = {};
            if (!PlainDecode(row, plain, *line)) continue;
            ++compared;
            for (int i = 0; i < 300; ++i) {
                const string text = ParameterText(random);
                _BK_AT_RES_T response = {};
                response.ucCmdType = static_cast<uint8_t>(random() % 6);
                plain = response;
                strcpy(line->strResParas, text.c_str());
                PlainDecode(row, plain, *line);
                g_astAtCmdTable[row.position - 1].pfnParseRes(&response, line.get());
                ASSERT_EQ(response.usParaLen, plain.usParaLen) << row.name << " on " << text;
                ASSERT_EQ(memcmp(&response, &plain, sizeof plain), 0) << row.name << " on " << text;
                written += response.usParaLen != 0;
            }
        }
    }
    EXPECT_GT(compared, 2 * 120u);
    EXPECT_GT(written, 10'000u);
}

}  // namespace
