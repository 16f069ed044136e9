#ifndef AT_CODEC_FRAMING_H
#define AT_CODEC_FRAMING_H

#include <stddef.h>

#include "commands/contract.h"
#include "text/atpublic.h"

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

// The first half of it, for a caller that frames by itself. Returns how many characters of the joined
// text were dropped from its start.
size_t AppendReceived(char* pBuf, char* pRecv);

// What is known of the text in a buffer, so that a chunk costs what the chunk is long.
struct BufferedText {
    size_t length = 0;
    GrowingSearch line_break{};  // for the first one; to be renewed when the text changes at its start
};
size_t AppendReceived(char* pBuf, char* pRecv, BufferedText& buffered);

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
    const char* prompt;    // the first "> " outside quotes, or null
    bool complete;         // its line break has come
    bool final_result;     // a final result code starts in the line
    bool Empty() const { return begin == text_end; }
    bool BeginsWithMarker() const { return marker == begin; }
    size_t Length() const { return static_cast<size_t>(text_end - begin); }
};

// How far a line has been read and what was found, for going on when the text has grown at its end. Offsets
// count from the start of the line.
inline constexpr size_t kNowhere = static_cast<size_t>(-1);
struct LineScan {
    size_t at = 0;
    size_t colon = kNowhere;
    size_t marker = kNowhere;
    size_t prompt = kNowhere;
    size_t hex_digits = 0;  // so many characters from the start are known to be hexadecimal digits
    bool quoted = false;    // at `at`
    bool final_result = false;
};

// Reads the line that starts at `begin`, in one walk; with `scan` from where the last reading of the same
// line stopped.
ModemLine ReadLine(const char* begin);
ModemLine ReadLine(const char* begin, LineScan& scan);

// Whether the line is made of hexadecimal digits only, and not empty. `scan` is that of the line.
bool IsHexLine(const ModemLine& line, LineScan& scan);

// Just past the prompt in an unfinished line, which is then noted in g_sms_prompt; null when there is none.
const char* PromptEnd(const ModemLine& line);

#endif
