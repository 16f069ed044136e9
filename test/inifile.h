#ifndef AT_TEST_INIFILE_H
#define AT_TEST_INIFILE_H

// A small reader for the answer file of the test responder: "[section]" lines, "key=value" lines, "#"
// comments. One file is open at a time, in a static record; used by the response thread alone.

inline constexpr int kIniLineSize =
    1024;  // bytes of one line, its NUL included; a longer line is read in pieces

// The open file. Nothing of it is meant for the caller.
struct INI_FILE_T {
    int fd;     // -1: not open
    int next;   // first unread byte of `bytes`
    int count;  // bytes held
    char bytes[kIniLineSize];
};

// Opens `path` for reading. Null when it cannot be opened, or when another one still is open.
INI_FILE_T* OpenIniFile(const char* path);
void CloseIniFile(INI_FILE_T* file);

// Looks `key` up in `section` and puts the bytes of the value into `out`: at most 1023, the line's newline
// among them, without a terminator, so that the caller clears `out` (1024 bytes) before. 0 found, 1 not found
// or a null argument. Every look-up begins at the first line. A key is found by its first characters:
// "AT_ITEM1" finds "AT_ITEM10", too. The blanks, tabs and '=' in front of the value are replaced by as many
// repeats of its last character at its end.
int GetIniString(INI_FILE_T* file, const char* section, const char* key, char* out);

// The same for a decimal number; what follows its digits is ignored, a value without digits is 0 and one
// outside the range is the nearest integer. `out` is written only when the key was found. 0 found, 1 not
// found or a null argument.
int GetIniInterger(INI_FILE_T* file, const char* section, const char* key, int* out);

#endif
