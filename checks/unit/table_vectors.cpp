#include <fcntl.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <memory>

#include "checks/support/fake_platform.h"
#include "checks/support/log_capture.h"
#include "checks/unit/vectors.h"
#include "commands/list_file.h"

Bytes& Bytes::I32(int32_t value) {
    data.append(reinterpret_cast<const char*>(&value), 4);
    return *this;
}
Bytes& Bytes::U64(uint64_t value) {
    data.append(reinterpret_cast<const char*>(&value), 8);
    return *this;
}
Bytes& Bytes::F32(float value) {
    data.append(reinterpret_cast<const char*>(&value), 4);
    return *this;
}
Bytes& Bytes::Text(const std::string& text, size_t size) {
    std::string padded = text;
    padded.resize(size, '\0');
    data += padded;
    return *this;
}
Bytes& Bytes::Zeros(size_t size) {
    data.append(size, '\0');
    return *this;
}

namespace {

constexpr unsigned char kCanary = 0xc3;

struct GuardedLine {
    AT_CMD_LINE_T line;
    unsigned char canary[64];
};
struct GuardedResponse {
    _BK_AT_RES_T response;
    unsigned char canary[64];
};

template <typename Guarded>
void ExpectCanary(const Guarded& guarded) {
    for (unsigned char byte : guarded.canary)
        ASSERT_EQ(byte, kCanary) << "written behind the record";
}

}  // namespace

std::string Encoded(uint16_t id, uint8_t type, const std::string& record, int length) {
    int index = -1;
    EXPECT_EQ(Bk_Find_Cmd_By_Id(id, &index), 0);
    if (index < 0) return "(no row)";
    const Encoder encoder = g_astAtCmdTable[index].pfnMakeCmd;
    if (encoder == nullptr) return "(not sendable)";
    auto request = std::make_unique<_BK_AT_CMD_T>();
    memset(request.get(), 0, sizeof *request);
    request->usCmdID = id;
    request->ucCmdType = type;
    request->usParaLen = static_cast<uint16_t>(length < 0 ? static_cast<int>(record.size()) : length);
    memcpy(request->aucParas, record.data(), std::min(record.size(), sizeof request->aucParas));
    auto guarded = std::make_unique<GuardedLine>();
    memset(guarded.get(), kCanary, sizeof *guarded);
    memset(&guarded->line, 0, sizeof guarded->line);
    encoder(&guarded->line, request.get());
    ExpectCanary(*guarded);
    EXPECT_NE(memchr(guarded->line.strCmdParas, 0, sizeof guarded->line.strCmdParas), nullptr);
    return guarded->line.strCmdParas;
}

void ExpectSetOfThisSizeOnly(uint16_t id, const std::string& record) {
    SCOPED_TRACE(testing::Message() << "id " << std::hex << id);
    EXPECT_NE(Encoded(id, SET, record), "");
    EXPECT_EQ(Encoded(id, SET, record.substr(0, record.size() - 1)), "") << "one byte short";
    EXPECT_EQ(Encoded(id, SET, record + std::string(1, '\0')), "") << "one byte long";
    EXPECT_EQ(Encoded(id, SET, record, 0), "") << "of no length";
    EXPECT_EQ(Encoded(id, SET, record, 65535), "") << "of all lengths";
    for (uint8_t type : {uint8_t{0}, EXEC, READ, TEST_, uint8_t{5}})
        EXPECT_EQ(Encoded(id, type, record), "") << "type " << int{type};
}

void ExpectPrintsOneInteger(uint16_t id) {
    SCOPED_TRACE(testing::Message() << "id " << std::hex << id);
    EXPECT_EQ(Encoded(id, SET, Bytes().I32(0).data), "0");
    EXPECT_EQ(Encoded(id, SET, Bytes().I32(7).data), "7");
    EXPECT_EQ(Encoded(id, SET, Bytes().I32(-1).data), "-1");
    EXPECT_EQ(Encoded(id, SET, Bytes().I32(INT32_MAX).data), "2147483647");
    EXPECT_EQ(Encoded(id, SET, Bytes().I32(INT32_MIN).data), "-2147483648");
    ExpectSetOfThisSizeOnly(id, Bytes().I32(7).data);
}

