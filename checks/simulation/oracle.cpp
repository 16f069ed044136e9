#include "checks/simulation/oracle.h"

#include <stdio.h>
#include <string.h>

#include "records/payload.h"
#include "server/transaction.h"

// Every report carries a serial number where the record has room for one.
const ReportKind kReportKinds[] = {
    {"\r\n+CMTI: \"SM\",", "\r\n", AT_MODULE_SMS, 0x0110, 12, -1, false, false},
    {"\r\n+CDSI: \"SR\",", "\r\n", AT_MODULE_SMS, 0x0112, 12, -1, false, false},
    {"\r\n+ZVMTI: \"SM\",", "\r\n", AT_MODULE_SMS, 0x0117, 12, -1, false, false},
    {"\r\n+CREG: 1,\"1A\",\"", "\"\r\n", AT_MODULE_SIM, 0x052D, -1, 20, false, false},
    {"\r\n+CGREG: 1,\"1A\",\"", "\",7\r\n", AT_MODULE_SIM, 0x0553, -1, 20, false, false},
    {"\r\n+CEREG: 1,\"1A\",\"", "\",7\r\n", AT_MODULE_SIM, 0x0552, -1, 20, false, false},
    {"\r\n+ZCONSTAT: ", "\r\n", AT_MODULE_DATA, 0x0625, 0, -1, false, false},
    {"\r\n+ZGIPDNS: 1,1,\"IP\",\"", "\",\"10.0.0.1\",\"1.1.1.1\",\"2.2.2.2\"\r\n", AT_MODULE_DATA, 0x0627, -1,
     18, false, false},
    {"\r\n+ZICCID: 8986", "\r\n", AT_MODULE_SIM, 0x0629, -1, 4, false, false},
    {"\r\n+ZUEND: ", "\r\n", AT_MODULE_SIM, 0x0632, 0, -1, false, false},
    {"\r\n+ZNITZ: 26,11,21,10,20,30,4,", "\r\n", AT_MODULE_TIME, 0x063E, 28, -1, false, false},
    {"\r\n+CLIP: \"", "\",129\r\n", AT_MODULE_CALL, 0x0513, -1, 0, false, false},
    {"\r\n+CBM: ", "\r\n4A50000111\r\n", AT_MODULE_SMS, 0x0115, 0, -1, false, true},
    {"\r\n+CDS: ", "\r\n0791447700\r\n", AT_MODULE_SMS, 0x0119, 0, -1, false, true},
    {"\r\n^CEND:1,", ",67,31\r\n", AT_MODULE_CALL, 0x0542, -1, 8, true, false},
    {"\r\n^CONN:1,", "\r\n", AT_MODULE_CALL, 0x0541, -1, 8, true, false},
    {"\r\n+ZCPI: 1,", "\r\n", AT_MODULE_CALL, 0x055E, -1, 9, true, false},
    // Of these nothing is sent: no module wants them, and no answer may be hurt by them.
    {"\r\n^RSSI:", "\r\n", 0, 0, -1, -1, false, false},
    {"\r\n%XTEST: ", ",\"OK\"\r\n", 0, 0, -1, -1, false, false},
    {"\r\n+ZURDY: ", "\r\n", 0, 0, -1, -1, false, false},
};
const int kReportKindCount = sizeof kReportKinds / sizeof kReportKinds[0];

namespace {

struct Command {
    uint16_t id;
    uint8_t type;
    Say say;
    int32_t parameter_size;
    unsigned weight;
};
constexpr Command kCommands[] = {
    {0x0001, AT_CMD_TYPE_EXEC, Say::ok, 0, 6},       {0x0603, AT_CMD_TYPE_EXEC, Say::text, 0, 6},
    {0x0104, AT_CMD_TYPE_SET, Say::ok, 4, 4},        {0x0104, AT_CMD_TYPE_READ, Say::number, 0, 6},
    {0x0514, AT_CMD_TYPE_READ, Say::number, 0, 5},   {0x052D, AT_CMD_TYPE_READ, Say::creg, 0, 5},
    {0x0105, AT_CMD_TYPE_READ, Say::csca, 0, 5},     {0x0518, AT_CMD_TYPE_READ, Say::calls, 0, 4},
    {0x0518, AT_CMD_TYPE_EXEC, Say::calls, 0, 3},    {0x010B, AT_CMD_TYPE_SET, Say::ok, 8, 2},
    {0x0108, AT_CMD_TYPE_SET, Say::message, 504, 4}, {0x0401, AT_CMD_TYPE_EXEC, Say::ok, 0, 3},
};

std::string Final(const Request& request) {
    const std::string number = std::to_string(request.serial);
    switch (request.say) {
        case Say::error:
            return "\r\nERROR\r\n";
        case Say::cme:
            return "\r\n+CME ERROR: E" + number + "\r\n";
        case Say::cms:
            return "\r\n+CMS ERROR: E" + number + "\r\n";
        case Say::busy:
            return "\r\nBUSY\r\n";
        default:
            return "\r\nOK\r\n";
    }
}

const char* NameOf(uint16_t command) {
    switch (command) {
        case 0x0104:
            return "+CMGF";
        case 0x0514:
            return "+CLVL";
        default:
            return "";
    }
}

}  // namespace

