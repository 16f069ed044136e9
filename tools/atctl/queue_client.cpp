#include "tools/atctl/queue_client.h"

#include <sys/ipc.h>
#include <sys/msg.h>
#include <sys/random.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <ctime>

#include "records/queue.h"

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace {

// What travels of a record: everything behind its type.
uint8_t* Travelling(MSG_BUF& record) {
    return reinterpret_cast<uint8_t*>(&record) + offsetof(MSG_BUF, usTargetModuleID);
}

constexpr long kReportType = 1;

// Positive, and neither the reports' type nor one that a call before this is likely to have used.
int32_t FreshType() {
    uint32_t random = 0;
    if (getrandom(&random, sizeof random, GRND_NONBLOCK) != sizeof random)
        random = static_cast<uint32_t>(getpid()) * 2654435761U ^
                 static_cast<uint32_t>(steady_clock::now().time_since_epoch().count());
    return static_cast<int32_t>(random % 0x7FFFFFFDU) + 2;
}

}  // namespace

QueueClient::Status QueueClient::Fail(int error, Status otherwise) {
    error_ = error;
    switch (error) {
        case ENOENT:
        case EIDRM:
        case EINVAL:
            return Status::no_server;
        case EACCES:
        case EPERM:
            return Status::no_permission;
        default:
            return otherwise;
    }
}

QueueClient::Status QueueClient::Open(std::optional<uint16_t> module) {
    Close();
    // Asked with the right to write, so that a queue of somebody else's shows before anything is made.
    server_ = msgget(setup_.server_key, 0200);
    if (server_ < 0) return Fail(errno, Status::failed);

    const auto make = [&](uint16_t id) {
        own_ = msgget(id, IPC_CREAT | IPC_EXCL | 0600);
        if (own_ >= 0) module_ = id;
        return own_ >= 0;
    };
    if (module.has_value()) {
        if (make(*module)) return Status::ok;
        error_ = errno;
        return errno == EEXIST ? Status::module_in_use : Status::no_queue;
    }
    // A program that was killed leaves its queue behind, and process ids share places.
    const auto first = static_cast<unsigned>(getpid()) % kModules;
    for (unsigned i = 0; i < kModules; ++i) {
        if (make(static_cast<uint16_t>(kFirstModule + (first + i) % kModules))) return Status::ok;
        if (errno != EEXIST) break;
    }
    error_ = errno;
    return Status::no_queue;
}

void QueueClient::Close() {
    if (own_ >= 0) msgctl(own_, IPC_RMID, nullptr);
    own_ = -1;
    server_ = -1;
}

QueueClient::Status QueueClient::Pause(steady_clock::time_point end, microseconds& nap) {
    if (setup_.stop != nullptr && setup_.stop()) return Status::stopped;
    const auto left = std::chrono::duration_cast<microseconds>(end - steady_clock::now());
    if (left <= microseconds(0)) return Status::timed_out;
    const auto sleep = std::min(nap, left);
    nap = std::min(nap * 2, microseconds(10'000));
    const timespec time = {0, static_cast<long>(sleep.count()) * 1000};
    nanosleep(&time, nullptr);
    return Status::ok;
}

QueueClient::Status QueueClient::Send(const Request& request, milliseconds patience) {
    const std::span<const uint8_t> paras = request.paras;
    _BK_AT_CMD_T command = {};
    if (paras.size() > sizeof command.aucParas) {
        error_ = EMSGSIZE;
        return Status::failed;
    }
    command.usCmdID = request.cmd_id;
    command.ucCmdType = request.type;
    command.usParaLen = static_cast<uint16_t>(paras.size());
    if (!paras.empty()) memcpy(command.aucParas, paras.data(), paras.size());

    dial_ = request.dial;
    request_ = {};
    request_.lMsgType = FreshType();
    request_.usTargetModuleID = AT_MODULE_SERVER;
    request_.usSourceModuleID = module_;
    request_.usMsgCmd = AT_MESSAGE_COMMAND;
    request_.usDataLen = static_cast<uint16_t>(offsetof(_BK_AT_CMD_T, aucParas) + paras.size());
    request_.ulMagic = AT_MESSAGE_MAGIC;
    static_assert(sizeof command == sizeof request_.aucDataBuf);
    memcpy(request_.aucDataBuf, &command, sizeof command);

    QueueMessage wire;
    wire.mtype = request_.lMsgType;
    memcpy(wire.body, Travelling(request_), sizeof wire.body);
    const auto end = steady_clock::now() + patience;
    microseconds nap(500);
    while (msgsnd(server_, &wire, sizeof wire.body, IPC_NOWAIT) != 0) {
        if (errno != EAGAIN && errno != EINTR) return Fail(errno, Status::failed);
        const Status status = Pause(end, nap);
        if (status == Status::timed_out) return Status::server_full;
        if (status != Status::ok) return status;
    }
    return Status::ok;
}

bool QueueClient::Answers(long type, const MSG_BUF& message) const {
    if (type == request_.lMsgType) return true;
    if (!dial_ || type != kReportType) return false;
    _BK_AT_CMD_T asked;
    _BK_AT_RES_T told;
    memcpy(&asked, request_.aucDataBuf, sizeof asked);
    memcpy(&told, message.aucDataBuf, sizeof told);
    return told.usCmdID == asked.usCmdID && told.ucCmdType == asked.ucCmdType;
}

QueueClient::Status QueueClient::Receive(milliseconds patience, MSG_BUF& answer) {
    const auto end = steady_clock::now() + patience;
    microseconds nap(500);
    QueueMessage wire;
    while (true) {
        const ssize_t got = msgrcv(own_, &wire, sizeof wire.body, 0, IPC_NOWAIT | MSG_NOERROR);
        if (got < 0) {
            if (errno != ENOMSG && errno != EINTR) {
                error_ = errno;
                return Status::failed;
            }
            const Status status = Pause(end, nap);
            if (status != Status::ok) return status;
            continue;
        }
        answer = {};
        answer.lMsgType = request_.lMsgType;
        memcpy(Travelling(answer), wire.body, static_cast<size_t>(got));
        if (got == AT_WIRE_SIZE && answer.ulMagic == AT_MESSAGE_MAGIC && Answers(wire.mtype, answer))
            return Status::ok;
        ++dropped_;
    }
}

QueueClient::ServerState QueueClient::LookAtServer() const {
    ServerState state;
    msqid_ds status = {};
    if (msgctl(server_, IPC_STAT, &status) != 0) return state;
    state.waiting = static_cast<long>(status.msg_qnum);
    state.reader = status.msg_lrpid;
    state.reader_is_gone = state.reader > 0 && kill(state.reader, 0) != 0 && errno == ESRCH;
    return state;
}
