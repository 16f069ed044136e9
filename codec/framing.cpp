#include "codec/framing.h"

#include <stdint.h>
#include <string.h>

#include <array>  // std::size; <iterator> needs locales, which a small C library has none of

#include "platform/log.h"
#include "text/atpublic.h"
#include "text/literals.h"

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

constexpr bool Same(const Marker& a, const Marker& b) {
    for (size_t i = 0; i < kMarkerSize; ++i)
        if (a[i] != b[i]) return false;
    return true;
}

// What one walk over a line looks for: the end markers, and behind them the line break.
constexpr size_t kLineBreak = std::size(kEndMarkers);

struct Wanted {
    Marker texts[std::size(kEndMarkers) + 1];
    bool final_result[std::size(kEndMarkers) + 1];
};

consteval Wanted MakeWanted() {
    Wanted wanted{};
    for (size_t i = 0; i < kLineBreak; ++i) {
        for (size_t at = 0; at < kMarkerSize; ++at)
            wanted.texts[i][at] = kEndMarkers[i][at];
        for (const Marker& result : kFinalResults)
            wanted.final_result[i] |= Same(result, kEndMarkers[i]);
    }
    wanted.texts[kLineBreak][0] = '\r';
    wanted.texts[kLineBreak][1] = '\n';
    return wanted;
}

constexpr Wanted kWanted = MakeWanted();
constexpr auto kIndex = literals::MakeIndex(kWanted.texts, "\":");

enum class Match { none, marker, final_result };

// Whether an end marker starts at `text`; a final result is told even where another marker starts there too.
Match MatchMarker(const char* text) {
    Match match = Match::none;
    for (const auto* entry = kIndex.Entries(*text);; ++entry) {
        if (text[1] == entry->text[1] && strncmp(text, entry->text, entry->length) == 0) {
            if (kWanted.final_result[entry->number]) return Match::final_result;
            match = Match::marker;
        }
        if (entry->last_of_character) return match;
    }
}

}  // namespace

size_t AppendReceived(char* pBuf, char* pRecv) {
    BufferedText buffered{.length = strnlen(pBuf, kMaxBuffered), .line_break = {}};
    return AppendReceived(pBuf, pRecv, buffered);
}

size_t AppendReceived(char* pBuf, char* pRecv, BufferedText& buffered) {
    // Some modems say how a command ended in words of their own.
    if (strncmp(pRecv, "status=Failure", 14) == 0)
        memcpy(pRecv, "\r\nERROR\r\n", 10);
    else if (strncmp(pRecv, "status=Ok", 9) == 0)
        memcpy(pRecv, "\r\nOK\r\n", 7);

    const bool was_empty = buffered.length == 0;
    if (was_empty) {
        buffered.line_break = {};
        const char* line_break = Find_Sub_Str(pRecv, "\r\n");
        if (line_break != nullptr) pRecv += line_break - pRecv;
    }
    const size_t added = strnlen(pRecv, kMaxBuffered - buffered.length);
    memcpy(pBuf + buffered.length, pRecv, added);
    buffered.length += added;
    pBuf[buffered.length] = '\0';
    if (was_empty) return 0;

    const char* line_break = buffered.line_break.Find(pBuf, "\r\n", 2);
    if (line_break == nullptr || line_break == pBuf) return 0;
    const auto dropped = static_cast<size_t>(line_break - pBuf);
    buffered.length -= dropped;
    buffered.line_break = {};
    memmove(pBuf, line_break, buffered.length + 1);
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
    for (;;) {
        const ModemLine line = ReadLine(pText);
        if (line.marker == nullptr && line.complete) {
            pText = line.end;
            continue;
        }
        if (line.marker != nullptr && line.complete) return line.end;
        return PromptEnd(line);
    }
}

const char* PromptEnd(const ModemLine& line) {
    if (line.prompt == nullptr) return nullptr;
    g_sms_prompt = 1;
    return line.prompt + 2;
}

ModemLine ReadLine(const char* begin) {
    LineScan scan;
    return ReadLine(begin, scan);
}

ModemLine ReadLine(const char* begin, LineScan& scan) {
    const char* at = begin + scan.at;
    const char* text_end = nullptr;
    uint32_t opens = literals::kAlways;
    bool quoted = scan.quoted;
    for (;;) {
        if (quoted) {
            at = literals::SkipQuoted(at);
            if (*at == '\0') break;
            quoted = false;
            opens = literals::kAlways;
            ++at;
        }
        at = literals::Walk(kIndex.masks.data(), at, opens);
        const literals::ByteMasks& masks = kIndex.masks[static_cast<unsigned char>(*at)];
        if ((opens & masks.follows & ~literals::kAlways) != 0) {
            const char* const start = at - 1;
            const auto offset = static_cast<size_t>(start - begin);
            if (*start == '\r') {
                text_end = start;
                break;
            }
            const Match match = MatchMarker(start);
            if (match != Match::none) {
                if (scan.marker == kNowhere) scan.marker = offset;
                if (match == Match::final_result) scan.final_result = true;
                if (*start == '>' && scan.prompt == kNowhere) scan.prompt = offset;
            }
        }
        if (*at == '\0') break;
        if (*at == ':' && scan.colon == kNowhere) scan.colon = static_cast<size_t>(at - begin);
        quoted = *at == '"';
        opens = masks.opens;
        ++at;
    }

    const auto place = [begin](size_t offset) { return offset == kNowhere ? nullptr : begin + offset; };
    ModemLine line{.begin = begin,
                   .text_end = text_end != nullptr ? text_end : at,
                   .end = text_end != nullptr ? text_end + 2 : at,
                   .colon = place(scan.colon),
                   .marker = place(scan.marker),
                   .prompt = place(scan.prompt),
                   .complete = text_end != nullptr,
                   .final_result = scan.final_result};
    if (line.complete) {
        scan.at = line.Length();
        scan.quoted = false;
        return line;
    }
    // A marker may have been cut in two by the end of the text: what can be the start of one is read again,
    // and a marker found there may not be the first one then.
    const size_t again = line.Length() < kIndex.longest - 1 ? line.Length() : kIndex.longest - 1;
    const char* const from = line.text_end - again;
    for (const char* back = from; back != line.text_end; ++back)
        if (*back == '"') quoted = !quoted;
    scan.at = static_cast<size_t>(from - begin);
    scan.quoted = quoted;
    if (scan.marker != kNowhere && scan.marker >= scan.at) scan.marker = kNowhere;
    return line;
}

bool IsHexLine(const ModemLine& line, LineScan& scan) {
    size_t length = line.Length();
    // The line break may have come by half.
    if (!line.complete && length != 0 && line.text_end[-1] == '\r') --length;
    while (scan.hex_digits < length) {
        const char digit = line.begin[scan.hex_digits];
        const bool decimal = digit >= '0' && digit <= '9';
        const bool letter = (digit >= 'A' && digit <= 'F') || (digit >= 'a' && digit <= 'f');
        if (!decimal && !letter) return false;
        ++scan.hex_digits;
    }
    return length != 0;
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
