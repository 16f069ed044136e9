#include "codec/framing.h"

#include <stdint.h>
#include <string.h>

#include <array>

#include "platform/log.h"
#include "text/atpublic.h"

static constexpr char kLogSource[] = "atcode";

char gStrResAtBuffer[kModemTextSize];
char g_acSioBuf[kModemTextSize];
unsigned char g_sms_prompt;

namespace {

constexpr size_t kMarkerSize = 20;
using Marker = char[kMarkerSize];

// Final results, which end the pending command's answer, and names of reports, which are responses of their
// own. Blanks and line breaks are part of each entry. "CMS ERROR: " and "CME ERROR: " lack their "+" so that
// both forms match.
constexpr Marker kEndMarkers[] = {
    "OK\r\n",
    "ERROR\r\n",
    "BUSY\r\n",
    "CONNECT\r\n",
    "VOICE CONNECT\r\n",
    "NO ANSWER\r\n",
    "NO CARRIER\r\n",
    "NO DIALTONE\r\n",
    "VOICE NO CARRIER\r\n",
    "CMS ERROR: ",
    "CME ERROR: ",
    "> ",
    "RING\r\n",
    "ANSWER\r\n",
    "CHUPR\r\n",
    "STOPRING\r\n",
    "HANGUP:",
    "CHUP\r\n",
    "+CLVL: ",
    "+CMVL: ",
    "+CUSD: ",
    "+ZDETR: ",
    "+ZDONR: ",
    "+ZPASR: ",
    "+ZUSIMR: ",
    "+RINGBACK:",
    "RINGBACK",
    "RINGBACKLOCAL",
    "VOICE NO CARRIER: ",
    "VOICE NO CARRIER : ",
    "+CCWA: ",
    "not support",
    "+ZCSM: ",
    "+CMTI: ",
    "+CDSI: ",
    "+CLCC: ",
    "+ZNITZ: ",
    "+CLIP: ",
    "+CCFC: ",
    "^CONN:",
    "^CEND",
    "^DSDORMANT:",
    "^HRSSILVL:",
    "^ORIG:",
    "+CRING: ",
    "+ZUnsupport: ",
    "+ZMTime: ",
    "+ZSMSR: ",
    "+ZDIST: ",
    "+ZFDIST: ",
    "+ZSTI: ",
    "+ZEND\r\n",
    "+ZPSTM: ",
    "+ZGINP: ",
    "+ZGINK: ",
    "+ZCLAS: ",
    "+ZMACR",
    "+ZMAC",
    "^MODE: ",
    "^DUSIMU: ",
    "^DACTI: ",
    "+CGDAC:",
    "^ZUSIMREADY\r\n",
    "+ZCONV:",
    "^BOOT:",
    "^RSSI:",
    "^SRVST:",
    "^STIN:",
    "^SIMST:",
    "^DSFLOWRPT:",
    "COMMAND NOT SUPPORT",
    "+ZCIN: ",
    "^CSNR:",
    "^ANLEVEL:",
    "$CGREG",
    "+CBM: ",
    "+ZVMTI: ",
    "ZVMAIL: ",
    "+CDS: ",
    "ZREFRESH: ",
    "ZVCONNECT: ",
    "+ZSIMREFRESH",
};
static_assert(std::size(kEndMarkers) == 82);

// Not the table above: it lacks "OK" and "ERROR", tries "RINGBACKLOCAL" before "RINGBACK" and stops at
// "+ZVMTI: ".
constexpr Marker kHeadMarkers[] = {
    "+CME ERROR: ",
    "+CMS ERROR: ",
    "BUSY\r\n",
    "VOICE CONNECT\r\n",
    "VOICE NO CARRIER\r\n",
    "NO ANSWER\r\n",
    "NO CARRIER\r\n",
    "NO DIALTONE\r\n",
    "CONNECT\r\n",
    "> ",
    "RING\r\n",
    "ANSWER\r\n",
    "CHUPR\r\n",
    "STOPRING\r\n",
    "HANGUP:",
    "CHUP\r\n",
    "+CLVL: ",
    "+CMVL: ",
    "+CUSD: ",
    "+ZDETR: ",
    "+ZDONR: ",
    "+ZPASR: ",
    "+ZUSIMR: ",
    "RINGBACKLOCAL",
    "+RINGBACK:",
    "RINGBACK",
    "+CCWA: ",
    "not support",
    "+ZCSM: ",
    "+CMTI: ",
    "+CDSI: ",
    "+CLCC: ",
    "+CLIP: ",
    "+CCFC: ",
    "^CONN:",
    "^CEND",
    "^DSDORMANT:",
    "^HRSSILVL:",
    "^ORIG:",
    "+CRING: ",
    "+ZUnsupport: ",
    "+ZMTime: ",
    "+ZSMSR: ",
    "+ZDIST: ",
    "+ZFDIST: ",
    "+ZSTI: ",
    "+ZEND\r\n",
    "+ZPSTM: ",
    "+ZGINP: ",
    "+ZGINK: ",
    "+ZCLAS: ",
    "+ZMACR",
    "+ZMAC",
    "^MODE: ",
    "^DUSIMU: ",
    "^DACTI: ",
    "+CGDAC:",
    "^ZUSIMREADY\r\n",
    "+ZCONV:",
    "^BOOT:",
    "^RSSI:",
    "^SRVST:",
    "^STIN:",
    "^SIMST:",
    "^DSFLOWRPT:",
    "COMMAND NOT SUPPORT",
    "+ZCIN: ",
    "^CSNR:",
    "^ANLEVEL:",
    "$CGREG",
    "+CBM: ",
    "+ZVMTI: ",
};
static_assert(std::size(kHeadMarkers) == 72);

constexpr const Marker kFinalResults[] = {
    "OK\r\n", "ERROR\r\n", "CME ERROR: ", "CMS ERROR: ", "not support", "COMMAND NOT SUPPORT",
};

constexpr size_t Length(const Marker& marker) {
    size_t length = 0;
    while (marker[length] != '\0')
        ++length;
    return length;
}

constexpr bool Same(const Marker& a, const Marker& b) {
    for (size_t i = 0; i < kMarkerSize; ++i)
        if (a[i] != b[i]) return false;
    return true;
}

// The end markers by their first character, so that a walk over text compares only those that can match.
struct MarkerIndex {
    std::array<uint8_t, 256> first{};  // by character: 1 + place of its first entry, 0 for none
    struct Entry {
        uint8_t marker;
        uint8_t length;
        bool final_result;
        bool last_of_character;
    };
    std::array<Entry, std::size(kEndMarkers)> entries{};
};

constexpr MarkerIndex BuildIndex() {
    MarkerIndex index;
    size_t used = 0;
    for (size_t character = 1; character < 256; ++character) {
        const size_t begin = used;
        for (size_t i = 0; i < std::size(kEndMarkers); ++i) {
            if (static_cast<unsigned char>(kEndMarkers[i][0]) != character) continue;
            bool final_result = false;
            for (const Marker& result : kFinalResults)
                final_result |= Same(result, kEndMarkers[i]);
            index.entries[used++] = {static_cast<uint8_t>(i), static_cast<uint8_t>(Length(kEndMarkers[i])),
                                     final_result, false};
        }
        if (used == begin) continue;
        index.first[character] = static_cast<uint8_t>(begin + 1);
        index.entries[used - 1].last_of_character = true;
    }
    return index;
}

constexpr MarkerIndex kIndex = BuildIndex();
static_assert(kIndex.entries.back().last_of_character);

enum class Match { none, marker, final_result };

// Whether an end marker starts at `text`; a final result is told even where another marker starts there too.
inline Match MatchMarker(const char* text) {
    const uint8_t first = kIndex.first[static_cast<unsigned char>(*text)];
    if (first == 0) return Match::none;
    Match match = Match::none;
    for (const MarkerIndex::Entry* entry = &kIndex.entries[first - 1U];; ++entry) {
        if (text[1] == kEndMarkers[entry->marker][1] &&
            strncmp(text, kEndMarkers[entry->marker], entry->length) == 0) {
            if (entry->final_result) return Match::final_result;
            match = Match::marker;
        }
        if (entry->last_of_character) return match;
    }
}

}  // namespace

