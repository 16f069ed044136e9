#ifndef AT_TEST_ATTEST_H
#define AT_TEST_ATTEST_H

#include "commands/contract.h"
#include "test/inifile.h"

// The test responder: while the configuration key AT_Test is "on", what the modem sent is replaced by made-up
// answers, and made-up reports are added, from etc_rw/config/AT_Test.ini below the working directory or else
// from a built-in list. It answers the request in flight (g_at_msg, g_cmd_str). Response thread only. Log
// lines carry "attest".

// Bytes of an output area: a whole read, one report behind it, and a NUL.
inline constexpr int kTestOutputSize = kModemTextSize + kIniLineSize;

// Puts the text to go on with into `out` (kTestOutputSize bytes; 2048 are enough for a `received` of 1023
// characters): `received` while AT_Test is off. A null argument does nothing.
void TestForAtResponse(const char* received, char* out);

// The same without the copy: the text to go on with is `received` itself while AT_Test is off, else `out`.
const char* AtResponseText(const char* received, char* out);

// Turns the "\r" and "\n" escapes of an INI value into the bytes, in place, and drops raw line ends. The last
// of its characters (the line's newline) is not part of the text and goes, too. `text` holds at most 1023
// characters. 0, or -1 for a null text.
int TransformATResString(char* text);

// How far the made-up reports were handed out. Each is handed out once in the life of the process.
struct AT_TEST_PROGRESS_T {
    int next_builtin;  // reports of the built-in list, from 0
    int next_item;     // AT_ITEM numbers of the file's AUTORES section, from 1
};
extern AT_TEST_PROGRESS_T g_at_test_progress;

#endif
