#ifndef AT_COMMANDS_ATENCODE_H
#define AT_COMMANDS_ATENCODE_H

#include "commands/contract.h"

// Encoders that are functions of their own; all other rows use the generic one. Request thread. Log lines
// carry "atencode".

// Commands that take no parameters: writes nothing.
int Make_None_Cmd(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd);

// D and +CDV, EXEC: the number (usParaLen bytes, at most 35 characters, up to its first NUL) and ";" for a
// voice call.
int Make_Dial_Cmd(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd);

// +ZVOCLOOPBK, SET: logs the request before it is printed.
int Make_ZVOCLOOPBK_Cmd(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd);
// +CCFC, SET: puts the type of the number, whatever the record says.
int Make_CCFC_Cmd(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd);

// +CMGS, SET: notes under "sending_sms" that a message is on its way.
int Make_Cmgs_Cmd(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd);

// +ZUTR, SET: logs every field.
int Make_ZUTR_Cmd(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd);

int Make_COPS_Cmd(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd);
int Make_ZEMCI_Cmd(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd);
int Make_ZLOCKF_Cmd(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd);
int Make_Zroam_cmd(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd);

#endif
