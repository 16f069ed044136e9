#ifndef AT_TOOLS_ATCTL_SEND_H
#define AT_TOOLS_ATCTL_SEND_H

#include <string>
#include <vector>

#include "tools/atctl/queue_client.h"
#include "tools/atctl/streams.h"

// `atctl send`: one request, one answer.

struct SendOptions {
    std::string command;
    std::vector<std::string> fields;
    bool json = false;
    bool verbose = false;
    double timeout = 0;  // seconds; 0: longer than the server waits for the modem
    std::string module;  // empty: one of one's own
};

// The exit status. Throws a Failure.
int Send(const SendOptions& options, const QueueClient::Setup& setup, const Streams& streams);

#endif
