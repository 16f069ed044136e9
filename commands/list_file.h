#ifndef AT_COMMANDS_LIST_FILE_H
#define AT_COMMANDS_LIST_FILE_H

#include <stddef.h>
#include <sys/types.h>

// Answers that are larger than a message travel in files: the record as it stands in memory, without a
// header, replaced whole each time. Response thread.

inline constexpr char kSmsListFile[] = "/etc_rw/config/smsbak";
inline constexpr char kPhonebookFile[] = "/etc_rw/config/Phonebak";
inline constexpr char kOperatorListFile[] = "/etc_rw/config/copslist";
inline constexpr char kCallListFile[] = "/etc_rw/config/clcclist";
inline constexpr char kUssdFile[] = "/etc/cusd";

// Opens `path` for writing, created or emptied. The descriptor, or -1. Alone in its source file, so that a
// check can put another in its place.
int OpenListFile(const char* path);

// Replaces the file's content by `size` bytes of `record`. The number of bytes written, which is less than
// `size` when the file system took no more; -1 when the file cannot be opened.
ssize_t WriteListFile(const char* path, const void* record, size_t size);

// The same for a list that is worthless without its file. False when not all of it was written. A file that
// cannot be opened ends the process with status 1: a router whose configuration directory cannot be written
// needs its supervisor. `name` is the file's in log lines, which carry "atdecode".
bool BackUpList(const char* path, const char* name, const void* record, size_t size);

#endif
