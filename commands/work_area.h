#ifndef AT_COMMANDS_WORK_AREA_H
#define AT_COMMANDS_WORK_AREA_H

#include <stddef.h>
#include <stdint.h>

#include <span>

#include "text/atpublic.h"
#include "text/scan.h"

// Work areas of the list decoders. Far too large for a thread's stack (the C library of the router may give
// it 128 KB), so they are static and belong to the response thread.

// The lines of the answer that is being decoded.
extern AT_PARAS_LIST_T g_paras_list;

// The largest list record.
inline constexpr size_t kListRecordSize = 50564;
extern uint8_t g_list_record[kListRecordSize];

// Splits an answer into g_paras_list; returns the number of lines, at most `most`.
int SplitLines(const char* text, int most);

// Normalises a line, scans it into a record and restores its texts.
void ScanLine(char* line, const char* format, std::span<const FieldRef> fields, void* record);

// Stores an integer in a record of bytes.
void PutInteger(void* record, size_t offset, int32_t value);

#endif
