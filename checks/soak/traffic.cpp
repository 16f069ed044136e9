#include "checks/soak/traffic.h"

#include <stdio.h>
#include <string.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr uint8_t kExec = AT_CMD_TYPE_EXEC;
constexpr uint8_t kSet = AT_CMD_TYPE_SET;
constexpr uint8_t kRead = AT_CMD_TYPE_READ;
constexpr uint8_t kTest = AT_CMD_TYPE_TEST;
constexpr uint8_t kReportType = 1;

// Longer than the ten seconds after which the daemon answers in the modem's place, with those who wait
// before.
constexpr double kAnswerSeconds = 60;

// True when the file has the size of the list's record and counts that many entries.
bool ListIs(const char* path, long size, int32_t entries) {
    FILE* file = fopen(path, "rb");
    if (file == nullptr) return false;
    int32_t count = -1;
    struct stat about {};
    const bool good = fread(&count, sizeof count, 1, file) == 1 && fstat(fileno(file), &about) == 0;
    fclose(file);
    return good && about.st_size == size && count == entries;
}

}  // namespace

// One request and what its answer has to be.
struct Traffic::Kind {
    const char* name;
    uint16_t id;
    uint8_t type;
    std::string record;
    uint8_t result;
    bool list;
    bool slow;  // has more than ten seconds
    bool (*good)(const Received&);
};

const Traffic::Kind Traffic::kSignalKinds[] = {
    {"AT+CSQ", 0x0604, kExec, "", 1, false, false, [](const Received& got) { return got.I32(0) == 20; }},
    {"AT+CFUN?", 0x0544, kRead, "", 1, false, false, [](const Received& got) { return got.I32(0) == 1; }},
    {"AT+CPIN?", 0x0301, kRead, "", 1, false, false,
     [](const Received& got) { return got.Text() == "READY"; }},
    {"AT+CGSN", 0x0603, kExec, "", 1, false, false,
     [](const Received& got) { return got.Text() == "356938035643809"; }},
    {"AT+CMGF?", 0x0104, kRead, "", 1, false, false, [](const Received& got) { return got.I32(0) == 0; }},
    {"AT+CPMS=", 0x0103, kSet, std::string(29, 'A'), 2, false, false, [](const Received&) { return true; }},
};

const Traffic::Kind Traffic::kListKinds[] = {
    {"AT+COPS=?", 0x0517, kTest, "", 1, true, true,
     [](const Received& got) {
         return got.para_len == 12804 && ListIs("/etc_rw/config/copslist", 12804, kOperators);
     }},
    {"AT+CPBR=1,100", 0x0202, kSet, I32({1, 100}), 1, true, false,
     [](const Received& got) {
         return got.para_len == 22004 && ListIs("/etc_rw/config/Phonebak", 22004, kEntries);
     }},
    {"AT+CLCC", 0x0518, kExec, "", 1, true, false,
     [](const Received& got) {
         return got.para_len == 1284 && ListIs("/etc_rw/config/clcclist", 1284, kCalls);
     }},
    {"AT+CSQ", 0x0604, kExec, "", 1, false, false, [](const Received& got) { return got.I32(0) == 20; }},
};

const Traffic::Kind Traffic::kMessageKinds[] = {
    {"AT+CMGS=40", 0x0108, kSet, I32({40}) + Text(kPdu, 500), 1, false, true,
     [](const Received& got) { return got.I32(0) == 12; }},
    {"AT+CMGL=4", 0x0106, kSet, I32({4}), 1, true, true,
     [](const Received& got) {
         return got.para_len == 50564 && ListIs("/etc_rw/config/smsbak", 50564, kMessages);
     }},
    {"AT+CMGF?", 0x0104, kRead, "", 1, false, false, [](const Received& got) { return got.I32(0) == 0; }},
};

const Traffic::Kind Traffic::kWatchDog = {
    "AT+ZDOGREF", 0x062E, kExec, "", 1, false, false, [](const Received&) { return true; }};

Traffic::Traffic(Modem& modem, Talker& talker, unsigned seed) : modem_(modem), talker_(talker), seed_(seed) {
    threads_.emplace_back([this] { RunReceiver(sim_, tally.sim_reports); });
    threads_.emplace_back([this] { RunReceiver(data_, tally.data_reports); });
}

Traffic::~Traffic() {
    stop_ = true;
    ++break_;
    for (std::thread& thread : threads_)
        thread.join();
}

void Traffic::Fault(const std::string& text) {
    std::lock_guard<std::mutex> hold(fault_lock_);
    if (faults_.size() < 20) faults_.push_back(text);
}

std::vector<std::string> Traffic::Faults() const {
    std::lock_guard<std::mutex> hold(fault_lock_);
    return faults_;
}

// Receives until what came is wanted; reports on the way are counted. False when it did not come.
bool Traffic::Wait(const Module& module, Received& received, const std::function<bool()>& wanted,
                   double seconds) {
    const int before = break_;
    bool found = false;
    WaitUntil(
        [&] {
            while (!found && module.Receive(received, 0)) {
                found = wanted();
                if (!found && received.type == kReportType && module.Id() == AT_MODULE_SMS)
                    ++tally.sms_reports;
            }
            return found || break_ != before;
        },
        seconds);
    return found;
}

