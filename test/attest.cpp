#include "test/attest.h"

#include <stdio.h>
#include <string.h>

#include "platform/config.h"
#include "platform/log.h"
#include "records/state.h"

AT_TEST_PROGRESS_T g_at_test_progress = {0, 1};

namespace {

constexpr char kLogSource[] = "attest";
constexpr char kIniPath[] = "etc_rw/config/AT_Test.ini";
constexpr int kItemsMax = 10'000;  // a mistyped count must not keep the response thread reading for hours

// Ids that no row of the command table has: they stand for "+CMGR" of the two messages that the list
// announces.
constexpr uint16_t kReadMessage = 0x1501;
constexpr uint16_t kReadStatusReport = 0x1502;
constexpr uint16_t kCmgr = 0x0107;
constexpr int32_t kMessageIndex = 8;
constexpr int32_t kStatusReportIndex = 51;

// A message of +CMGR is printed as the service centre's address (a length octet, here 7, and that many
// octets) and the transfer unit; the length in front counts the octets of the transfer unit alone.
#define SERVICE_CENTRE "0791447700090000"

// 60 octets: first octet 1, originating address 1 + 1 + 5 (ten digits), protocol 1, coding 1 (UCS2), time
// stamp 7, length of the text 1, text 42 (21 characters: "Café is open now — 你好").
#define DELIVER_60                                                                     \
    "040AA102525510320008621112314251002A00430061006600E90020006900730020006F00700065" \
    "006E0020006E006F00770020201400204F60597D"

// 26 octets: first octet 1, reference 1, recipient 1 + 1 + 6 (twelve digits), two time stamps of 7, status 1,
// parameter indicator 1 (nothing follows).
#define STATUS_REPORT_26 "06330C9144770009103262111231425100621112314202000000"

// 100 octets: serial number 2, message identifier 2, coding 1 (7-bit text in English), page 1 of 1 in 1,
// content 94 (107 characters of 7 bits, the text and carriage returns up to the end). There is no address in
// front, so the length counts all of it.
#define BROADCAST_100                                                                  \
    "4A5000320111D4F29C0E12CBDF61F2383CA7EB40E872D89E07CDDDEF3B283D0795F1F0F2985E2683" \
    "DE6E5098CD06B5DF75373D9C7683E4EF30790EA2BFDDE9339ACE02C1D9E5F0BC0C22CBD3F632E89E" \
    "A6A341E3B0BCEC6A341A8D46A3D168341A8D4603"

struct CannedAnswer {
    uint16_t usCmdID;
    const char* text[4];  // for EXEC, SET, READ, TEST
};

constexpr CannedAnswer kAnswers[] = {
    {0x0509, {"", "AT+ZSNT=1,0,0\r\nOK\r\n", "AT+ZSNT?\r\n+ZSNT:1,0,0\r\n\r\nOK\r\n", "AT+ZSNT=?\r\nOK\r\n"}},
    {0x0507, {"", "", "AT+ZDON?\r\n+ZDON:\"test1\",460,1,\"test2\",460,2,\"ROAM_ON\"\r\n\r\nOK\r\n", ""}},
    {0x0604, {"AT+CSQ \r\n+CSQ:20,60\r\n\r\nOK\r\n", "", "", "AT+CSQ=?\r\nOK\r\n"}},
    {0x050B, {"", "", "AT+ZPAS?\r\n+ZPAS:\"UMTS\",\"CS_PS\"\r\nOK\r\n", ""}},
    {0x0526, {"", "", "AT+ZLACELLID?\r::\r\n1,0,0\r\n", ""}},
    {0x0601, {"", "", "AT+ZRSSI?\r\n(25,90),(20/60)\r\n\r\nOK\r\n", ""}},
    {kReadMessage, {"", "\r\n+CMGR: 0,,60\r\n" SERVICE_CENTRE DELIVER_60 "\r\n\r\nOK\r\n", "", ""}},
    {kReadStatusReport, {"", "\r\n+CMGR: ,,26\r\n" SERVICE_CENTRE STATUS_REPORT_26 "\r\n\r\nOK\r\n", "", ""}},
};

struct CannedReport {
    uint16_t usCmdID;
    const char* text;
};

constexpr CannedReport kReports[] = {
    {0x0110, "\r\n+CMTI: \"SM\",8\r\n"},
    {0x0112, "\r\n+CDSI: \"SR\",51\r\n"},
    {0x0115, "\r\n+CBM: 100\r\n" BROADCAST_100 "\r\n"},
    {0x0118, "\r\n+ZVMAIL: 1\r\n"},
};
constexpr int kReportCount = sizeof kReports / sizeof kReports[0];

// A text under construction in an area of kTestOutputSize bytes.
class Output {
  public:
    explicit Output(char* area) : area_(area) { area_[0] = '\0'; }

