#ifndef AT_CHECKS_SUPPORT_PLAIN_ROWS_H
#define AT_CHECKS_SUPPORT_PLAIN_ROWS_H

#include "commands/row.h"

// What the encoders and decoders of the rows are meant to do, in their plainest form: the work areas are
// cleared from end to end, parameters are printed with snprintf and read with sscanf, by the format that the
// row states. Both return false, with nothing done, for a row whose function is written by hand.
bool PlainEncode(const Row& row, AT_CMD_LINE_T& line, const _BK_AT_CMD_T& request);
bool PlainDecode(const Row& row, _BK_AT_RES_T& response, AT_RES_LINE_T& line);

// The whole line of a request, searched for row by row. 0, or 1 when there is none.
int PlainGenerate(char* out, const _BK_AT_CMD_T& request);

#endif
