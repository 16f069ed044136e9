#ifndef AT_CHECKS_CLIENT_SUPPORT_H
#define AT_CHECKS_CLIENT_SUPPORT_H

#include <functional>

#include "checks/atctl/support.h"
#include "checks/client/handle.h"

// What a server or a stranger puts on a module's queue, and who may do what with it.

// Options of a module of free choice that asks the server of this key.
at_client_options OptionsFor(key_t server_key, unsigned flags = 0);

// The result of opening what must be refused.
at_client_error RefusedOpening(const at_client_options& options);

bool QueueExists(key_t key);
int QueueOf(const Client& client);

// Fills a queue, as far as its kernel lets it.
void Fill(int queue);

// A report of the server's to this module: its parameters are one integer.
Wire Report(uint16_t module, uint16_t cmd_id, int32_t value);
// Of +CMTI's id, by its value.
void PutReport(const Client& client, int32_t value);
int32_t ValueOf(const at_client_message& message);

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
