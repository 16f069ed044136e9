#ifndef AT_CHECKS_CLIENT_HANDLE_H
#define AT_CHECKS_CLIENT_HANDLE_H

#include <gtest/gtest.h>

#include <memory>

#include "client/at_client.h"

// A handle of the client library that is closed at the end.

inline constexpr uint16_t kSignal = 0x0604;  // +CSQ
inline constexpr uint16_t kDial = 0x0401;    // D
inline constexpr int kLong = 20'000;         // ms: the check fails when that much is needed
inline constexpr int kShort = 40;            // ms: long enough for what must not come

struct CloseClient {
    void operator()(at_client* client) const { at_client_close(client); }
};
using Client = std::unique_ptr<at_client, CloseClient>;

// Fails the check when it cannot be opened.
Client Open(const at_client_options& options);

at_client_stats StatsOf(const Client& client);

// Messages in a queue; SIZE_MAX when it cannot be looked at.
size_t Waiting(int queue);

#endif