Decoded Decode(uint16_t id, uint8_t type, const std::string& text, uint8_t result) {
    int index = -1;
    EXPECT_EQ(Bk_Find_Cmd_By_Id(id, &index), 0);
    if (index < 0) return {};
    static std::unique_ptr<AT_RES_LINE_T> line = std::make_unique<AT_RES_LINE_T>();
    line->Result = result;
    const size_t length = std::min(text.size(), sizeof line->strResParas - 1);
    memcpy(line->strResParas, text.data(), length);
    line->strResParas[length] = '\0';
    auto guarded = std::make_unique<GuardedResponse>();
    memset(guarded.get(), kCanary, sizeof *guarded);
    _BK_AT_RES_T& response = guarded->response;
    response.usCmdID = id;
    response.ucCmdType = type;
    response.ucResult = result;
    response.usParaLen = kUntouchedLength;
    memset(response.aucParas, 0xa5, sizeof response.aucParas);
    g_astAtCmdTable[index].pfnParseRes(&response, line.get());
    ExpectCanary(*guarded);
    EXPECT_EQ(response.usCmdID, id);
    EXPECT_EQ(response.ucCmdType, type);
    EXPECT_EQ(response.ucResult, result);
    return {response.usParaLen,
            std::string(reinterpret_cast<char*>(response.aucParas), sizeof response.aucParas)};
}

void ExpectReadsOneInteger(uint16_t id, std::initializer_list<uint8_t> types) {
    SCOPED_TRACE(testing::Message() << "id " << std::hex << id);
    for (int type = 0; type <= UINT8_MAX; ++type) {
        const auto now = static_cast<uint8_t>(type);
        if (std::find(types.begin(), types.end(), now) == types.end()) {
            EXPECT_TRUE(type > 5 || Decode(id, now, "5").Untouched()) << "type " << type;
            continue;
        }
        const auto record = [&](const std::string& text) { return Decode(id, now, text).Record(); };
        EXPECT_EQ(record("5"), Bytes().I32(5).data);
        EXPECT_EQ(record(" 5 ,7"), Bytes().I32(5).data);
        EXPECT_EQ(record("-3x"), Bytes().I32(-3).data);
        EXPECT_EQ(record("2147483647"), Bytes().I32(INT32_MAX).data);
        EXPECT_EQ(record("2147483648"), Bytes().I32(INT32_MAX).data) << "saturates";
        EXPECT_EQ(record("-99999999999"), Bytes().I32(INT32_MIN).data) << "saturates";
        EXPECT_EQ(record(""), Bytes().I32(0).data);
        EXPECT_EQ(record("OK"), Bytes().I32(0).data);
        EXPECT_EQ(Decode(id, now, "5").paras.find_first_not_of('\xa5', 4), std::string::npos);
    }
}

void ExpectReadsNothing(uint16_t id) {
    SCOPED_TRACE(testing::Message() << "id " << std::hex << id);
    for (int type = 0; type <= 5; ++type)
        for (const char* text : {"OK", "", "1,\"2\",3"})
            EXPECT_TRUE(Decode(id, static_cast<uint8_t>(type), text).Untouched()) << type << " " << text;
}

bool Decoded::Untouched() const {
    return length == kUntouchedLength && paras.find_first_not_of('\xa5') == std::string::npos;
}

ListFiles& Files() {
    static ListFiles files;
    return files;
}

std::string ListFiles::Content(const std::string& path) {
    auto it = open.find(path);
    if (it == open.end()) return "(none)";
    std::string content(200'000, '\0');
    const ssize_t size = pread(it->second, content.data(), content.size(), 0);
    content.resize(size < 0 ? 0 : static_cast<size_t>(size));
    return content;
}

void ListFiles::Reset() {
    for (auto& [path, file] : open)
        close(file);
    *this = ListFiles();
}

// The linker takes this one before the daemon's own.
int OpenListFile(const char* path) {
    if (Files().refused == path) return -1;
    if (Files().full == path) return ::open("/dev/full", O_WRONLY);
    char name[] = "/tmp/at_list_XXXXXX";
    const int file = mkstemp(name);
    unlink(name);
    if (Files().open.contains(path)) close(Files().open[path]);
    Files().open[path] = dup(file);
    return file;
}

void StartWith(const char* data_card_mode) {
    Platform().Reset();
    if (data_card_mode[0] != '\0') Platform().config["data_card_mode"] = data_card_mode;
    ClearLog();
    Files().Reset();
}

std::map<uint16_t, int>& EncodeVectors() {
    static std::map<uint16_t, int> vectors;
    return vectors;
}
std::map<uint16_t, int>& DecodeVectors() {
    static std::map<uint16_t, int> vectors;
    return vectors;
}
