#ifndef AT_TOOLS_ATCTL_SEND_H
#define AT_TOOLS_ATCTL_SEND_H

#include <ostream>
#include <string>
#include <vector>

#include "tools/atctl/queue_client.h"
#include "tools/atctl/text.h"

// `atctl send`: one request, one answer.

inline constexpr int kExitGood = 0;
inline constexpr int kExitOtherResult = 1;
inline constexpr int kExitNotSent = 2;
inline constexpr int kExitNoAnswer = 3;

struct SendOptions {
    std::string command;
    std::vector<std::string> fields;
    bool json = false;
    bool verbose = false;
    double timeout = 0;  // seconds; 0: longer than the server waits for the modem
    std::string module;  // empty: one of one's own
};

struct Streams {
    std::ostream& out;
    std::ostream& err;
    Paint paint;
};

// Seconds to wait when nothing was said: the command's own time, with room for a server that counts slowly.
double DefaultTimeout(uint16_t cmd_id);

// The exit status. Throws Misuse.
int Send(const SendOptions& options, const QueueClient::Setup& setup, const Streams& streams);

#endif
