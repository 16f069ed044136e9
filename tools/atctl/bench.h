#ifndef AT_TOOLS_ATCTL_BENCH_H
#define AT_TOOLS_ATCTL_BENCH_H

#include <string>

#include "tools/atctl/queue_client.h"
#include "tools/atctl/streams.h"

// `atctl bench`: how long answers take.

struct BenchOptions {
    unsigned count = 100;
    std::string command = "AT";  // which only asks whether the modem is there
    bool json = false;
    double timeout = 0;  // seconds for each answer; 0: longer than the server waits for the modem
    std::string module;  // empty: one of one's own
};

struct BenchSetup {
    QueueClient::Setup queue;
    bool progress = false;  // the number of the request is written to the error stream, which is a terminal
};

// Sends one request at a time and prints the times from the sending to the answer. The exit status: 0 all
// were good, 1 another result, 3 no answer. Throws a Failure when nothing can be sent any more.
int Bench(const BenchOptions& options, const BenchSetup& setup, const Streams& streams);

#endif