    void Append(const char* text) {
        size_t length = strlen(text);
        size_t room = static_cast<size_t>(kTestOutputSize) - 1 - used_;
        if (length > room) length = room;
        memcpy(area_ + used_, text, length);
        used_ += length;
        area_[used_] = '\0';
    }

  private:
    char* area_;
    size_t used_ = 0;
};

uint16_t AnswerKey(const _BK_AT_CMD_T& request) {
    if (request.usCmdID == kCmgr && request.ucCmdType == AT_CMD_TYPE_SET) {
        int32_t index = 0;
        memcpy(&index, request.aucParas, sizeof index);
        if (index == kMessageIndex) return kReadMessage;
        if (index == kStatusReportIndex) return kReadStatusReport;
    }
    return request.usCmdID;
}

// Null when the list has no entry for the request. An entry without a text for its type counts: the text is
// empty.
const char* ListAnswer(const _BK_AT_CMD_T& request) {
    uint16_t key = AnswerKey(request);
    for (const CannedAnswer& answer : kAnswers) {
        if (answer.usCmdID != key) continue;
        switch (request.ucCmdType) {
            case AT_CMD_TYPE_EXEC:
                AT_LOG(LOG_DEBUG, "AT_CMD_TYPE_EXEC======\n");
                break;
            case AT_CMD_TYPE_SET:
                AT_LOG(LOG_DEBUG, "AT_CMD_TYPE_SET======\n");
                break;
            case AT_CMD_TYPE_READ:
                AT_LOG(LOG_DEBUG, "AT_CMD_TYPE_READ======\n");
                break;
            case AT_CMD_TYPE_TEST:
                AT_LOG(LOG_DEBUG, "AT_CMD_TYPE_TEST======\n");
                break;
            default:
                return "";
        }
        return answer.text[request.ucCmdType - AT_CMD_TYPE_EXEC];
    }
    AT_LOG(LOG_DEBUG, "Don't find at Response!\n");
    return nullptr;
}

void BuildFromList(const char* received, Output& out) {
    const _BK_AT_CMD_T& request = *PendingRequest();
    AT_LOG(LOG_DEBUG, "tAtRes->usCmdID= 0x%04x OK!\n", request.usCmdID);
    const char* answer = ListAnswer(request);
    if (answer == nullptr) {
        AT_LOG(LOG_DEBUG, "No AT Response Maked\n");
        out.Append(received);
    } else {
        AT_LOG(LOG_DEBUG, "MakeAtRes .........%s\n", answer);
        out.Append(answer);
    }
    if (g_at_test_progress.next_builtin < kReportCount) {
        const char* report = kReports[g_at_test_progress.next_builtin++].text;
        out.Append(report);
        AT_LOG(LOG_DEBUG, "MakeAutoAtRes .........%s\n", report);
    }
}

// Item `number` of a section; empty when there is none.
void ReadItem(INI_FILE_T* file, const char* section, int number, char (&value)[kIniLineSize]) {
    char key[32];
    snprintf(key, sizeof key, "AT_ITEM%d", number);
    memset(value, 0, sizeof value);
    GetIniString(file, section, key, value);
}

// Leaves in `value` what stands behind the last command line and two separators, in the first item that
// contains it.
bool FindAnswer(INI_FILE_T* file, char (&value)[kIniLineSize]) {
    int count = 0;
    if (GetIniInterger(file, "AT_TEST", "AT_ITEM_REQUEST_NUM", &count) != 0) {
        AT_LOG(LOG_ERR, "find the AT_ITEM_REQUEST_NUM key error\n");
        return false;
    }
    if (count > kItemsMax) count = kItemsMax;
    AT_LOG(LOG_DEBUG, ">>>>>>Request Num:%d<<<<<<\n", count);

    char command[kLineSize];
    size_t length = strnlen(g_cmd_str, sizeof command - 1);
    if (length <= 1) return false;  // every item contains the empty text; nothing was asked yet
    length--;                       // its carriage return
    memcpy(command, g_cmd_str, length);
    command[length] = '\0';

    for (int i = 1; i <= count; i++) {
        ReadItem(file, "REQUESTRES", i, value);
        if (strstr(value, command) == nullptr) continue;
        AT_LOG(LOG_DEBUG, "Find the request at response!\n");
        size_t value_length = strlen(value);
        size_t answer = length + 2;
        if (answer > value_length) answer = value_length;
        memmove(value, value + answer, value_length - answer + 1);
        return true;
    }
    return false;
}

// Leaves in `value` the next report of the file that was not handed out yet.
bool FindReport(INI_FILE_T* file, char (&value)[kIniLineSize]) {
    int count = 0;
    if (GetIniInterger(file, "AT_TEST", "AT_ITEM_AUTO_NUM", &count) != 0) return false;
    if (count > kItemsMax) count = kItemsMax;
    AT_LOG(LOG_DEBUG, ">>>>>>Auto Num:%d<<<<<<\n", count);
    while (g_at_test_progress.next_item <= count) {
        ReadItem(file, "AUTORES", g_at_test_progress.next_item++, value);
        if (strlen(value) >= 3) return true;
    }
    return false;
}

void BuildFromFile(INI_FILE_T* file, const char* received, Output& out) {
    char value[kIniLineSize];
    if (!FindAnswer(file, value)) {
        AT_LOG(LOG_DEBUG, "No Resqust be found!\n");
        out.Append(received);
    } else if (TransformATResString(value) != 0) {
        AT_LOG(LOG_DEBUG, "TransformATResString request res error\n");
        out.Append(received);
    } else {
        AT_LOG(LOG_DEBUG, "Resqust str=%s\n", value);
        out.Append(value);
    }

    if (!FindReport(file, value)) {
        AT_LOG(LOG_DEBUG, "No auto response cat\n");
    } else if (TransformATResString(value) != 0) {
        AT_LOG(LOG_DEBUG, "TransformATResString auto res error\n");
    } else {
        AT_LOG(LOG_DEBUG, "+strAuto=%s\n", value);
        out.Append(value);
    }
}

}  // namespace

