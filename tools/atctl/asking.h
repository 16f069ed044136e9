#ifndef AT_TOOLS_ATCTL_ASKING_H
#define AT_TOOLS_ATCTL_ASKING_H

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "tools/atctl/answer.h"
#include "tools/atctl/find_command.h"
#include "tools/atctl/queue_client.h"
#include "tools/shared/exit_status.h"

// Questions to the server, one after the other, as `send`, `watch` and `bench` ask them.

// A request as it was typed, checked.
struct Question {
    Call call;
    std::vector<uint8_t> paras;  // exactly the command's record
    std::string name;            // "+CREG?"
    double timeout = 0;          // seconds to wait for the answer

    std::chrono::milliseconds Patience() const;
};

// Misuse says what is wrong. Without a timeout (0) it is longer than the server waits for the modem.
Question MakeQuestion(const std::string& command, const std::vector<std::string>& fields, double timeout);

// Seconds to wait when nothing was said: the command's own time, with room for a server that counts slowly.
double DefaultTimeout(uint16_t cmd_id);

struct Reply {
    QueueClient::Status status = QueueClient::Status::failed;  // ok, timed_out or stopped
    MSG_BUF message = {};
    _BK_AT_RES_T res = {};
    std::chrono::duration<double> taken = {};  // from before the request was put into the queue

    bool Good() const { return status == QueueClient::Status::ok && res.ucResult == AT_RESULT_OK; }
};

class Asking {
  public:
    // The module is a number, or empty for a queue of one's own. Throws Misuse when it is neither.
    Asking(const QueueClient::Setup& setup, const std::string& module);

    // Makes the queue. Throws a Failure that says why that, or the server, cannot be had.
    void Open();
    void Close() { client_.Close(); }

    // Puts the request into the server's queue. False when the user stopped it; throws a Failure.
    bool Put(const Question& question);
    // Waits for the answer to it. Throws a Failure when that is impossible. The server's end is told while it
    // is waited for, within a second and once.
    using Tell = std::function<void(const std::string& text)>;
    Reply Wait(const Question& question, const Tell& tell = {});

    // The answer of a Wait that gave one.
    Decoded Read(const Question& question, const Reply& reply) const;

    // Why no answer may have come, as far as the server's queue tells.
    std::string WhyNoAnswer(const Question& question) const;
    const QueueClient& Client() const { return client_; }

  private:
    Failure OpenFailure(QueueClient::Status status) const;
    Failure PutFailure(QueueClient::Status status, std::chrono::milliseconds patience) const;

    QueueClient::Setup setup_;
    std::string module_text_;
    std::optional<uint16_t> module_;
    QueueClient client_;
    timespec asked_at_ = {};
    std::chrono::steady_clock::time_point started_;
};

// "0.100 s", "5 s"
std::string Seconds(double seconds);

#endif
