#ifndef AT_CHECKS_SUPPORT_PLAIN_LINES_H
#define AT_CHECKS_SUPPORT_PLAIN_LINES_H

#include "commands/contract.h"

// What the line scans are meant to do, in their plainest form: one search through the line for each name, and
// a line is copied before it is looked at.
int PlainScanModule(AT_RES_LINE_T* pResLine, const char* pText);
int PlainScanGeneric(AT_RES_LINE_T* pResLine, const char* pText);
int PlainScanNamedLine(AT_RES_LINE_T* pResLine, const char* line);
int PlainScanResultLine(AT_RES_LINE_T* pResLine, const char* line, const char* rest);
bool PlainCheckUssdError(AT_RES_LINE_T* pResLine, const char* line);

#endif
