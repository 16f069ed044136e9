#ifndef AT_TOOLS_ATCTL_MONITOR_H
#define AT_TOOLS_ATCTL_MONITOR_H

#include <memory>
#include <string>
#include <vector>

#include "client/at_client.h"
#include "tools/atctl/streams.h"

// `atctl monitor`: in the place of modules, takes what the server reports to them and prints it.

struct MonitorOptions {
    std::vector<std::string> modules;  // names or numbers; none: all that the server reports to
    bool json = false;
    unsigned count = 0;  // lines to print; 0: no end
    double timeout = 0;  // seconds; 0: no end
};

// Queues of modules, made at Open and removed at the end. Nothing of anybody else's is touched.
class ModuleQueues {
  public:
    // All or none: a Failure says whose queue is in the way.
    void Open(const std::vector<uint16_t>& modules);

    struct Closer {
        void operator()(at_client* client) const { at_client_close(client); }
    };
    using Queue = std::unique_ptr<at_client, Closer>;
    const std::vector<Queue>& All() const { return queues_; }

  private:
    std::vector<Queue> queues_;
};

struct MonitorSetup {
    bool (*stop)() = nullptr;  // asked while waiting; a signal that ends a sleep makes it at once
    int out_descriptor = -1;   // of the output, whose reader may go away; -1: not looked at
};

// The exit status: 0 at the end, 3 when the time ran out before the count. Throws a Failure.
int Monitor(const MonitorOptions& options, const MonitorSetup& setup, const Streams& streams);

#endif
