#include "test/inifile.h"

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

namespace {

INI_FILE_T g_ini_file = {-1, 0, 0, {}};

// The next byte, or -1 at the end of the file and after a failed read.
int NextByte(INI_FILE_T& file) {
    if (file.next == file.count) {
        ssize_t got = 0;
        do {
            got = read(file.fd, file.bytes, sizeof file.bytes);
        } while (got < 0 && errno == EINTR);
        if (got <= 0) return -1;
        file.count = static_cast<int>(got);
        file.next = 0;
    }
    return static_cast<unsigned char>(file.bytes[file.next++]);
}

// Reads up to and including the next newline, at most 1023 bytes. False when nothing is left.
bool ReadLine(INI_FILE_T& file, char (&line)[kIniLineSize]) {
    int length = 0;
    while (length < kIniLineSize - 1) {
        int byte = NextByte(file);
        if (byte < 0) break;
        line[length++] = static_cast<char>(byte);
        if (byte == '\n') break;
    }
    line[length] = '\0';
    return length > 0;
}

void Rewind(INI_FILE_T& file) {
    lseek(file.fd, 0, SEEK_SET);
    file.next = file.count = 0;
}

bool IsPadding(char c) {
    return c == ' ' || c == '\t' || c == '=';
}

void CopyValue(const char* value, char* out) {
    size_t length = strlen(value);
    size_t removed = 0;
    while (removed < length && IsPadding(value[removed]))
        removed++;
    memcpy(out, value + removed, length - removed);
    memset(out + (length - removed), value[length - 1], removed);
}

// Reads on from the first line; leaves the file wherever it stopped.
bool LookUp(INI_FILE_T& file, const char* section, const char* key, char* out) {
    char line[kIniLineSize];
    char header[kIniLineSize];
    int header_length = snprintf(header, sizeof header, "[%s]", section);
    if (header_length < 0 || header_length >= kIniLineSize) return false;
    do {
        if (!ReadLine(file, line)) return false;
    } while (line[0] == '#' || strstr(line, header) == nullptr);

    size_t key_length = strlen(key);
    while (ReadLine(file, line)) {
        if (line[0] == '#') continue;
        if (line[0] == '[') return false;
        if (strlen(line) > key_length && memcmp(line, key, key_length) == 0) {
            CopyValue(line + key_length, out);
            return true;
        }
    }
    return false;
}

}  // namespace

INI_FILE_T* OpenIniFile(const char* path) {
    if (path == nullptr || g_ini_file.fd != -1) return nullptr;
    g_ini_file.fd = open(path, O_RDONLY | O_CLOEXEC);
    if (g_ini_file.fd == -1) return nullptr;
    g_ini_file.next = g_ini_file.count = 0;
    return &g_ini_file;
}

void CloseIniFile(INI_FILE_T* file) {
    if (file == nullptr || file->fd == -1) return;
    close(file->fd);
    file->fd = -1;
}

int GetIniString(INI_FILE_T* file, const char* section, const char* key, char* out) {
    if (file == nullptr || section == nullptr || key == nullptr || out == nullptr) return 1;
    bool found = LookUp(*file, section, key, out);
    Rewind(*file);
    return found ? 0 : 1;
}

int GetIniInterger(INI_FILE_T* file, const char* section, const char* key, int* out) {
    if (out == nullptr) return 1;
    char value[kIniLineSize] = {};
    if (GetIniString(file, section, key, value) != 0) return 1;
    long number = strtol(value, nullptr, 10);
    if (number > INT_MAX) number = INT_MAX;
    if (number < INT_MIN) number = INT_MIN;
    *out = static_cast<int>(number);
    return 0;
}
