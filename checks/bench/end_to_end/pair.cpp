#include "checks/bench/end_to_end/pair.h"

#include <string.h>
#include <sys/ipc.h>
#include <sys/msg.h>
#include <unistd.h>

#include <stdexcept>

#include "checks/bench/end_to_end/order.h"

namespace {

constexpr uint16_t kAsking = 0x2345;
constexpr uint16_t kBareServer = 0x2400;
constexpr uint16_t kOfBare = 0x2401;
constexpr char kBareDevice[] = "/dev/ttyBARE";

int BareServerQueue() {
    return msgget(kBareServer, 0);
}

void Put(int queue, const std::string& bytes) {
    struct {
        long type = 7;
        char body[AT_WIRE_SIZE] = {};
    } wire;
    memcpy(wire.body, bytes.data(), std::min(bytes.size(), sizeof wire.body));
    if (msgsnd(queue, &wire, sizeof wire.body, 0) != 0) throw std::runtime_error("msgsnd failed");
}

}  // namespace

Pair::Pair(const std::string& daemon, const std::string& bare, const std::string& log_switch)
    : log_(log_switch),
      asking_(kAsking),
      of_bare_(kOfBare),
      modem_(PlainAnswer),
      bare_modem_(PlainAnswer, kBareDevice),
      daemon_({daemon}),
      idle_({bare, "idle", kBareDevice}),
      bare_({bare, "serve", kBareDevice, std::to_string(kBareServer), std::to_string(kOfBare)}) {
    log_.Release();
    log_.Set(LogSwitch::drop);
    if (!WaitUntil([] { return ServerQueue() >= 0 && BareServerQueue() >= 0; }, 30))
        throw std::runtime_error("the daemon or the bare program did not start");
}

Pair::~Pair() {
    for (const int queue : {BareServerQueue(), ServerQueue()})
        if (queue >= 0) msgctl(queue, IPC_RMID, nullptr);
}

void Pair::LetModemsSay(const std::string& answer) {
    for (Modem* modem : {&modem_, &bare_modem_})
        modem->SetAnswer([answer](const std::string&) { return answer; });
}

Pair::Prepared Pair::Prepare(const Shape& shape) {
    Prepared prepared{shape, asking_.Request(shape.command, shape.type, shape.record), {}, 0};
    LetModemsSay(shape.answer);
    modem_.ForgetLines();
    Put(ServerQueue(), prepared.request);
    bool answered = false;
    Received received;
    while (NextOfDaemon(received, answered ? 0.3 : 10)) {
        ++prepared.messages;
        answered = answered || (received.type == 7 && received.id == shape.command && received.result == 1);
    }
    const std::vector<std::string> lines = modem_.Lines();
    if (!answered || lines.size() != 1)
        throw std::runtime_error(std::string(shape.name) + ": no answer, or more than one line to the modem");

    const std::string line = lines[0] + "\r";
    BareOrder order{};
    if (line.size() > sizeof order.line)
        throw std::runtime_error(std::string(shape.name) + ": too long a line");
    order.bytes = static_cast<uint32_t>(shape.answer.size());
    order.messages = static_cast<uint32_t>(prepared.messages);
    order.line_size = static_cast<uint32_t>(line.size());
    memcpy(order.line, line.data(), line.size());
    prepared.order.assign(reinterpret_cast<const char*>(&order), sizeof order);
    return prepared;
}

Cost Pair::Batch(const Prepared& prepared) {
    LetModemsSay(prepared.shape.answer);
    const int requests = prepared.shape.requests;
    Cost spent{};
    uint64_t next = MonotonicNs();
    for (int i = -2; i < 2 * requests; ++i) {  // the first two are not counted
        const bool idle = i % 2 != 0;
        const uint64_t daemon = daemon_.CpuNs();
        const uint64_t bare = bare_.CpuNs();
        if (!idle) Serve(prepared);
        next += static_cast<uint64_t>(prepared.shape.period_ms) * 1'000'000;
        SleepUntil(next);
        const double sign = i < 0 ? 0.0 : idle ? -1.0 : 1.0;
        spent.daemon += sign * static_cast<double>(daemon_.CpuNs() - daemon);
        spent.bare += sign * static_cast<double>(bare_.CpuNs() - bare);
    }
    return {spent.daemon / requests, spent.bare / requests};
}

Cost Pair::Idle(unsigned seconds) {
    const uint64_t daemon = daemon_.CpuNs();
    const uint64_t loop = idle_.CpuNs();
    sleep(seconds);
    return {static_cast<double>(daemon_.CpuNs() - daemon) / seconds,
            static_cast<double>(idle_.CpuNs() - loop) / seconds};
}

void Pair::LogTo(LogSwitch::Way way, bool collector) {
    collector_.reset();
    if (collector) collector_.emplace();
    log_.Set(way);
}

size_t Pair::LoggedLines() const {
    return collector_ ? collector_->Lines().size() : 0;
}

void Pair::Serve(const Prepared& prepared) {
    Put(ServerQueue(), prepared.request);
    Put(BareServerQueue(), prepared.order);
    Received received;
    for (size_t i = 0; i < prepared.messages; ++i)
        if (!NextOfDaemon(received, 5) || !of_bare_.Receive(received, 5))
            throw std::runtime_error(std::string(prepared.shape.name) + ": a message did not come");
}

// The next message for any of the modules that the daemon serves.
bool Pair::NextOfDaemon(Received& received, double seconds) const {
    return WaitUntil(
        [&] {
            for (const Module* module : {&asking_, &call_, &sim_, &sms_})
                if (module->Receive(received, 0)) return true;
            return false;
        },
        seconds);
}
