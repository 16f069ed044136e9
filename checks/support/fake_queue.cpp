#include "checks/support/fake_queue.h"

#include <errno.h>
#include <string.h>
#include <sys/ipc.h>
#include <sys/msg.h>

#include <mutex>

namespace {

constexpr int kIdBase = 0x100000;  // a queue's id is this plus its key: no id can be taken for a key

std::mutex g_lock;

int Fail(int error) {
    errno = error;
    return -1;
}

std::vector<FakeMessage>* QueueOf(int id) {
    auto it = Queues().waiting.find(id - kIdBase);
    return it == Queues().waiting.end() ? nullptr : &it->second;
}

bool Wanted(const FakeMessage& message, long type) {
    return type == 0 || (type > 0 ? message.type == type : message.type <= -type);
}

}  // namespace

FakeQueues& Queues() {
    static FakeQueues queues;
    return queues;
}

MSG_BUF FakeMessage::Record() const {
    MSG_BUF record = {};
    record.lMsgType = static_cast<int32_t>(type);
    memcpy(reinterpret_cast<unsigned char*>(&record) + 4, body.data(),
           std::min<size_t>(body.size(), AT_WIRE_SIZE));
    return record;
}

_BK_AT_RES_T FakeMessage::Response() const {
    MSG_BUF record = Record();
    _BK_AT_RES_T response;
    memcpy(&response, record.aucDataBuf, sizeof response);
    return response;
}

void FakeQueues::CreateModules() {
    for (int key : {AT_MODULE_CALL, AT_MODULE_SIM, AT_MODULE_SMS, AT_MODULE_TIME, AT_MODULE_TOOLKIT,
                    AT_MODULE_USSD, AT_MODULE_DATA})
        Create(key);
}

void FakeQueues::Put(int key, long type, std::vector<unsigned char> body) {
    FakeMessage message;
    message.key = key;
    message.type = type;
    message.body = std::move(body);
    waiting[key].push_back(std::move(message));
}

// The linker takes these before the C library's own.
extern "C" int msgget(key_t key, int flags) {
    std::lock_guard<std::mutex> hold(g_lock);
    Queues().flags = flags;
    if (Queues().fail_get != 0) return Fail(Queues().fail_get);
    if (key == IPC_PRIVATE) {
        int id = -1 - Queues().private_queues++;
        Queues().Create(id);
        return kIdBase + id;
    }
    bool exists = Queues().waiting.count(key) != 0;
    if (exists && (flags & IPC_CREAT) && (flags & IPC_EXCL)) return Fail(EEXIST);
    if (!exists && !(flags & IPC_CREAT)) return Fail(ENOENT);
    Queues().Create(key);
    return kIdBase + key;
}

extern "C" int msgsnd(int id, const void* message, size_t size, int) {
    std::lock_guard<std::mutex> hold(g_lock);
    if (Queues().fail_send != 0) return Fail(Queues().fail_send);
    std::vector<FakeMessage>* queue = QueueOf(id);
    if (queue == nullptr) return Fail(EINVAL);
    FakeMessage copy;
    copy.key = id - kIdBase;
    memcpy(&copy.type, message, sizeof copy.type);
    if (copy.type <= 0) return Fail(EINVAL);
    if (queue->size() >= Queues().capacity) return Fail(EAGAIN);
    const unsigned char* body = static_cast<const unsigned char*>(message) + sizeof(long);
    copy.body.assign(body, body + size);
    queue->push_back(copy);
    Queues().sent.push_back(std::move(copy));
    return 0;
}

extern "C" ssize_t msgrcv(int id, void* message, size_t size, long type, int flags) {
    std::lock_guard<std::mutex> hold(g_lock);
    if (Queues().fail_receive != 0) return Fail(Queues().fail_receive);
    std::vector<FakeMessage>* queue = QueueOf(id);
    if (queue == nullptr) return Fail(EINVAL);
    for (size_t i = 0; i < queue->size(); i++) {
        const FakeMessage& first = (*queue)[i];
        if (!Wanted(first, type)) continue;
        if (first.body.size() > size && !(flags & MSG_NOERROR)) return Fail(E2BIG);
        size_t length = std::min(size, first.body.size());
        memcpy(message, &first.type, sizeof first.type);
        if (length != 0)
            memcpy(static_cast<unsigned char*>(message) + sizeof(long), first.body.data(), length);
        queue->erase(queue->begin() + static_cast<std::ptrdiff_t>(i));
        return static_cast<ssize_t>(length);
    }
    return Fail(ENOMSG);
}

extern "C" int msgctl(int id, int command, struct msqid_ds* state) {
    std::lock_guard<std::mutex> hold(g_lock);
    if (Queues().fail_control != 0) return Fail(Queues().fail_control);
    std::vector<FakeMessage>* queue = QueueOf(id);
    if (queue == nullptr) return Fail(EINVAL);
    if (command == IPC_RMID) {
        Queues().waiting.erase(id - kIdBase);
    } else if (command == IPC_STAT) {
        memset(state, 0, sizeof *state);
        state->msg_qnum = queue->size();
    }
    return 0;
}
