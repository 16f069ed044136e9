#include "checks/support/plain_sorting.h"

#include <string.h>

#include "checks/support/plain_framing.h"
#include "codec/atcode.h"

namespace {

struct PlainLine {
    const char* begin;
    const char* text_end;
    const char* end;
    const char* colon;
    const char* marker;
    bool complete;
    bool final_result;
    bool Empty() const { return begin == text_end; }
    bool BeginsWithMarker() const { return marker == begin; }
    size_t Length() const { return static_cast<size_t>(text_end - begin); }
};

constexpr const char* kFinalResults[] = {
    "OK\r\n", "ERROR\r\n", "CME ERROR: ", "CMS ERROR: ", "not support", "COMMAND NOT SUPPORT",
};

bool StartsAt(const char* at, const char* text) {
    return strncmp(at, text, strlen(text)) == 0;
}

// Every byte is compared with every marker.
PlainLine PlainReadLine(const char* begin) {
    PlainLine line{begin, begin, begin, nullptr, nullptr, false, false};
    bool quoted = false;
    const char* at = begin;
    for (; *at != '\0'; ++at) {
        if (*at == '"') quoted = !quoted;
        if (quoted) continue;
        if (*at == '\r' && at[1] == '\n') {
            line.complete = true;
            break;
        }
        if (*at == ':' && line.colon == nullptr) line.colon = at;
        if (line.marker == nullptr)
            for (const char* marker : kEndMarkerList)
                if (StartsAt(at, marker)) line.marker = at;
        for (const char* result : kFinalResults)
            line.final_result = line.final_result || StartsAt(at, result);
    }
    line.text_end = at;
    line.end = line.complete ? at + 2 : at;
    return line;
}

const char* FindPrompt(const PlainLine& line) {
    const PlainEnd end = PlainFindEnd(line.begin);
    return end.end == kNone ? nullptr : line.begin + end.end;
}

// Reports that framing has no end marker for, but whose names have rows.
constexpr const char* kReportNames[] = {
    "+CREG",   "+CGREG", "+CEREG", "+ZEMCI", "+ZCONSTAT", "+CGEV",  "+ZGIPDNS",
    "+ZICCID", "+ZUPCI", "+ZUEND", "+ZCPI",  "+ZURDY",    "+ZPBIC",
};
// Of these the commands that can also be sent: their late answers look like reports.
constexpr const char* kSendableReportNames[] = {"+CREG", "+CGREG", "+CEREG", "+ZEMCI"};

bool BeginsWith(const PlainLine& line, const char* text) {
    return strncmp(line.begin, text, strlen(text)) == 0;
}

// A line of name N begins with N and ":", so that "+ZMACR: 1" is not a line of "+ZMAC".
bool HasName(const PlainLine& line, const char* name) {
    const size_t length = strlen(name);
    return strncmp(line.begin, name, length) == 0 && line.begin[length] == ':';
}

template <size_t count>
bool HasAnyName(const PlainLine& line, const char* const (&names)[count]) {
    for (const char* name : names)
        if (HasName(line, name)) return true;
    return false;
}

bool IsHexLine(const PlainLine& line) {
    const char* end = line.text_end;
    if (!line.complete && end != line.begin && end[-1] == '\r') --end;  // half of its line break
    if (end == line.begin) return false;
    for (const char* at = line.begin; at != end; ++at) {
        const bool digit = *at >= '0' && *at <= '9';
        const bool letter = (*at >= 'A' && *at <= 'F') || (*at >= 'a' && *at <= 'f');
        if (!digit && !letter) return false;
    }
    return true;
}

// A named line that no command of ours can have caused: it looks like a result code, has no row and no end
// marker.
bool IsUnknownReport(const PlainLine& line) {
    if (strchr("+^$%", *line.begin) == nullptr || *line.begin == '\0') return false;
    const char* at = line.begin + 1;
    while ((*at >= '0' && *at <= '9') || (*at >= 'A' && *at <= 'Z') || (*at >= 'a' && *at <= 'z'))
        ++at;
    const auto length = static_cast<size_t>(at - line.begin);
    if (length == 1 || *at != ':' || line.BeginsWithMarker()) return false;

    char name[sizeof AT_CMD_ITEM_T::acCmdName];
    if (length >= sizeof name) return true;
    memcpy(name, line.begin, length);
    name[length] = '\0';
    int row = 0;
    return Bk_Find_Cmd_By_Name(&row, name) != 0;
}

bool IsReportLine(const PlainLine& line, const PendingCommand& pending) {
    if (BeginsWith(line, "VOICE NO CARRIER ") || BeginsWith(line, "VOICE NO CARRIER:")) return true;
    if (HasAnyName(line, kReportNames)) return pending.name == nullptr || !HasName(line, pending.name);
    return IsUnknownReport(line);
}

// Cell broadcasts and status reports bring their PDU in the line that follows.
bool BringsPdu(const PlainLine& line) {
    return HasName(line, "+CBM") || HasName(line, "+CDS");
}

// Takes `line` as a response that starts at `begin`. Nothing, when the PDU that belongs to it is still on its
// way.
Response TakeLine(Cut cut, const char* begin, const PlainLine& line, bool in_answer) {
    Response response{cut, begin, line.end, in_answer, {}};
    if (BringsPdu(line)) {
        const PlainLine next = PlainReadLine(line.end);
        if (IsHexLine(next) && next.complete)
            response.end = next.end;
        else if (!next.complete && (next.Empty() || IsHexLine(next)))
            response.cut = Cut::nothing;
    } else if (cut == Cut::report) {
        response.continuation = {line.end, IsUnknownReport(line), HasAnyName(line, kSendableReportNames)};
    }
    return response;
}

// The first line of the pending command's own name, up to the first final result. Null when there is none.
const char* FindOwnLine(const char* text, const PendingCommand& pending) {
    if (pending.name == nullptr || pending.literal) return nullptr;
    for (PlainLine line = PlainReadLine(text); line.complete; line = PlainReadLine(line.end)) {
        if (HasName(line, pending.name)) return line.begin;
        if (line.final_result && !IsReportLine(line, pending)) return nullptr;
    }
    return nullptr;
}

}  // namespace

