#ifndef AT_TOOLS_ATCTL_QUEUE_CLIENT_H
#define AT_TOOLS_ATCTL_QUEUE_CLIENT_H

#include <sys/types.h>

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>

#include "client/at_client.h"

// A module for the time of a few requests, on the client library: a queue of its own, made at Open and
// removed at Close, requests to the server's queue, answers from its own. Nothing blocks for longer than the
// caller says.
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
    static constexpr uint16_t kFirstModule = AT_CLIENT_FIRST_ANY;
    static constexpr uint16_t kModules = AT_CLIENT_LAST_ANY - AT_CLIENT_FIRST_ANY + 1;

    struct Setup {
        key_t server_key = AT_MODULE_SERVER;
        bool (*stop)() = nullptr;  // asked while waiting, every 20 ms
        // A thread waits in the kernel, so that an answer is there when it comes and not up to 10 ms later.
        bool at_once = false;
    };

    QueueClient() = default;
    explicit QueueClient(const Setup& setup) : setup_(setup) {}

    // Finds the server's queue and makes one's own, for this module or, without one, for the first that is
    // free from a place on that the process id says.
    Status Open(std::optional<uint16_t> module);
    void Close();

    struct Request {
        uint16_t cmd_id;
        uint8_t type;                    // AT_CMD_TYPE_...
        std::span<const uint8_t> paras;  // exactly the command's record
    };

    // Sends a request with a message type of its own. Waits at most `patience` while the server's queue is
    // full.
    Status Send(const Request& request, std::chrono::milliseconds patience);

    // Waits for the answer to the last request; whatever else arrives is dropped and counted. The function,
    // if any, is called after each second without an answer.
    Status Receive(std::chrono::milliseconds patience, MSG_BUF& answer,
                   const std::function<void()>& each_second = {});

    uint16_t Module() const { return module_; }
    int32_t MessageType() const { return request_; }  // of the last request
    unsigned Dropped() const;
    int Error() const { return error_; }  // errno of the call that failed

    // How the server is doing, for the case that no answer came.
    struct ServerState {
        long waiting = -1;            // requests in its queue
        pid_t reader = 0;             // who last took one; 0 when nobody ever did
        bool reader_is_gone = false;  // that process has ended
    };
    ServerState LookAtServer() const;

  private:
    // Calls it with the patience in small pieces, until it says something else than `again`, the patience is
    // over or the stop function says so.
    Status InPieces(std::chrono::milliseconds patience, at_client_error again,
                    const std::function<at_client_error(int timeout_ms)>& call);
    Status Told(at_client_error error);

    struct Closer {
        void operator()(at_client* client) const { at_client_close(client); }
    };

    Setup setup_;
    std::unique_ptr<at_client, Closer> client_;
    uint16_t module_ = 0;
    int32_t request_ = 0;
    int error_ = 0;
};

#endif
