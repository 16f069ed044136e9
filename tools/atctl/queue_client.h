#ifndef AT_TOOLS_ATCTL_QUEUE_CLIENT_H
#define AT_TOOLS_ATCTL_QUEUE_CLIENT_H

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>

#include "records/message.h"

// A module for the time of a few requests: a queue of its own, made at Open and removed at Close, requests to
// the server's queue, answers from its own. Nothing blocks for longer than the caller says.
class QueueClient {
  public:
    enum class Status {
        ok,
        no_server,      // there is no queue of the server's, or it went away
        no_permission,  // it belongs to somebody else
        server_full,    // it took nothing in the time given
        module_in_use,  // the module has a queue already
        no_queue,       // no queue of one's own could be made; see Error()
        timed_out,      // no answer in the time given
        stopped,        // the stop function said so
        failed          // see Error()
    };

    // Module ids of programs that ask for none: none of the router's is among them.
    static constexpr uint16_t kFirstModule = 0x6000;
    static constexpr uint16_t kModules = 0x2000;

    struct Setup {
        key_t server_key = AT_MODULE_SERVER;
        bool (*stop)() = nullptr;  // asked while waiting; a signal that ends a sleep makes it at once
    };

    QueueClient() = default;
    explicit QueueClient(const Setup& setup) : setup_(setup) {}
    ~QueueClient() { Close(); }
    QueueClient(const QueueClient&) = delete;
    QueueClient& operator=(const QueueClient&) = delete;

    // Finds the server's queue and makes one's own, for this module or, without one, for the first that is
    // free from a place on that the process id says.
    Status Open(std::optional<uint16_t> module);
    void Close();

    struct Request {
        uint16_t cmd_id;
        uint8_t type;                    // AT_CMD_TYPE_...
        std::span<const uint8_t> paras;  // exactly the command's record
        // The server keeps nothing of a dial but whom to tell, so its answer may come with the reports' type.
        bool dial = false;
    };

    // Sends a request with a message type of its own. Waits at most `patience` while the server's queue is
    // full.
    Status Send(const Request& request, std::chrono::milliseconds patience);

    // Waits for the answer to the last request; whatever else arrives is dropped and counted.
    Status Receive(std::chrono::milliseconds patience, MSG_BUF& answer);

    uint16_t Module() const { return module_; }
    const MSG_BUF& LastRequest() const { return request_; }
    unsigned Dropped() const { return dropped_; }
    int Error() const { return error_; }  // errno of the call that failed

    // How the server is doing, for the case that no answer came.
    struct ServerState {
        long waiting = -1;            // requests in its queue
        pid_t reader = 0;             // who last took one; 0 when nobody ever did
        bool reader_is_gone = false;  // that process has ended
    };
    ServerState LookAtServer() const;

  private:
    // Sleeps a little, more each round; Status::ok when the wait goes on.
    Status Pause(std::chrono::steady_clock::time_point end, std::chrono::microseconds& nap);
    Status Fail(int error, Status otherwise);
    bool Answers(long type, const MSG_BUF& message) const;

    Setup setup_;
    int server_ = -1;
    int own_ = -1;
    uint16_t module_ = 0;
    MSG_BUF request_ = {};
    bool dial_ = false;
    unsigned dropped_ = 0;
    int error_ = 0;
};

#endif