void Traffic::Ask(const Module& module, const Kind& kind) {
    const int before = break_;
    const long number = ++number_;
    ++tally.asked;
    module.Ask(kind.id, kind.type, kind.record, number);
    Received got;
    if (!Wait(
            module, got, [&] { return got.type == number; }, kAnswerSeconds)) {
        ++tally.lost;
        if (break_ == before) Fault(std::string(kind.name) + ": no answer");
        return;
    }
    if (got.result == AT_RESULT_TIMEOUT) {
        ++tally.timed_out;
        return;
    }
    if (got.id != kind.id || got.result != kind.result || !kind.good(got)) {
        if (break_ == before)
            Fault(std::string(kind.name) + ": result " + std::to_string(got.result) + ", " +
                  std::to_string(got.para_len) + " bytes: " + got.Text());
        ++tally.lost;
        return;
    }
    ++tally.answered;
    if (kind.list) ++tally.lists;
}

// The OK of a dial answers whoever is waiting when it comes, and the events of a call end the request under
// way: a call is made while no other request is.
void Traffic::MakeACall(bool incoming) {
    const int before = break_;
    const auto expect = [&](uint16_t id, const char* what) {
        Received got;
        if (Wait(
                call_, got, [&] { return got.id == id; }, kAnswerSeconds))
            return true;
        if (break_ == before) Fault(std::string("call: no ") + what);
        return false;
    };
    if (incoming) {
        modem_.Say("\r\nRING\r\n\r\n+CLIP: \"5550123\",129\r\n");
        if (!expect(0x0407, "ring") || !expect(0x0513, "number")) return;
        call_.Ask(0x0404, kExec, "", ++number_);
        if (!expect(0x0404, "OK of the answer")) return;
    } else {
        call_.Ask(0x0401, kExec, "5550123", ++number_);
        if (!expect(0x0401, "OK of the dial")) return;
    }
    modem_.Say("\r\nZVCONNECT: 1\r\n");
    call_.Ask(0x0403, kExec, "", ++number_);
    if (!expect(0x0403, "OK of the hang-up")) return;
    modem_.Say("\r\nHANGUP: 16\r\n\r\nZVCONNECT: 0\r\n");
    if (!expect(0x0408, "hang-up")) return;
    ++tally.calls;
}

void Traffic::AskForEverything(const LogCollector& log) {
    StartWatchDog();
    for (const Kind& kind : kSignalKinds)
        Ask(signal_, kind);
    for (const Kind& kind : kListKinds)
        Ask(lists_, kind);
    for (const Kind& kind : kMessageKinds)
        Ask(sms_, kind);
    MakeACall(false);
    MakeACall(true);
    talker_.SayStorm();
    // A line that never ends fills the buffer to its last byte. What comes in the same read goes with it.
    modem_.Say("\r\n" + std::string(102'399, 'x'));
    if (!log.WaitFor("receive buffer is full", 20)) Fault("an endless line does not fill the buffer");
    Ask(signal_, kSignalKinds[3]);
}

void Traffic::StartWatchDog() {
    for (int i = 0; i < 2; ++i)
        Ask(watch_dog_, kWatchDog);
}

void Traffic::TakeReports() {
    Received got;
    while (sms_.Receive(got, 0))
        ++tally.sms_reports;
}

void Traffic::Start() {
    threads_.emplace_back([this] { RunAsker(signal_, kSignalKinds, std::size(kSignalKinds), seed_ + 1); });
    threads_.emplace_back([this] { RunAsker(lists_, kListKinds, std::size(kListKinds), seed_ + 2); });
    threads_.emplace_back([this] { RunAsker(sms_, kMessageKinds, std::size(kMessageKinds), seed_ + 3); });
    threads_.emplace_back([this] { RunCaller(seed_ + 4); });
    threads_.emplace_back([this] { RunReporter(seed_ + 5); });
}

void Traffic::Rest() {
    ++line_wanted_;
    line_.lock();
    reports_.lock();
}

void Traffic::Resume() {
    reports_.unlock();
    line_.unlock();
    --line_wanted_;
}

void Traffic::RunAsker(const Module& module, const Kind* kinds, size_t count, unsigned seed) {
    Dice dice(seed);
    while (!stop_) {
        // A lock that readers share would never be free for the others.
        while (line_wanted_ != 0 && !stop_)
            usleep(1000);
        {
            std::shared_lock<std::shared_mutex> hold(line_);
            const Kind& kind = kinds[dice.Throw(static_cast<unsigned>(count))];
            if (!stop_ && !(no_modem_ && kind.slow)) Ask(module, kind);
        }
        usleep(dice.Throw(100'000));
    }
}

void Traffic::RunCaller(unsigned seed) {
    Dice dice(seed);
    while (!stop_) {
        for (unsigned round = 20 + dice.Throw(40); round != 0 && !stop_; --round)
            usleep(100'000);
        ++line_wanted_;
        {
            std::unique_lock<std::shared_mutex> hold(line_);
            std::lock_guard<std::mutex> quiet(reports_);
            if (!stop_ && !no_modem_) MakeACall(dice.Throw(2) == 0);
        }
        --line_wanted_;
    }
}

void Traffic::RunReporter(unsigned seed) {
    Dice dice(seed);
    while (!stop_) {
        {
            std::lock_guard<std::mutex> hold(reports_);
            if (dice.Throw(300) == 0)
                talker_.SayStorm();
            else
                talker_.SayReport();
        }
        usleep(10'000 + dice.Throw(150'000));
    }
}

void Traffic::RunReceiver(const Module& module, std::atomic<long>& count) {
    Received got;
    while (!stop_)
        if (module.Receive(got, 0.2)) ++count;
}