size_t AppendReceived(char* pBuf, char* pRecv) {
    // Some modems say how a command ended in words of their own.
    if (strncmp(pRecv, "status=Failure", 14) == 0)
        memcpy(pRecv, "\r\nERROR\r\n", 10);
    else if (strncmp(pRecv, "status=Ok", 9) == 0)
        memcpy(pRecv, "\r\nOK\r\n", 7);

    size_t length = strnlen(pBuf, kMaxBuffered);
    if (length == 0) {
        const char* line_break = Find_Sub_Str(pRecv, "\r\n");
        if (line_break != nullptr) pRecv += line_break - pRecv;
    }
    const size_t added = strnlen(pRecv, kMaxBuffered - length);
    memcpy(pBuf + length, pRecv, added);
    const bool was_empty = length == 0;
    length += added;
    pBuf[length] = '\0';
    if (was_empty) return 0;

    const char* line_break = Find_Sub_Str(pBuf, "\r\n");
    if (line_break == nullptr || line_break == pBuf) return 0;
    const auto dropped = static_cast<size_t>(line_break - pBuf);
    memmove(pBuf, line_break, length - dropped + 1);
    return dropped;
}

int Bk_PreProcess_SIO_Rdata(char* pBuf, int* pnComplete, char* pRecv) {
    if (pBuf == nullptr || pnComplete == nullptr || pRecv == nullptr) return -1;
    AppendReceived(pBuf, pRecv);
    *pnComplete = Find_At_Res_End_Flg(pBuf) != nullptr ? 1 : 0;
    return 0;
}

