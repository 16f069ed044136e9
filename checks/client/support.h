#ifndef AT_CHECKS_CLIENT_SUPPORT_H
#define AT_CHECKS_CLIENT_SUPPORT_H

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "checks/atctl/support.h"
#include "client/at_client.h"

// A handle of the client library that is closed at the end, and what a server or a stranger puts on its
// queue.

inline constexpr uint16_t kSignal = 0x0604;  // +CSQ
inline constexpr uint16_t kDial = 0x0401;    // D
inline constexpr int kLong = 20'000;         // ms: the check fails when that much is needed
inline constexpr int kShort = 40;            // ms: long enough for what must not come

struct CloseClient {
    void operator()(at_client* client) const { at_client_close(client); }
};
using Client = std::unique_ptr<at_client, CloseClient>;

// Options of a module of free choice that asks the server of this key.
at_client_options OptionsFor(key_t server_key, unsigned flags = 0);

// Fails the check when it cannot be opened.
Client Open(const at_client_options& options);

// The result of opening what must be refused.
at_client_error RefusedOpening(const at_client_options& options);

bool QueueExists(key_t key);
int QueueOf(const Client& client);
size_t Waiting(int queue);

// Fills a queue, as far as its kernel lets it.
void Fill(int queue);

// A report of the server's to this module: its parameters are one integer.
Wire Report(uint16_t module, uint16_t cmd_id, int32_t value);
// Of +CMTI's id, by its value.
void PutReport(const Client& client, int32_t value);
int32_t ValueOf(const at_client_message& message);

at_client_stats StatsOf(const Client& client);

// Runs it in a child process, which ends without destructors; true when it returned true there.
bool InChild(const std::function<bool()>& act);

// A child process that lives as long as this object, once `act` has returned true in it.
class LivingChild {
  public:
    explicit LivingChild(const std::function<bool()>& act);
    ~LivingChild();
    LivingChild(const LivingChild&) = delete;
    LivingChild& operator=(const LivingChild&) = delete;
    bool Good() const { return good_; }

  private:
    pid_t pid_ = -1;
    int hold_ = -1;
    bool good_ = false;
};

// Runs it in a thread that may not use the queues of others, whatever user it is.
void WithoutPrivileges(const std::function<void()>& act);

#endif