Response PlainNextResponse(const char* text, const PendingCommand& pending,
                           const Continuation& continuation) {
    const char* const own = FindOwnLine(text, pending);
    bool begun_by_name = false;   // the answer's own line has been passed
    bool begun_by_text = false;   // a nameless line has been passed that only an answer can have
    bool named_seen = false;      // a line of another name has been passed
    const char* other = nullptr;  // the start of such a line, when the answer is known to stand behind it
    bool follows_report = continuation.at != nullptr;

    PlainLine line = PlainReadLine(text);
    for (; line.complete; line = PlainReadLine(line.end)) {
        if (line.Empty()) continue;

        if (follows_report && line.begin >= continuation.at) {
            follows_report = false;
            if (continuation.hex_line && line.begin == continuation.at && IsHexLine(line))
                return {Cut::leftover, line.begin, line.end, false, {}};
            if (continuation.late_ok && pending.id == 0 && line.Length() == 2 && BeginsWith(line, "OK"))
                return {Cut::leftover, line.begin, line.end, false, {}};
        }

        if (line.begin == own) {
            if (other != nullptr) return {Cut::framed, text, line.begin, false, {}};
            begun_by_name = true;
            if (line.final_result) return {Cut::framed, text, line.end, false, {}};
            continue;
        }
        if (IsReportLine(line, pending)) {
            // What stands before the answer is complete where the next named line begins.
            if (other != nullptr) return {Cut::framed, text, line.begin, false, {}};
            const Response response = TakeLine(Cut::report, line.begin, line, begun_by_name || begun_by_text);
            if (response.cut != Cut::nothing) return response;
            continue;
        }
        if (line.final_result) return {Cut::framed, text, line.end, false, {}};

        if (begun_by_name || begun_by_text) {
            const bool own_name = pending.name != nullptr && HasName(line, pending.name);
            if (line.BeginsWithMarker() && !BeginsWith(line, "> ") && !own_name) {
                const Response response = TakeLine(Cut::inside, line.begin, line, true);
                if (response.cut != Cut::nothing) return response;
                continue;
            }
            if (begun_by_name || own == nullptr) continue;
        }

        if (line.marker != nullptr) {
            if (other != nullptr) return {Cut::framed, text, line.begin, false, {}};
            const Response response = TakeLine(Cut::framed, text, line, false);
            if (response.cut != Cut::nothing) return response;
            continue;
        }
        if (line.colon != nullptr) {
            if (other != nullptr) return {Cut::framed, text, line.begin, false, {}};
            named_seen = true;
            if (own != nullptr) other = line.begin;
        } else if (pending.id != 0 && !pending.literal && !named_seen) {
            begun_by_text = true;
        }
    }

    // Only an unfinished line is left: the prompt for the text of a message has no line break behind it.
    if (!begun_by_name) {
        const char* end = FindPrompt(line);
        if (end != nullptr) return {Cut::framed, text, end, false, {}};
    }
    return {};
}
