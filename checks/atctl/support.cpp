#include "checks/atctl/support.h"

#include <sys/ipc.h>
#include <sys/msg.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <stdexcept>

#include "records/queue.h"

namespace {

uint8_t* Travelling(MSG_BUF& record) {
    return reinterpret_cast<uint8_t*>(&record) + offsetof(MSG_BUF, usTargetModuleID);
}

}  // namespace

Bytes Integers(std::initializer_list<int32_t> values) {
    Bytes bytes;
    for (const int32_t value : values) {
        uint8_t raw[sizeof value];
        memcpy(raw, &value, sizeof value);
        bytes.insert(bytes.end(), raw, raw + sizeof raw);
    }
    return bytes;
}

Bytes Text(const std::string& text, size_t size) {
    Bytes bytes(text.begin(), text.end());
    bytes.resize(size);
    return bytes;
}

Bytes operator+(Bytes left, const Bytes& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

_BK_AT_RES_T Res(uint16_t id, uint8_t type, uint8_t result, const Bytes& paras,
                 std::optional<uint16_t> told) {
    _BK_AT_RES_T res = {};
    res.usCmdID = id;
    res.ucCmdType = type;
    res.ucResult = result;
    res.usParaLen = told.value_or(static_cast<uint16_t>(paras.size()));
    if (!paras.empty()) memcpy(res.aucParas, paras.data(), std::min(paras.size(), sizeof res.aucParas));
    return res;
}

bool WaitUntil(const std::function<bool()>& condition, double seconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end) return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

bool TakeFrom(int queue, Wire& message) {
    QueueMessage wire;
    if (msgrcv(queue, &wire, sizeof wire.body, 0, IPC_NOWAIT) != AT_WIRE_SIZE) return false;
    message.type = wire.mtype;
    message.record = {};
    message.record.lMsgType = static_cast<int32_t>(wire.mtype);
    memcpy(Travelling(message.record), wire.body, sizeof wire.body);
    return true;
}

bool PutInto(int queue, const Wire& message, size_t size) {
    QueueMessage wire;
    wire.mtype = message.type;
    MSG_BUF record = message.record;
    memcpy(wire.body, Travelling(record), sizeof wire.body);
    return msgsnd(queue, &wire, size, IPC_NOWAIT) == 0;
}

Wire Report(uint16_t module, uint16_t id, uint8_t type, const Bytes& paras) {
    const _BK_AT_RES_T res = Res(id, type, AT_RESULT_OK, paras);
    Wire report;
    report.type = 1;
    report.record.lMsgType = 1;
    report.record.usTargetModuleID = module;
    report.record.usSourceModuleID = AT_MODULE_SERVER;
    report.record.usMsgCmd = AT_MESSAGE_COMMAND;
    report.record.usDataLen = 518;
    report.record.ulMagic = AT_MESSAGE_MAGIC;
    memcpy(report.record.aucDataBuf, &res, sizeof res);
    return report;
}

Queue::Queue(key_t key, int mode) : id_(msgget(key, IPC_CREAT | IPC_EXCL | mode)) {
    if (id_ < 0) throw std::runtime_error("a queue of this check exists already, or none can be made");
}

Queue::~Queue() {
    msgctl(id_, IPC_RMID, nullptr);
}

key_t PrivateKey() {
    static std::atomic<int> next{0};
    return static_cast<key_t>(0x41000000 + ((getpid() & 0xFFFF) << 8) + (next++ & 0xFF));
}

FakeServer::FakeServer(key_t key, Serve serve)
    : queue_(key), serve_(std::move(serve)), thread_([this] { Run(); }) {}

FakeServer::~FakeServer() {
    stop_ = true;
    thread_.join();
}

std::vector<Wire> FakeServer::Requests() const {
    const std::lock_guard guard(lock_);
    return requests_;
}

void FakeServer::Run() {
    while (!stop_) {
        Wire request;
        if (!TakeFrom(queue_.Id(), request)) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            continue;
        }
        {
            const std::lock_guard guard(lock_);
            requests_.push_back(request);
        }
        serve_(request, [](const Wire& answer) {
            const int queue = msgget(answer.record.usTargetModuleID, 0);
            if (queue >= 0) PutInto(queue, answer);
        });
    }
}

Wire FakeServer::AnswerTo(const Wire& request, uint8_t result, const Bytes& paras,
                          std::optional<uint16_t> told) {
    const _BK_AT_CMD_T command = Command(request);
    const _BK_AT_RES_T res = Res(command.usCmdID, command.ucCmdType, result, paras, told);
    Wire answer;
    answer.type = request.type;
    answer.record.lMsgType = request.record.lMsgType;
    answer.record.usTargetModuleID = request.record.usSourceModuleID;
    answer.record.usSourceModuleID = request.record.usTargetModuleID;
    answer.record.usMsgCmd = AT_MESSAGE_COMMAND;
    answer.record.usDataLen = static_cast<uint16_t>(res.usParaLen + 6);
    answer.record.ulMagic = AT_MESSAGE_MAGIC;
    memcpy(answer.record.aucDataBuf, &res, sizeof res);
    return answer;
}

FakeServer::Serve FakeServer::Answering(uint8_t result, const Bytes& paras, std::optional<uint16_t> told) {
    return [=](const Wire& request, const Answer& answer) { answer(AnswerTo(request, result, paras, told)); };
}

_BK_AT_CMD_T Command(const Wire& request) {
    _BK_AT_CMD_T command;
    memcpy(&command, request.record.aucDataBuf, sizeof command);
    return command;
}
