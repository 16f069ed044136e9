#ifndef AT_CHECKS_SUPPORT_FAKE_QUEUE_H
#define AT_CHECKS_SUPPORT_FAKE_QUEUE_H

#include <array>
#include <map>
#include <string>
#include <vector>

#include "records/message.h"

// System V message queues in memory, for checks that run inside one process: replaces msgget, msgsnd, msgrcv
// and msgctl of the C library. Nothing blocks: what would, fails (EAGAIN on a full queue, ENOMSG on an empty
// one).

struct FakeMessage {
    int key = 0;  // the queue it went to
    long type = 0;
    std::vector<unsigned char> body;  // what travelled behind the type

    // As a record. Zeros where the body is short.
    MSG_BUF Record() const;
    _BK_AT_RES_T Response() const;  // the payload of the record
};

struct FakeQueues {
    // Calls that fail, with this errno, while it is not 0.
    int fail_get = 0;
    int fail_send = 0;
    int fail_receive = 0;
    int fail_control = 0;

    int flags = 0;  // of the last msgget

    size_t capacity = 1'000;        // messages that one queue takes
    int private_queues = 0;         // queues that a msgget with key 0 created: each is a leak
    std::vector<FakeMessage> sent;  // every message sent, in order
    std::map<int, std::vector<FakeMessage>>
        waiting;  // the queues that exist, by key: what nobody has received yet

    // Lets the queue of `key` exist.
    void Create(int key) { waiting.emplace(key, std::vector<FakeMessage>()); }
    // Lets the queues of all modules that the server reports to exist.
    void CreateModules();
    // Puts a message of any size into the queue of `key`.
    void Put(int key, long type, std::vector<unsigned char> body);
    // No queues, no messages, no failures.
    void Reset() { *this = FakeQueues(); }
};

FakeQueues& Queues();

#endif
