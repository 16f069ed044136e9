#include "checks/soak/talker.h"

#include <unistd.h>

namespace {

constexpr char kOk[] = "\r\n\r\nOK\r\n";

std::string Number(long number) {
    return std::to_string(number);
}

std::string MessageList() {
    std::string text;
    for (int i = 1; i <= kMessages; ++i)
        text += "\r\n+CMGL: " + Number(i) + ",1,\"Sender " + Number(i) + "\",40\r\n" + kPdu;
    return text + kOk;
}

std::string Phonebook() {
    std::string text;
    for (int i = 1; i <= kEntries; ++i)
        text += "\r\n+CPBR: " + Number(i) + ",\"+4917100" + Number(1000 + i) + "\",145,\"Somebody " +
                Number(i) + "\"";
    return text + kOk;
}

std::string CallList() {
    std::string text;
    for (int i = 1; i <= kCalls; ++i)
        text += "\r\n+CLCC: " + Number(i) + ",1,0,0,0,\"5550" + Number(100 + i) + "\",129";
    return text + kOk;
}

std::string Operators() {
    std::string text = "\r\n+COPS: ";
    for (int i = 1; i <= kOperators; ++i)
        text += "(1,\"Operator " + Number(i) + "\",\"OP" + Number(i) + "\",\"00" + Number(100 + i) + "\",7),";
    return text + ",(0,1,2,3,4),(0,1,2)" + kOk;
}

std::string PlainText(const std::string& line) {
    if (line == "AT+CMGL=4") return MessageList();
    if (line == "AT+CPBR=1,100") return Phonebook();
    if (line == "AT+CLCC") return CallList();
    if (line == "AT+COPS=?") return Operators();
    if (line == "AT+CMGS=40") return "\r\n> ";
    if (line == "AT+ZDOGREF") return "\r\nOK\r\n";
    if (line == kPdu) return "\r\n+CMGS: 12\r\n\r\nOK\r\n";
    return PlainAnswer(line);
}

// Lines whose answer may fail to come: their time-out is short, and nothing else hangs on it.
bool MayGoUnanswered(const std::string& line) {
    return line == "AT+CSQ" || line == "AT+CFUN?";
}

}  // namespace

unsigned Talker::Chance(unsigned of) {
    std::lock_guard<std::mutex> hold(dice_lock_);
    return dice_.Throw(of);
}

std::string Talker::RandomReport() {
    switch (Chance(7)) {
        case 0:
            ++said.sim;
            return "\r\n+CREG: 1,\"1A2B\",\"00C3D4E5\"\r\n";
        case 1:
            ++said.sim;
            return "\r\n+CGREG: 5\r\n";
        case 2:
            ++said.sim;
            return "\r\n+CEREG: 1,\"0F0E\",\"01020304\",7\r\n";
        case 3:
            ++said.sms;
            return "\r\n+CMTI: \"SM\"," + Number(Chance(80)) + "\r\n";
        case 4:
            ++said.data;
            return "\r\n+ZCONSTAT: 1,5\r\n";
        case 5:
            ++said.data;
            return "\r\n+ZGIPDNS: 1,5,\"IP\",\"10.0.0.2\",\"10.0.0.1\",\"8.8.8.8\",\"8.8.4.4\"\r\n";
        default:
            return "\r\n^NOROW: " + Number(Chance(32)) + "\r\n";  // of no use to anybody
    }
}

std::string Talker::Answer(const std::string& line) {
    // An empty line stands between a carriage return and what follows it.
    if (line.empty()) return "";
    if (MayGoUnanswered(line) && Chance(1000) == 0) {
        ++silences;
        return "";
    }
    std::string text = PlainText(line);
    const bool dial = line.rfind("ATD", 0) == 0;
    std::lock_guard<std::mutex> hold(mouth_);
    switch (dial ? 9 : Chance(10)) {
        case 0:
            text = line + "\r" + text;
            break;
        case 1:
            text = RandomReport() + text;
            break;
        case 2:
            // In front of the final result, where the answer has one of its own.
            if (const size_t ok = text.rfind("\r\n\r\nOK"); ok != std::string::npos && ok != 0)
                text.insert(ok + 2, RandomReport());
            break;
        case 3:
            usleep(1000 * (1 + Chance(200)));
            break;
        case 4: {
            const size_t size = 1 + Chance(40);
            for (size_t at = 0; at < text.size(); at += size) {
                modem_->Say(text.substr(at, size));
                if (text.size() < 1000) usleep(500);
            }
            return "";
        }
        default:
            break;
    }
    modem_->Say(text);
    return "";
}

void Talker::SayReport() {
    std::lock_guard<std::mutex> hold(mouth_);
    modem_->Say(RandomReport());
}

void Talker::SayStorm() {
    std::string text;
    while (text.size() < 60'000)
        text += "\r\n^JUNK: " + std::string(1 + Chance(300), 'j') + "\r\n";
    std::lock_guard<std::mutex> hold(mouth_);
    modem_->Say(text);
}
