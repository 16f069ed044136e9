#ifndef AT_SERVER_WATCHDOG_H
#define AT_SERVER_WATCHDOG_H

#include <stdint.h>

// The modem watchdog: once a minute it looks whether the modem sent anything at all, and has it reset after
// four silent minutes in a row. Log lines carry "at_server".

// One period, called by the timer service; `arg` is not used. 0 always.
int DetectAtTimer(void* arg);

// Silent periods in a row. Not reset by a trigger: a modem that stays silent is reset every minute. Owner:
// timer service.
extern int32_t no_at_count;

#endif
