#include "checks/fuzz/targets.h"

#include <string.h>
#include <sys/mman.h>
#include <unistd.h>

#include "checks/support/plain_framing.h"
#include "codec/atcode.h"
#include "commands/work_area.h"
#include "records/payload.h"
#include "records/state.h"
#include "reports/response.h"
#include "test/attest.h"
#include "test/inifile.h"

namespace {

// Makes a request of the row pending; 0xFF leaves none.
void Pend(uint8_t row, uint8_t type) {
    ClearPendingRequest();
    if (row == 0xFF) return;
    g_at_msg.lMsgType = 7;
    g_at_msg.usTargetModuleID = AT_MODULE_SERVER;
    g_at_msg.usSourceModuleID = AT_MODULE_SMS;
    PendingRequest()->usCmdID = g_astAtCmdTable[row % kAtCmdTableSize].usCmdID;
    PendingRequest()->ucCmdType = type & 7;
    memset(PendingRequest()->aucParas, 'A', sizeof PendingRequest()->aucParas);
}

AT_RES_LINE_T g_line;
char g_framed[kModemTextSize];
std::string g_plain_buffer;

}  // namespace

void FuzzFraming(const uint8_t* data, size_t size) {
    if (size < 1) return;
    const size_t most = data[0] == 0 ? size : data[0];
    const std::string text = TextOf(data, size, 1);
    g_plain_buffer.clear();
    g_framed[0] = '\0';
    static char chunk[kModemTextSize + 16];
    for (size_t at = 0; at < text.size(); at += most) {
        const std::string piece = text.substr(at, std::min<size_t>(most, 100'000));
        memcpy(chunk, piece.c_str(), piece.size() + 1);
        int complete = -1;
        Require(Bk_PreProcess_SIO_Rdata(g_framed, &complete, chunk) == 0, "pre-processing takes the text");
        PlainPreProcess(g_plain_buffer, piece);
        Require(g_plain_buffer == g_framed, "the buffered text is that of the plain description");
        const PlainEnd plain = PlainFindEnd(g_plain_buffer);
        g_sms_prompt = 0;
        const char* end = Find_At_Res_End_Flg(g_framed);
        Require((end == nullptr) == (plain.end == kNone), "both find an end, or none");
        Require((complete == 1) == (end != nullptr), "the flag tells of the end");
        if (end == nullptr) continue;
        Require(static_cast<size_t>(end - g_framed) == plain.end, "both find the same end");
        Require((g_sms_prompt == 1) == plain.prompt, "both tell the prompt");
        for (const char* line = g_framed; *line != '\0';) {
            const ModemLine read = ReadLine(line);
            Require(read.begin == line && read.text_end >= line && read.end >= read.text_end, "lines follow");
            if (!read.complete) break;
            line = read.end;
        }
    }
}

void FuzzParse(const uint8_t* data, size_t size) {
    if (size < 3) return;
    Rest((data[0] & 1) == 0);
    Pend(data[1], data[2]);
    const std::string text = TextOf(data, size, 3);
    if (text.size() > kMaxBuffered) return;
    static Guarded<MSG_BUF> message;
    memset(&message.object, 0, sizeof message.object);
    int is_last = 0;
    const int result = Bk_Parse_At_Res_Message(&message.object, &is_last, text.c_str(), PendingRequest());
    message.Check();
    Require(result == 0 || result == -1, "a result of 0 or -1");
    Require(is_last == 0 || is_last == 1, "last or not");
    Require(ResponseOf(message.object).ucResult != 5, "the modem cannot time out");
    if (is_last == 1 && result == 0)
        Require(ResponseOf(message.object).usCmdID == PendingRequest()->usCmdID,
                "answers carry their command");
}

void FuzzDecode(const uint8_t* data, size_t size) {
    if (size < 2) return;
    Rest((data[1] & 0x80) == 0);
    const AT_CMD_ITEM_T& row = g_astAtCmdTable[data[0] % kAtCmdTableSize];
    const std::string text = TextOf(data, size, 2);
    if (text.size() >= kModemTextSize) return;
    g_line.Result = (data[1] >> 3) & 7;
    strcpy(g_line.strCmdName, row.acCmdName[63] == '\0' ? row.acCmdName : "");
    memcpy(g_line.strResParas, text.c_str(), text.size() + 1);
    static Guarded<_BK_AT_RES_T> res;
    memset(&res.object, 0, sizeof res.object);
    res.object.usCmdID = row.usCmdID;
    res.object.ucCmdType = data[1] & 7;
    res.object.ucResult = g_line.Result;
    row.pfnParseRes(&res.object, &g_line);
    res.Check();
    Require(res.object.usCmdID == row.usCmdID && res.object.ucCmdType == (data[1] & 7),
            "a decoder leaves the header alone");
    Require(res.object.ucResult == g_line.Result, "a decoder leaves the result alone");
    Require(strnlen(g_line.strResParas, sizeof g_line.strResParas) < sizeof g_line.strResParas,
            "the parameter text stays terminated");
    Require(res.object.usParaLen <= kListRecordSize, "no record is longer than the longest");
}

void FuzzReport(const uint8_t* data, size_t size) {
    if (size < 3) return;
    Rest((data[0] & 1) == 0);
    Pend(data[1], data[2]);
    g_last_atcmd = data[0] >> 1 == 1 ? 0x052B : data[0] >> 1 == 2 ? 0x052C : 0;
    static Guarded<MSG_BUF> message;
    memset(&message.object, 0, sizeof message.object);
    // Not terminated when it fills the record: nothing says that it has to be.
    _BK_AT_RES_T& res = ResponseOf(message.object);
    const size_t length = std::min(size - 3, sizeof res.aucParas);
    memcpy(res.aucParas, data + 3, length);
    res.usParaLen = static_cast<uint16_t>(length);
    RouteReport(&message.object, {.may_prompt = (data[2] & 8) != 0, .may_clear = (data[2] & 16) != 0});
    message.Check();
    Require(g_messages_sent <= 1, "a report is sent once");
}

void FuzzGenerate(const uint8_t* data, size_t size) {
    if (size < 2) return;
    Rest((data[1] & 0x80) == 0);
    static Guarded<_BK_AT_CMD_T> request;
    memset(&request.object, 0, sizeof request.object);
    request.object.usCmdID = g_astAtCmdTable[data[0] % kAtCmdTableSize].usCmdID;
    request.object.ucCmdType = data[1] & 7;
    request.object.usParaLen = static_cast<uint16_t>(size - 2);
    if (size >= 4 && (data[1] & 0x40) != 0) memcpy(&request.object.usParaLen, data + 2, 2);
    memcpy(request.object.aucParas, data + 2, std::min(size - 2, sizeof request.object.aucParas));
    static Guarded<char[kLineSize]> line;
    memset(line.object, 0x55, sizeof line.object);
    const _BK_AT_CMD_T before = request.object;
    const int result = Bk_Generate_At_Cmd_Line(line.object, &request.object);
    request.Check();
    line.Check();
    Require(memcmp(&before, &request.object, sizeof before) == 0, "the request is only read");
    if (result != 0) {
        Require(line.object[0] == 0x55 && line.object[kLineSize - 1] == 0x55,
                "without a line nothing is written");
        return;
    }
    const size_t length = strnlen(line.object, sizeof line.object);
    Require(length <= 579, "no line is longer than the longest");
    Require(memcmp(line.object, "AT", 2) == 0, "a line begins with AT");
    Require(length > 2 && line.object[length - 1] == '\r', "a line ends with a carriage return");
}

void FuzzInifile(const uint8_t* data, size_t size) {
    static const int fd = memfd_create("fuzz", 0);
    static const std::string path = "/proc/self/fd/" + std::to_string(fd);
    Require(ftruncate(fd, 0) == 0 && pwrite(fd, data, size, 0) == static_cast<ssize_t>(size), "a file");
    INI_FILE_T* file = OpenIniFile(path.c_str());
    Require(file != nullptr, "the file opens");
    static Guarded<char[kIniLineSize]> value;
    for (const char* section : {"AT_TEST", "REQUESTRES", ""}) {
        for (const char* key : {"AT_ITEM1", "AT_ITEM_REQUEST_NUM", ""}) {
            memset(value.object, 0, sizeof value.object);
            const int found = GetIniString(file, section, key, value.object);
            value.Check();
            Require(found == 0 || value.object[0] == '\0', "what is not found leaves the area alone");
            const size_t length = strnlen(value.object, sizeof value.object);
            Require(length < sizeof value.object, "a value ends inside its area");
            if (length < 2) continue;
            Require(TransformATResString(value.object) == 0, "a value is transformed");
            value.Check();
            Require(strnlen(value.object, sizeof value.object) < length, "transforming never lengthens");
        }
    }
    int number = -77;
    if (GetIniInterger(file, "AT_TEST", "AT_ITEM_AUTO_NUM", &number) != 0)
        Require(number == -77, "no number, nothing written");
    CloseIniFile(file);
    file = OpenIniFile(path.c_str());
    Require(file != nullptr, "the file opens again");
    CloseIniFile(file);
}

void FuzzDelivery(const uint8_t* data, size_t size) {
    if (size < 3) return;
    Rest((data[0] & 1) == 0);
    Pend(data[1], data[2]);
    ForgetReceived();
    const size_t most = (data[0] >> 1) == 0 ? size : data[0] >> 1;
    static char chunk[kModemTextSize + 16];
    for (size_t at = 3; at < size; at += most) {
        // A NUL ends what is read, as the bytes of a read would.
        const size_t length = std::min(std::min(most, size - at), size_t{100'000});
        memcpy(chunk, data + at, length);
        chunk[length] = '\0';
        const bool pending = g_at_msg.lMsgType != -1;
        ProcessReceived(chunk);
        Require(strnlen(gStrResAtBuffer, kModemTextSize) < kMaxBuffered, "the rest fits its buffer");
        Require(pending || g_at_msg.lMsgType == -1, "nothing makes a request but a requester");
    }
    DropUnfinishedQuote();
}