uint32_t LimitOf(uint16_t command) {
    return TimeoutRounds(command);
}

// The lines in front of the final result, each whole: reports may stand between them.
std::string AnswerText(const Request& request) {
    const std::string number = std::to_string(request.serial);
    switch (request.say) {
        case Say::text:
            return "\r\n" + number + "\r\n" + Final(request);
        case Say::number:
            return std::string("\r\n") + NameOf(request.command) + ": " + number + "\r\n" + Final(request);
        case Say::creg:
            return "\r\n+CREG: 2,1,\"1A\",\"" + number + "\"\r\n" + Final(request);
        case Say::csca:
            return "\r\n+CSCA: \"+49" + number + "\",145\r\n" + Final(request);
        case Say::calls:
            return "\r\n+CLCC: 1,0,0,0,0,\"" + number + "\",129\r\n+CLCC: 2,1,4,0,0,\"OK" + number +
                   "\",129\r\n" + Final(request);
        case Say::message:
            return "\r\n+CMGS: " + number + "\r\n" + Final(request);
        default:
            return Final(request);
    }
}

// Empty when the record is what the modem's own answer to this very line has to become.
std::string CheckAnswer(const Request& request, const _BK_AT_RES_T& res) {
    const std::string number = std::to_string(request.serial);
    uint8_t result = AT_RESULT_OK;
    std::string text;
    size_t text_at = 0;
    int number_at = -1;
    switch (request.say) {
        case Say::ok:
            break;
        case Say::text:
            text = number;
            break;
        case Say::number:
        case Say::message:
            number_at = 0;
            break;
        case Say::creg:
            text = number;
            text_at = 24;
            break;
        case Say::csca:
            text = "+49" + number;
            break;
        case Say::calls: {
            if (request.type == AT_CMD_TYPE_EXEC) break;
            int32_t count = 0;
            memcpy(&count, res.aucParas, sizeof count);
            if (count != 2) return "has " + std::to_string(count) + " calls instead of 2";
            text = "OK" + number;
            text_at = 4 + 64 + 20;
            break;
        }
        case Say::error:
            result = AT_RESULT_ERROR;
            break;
        case Say::cme:
            result = AT_RESULT_CME_ERROR;
            text = "E" + number;
            break;
        case Say::cms:
            result = AT_RESULT_CMS_ERROR;
            text = "E" + number;
            break;
        case Say::busy:
            result = AT_RESULT_BUSY;
            break;
    }
    if (res.ucResult != result)
        return "has result " + std::to_string(res.ucResult) + " instead of " + std::to_string(result);
    if (number_at >= 0) {
        int32_t value = 0;
        memcpy(&value, res.aucParas + number_at, sizeof value);
        if (value != request.serial) return "carries " + std::to_string(value) + " instead of " + number;
    }
    const char* carried = reinterpret_cast<const char*>(res.aucParas) + text_at;
    if (!text.empty() && std::string(carried, strnlen(carried, 40)) != text)
        return "carries '" + std::string(carried, strnlen(carried, 40)) + "' instead of '" + text + "'";
    return "";
}

void RandomRequest(Random& random, Request& request, MSG_BUF& message) {
    unsigned weights = 0;
    for (const Command& command : kCommands)
        weights += command.weight;
    unsigned at = random.Below(weights);
    const Command* command = kCommands;
    while (at >= command->weight)
        at -= (command++)->weight;

    request.command = command->id;
    request.type = command->type;
    request.say = command->say;
    request.dial = command->id == 0x0401;
    _BK_AT_CMD_T& payload = RequestOf(message);
    payload.usParaLen = static_cast<uint16_t>(command->parameter_size);
    if (request.dial) {
        memcpy(payload.aucParas, "555123", 6);
        payload.usParaLen = 6;
    } else if (command->say == Say::message) {
        const int32_t length = 20;
        memcpy(payload.aucParas, &length, sizeof length);
        snprintf(reinterpret_cast<char*>(payload.aucParas) + 4, 500, "0011000B91%d", request.serial);
    }
    if (random.OneIn(12)) {
        static constexpr Say kErrors[] = {Say::error, Say::cme, Say::cms, Say::busy};
        request.say = kErrors[random.Below(4)];
    }
    if (random.OneIn(25)) {  // no line can be generated
        request.no_line = true;
        switch (random.Below(3)) {
            case 0:
                request.command = 0x7777;
                break;
            case 1:
                request.type = random.OneIn(2) ? 0 : 9;
                break;
            default:
                request.command = 0x0110;  // +CMTI is only reported
        }
    }
    payload.usCmdID = request.command;
    payload.ucCmdType = request.type;
}
