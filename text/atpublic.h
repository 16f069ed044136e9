#ifndef AT_TEXT_ATPUBLIC_H
#define AT_TEXT_ATPUBLIC_H

#include <stddef.h>

// Text helpers that framing, parsing and the decoders share. AT parameter text is comma-separated, strings
// stand in double quotes, and a quoted string may contain anything: commas, blanks, even result words. So
// searches skip quoted text, and a parameter line is turned into blank-separated words in which quoted blanks
// hide behind marker bytes. All of them accept a null pointer and then do nothing (or return null). Log lines
// carry "atpublic".

inline constexpr int kParaLineSize = 1024;  // bytes of one parameter line, its NUL included
inline constexpr int kParaLineMax = 100;    // lines of a list

// Marker bytes inside a normalised line. Modem text is bytes: compare as unsigned char.
inline constexpr unsigned char kMarkTab = 0xFC;    // a tab inside a quoted string
inline constexpr unsigned char kMarkEmpty = 0xFD;  // an empty quoted string, or a missing last field
inline constexpr unsigned char kMarkBlank = 0xFE;  // a blank inside a quoted string

// A ";"-separated text, split into lines. Zeroed by the caller.
struct AT_PARAS_LIST_T {
    int nCount;  // 0..100
    char strParasLine[kParaLineMax][kParaLineSize];
};

// The first occurrence of `sub` in `str` that does not begin inside double quotes, or null. A `sub` that
// begins with a double quote is found at a closing quote only.
const char* Find_Sub_Str(const char* str, const char* sub);
inline char* Find_Sub_Str(char* str, const char* sub) {
    return const_cast<char*>(Find_Sub_Str(static_cast<const char*>(str), sub));
}

// The same search, continued in a text that only grows at its end: what was searched is not searched again.
struct GrowingSearch {
    size_t at = 0;        // offset from the start of the text: nothing was found before it
    bool quoted = false;  // at `at`

    // `length` is that of `sub`, which does not begin with a double quote and is not empty.
    const char* Find(const char* text, const char* sub, size_t length);

    // The text from `begin` to `end`, both outside quotes, is taken out; what stood around it makes no new
    // match.
    void Remove(size_t begin, size_t end) {
        if (at >= end)
            at -= end - begin;
        else if (at > begin)
            *this = {.at = begin, .quoted = false};
    }
};

// Copies the text between the first two double quotes of `src` into `dst`, which is at least as large as
// `src` and zeroed by the caller (no terminator is added). An opening quote alone gives "0", no quote changes
// nothing.
char* findnum(const char* src, char* dst);

// Normalises a parameter line in place: quotes go, commas outside quotes become blanks, quoted blanks and
// tabs become marker bytes. Lines of 1 to 1023 characters; the result can be longer than the input (up to
// 1023 characters), so `line` has room for 1024 bytes. A line whose result would not fit is left alone. An
// empty field disappears between the words with the module's own modems and becomes "9" with other data
// cards.
void PreProc_Res_ParaLine(char* line);

// Turns parenthesised groups into ";"-separated ones, in place: "(1,2),(3,4)" becomes "1,2;3,4".
void PreProc_Res_ParaLineEx(char* line);

// Cuts an operator list behind the first ";" that is followed by ",", in place: the operators stay, the
// ranges go.
void PreProcCopsRes_Res_ParaLine(char* line);

// Puts back, in one scanned word, what PreProc_Res_ParaLine hid.
void Restore_String_Para(char* word);

// Splits `text` at each ";" outside quotes. Stops at 100 lines and at a piece of 1024 characters or more. The
// text "OK" alone gives no lines.
void PreProc_Res_ParaList(AT_PARAS_LIST_T* pList, const char* text);

// True when the data card is one of the module's own kinds ("KVX_WCDMA", "KVX_LTE" under data_card_mode),
// whose answers follow rules of their own.
bool IsModuleCardMode();

// Waits for `ms` milliseconds.
void kvx_sleep(unsigned int ms);

// The local time as "2026/11/21 13:24:15", in a static text of 32 bytes (not for use by two threads).
const char* AtTimeStamp();

#endif
