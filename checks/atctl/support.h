#ifndef AT_CHECKS_ATCTL_SUPPORT_H
#define AT_CHECKS_ATCTL_SUPPORT_H

#include <sys/types.h>

#include <atomic>
#include <cstdint>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "records/message.h"

// Records as bytes, and a server for atctl to talk to.

using Bytes = std::vector<uint8_t>;

Bytes Integers(std::initializer_list<int32_t> values);
Bytes Text(const std::string& text, size_t size);  // zero-padded
Bytes operator+(Bytes left, const Bytes& right);

// An answer to the command: result, told length (the parameters' own without one), parameters (cut to what
// fits).
_BK_AT_RES_T Res(uint16_t id, uint8_t type, uint8_t result, const Bytes& paras,
                 std::optional<uint16_t> told = std::nullopt);

bool WaitUntil(const std::function<bool()>& condition, double seconds = 30);

// What travels, as the queue calls take it.
struct Wire {
    long type = 0;
    MSG_BUF record = {};
};
bool TakeFrom(int queue, Wire& message);  // false when the queue is empty
bool PutInto(int queue, const Wire& message, size_t size = AT_WIRE_SIZE);

// A report of the server's to a module.
Wire Report(uint16_t module, uint16_t id, uint8_t type, const Bytes& paras);

// A queue under this key, removed at the end.
class Queue {
  public:
    explicit Queue(key_t key, int mode = 0600);
    ~Queue();
    Queue(const Queue&) = delete;
    Queue& operator=(const Queue&) = delete;
    int Id() const { return id_; }

  private:
    int id_;
};

// A key that no router and no other run uses.
key_t PrivateKey();

// A server: takes requests from its queue and does with each what `serve` says.
class FakeServer {
  public:
    // The request, and a function that sends an answer to its sender.
    using Answer = std::function<void(const Wire&)>;
    using Serve = std::function<void(const Wire& request, const Answer& answer)>;

    FakeServer(key_t key, Serve serve);
    ~FakeServer();
    FakeServer(const FakeServer&) = delete;
    FakeServer& operator=(const FakeServer&) = delete;

    std::vector<Wire> Requests() const;

    // Serves by answering with these parameters, as the daemon does.
    static Serve Answering(uint8_t result, const Bytes& paras, std::optional<uint16_t> told = std::nullopt);
    static Wire AnswerTo(const Wire& request, uint8_t result, const Bytes& paras,
                         std::optional<uint16_t> told = std::nullopt);

  private:
    void Run();

    Queue queue_;
    Serve serve_;
    mutable std::mutex lock_;
    std::vector<Wire> requests_;
    std::atomic<bool> stop_{false};
    std::thread thread_;
};

_BK_AT_CMD_T Command(const Wire& request);

#endif
