#ifndef AT_SERVER_AT_SERVER_H
#define AT_SERVER_AT_SERVER_H

// The server core under one name: message records, the state that threads share, sending, transaction and
// watchdog.

#include "port/transmit.h"
#include "records/handover.h"
#include "records/message.h"
#include "records/queue.h"
#include "records/report.h"
#include "records/state.h"
#include "server/request.h"
#include "server/startup.h"
#include "server/transaction.h"
#include "server/watchdog.h"

#endif
