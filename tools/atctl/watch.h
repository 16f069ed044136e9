#ifndef AT_TOOLS_ATCTL_WATCH_H
#define AT_TOOLS_ATCTL_WATCH_H

#include <string>
#include <vector>

#include "tools/atctl/queue_client.h"
#include "tools/atctl/streams.h"

// `atctl watch`: the same request again and again, and how one field of its answer moves.

struct WatchOptions {
    std::string command;
    double interval = 1;              // seconds from one request to the next
    std::vector<std::string> values;  // for the request's fields
    std::string field;                // of the answer; empty: the first number
    bool json = false;
    unsigned count = 0;  // answers to ask for; 0: no end
    double timeout = 0;  // seconds for each answer; 0: longer than the server waits for the modem
    std::string module;  // empty: one of one's own
};

struct WatchSetup {
    QueueClient::Setup queue;
    int out_descriptor =
        -1;  // of the output: its width is looked up anew, and its reader may go away; -1: no such
};

// The exit status of the worst answer: 0 all were good, 1 another result, 3 no answer. Throws a Failure when
// it cannot begin; a server that goes away later is waited for.
int Watch(const WatchOptions& options, const WatchSetup& setup, const Streams& streams);

#endif
