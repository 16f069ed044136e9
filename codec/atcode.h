#ifndef AT_CODEC_ATCODE_H
#define AT_CODEC_ATCODE_H

#include "codec/at_table.h"
#include "codec/framing.h"
#include "commands/contract.h"
#include "records/message.h"

// From a request record to a command line, and from modem text to a response record. Log lines carry
// "atcode".

// Prints the command line of a request, CR included, into `pOut` (1024 bytes; the longest line has 579). 0
// when a line was written; 1, with pOut untouched, for an unknown id, a type outside 1..4 or a command that
// the modem only reports. Null arguments give 0 and write nothing.
int Bk_Generate_At_Cmd_Line(char* pOut, const _BK_AT_CMD_T* pCmd);

// Turns one framed response into the response record in pMsg->aucDataBuf and calls the decoder of its row.
// *pnIsLast becomes 1 for an answer to `pPending`, 0 for anything else; an answer is addressed back to the
// module of the request in flight. Toolkit events, USSD results and USSD errors are reported from inside. 0,
// or -1 for a null argument, a name or a pending id without a row, or a response that says nothing. Response
// thread only: it works in static areas.
int Bk_Parse_At_Res_Message(MSG_BUF* pMsg, int* pnIsLast, const char* pText, const _BK_AT_CMD_T* pPending);

// The line scans, and the workers for one line (at most 1023 characters, NUL-terminated). 0, or -1 for a null
// argument or a line that was dropped.
int Bk_PreParse_At_Res_Lines(AT_RES_LINE_T* pResLine, const char* pText);    // the module's own data cards
int Bk_PreParse_At_Res_Generic(AT_RES_LINE_T* pResLine, const char* pText);  // other data cards
int Bk_PreParse_At_Res_Message(AT_RES_LINE_T* pResLine, const char* line);   // a line with ": "
int Bk_PreParse_Result_Line(AT_RES_LINE_T* pResLine, const char* line, const char* rest);  // a line without
// True when the whole line is a USSD error; it has then been reported and stands alone in strResParas.
bool Bk_Check_Ussd_Error(AT_RES_LINE_T* pResLine, const char* line);

#endif
