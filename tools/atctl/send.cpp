#include "tools/atctl/send.h"

#include <cmath>
#include <cstring>
#include <ctime>
#include <nlohmann/json.hpp>

#include "commands/timeouts.h"
#include "tools/atctl/answer.h"
#include "tools/atctl/error_words.h"
#include "tools/atctl/find_command.h"
#include "tools/atctl/misuse.h"
#include "tools/atctl/module_name.h"
#include "tools/atctl/print_answer.h"
#include "tools/atctl/request.h"

namespace {

using Status = QueueClient::Status;
using std::chrono::milliseconds;

// The server takes a request within a moment, unless it is busy with others.
constexpr milliseconds kFullQueuePatience(2000);

std::optional<uint16_t> ParseModule(const std::string& text) {
    if (text.empty()) return std::nullopt;
    const uint16_t id = ModuleFromNumber(text);
    if (id == 0) throw Misuse("--module is a number from 1 to 0xFFFF, not \"" + Printable(text) + "\"");
    if (id == AT_MODULE_SERVER) throw Misuse("--module " + text + " is the server's own id");
    return id;
}

std::string Seconds(double seconds) {
    char text[32];
    snprintf(text, sizeof text, "%.*f s", seconds == std::floor(seconds) ? 0 : 3, seconds);
    return text;
}

std::string OpenFault(const QueueClient& client, Status status, const QueueClient::Setup& setup,
                      const std::string& module) {
    const std::string queue = HexNumber(static_cast<unsigned>(setup.server_key));
    switch (status) {
        case Status::no_server:
            return "there is no server: no message queue " + queue;
        case Status::no_permission:
            return "no permission to use the server's queue " + queue + "; try as the server's user or root";
        case Status::module_in_use:
            return "module " + module + " has a queue already; choose another id, or leave --module away";
        default:
            return std::string("no message queue can be made: ") + strerror(client.Error());
    }
}

std::string SendFault(const QueueClient& client, Status status) {
    switch (status) {
        case Status::server_full:
            return "the server's queue is full and nobody took anything from it for " +
                   Seconds(std::chrono::duration<double>(kFullQueuePatience).count()) +
                   "; the request was not sent";
        case Status::no_server:
            return "the server's queue went away; the request was not sent";
        case Status::no_permission:
            return "no permission to write to the server's queue; try as the server's user or root";
        default:
            return std::string("the request cannot be sent: ") + strerror(client.Error());
    }
}

std::string NoAnswer(const QueueClient& client, const std::string& name, double timeout) {
    std::string text = "no answer to " + name + " within " + Seconds(timeout);
    const QueueClient::ServerState state = client.LookAtServer();
    if (state.reader_is_gone)
        text +=
            "; the server that last read its queue (process " + std::to_string(state.reader) + ") is gone";
    else if (state.waiting > 0)
        text += "; " + Number(static_cast<size_t>(state.waiting), "request waits", "requests wait") +
                " in the server's queue";
    else if (state.waiting < 0)
        text += "; the server's queue is gone";
    return text;
}

void ShowRequest(std::ostream& err, const QueueClient& client, const Call& call, const std::string& name,
                 std::span<const uint8_t> paras) {
    err << "request  " << name << "  id " << HexNumber(call.row->id) << ", type " << unsigned{call.type}
        << ", " << Number(paras.size(), "byte", "bytes") << " of parameters, from module "
        << HexNumber(client.Module()) << ", message type " << client.MessageType() << '\n';
    if (const Record* record = RequestRecord(*call.row, call.type))
        PrintFields(err, DecodeFields(*record, paras));
    PrintHex(err, paras);
}

void ShowAnswer(std::ostream& err, const MSG_BUF& message, const _BK_AT_RES_T& res, double seconds) {
    char time[32];
    snprintf(time, sizeof time, "%.3f s", seconds);
    err << "answer   after " << time << "  id " << HexNumber(res.usCmdID) << ", type "
        << unsigned{res.ucCmdType} << ", result " << unsigned{res.ucResult} << ", usParaLen " << res.usParaLen
        << ", usDataLen " << message.usDataLen << ", usMsgCmd " << HexNumber(message.usMsgCmd) << ", from "
        << HexNumber(message.usSourceModuleID) << '\n';
}

}  // namespace

double DefaultTimeout(uint16_t cmd_id) {
    // The server counts rounds of 10 ms and what they cost, so its seconds are longer than a clock's.
    return std::ceil(TimeoutSeconds(cmd_id) * 1.25) + 5;
}

int Send(const SendOptions& options, const QueueClient::Setup& setup, const Streams& streams) {
    const Call call = FindCall(options.command);
    const std::vector<uint8_t> paras = BuildRequest(call, options.fields);
    const std::optional<uint16_t> module = ParseModule(options.module);
    const double timeout = options.timeout > 0 ? options.timeout : DefaultTimeout(call.row->id);
    const std::string name = CallName(call);

    QueueClient client(setup);
    Status status = client.Open(module);
    if (status != Status::ok) throw Misuse(OpenFault(client, status, setup, options.module));

    // The clock of file times, which is a little behind.
    timespec asked_at = {};
    clock_gettime(CLOCK_REALTIME_COARSE, &asked_at);
    const auto started = std::chrono::steady_clock::now();
    status = client.Send({call.row->id, call.type, paras}, kFullQueuePatience);
    if (status == Status::stopped) return kExitNotSent;
    if (status != Status::ok) throw Misuse(SendFault(client, status));
    if (options.verbose) ShowRequest(streams.err, client, call, name, paras);

    MSG_BUF message;
    status = client.Receive(milliseconds(static_cast<int64_t>(timeout * 1000)), message);
    if (client.Dropped() != 0)
        streams.err << "atctl: " << Number(client.Dropped(), "message", "messages")
                    << " for this module that did not answer this request came in and went away\n";
    if (status == Status::stopped) return kExitNoAnswer;
    if (status == Status::timed_out) {
        streams.err << "atctl: " << NoAnswer(client, name, timeout) << '\n';
        return kExitNoAnswer;
    }
    if (status != Status::ok) {
        streams.err << "atctl: the answer cannot be received: " << strerror(client.Error()) << '\n';
        return kExitNoAnswer;
    }
    client.Close();

    _BK_AT_RES_T res;
    static_assert(sizeof res == sizeof message.aucDataBuf);
    memcpy(&res, message.aucDataBuf, sizeof res);
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - started;
    if (options.verbose) ShowAnswer(streams.err, message, res, taken.count());

    const Decoded decoded = Decode(
        *call.row, res, [&](const char* path, size_t size) { return ReadAnswerFile(path, size, asked_at); });
    if (options.json)
        streams.out << AnswerJson(*call.row, decoded).dump(2) << '\n';
    else
        PrintAnswer(streams.out, streams.paint, *call.row, decoded);
    return decoded.result == AT_RESULT_OK ? kExitGood : kExitOtherResult;
}