int TransformATResString(char* text) {
    if (text == nullptr) return -1;
    size_t length = strnlen(text, kIniLineSize);
    size_t used = 0;
    for (size_t i = 0; i + 1 < length; i++) {
        char c = text[i];
        if (c == '\\' && (text[i + 1] == 'n' || text[i + 1] == 'r'))
            text[used++] = text[++i] == 'n' ? '\n' : '\r';
        else if (c != '\r' && c != '\n')
            text[used++] = c;
    }
    text[used] = '\0';
    return 0;
}

const char* AtResponseText(const char* received, char* out) {
    if (received == nullptr || out == nullptr) return received;
    if (!ConfigIs("AT_Test", "on")) {
        AT_LOG(LOG_DEBUG, "MakeAtResponse  off\n");
        return received;
    }
    AT_LOG(LOG_DEBUG, "MakeAtResponse  On\n");
    AT_LOG(LOG_DEBUG, "====================BEGIN==================!\n");
    Output output(out);
    if (INI_FILE_T* file = OpenIniFile(kIniPath)) {
        AT_LOG(LOG_DEBUG, "Open AT_Test.ini file success and make AT Res from ini file!\n");
        BuildFromFile(file, received, output);
        CloseIniFile(file);
    } else {
        AT_LOG(LOG_DEBUG, "Open AT_Test.ini file error and make AT Res from list!\n");
        BuildFromList(received, output);
    }
    AT_LOG(LOG_DEBUG, "=====================END=====================!\n");
    return out;
}

void TestForAtResponse(const char* received, char* out) {
    if (received == nullptr || out == nullptr) return;
    if (AtResponseText(received, out) == received) Output(out).Append(received);
}
