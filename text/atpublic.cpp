#include "text/atpublic.h"

#include <errno.h>
#include <string.h>
#include <sys/select.h>
#include <time.h>

#include "platform/config.h"
#include "platform/log.h"

static constexpr char kLogSource[] = "atpublic";

const char* Find_Sub_Str(const char* str, const char* sub) {
    if (str == nullptr || sub == nullptr) return nullptr;
    const size_t length = strlen(sub);
    bool quoted = false;
    for (;; ++str) {
        if (*str == '"') quoted = !quoted;
        if (!quoted && *str == *sub && strncmp(str, sub, length) == 0) return str;
        if (*str == '\0') return nullptr;
    }
}

const char* GrowingSearch::Find(const char* text, const char* sub, size_t length) {
    for (const char* now = text + at;; ++now) {
        if (quoted) {
            while (*now != '"' && *now != '\0')
                ++now;
        } else {
            while (*now != *sub && *now != '"' && *now != '\0')
                ++now;
        }
        if (*now == '"') {
            quoted = !quoted;
            continue;
        }
        size_t same = 0;
        while (!quoted && same < length && now[same] == sub[same] && sub[same] != '\0')
            ++same;
        // Where the text ends inside a match, the rest of it may still come.
        if (*now == '\0' || same == length || now[same] == '\0') {
            at = static_cast<size_t>(now - text);
            return same == length ? now : nullptr;
        }
    }
}

char* findnum(const char* src, char* dst) {
    if (src == nullptr || dst == nullptr) return dst;
    const char* open = strchr(src, '"');
    if (open == nullptr) return dst;
    const char* close = strchr(open + 1, '"');
    if (close == nullptr)
        dst[0] = '0';
    else
        memcpy(dst, open + 1, static_cast<size_t>(close - open - 1));
    return dst;
}

bool IsModuleCardMode() {
    const char* mode = ConfigText("data_card_mode");
    return strcmp(mode, "KVX_LTE") == 0 || strcmp(mode, "KVX_WCDMA") == 0;
}

void PreProc_Res_ParaLine(char* line) {
    if (line == nullptr) return;
    const size_t length = strnlen(line, kParaLineSize);
    if (length == 0 || length >= kParaLineSize) return;

    const bool module_mode = IsModuleCardMode();
    char out[kParaLineSize];
    size_t used = 0;
    bool quoted = false;
    for (const char* in = line; *in != '\0'; ++in) {
        const char next = in[1];
        char first = *in;
        char second = '\0';
        if (*in == '"') {
            quoted = !quoted;
            if (next != '"') continue;
            first = static_cast<char>(kMarkEmpty);
        } else if (*in == ',' && !quoted) {
            first = ' ';
            if (next == '\0') {
                second = static_cast<char>(kMarkEmpty);
            } else if (next == ',' && module_mode) {
                second = ' ';
            } else if (next == ',') {
                AT_LOG(LOG_INFO, "double ',' is here!");
                second = '9';
            }
        } else if (quoted && *in == ' ') {
            first = static_cast<char>(kMarkBlank);
        } else if (quoted && *in == '\t') {
            first = static_cast<char>(kMarkTab);
        }
        const size_t more = second != '\0' ? 2 : 1;
        if (used + more >= sizeof out) return;
        out[used++] = first;
        if (second != '\0') out[used++] = second;
    }
    out[used] = '\0';
    memcpy(line, out, used + 1);
}

void PreProc_Res_ParaLineEx(char* line) {
    if (line == nullptr) return;
    char* out = line;
    for (const char* in = line; *in != '\0'; ++in) {
        if (*in == '(') continue;
        if (*in == ')') {
            if (in[1] != ',') continue;
            ++in;
            *out++ = ';';
            continue;
        }
        *out++ = *in;
    }
    *out = '\0';
}

void PreProcCopsRes_Res_ParaLine(char* line) {
    if (line == nullptr) return;
    char* end = strstr(line, ";,");
    if (end != nullptr) end[1] = '\0';
}

void Restore_String_Para(char* word) {
    if (word == nullptr) return;
    if (static_cast<unsigned char>(word[0]) == kMarkEmpty && word[1] == '\0') {
        word[0] = '\0';
        return;
    }
    for (; *word != '\0'; ++word) {
        const auto byte = static_cast<unsigned char>(*word);
        if (byte == kMarkBlank)
            *word = ' ';
        else if (byte == kMarkTab)
            *word = '\t';
    }
}

void PreProc_Res_ParaList(AT_PARAS_LIST_T* pList, const char* text) {
    if (pList == nullptr || text == nullptr) return;
    const char* piece = text;
    while (pList->nCount < kParaLineMax) {
        const char* separator = Find_Sub_Str(piece, ";");
        const size_t length = separator != nullptr ? static_cast<size_t>(separator - piece) : strlen(piece);
        if (separator == nullptr && length == 0) break;
        if (length >= kParaLineSize) break;
        char* line = pList->strParasLine[pList->nCount++];
        memcpy(line, piece, length);
        line[length] = '\0';
        if (separator == nullptr) break;
        piece = separator + 1;
    }
    if (strcmp(text, "OK") == 0) pList->nCount = 0;
}

void kvx_sleep(unsigned int ms) {
    timeval wait{};
    wait.tv_usec = static_cast<suseconds_t>(ms) * 1000;
    if (select(0, nullptr, nullptr, nullptr, &wait) != -1 || errno != EINVAL) return;
    // Some kernels refuse a second or more in the microseconds.
    wait.tv_sec = static_cast<time_t>(ms / 1000);
    wait.tv_usec = static_cast<suseconds_t>(ms % 1000) * 1000;
    select(0, nullptr, nullptr, nullptr, &wait);
}

const char* AtTimeStamp() {
    static char text[32];
    const time_t now = time(nullptr);
    tm local{};
    localtime_r(&now, &local);
    strftime(text, sizeof text, "%Y/%m/%d %H:%M:%S", &local);
    return text;
}
