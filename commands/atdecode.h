#ifndef AT_COMMANDS_ATDECODE_H
#define AT_COMMANDS_ATDECODE_H

#include "commands/contract.h"

// Decoders that are functions of their own; all other rows use the generic one. Response thread only: the
// large work areas are shared (commands/work_area.h). Log lines carry "atdecode".

// Answers whose result says everything: changes nothing.
int Parse_None_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);

// The whole parameter text with its NUL, at most 633 characters; usParaLen is the length of what was copied.
// Serves every type.
int Parse_Text_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);

// SIM toolkit reports, decoded while a response is still being scanned. +ZMTime has no row.
inline int Parse_Zpstm_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    return Parse_Text_Res(pRes, pResLine);
}
inline int Parse_Zmtime_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    return Parse_Text_Res(pRes, pResLine);
}
inline int Parse_Zdist_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    return Parse_Text_Res(pRes, pResLine);
}
inline int Parse_Zfdist_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    return Parse_Text_Res(pRes, pResLine);
}
inline int Parse_Zsmsr_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    return Parse_Text_Res(pRes, pResLine);
}
inline int Parse_Zsti_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    return Parse_Text_Res(pRes, pResLine);
}
inline int Parse_Zginp_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    return Parse_Text_Res(pRes, pResLine);
}
inline int Parse_Zgink_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine) {
    return Parse_Text_Res(pRes, pResLine);
}

int Parse_CGATT_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
int Parse_CGDCONT_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
int Parse_CLCK_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
int Parse_COPS_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
// ^CPIN, which is not +CPIN.
int Parse_CPIN_V_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
int Parse_CREG_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
int Parse_Cmgs_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
int Parse_Cmgr_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
int Parse_ZCELLINFO_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
int Parse_ZEMCI_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
int Parse_ZGIPDNS_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
int Parse_ZICCID_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
int Parse_ZLOCKBAND_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
int Parse_ZROAM_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
int Parse_ZRSSI_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
int Parse_ZSET_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
int Parse_Cmgl_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
int Parse_CPBS_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
int Parse_CPBR_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
int Parse_ZCPBR_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
int Parse_CCWA_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
int Parse_RINGBACK_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
int Parse_CLCC_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);
// The answer of a USSD command and the +CUSD report: the record goes into /etc/cusd.
int Parse_CUSD_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);

// The answer of a background LTE cell scan, EXEC: chooses the best cell and leaves the duplex mode to prefer
// in configuration key lte_diag_mode. Writes nothing into the response. No command of the table has it: for a
// build whose modem has such a scan.
int Parse_BGLTEPLMN_Res(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);

#endif
