#ifndef AT_CHECKS_SUPPORT_PLAIN_FRAMING_H
#define AT_CHECKS_SUPPORT_PLAIN_FRAMING_H

#include <stddef.h>

#include <algorithm>
#include <random>
#include <string>
#include <string_view>

// What framing is meant to do, in its plainest form: one quote-aware search for each marker. And random text
// to compare the two on.

inline constexpr const char* kEndMarkerList[] = {
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
static_assert(std::size(kEndMarkerList) == 82);

inline constexpr const char* kHeadMarkerList[] = {
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
static_assert(std::size(kHeadMarkerList) == 72);

inline constexpr size_t kNone = std::string::npos;

inline size_t PlainFind(std::string_view text, std::string_view sub, size_t from = 0) {
    bool quoted = false;
    for (size_t at = from; at + sub.size() <= text.size(); ++at) {
        if (text[at] == '"') quoted = !quoted;
        if (!quoted && text[at] == sub[0] && text.compare(at, sub.size(), sub) == 0) return at;
    }
    return kNone;
}

// The end of the first complete response, and whether it was the prompt.
struct PlainEnd {
    size_t end = kNone;
    bool prompt = false;
    bool operator==(const PlainEnd&) const = default;
};

inline PlainEnd PlainFindEnd(std::string_view text) {
    size_t first = kNone;
    for (const char* marker : kEndMarkerList)
        first = std::min(first, PlainFind(text, marker));
    if (first == kNone) return {};
    const size_t line_break = PlainFind(text, "\r\n", first);
    if (line_break != kNone) return {line_break + 2, false};
    const size_t prompt = PlainFind(text, "> ", first);
    if (prompt != kNone) return {prompt + 2, true};
    return {};
}

// Returns how many characters of the buffer were dropped.
inline size_t PlainPreProcess(std::string& buffer, std::string chunk) {
    if (chunk.rfind("status=Failure", 0) == 0)
        chunk = "\r\nERROR\r\n";
    else if (chunk.rfind("status=Ok", 0) == 0)
        chunk = "\r\nOK\r\n";
    const bool was_empty = buffer.empty();
    const std::string joined = was_empty ? chunk : (buffer + chunk).substr(0, 102'399);
    const size_t line_break = PlainFind(joined, "\r\n");
    const size_t dropped = line_break != kNone ? line_break : 0;
    buffer = joined.substr(dropped, 102'399);
    return was_empty ? 0 : dropped;
}

inline std::string Printable(std::string_view text) {
    std::string printable;
    for (const char c : text) {
        if (c == '\r')
            printable += "\\r";
        else if (c == '\n')
            printable += "\\n";
        else
            printable += c;
    }
    return printable;
}

// Text made of what framing looks at: markers, pieces of markers, quotes, line breaks and halves of them, and
// noise.
class RandomText {
  public:
    explicit RandomText(unsigned seed) : random_(seed) {}

    unsigned Below(unsigned limit) { return static_cast<unsigned>(random_()) % limit; }

    std::string Next(unsigned most_pieces) {
        std::string text;
        for (unsigned pieces = Below(most_pieces + 1); pieces > 0; --pieces)
            text += Piece();
        return text;
    }

  private:
    std::string Piece() {
        switch (Below(10)) {
            case 0:
            case 1:
                return kEndMarkerList[Below(82)];
            case 2: {
                const std::string marker = kEndMarkerList[Below(82)];
                return marker.substr(0, 1 + Below(static_cast<unsigned>(marker.size())));
            }
            case 3: {
                const std::string marker = kHeadMarkerList[Below(72)];
                return marker.substr(Below(static_cast<unsigned>(marker.size())));
            }
            case 4:
                return "\"";
            case 5:
            case 6:
                return "\r\n";
            case 7:
                return Below(2) == 0 ? "\r" : "\n";
            case 8:
                return "> ";
            default: {
                std::string noise;
                for (unsigned length = 1 + Below(5); length > 0; --length)
                    noise += static_cast<char>(1 + Below(255));
                return noise;
            }
        }
    }

    std::mt19937 random_;
};

#endif