const char* Find_At_Res_End_Flg(const char* pText) {
    if (pText == nullptr) return nullptr;
    bool quoted = false;
    for (const char* at = pText; *at != '\0'; ++at) {
        if (*at == '"') quoted = !quoted;
        if (quoted || MatchMarker(at) == Match::none) continue;
        const char* line_break = Find_Sub_Str(at, "\r\n");
        if (line_break != nullptr) return line_break + 2;
        const char* prompt = Find_Sub_Str(at, "> ");
        if (prompt == nullptr) return nullptr;
        g_sms_prompt = 1;
        return prompt + 2;
    }
    return nullptr;
}

ModemLine ReadLine(const char* begin) {
    ModemLine line{.begin = begin,
                   .text_end = begin,
                   .end = begin,
                   .colon = nullptr,
                   .marker = nullptr,
                   .complete = false,
                   .final_result = false};
    bool quoted = false;
    const char* at = begin;
    for (; *at != '\0'; ++at) {
        if (*at == '"') {
            quoted = !quoted;
            continue;
        }
        if (quoted) continue;
        if (*at == '\r' && at[1] == '\n') {
            line.complete = true;
            break;
        }
        if (*at == ':' && line.colon == nullptr) line.colon = at;
        const Match match = MatchMarker(at);
        if (match == Match::none) continue;
        if (line.marker == nullptr) line.marker = at;
        if (match == Match::final_result) line.final_result = true;
    }
    line.text_end = at;
    line.end = line.complete ? at + 2 : at;
    return line;
}

int Split_At_Res_Head(char* pBuf, char* pOut) {
    if (pBuf == nullptr || *pBuf == '\0' || pOut == nullptr) {
        AT_LOG(LOG_DEBUG, "already split end");
        return 1;
    }
    if (strncmp(pBuf, "\r\n", 2) != 0) {
        AT_LOG(LOG_DEBUG, "must be start with \r\n");
        return 1;
    }
    for (const Marker& marker : kHeadMarkers) {
        const char* match = Find_Sub_Str(pBuf, marker);
        if (match == nullptr) continue;
        if (match == pBuf) {
            AT_LOG(LOG_DEBUG, "at format may be error,must be start with \r\n");
            return 1;
        }
        if (match - pBuf < 2 || strncmp(match - 2, "\r\n", 2) != 0) {
            AT_LOG(LOG_DEBUG, "at format or name may be error,must be start with \r\n");
            return 1;
        }
        const char* end = match + 2;
        if (strncmp(match, "> ", 2) == 0) {
            g_sms_prompt = 1;
        } else {
            end = Find_Sub_Str(match, "\r\n");
            if (end == nullptr) {
                AT_LOG(LOG_DEBUG, "at format may be error,must be end with \r\n");
                return 1;
            }
            end += 2;
        }
        const auto taken = static_cast<size_t>(end - (match - 2));
        memcpy(pOut, match - 2, taken);
        pOut[taken] = '\0';
        // Only what was copied goes; text that stood before it stays.
        memmove(pBuf + (match - 2 - pBuf), end, strlen(end) + 1);
        return 0;
    }
    memcpy(pOut, pBuf, strlen(pBuf) + 1);
    memset(pBuf, 0, 4);
    return 0;
}
