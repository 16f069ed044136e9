#ifndef AT_SERVER_REQUEST_H
#define AT_SERVER_REQUEST_H

#include "records/message.h"

// The request loop: one request at a time from the server's queue to the modem. Request thread only. Log
// lines carry "at_server".

// +ZDOGREF requests received so far. Owner: request thread.
extern uint32_t g_dogref_count;

// Receives one message into `request`, which is zeroed first. Bytes received, or -1; waits a little after a
// failure that would otherwise repeat at once. A message that is too long is taken off the queue and
// forgotten.
int ReceiveRequest(int queue, MSG_BUF& request);

// 0 for a request that may be served; -1 for a null address or a wrong guard word.
int CheckRequest(const MSG_BUF& request, const uint8_t* data);

// Serves one checked request: generates its line, hands it over and writes the line.
void ServeRequest(const MSG_BUF& request);

// Serves requests from `queue` for ever.
[[noreturn]] void RequestLoop(int queue);

#endif
