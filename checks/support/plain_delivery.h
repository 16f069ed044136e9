#ifndef AT_CHECKS_SUPPORT_PLAIN_DELIVERY_H
#define AT_CHECKS_SUPPORT_PLAIN_DELIVERY_H

#include <stddef.h>

#include <string>

#include "checks/support/plain_framing.h"
#include "reports/sorting.h"

// What the delivery step is meant to do with each read, in its plainest form: every work area is cleared from
// end to end, what has come is searched from its start for every marker, and what is handled or waits is
// copied. Nothing is remembered of the text but where it goes on. What becomes of a response is the daemon's
// own: reports/handling.h.
class PlainDelivery {
  public:
    void Receive(const std::string& received);
    const std::string& Waiting() const { return waiting_; }

  private:
    enum class EchoPlace { none, start, behind_break };

    void OpenLine(const std::string& chunk);
    size_t SkipEcho(size_t from);
    size_t HandleResponses();
    void Handle(size_t from, size_t begin, size_t end, const Response& response);
    size_t TakeOut(size_t from, size_t begin, size_t end);
    void CarryOver(size_t from);

    std::string waiting_;
    size_t continues_at_ = kNone;
    Continuation continuation_;  // but for its place
    EchoPlace echo_ = EchoPlace::start;
    bool at_line_start_ = false;
};

#endif
