#ifndef AT_REPORTS_BROADCAST_H
#define AT_REPORTS_BROADCAST_H

// Cell broadcast pages and status reports of sent messages: reported to the SMS module with their PDU
// (AT_CBM_NOTIFY_RES_PARA_T), besides the routing that they get like any other report. Response thread only.
// Log lines carry "response".

// Both take the text from the current response on, at most 512 characters of it behind the report's name, and
// return 0 when the report was sent, 1 when not: a null text, or one without the name and the blank behind
// it, sends nothing. What exceeds the record's 507 characters of PDU is cut.
int cbm_resolve(const char* text);  // "+CBM: length\r\nPDU\r\n", command 0x0115
int cds_resolve(const char* text);  // "+CDS: length\r\nPDU\r\n", command 0x0119

#endif
