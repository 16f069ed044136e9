#ifndef AT_CODEC_FRAMING_H
#define AT_CODEC_FRAMING_H

#include <stddef.h>

#include "commands/contract.h"

// Receive buffering and framing: what the modem sends arrives in arbitrary pieces; here they are joined, and
// the ends of complete responses are found. Text inside double quotes never ends anything. Log lines carry
// "atcode".

// Most characters that wait for the rest of their response.
inline constexpr size_t kMaxBuffered = kModemTextSize - 2;  // 102,399

// Modem output that is not yet part of a complete response, NUL-terminated. Owner: response thread.
extern char gStrResAtBuffer[kModemTextSize];

// What was read last. Owner: response thread.
extern char g_acSioBuf[kModemTextSize];

// 1 once a response ended with the "> " prompt. Nothing clears it. Owner: response thread.
extern unsigned char g_sms_prompt;

// Appends the chunk `pRecv` (NUL-terminated, may be rewritten) to `pBuf` (102,401 bytes, normally
// gStrResAtBuffer), drops what precedes the first line break and cuts the whole at 102,399 characters.
// *pnComplete becomes 1 when the buffer holds a complete response. 0, or -1 for a null argument.
int Bk_PreProcess_SIO_Rdata(char* pBuf, int* pnComplete, char* pRecv);

// The first half of it, for a caller that frames by itself. Returns how many characters of what was in `pBuf`
// were dropped from its start.
size_t AppendReceived(char* pBuf, char* pRecv);

// Just past the end of the first complete response in `pText`, or null when there is none.
const char* Find_At_Res_End_Flg(const char* pText);

// Moves one response from the head of `pBuf` to `pOut` (as large as pBuf). 0 when it did, 1 when it could
// not.
int Split_At_Res_Head(char* pBuf, char* pOut);

// One line of buffered text: what stands between two line breaks outside quotes.
struct ModemLine {
    const char* begin;
    const char* text_end;  // where its line break stands, or the end of the text
    const char* end;       // just past the line break; equal to text_end while the line is unfinished
    const char* colon;     // the first ":" outside quotes, or null
    const char* marker;    // the first end marker that starts in the line, or null
    bool complete;         // its line break has come
    bool final_result;     // a final result code starts in the line
    bool Empty() const { return begin == text_end; }
    bool BeginsWithMarker() const { return marker == begin; }
    size_t Length() const { return static_cast<size_t>(text_end - begin); }
};

// Reads the line that starts at `begin`, in one walk.
ModemLine ReadLine(const char* begin);

#endif
