#include "tools/atctl/asking.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <ctime>

#include "commands/timeouts.h"
#include "tools/atctl/module_name.h"
#include "tools/atctl/request.h"
#include "tools/shared/text.h"

using std::chrono::milliseconds;
using Status = QueueClient::Status;

namespace {

// The server takes a request within a moment, unless it is busy with others. Who gave the answer less time
// than that does not wait longer for the room to ask.
constexpr milliseconds kFullQueuePatience(2000);

milliseconds PatienceToPut(const Question& question) {
    return std::min(kFullQueuePatience, question.Patience());
}

std::optional<uint16_t> ParseModule(const std::string& text) {
    if (text.empty()) return std::nullopt;
    const uint16_t id = ModuleFromNumber(text);
    if (id == 0) throw Misuse("--module is a number from 1 to 0xFFFF, not \"" + Printable(text) + "\"");
    if (id == AT_MODULE_SERVER) throw Misuse("--module " + text + " is the server's own id");
    return id;
}

std::string GoneReaderWords(const QueueClient::ServerState& state) {
    return "the server that last read its queue (process " + std::to_string(state.reader) + ") is gone";
}

std::string GoneReader(const QueueClient::ServerState& state) {
    if (!state.reader_is_gone) return "";
    return "; " + GoneReaderWords(state);
}

}  // namespace

milliseconds Question::Patience() const {
    return milliseconds(static_cast<int64_t>(timeout * 1000));
}

Question MakeQuestion(const std::string& command, const std::vector<std::string>& fields, double timeout) {
    Question question = {FindCall(command), {}, "", timeout};
    question.paras = BuildRequest(question.call, fields);
    question.name = CallName(question.call);
    if (timeout <= 0) question.timeout = DefaultTimeout(question.call.row->id);
    return question;
}

double DefaultTimeout(uint16_t cmd_id) {
    // The server counts rounds of 10 ms and what they cost, so its seconds are longer than a clock's.
    return std::ceil(TimeoutSeconds(cmd_id) * 1.25) + 5;
}

Asking::Asking(const QueueClient::Setup& setup, const std::string& module)
    : setup_(setup), module_text_(module), module_(ParseModule(module)), client_(setup) {}

void Asking::Open() {
    const Status status = client_.Open(module_);
    if (status != Status::ok) throw OpenFailure(status);
}

Failure Asking::OpenFailure(Status status) const {
    const std::string queue = HexNumber(static_cast<unsigned>(setup_.server_key));
    switch (status) {
        case Status::no_server:
            return Misuse("there is no server: no message queue " + queue + "; start at-server first");
        case Status::no_permission:
            return {kExitNoPermission, "no permission to use the server's queue " + queue +
                                           "; try as the server's user or root"};
        case Status::module_in_use:
            return {kExitTaken, "module " + module_text_ +
                                    " has a queue already; choose another id, or leave --module away"};
        default:
            return {kExitBroken, std::string("no message queue can be made: ") + strerror(client_.Error()) +
                                     "; ipcs -q shows which there are"};
    }
}

bool Asking::Put(const Question& question) {
    // The clock of file times, which is a little behind.
    clock_gettime(CLOCK_REALTIME_COARSE, &asked_at_);
    started_ = std::chrono::steady_clock::now();
    const Row& row = *question.call.row;
    const milliseconds patience = PatienceToPut(question);
    const Status status = client_.Send({row.id, question.call.type, question.paras}, patience);
    if (status != Status::ok && status != Status::stopped) throw PutFailure(status, patience);
    return status == Status::ok;
}

Failure Asking::PutFailure(Status status, milliseconds patience) const {
    switch (status) {
        case Status::server_full:
            return {kExitFull, "the server's queue is full and nobody took anything from it for " +
                                   Seconds(std::chrono::duration<double>(patience).count()) +
                                   "; the request was not sent" + GoneReader(client_.LookAtServer())};
        case Status::no_server:
            return Misuse("the server's queue went away; the request was not sent");
        case Status::no_permission:
            return {kExitNoPermission,
                    "no permission to write to the server's queue; try as the server's user or root"};
        default:
            return {kExitBroken, std::string("the request cannot be sent: ") + strerror(client_.Error())};
    }
}

Reply Asking::Wait(const Question& question, const Tell& tell) {
    bool told = false;
    // Not before the first second is over: a server that has just been started has not read anything yet, and
    // the last reader is the one before it.
    const auto look = [&] {
        if (told || !tell) return;
        const QueueClient::ServerState state = client_.LookAtServer();
        if (!state.reader_is_gone) return;
        told = true;
        // A queue outlives its server. A request that is still in it is the next server's.
        tell(GoneReaderWords(state) +
             (state.waiting > 0
                  ? "; still waiting (" + Seconds(question.timeout) + " in all), in case it is started again"
                  : " and took the request with it; still waiting (" + Seconds(question.timeout) +
                        " in all), but better ask again"));
    };
    Reply reply;
    reply.status = client_.Receive(question.Patience(), reply.message, look);
    reply.taken = std::chrono::steady_clock::now() - started_;
    if (reply.status == Status::ok) {
        static_assert(sizeof reply.res == sizeof reply.message.aucDataBuf);
        memcpy(&reply.res, reply.message.aucDataBuf, sizeof reply.res);
    } else if (reply.status != Status::timed_out && reply.status != Status::stopped) {
        throw Failure(kExitBroken,
                      std::string("the answer cannot be received: ") + strerror(client_.Error()));
    }
    return reply;
}

Decoded Asking::Read(const Question& question, const Reply& reply) const {
    return Decode(*question.call.row, reply.res,
                  [this](const char* path, size_t size) { return ReadAnswerFile(path, size, asked_at_); });
}

std::string Asking::WhyNoAnswer(const Question& question) const {
    const std::string text = "no answer to " + question.name + " within " + Seconds(question.timeout);
    const QueueClient::ServerState state = client_.LookAtServer();
    if (state.reader_is_gone) return text + GoneReader(state);
    if (state.waiting > 0)
        return text + "; " + Number(static_cast<size_t>(state.waiting), "request waits", "requests wait") +
               " in the server's queue";
    if (state.waiting < 0) return text + "; the server's queue is gone";
    return text;
}

std::string Seconds(double seconds) {
    char text[32];
    snprintf(text, sizeof text, "%.*f s", seconds == std::floor(seconds) ? 0 : 3, seconds);
    return text;
}
