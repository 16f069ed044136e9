#ifndef AT_COMMANDS_CONTRACT_H
#define AT_COMMANDS_CONTRACT_H

#include <stdint.h>

#include "records/message.h"

// What an encoder writes into, what a decoder reads from, and how both are called.

inline constexpr int kParaTextSize = 512;  // bytes of strCmdParas, its NUL included
inline constexpr int kModemTextSize =
    102'401;  // bytes of any buffer that can hold a whole read: 102,400 and a NUL

// A command line under construction: "AT", the row's name, the suffix of the type, the parameter text.
struct AT_CMD_LINE_T {
    char strAtHead[3];
    char strCmdName[64];
    char strCmdType[3];
    char strCmdParas[kParaTextSize];
};

// One scanned response: its result class, the name of its first named line and the parameter texts of the
// lines of that name, joined by ";".
struct AT_RES_LINE_T {
    uint8_t Result;
    char strCmdName[64];
    char strResParas[kModemTextSize];
};

// Writes the parameter text of one request into pCmdLine->strCmdParas (at most 511 characters; empty at the
// call). The result carries no meaning. Null arguments and requests that the encoder does not serve write
// nothing.
using Encoder = int (*)(AT_CMD_LINE_T* pCmdLine, const _BK_AT_CMD_T* pCmd);

// Fills pRes->aucParas and pRes->usParaLen from pResLine; usCmdID, ucCmdType and ucResult are set by the
// caller. strResParas may be rewritten. Null arguments and types that the decoder does not serve change
// nothing.
using Decoder = int (*)(_BK_AT_RES_T* pRes, AT_RES_LINE_T* pResLine);

#endif
