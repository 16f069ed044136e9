#ifndef AT_SERVER_STARTUP_H
#define AT_SERVER_STARTUP_H

// Start-up of the daemon, step by step. Log lines carry "at_server".

// Idle request, system log, standard streams at /dev/null, configuration defaults, the watchdog's directory.
// Failures are logged and start-up goes on.
void InitServer();

// Opens the modem's port, 101 attempts at most with half a second in between, and publishes that it is open.
// 0, or -1 after the last attempt.
int OpenModemPort();

// Creates the server's own queue (key 0x1000). Its id, or -1.
int CreateServerQueue();

// Starts the response thread. 0, or -1.
int StartResponseThread();

#endif
