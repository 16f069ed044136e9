#ifndef AT_CODEC_AT_TABLE_H
#define AT_CODEC_AT_TABLE_H

#include <stdint.h>

#include "commands/contract.h"

// The command table: the one place where the id of a request, the name on the line, the encoder and the
// decoder meet. Constant data, assembled at compile time from commands/rows_*.h.

struct AT_CMD_ITEM_T {
    uint16_t usCmdID;
    char acCmdName[66];  // exactly as it follows "AT" on the line; may be empty
    Encoder pfnMakeCmd;  // null for what the modem only reports and nobody can send
    Decoder pfnParseRes;
};

inline constexpr int kAtCmdTableSize = 186;

// In search order, which is not the order of the ids.
extern const AT_CMD_ITEM_T g_astAtCmdTable[kAtCmdTableSize];

// Writes the index of the first row with `id` to *index. 0 when there is one; 1 when there is none or `index`
// is null.
int Bk_Find_Cmd_By_Id(uint16_t id, int* index);

// Writes the index of the first row whose name is exactly `name` to *pIndex. 0 when there is one, else -1
// (also for null arguments).
int Bk_Find_Cmd_By_Name(int* pIndex, const char* name);

#endif
