#ifndef AT_REPORTS_CONNECTION_H
#define AT_REPORTS_CONNECTION_H

// What a build without a connection manager does with reports about the data connection: it keeps the
// connection's state in the configuration store itself. Nothing of the server calls these; the reports go to
// the connection manager through reports/routing.h either way. Response thread only. Log lines carry
// "response".

// Takes the WAN addresses out of the store and ends the DHCP client. Status of the shell command that does
// the latter.
int wan_reset();

// "+ZCONSTAT: stat": resets the WAN and asks for a new connection when it went down without the user's doing,
// then reports the state to AT_MODULE_DATA. 0 sent, 1 not sent (also for a null text, which changes nothing).
int on_recieve_at_process_zconstat(const char* text);

// "+ZGIPDNS: ...": reports the addresses to AT_MODULE_DATA. Empty quoted texts are reported as the marker
// byte that normalising leaves. 0 sent, 1 not sent (also for a null text).
int on_recieve_at_process_zgipdns(const char* text);

// "\r\n+ZEMCI: ...": stores cell id, location area and signal quality, and stops the periodic report. A
// report with fewer than 11 fields in its line stores nothing and stops nothing.
void zemci_resolve(const char* pStr);

// Marks the SIM toolkit's session as ended. Result of the last write to the store.
int stk_end_mark();

#endif
