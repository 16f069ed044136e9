#ifndef AT_PORT_TRANSMIT_H
#define AT_PORT_TRANSMIT_H

// Writing to the modem: by the request thread for requests, by the response thread for the text of a message
// at its prompt and, in builds that call reports/connection.h, for follow-up lines. Log lines carry
// "at_server".

// Writes `line` (NUL-terminated) to the modem's port. 0 on success, 1 on a null line or a failed write.
int send_at_cmd(const char* line);

// The sending half of a transaction: writes the line, counts it and notes the time. A failed write marks the
// port closed, asks for a modem reset and lets the request loop go on; the request is answered by its
// time-out later.
void send_resolve_at(const char* line);

#endif
