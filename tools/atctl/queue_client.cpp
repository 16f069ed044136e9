#include "tools/atctl/queue_client.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {

// How late a stop is noticed.
constexpr milliseconds kPiece(20);
constexpr milliseconds kSecond(1000);

}  // namespace

QueueClient::Status QueueClient::Told(at_client_error error) {
    if (error != AT_CLIENT_OK) error_ = errno;
    switch (error) {
        case AT_CLIENT_OK:
            return Status::ok;
        case AT_CLIENT_TIMED_OUT:
            return Status::timed_out;
        case AT_CLIENT_NO_SERVER:
            return Status::no_server;
        case AT_CLIENT_NO_PERMISSION:
            return Status::no_permission;
        case AT_CLIENT_SERVER_FULL:
            return Status::server_full;
        case AT_CLIENT_QUEUE_TAKEN:
            return Status::module_in_use;
        case AT_CLIENT_NO_QUEUE:
            return Status::no_queue;
        case AT_CLIENT_MISUSE:
            error_ = EMSGSIZE;
            return Status::failed;
        default:
            return Status::failed;
    }
}

QueueClient::Status QueueClient::Open(std::optional<uint16_t> module) {
    Close();
    at_client_options options = {};
    options.module = module.value_or(static_cast<uint16_t>(AT_CLIENT_ANY_MODULE));
    options.queue = AT_CLIENT_QUEUE_NEW;
    options.flags = AT_CLIENT_NEED_SERVER | (setup_.at_once ? unsigned{AT_CLIENT_THREAD} : 0U);
    options.server_key = setup_.server_key;
    at_client* client = nullptr;
    const Status status = Told(at_client_open(&options, &client));
    client_.reset(client);
    if (status == Status::ok) module_ = at_client_module(client);
    return status;
}

void QueueClient::Close() {
    client_.reset();
}

QueueClient::Status QueueClient::InPieces(milliseconds patience, at_client_error again,
                                          const std::function<at_client_error(int timeout_ms)>& call) {
    const auto end = steady_clock::now() + patience;
    while (true) {
        const auto left = std::chrono::ceil<milliseconds>(end - steady_clock::now());
        const auto piece = std::clamp(left, milliseconds(0), kPiece);
        const at_client_error error = call(static_cast<int>(piece.count()));
        if (error != again) return Told(error);
        if (setup_.stop != nullptr && setup_.stop()) return Status::stopped;
        if (left <= kPiece) return Told(error);
    }
}

QueueClient::Status QueueClient::Send(const Request& request, milliseconds patience) {
    at_client_forget(client_.get(), request_);
    return InPieces(patience, AT_CLIENT_SERVER_FULL, [&](int timeout_ms) {
        return at_client_send(client_.get(), request.cmd_id, request.type, request.paras.data(),
                              request.paras.size(), timeout_ms, &request_);
    });
}

QueueClient::Status QueueClient::Receive(milliseconds patience, MSG_BUF& answer,
                                         const std::function<void()>& each_second) {
    at_client_message message;
    auto next = steady_clock::now() + kSecond;
    const Status status = InPieces(patience, AT_CLIENT_TIMED_OUT, [&](int timeout_ms) {
        if (each_second && steady_clock::now() >= next) {
            each_second();
            next += kSecond;
        }
        return at_client_receive(client_.get(), request_, timeout_ms, &message);
    });
    if (status != Status::ok) {
        at_client_forget(client_.get(), request_);
        return status;
    }
    answer.lMsgType = message.type;
    memcpy(&answer.usTargetModuleID, message.body, sizeof message.body);
    return Status::ok;
}

unsigned QueueClient::Dropped() const {
    at_client_stats stats;
    at_client_get_stats(client_.get(), &stats);
    return stats.reports + stats.stale + stats.foreign;
}

QueueClient::ServerState QueueClient::LookAtServer() const {
    at_client_server server;
    if (at_client_look_at_server(client_.get(), &server) != AT_CLIENT_OK) return {};
    return {static_cast<long>(server.waiting), server.reader, server.reader_is_gone != 0};
}
