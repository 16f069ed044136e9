#include "reports/sorting.h"

#include <string.h>

#include "codec/atcode.h"
#include "records/state.h"
#include "text/atpublic.h"

namespace {

// Reports that framing has no end marker for, but whose names have rows.
constexpr const char* kReportNames[] = {
    "+CREG",   "+CGREG", "+CEREG", "+ZEMCI", "+ZCONSTAT", "+CGEV",  "+ZGIPDNS",
    "+ZICCID", "+ZUPCI", "+ZUEND", "+ZCPI",  "+ZURDY",    "+ZPBIC",
};
// Of these the commands that can also be sent: their late answers look like reports.
constexpr const char* kSendableReportNames[] = {"+CREG", "+CGREG", "+CEREG", "+ZEMCI"};

bool BeginsWith(const ModemLine& line, const char* text) {
    // A line that was read always has a beginning. NOLINTNEXTLINE(clang-analyzer-core.NonNullParamChecker)
    return strncmp(line.begin, text, strlen(text)) == 0;
}

// A line of name N begins with N and ":", so that "+ZMACR: 1" is not a line of "+ZMAC".
bool HasName(const ModemLine& line, const char* name) {
    if (line.colon == nullptr) return false;
    const size_t length = strlen(name);
    return line.colon == line.begin + length && memcmp(line.begin, name, length) == 0;
}

template <size_t count>
bool HasAnyName(const ModemLine& line, const char* const (&names)[count]) {
    for (const char* name : names)
        if (HasName(line, name)) return true;
    return false;
}

// A named line that no command of ours can have caused: it looks like a result code, has no row and no end
// marker.
bool IsUnknownReport(const ModemLine& line) {
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

bool IsReportLine(const ModemLine& line, const PendingCommand& pending) {
    if (BeginsWith(line, "VOICE NO CARRIER ") || BeginsWith(line, "VOICE NO CARRIER:")) return true;
    if (HasAnyName(line, kReportNames)) return pending.name == nullptr || !HasName(line, pending.name);
    return IsUnknownReport(line);
}

// Cell broadcasts and status reports bring their PDU in the line that follows.
bool BringsPdu(const ModemLine& line) {
    return HasName(line, "+CBM") || HasName(line, "+CDS");
}

}  // namespace

PendingCommand PendingCommand::Current() {
    PendingCommand pending;
    pending.id = PendingRequest()->usCmdID;
    int row = 0;
    if (pending.id == 0 || Bk_Find_Cmd_By_Id(pending.id, &row) != 0) return pending;
    const char* name = g_astAtCmdTable[row].acCmdName;
    if (name[0] != '\0') pending.name = name;
    switch (pending.id) {
        case 0x052B:  // +CCFC
        case 0x052C:  // +CCWA
        case 0x0513:  // +CLIP
            pending.literal = true;
            break;
        case 0x0532:  // +CUSD
        case 0x063E:  // +ZNITZ
        case 0x0118:  // +ZVMAIL
            pending.literal = IsModuleCardMode();
            break;
        default:
            break;
    }
    return pending;
}

// One call of NextResponse.
class Sorter {
  public:
    Sorter(const char* text, const PendingCommand& pending, const Continuation& continuation,
           SortingMemory& memory)
        : text_(text),
          pending_(pending),
          continuation_(continuation),
          memory_(memory),
          judged_(memory.judged_) {
        const size_t at = continuation.at != nullptr ? Offset(continuation.at) : kNowhere;
        const bool same_command = memory.pending_ == pending;
        const bool continues = memory.continues_at_ == at && memory.hex_line_ == continuation.hex_line &&
                               memory.late_ok_ == continuation.late_ok;
        if (!same_command) memory.own_ = {};
        if (!same_command || !continues) judged_ = {.follows_report = at != kNowhere};
        memory.pending_ = pending;
        memory.continues_at_ = at;
        memory.hex_line_ = continuation.hex_line;
        memory.late_ok_ = continuation.late_ok;

        own_ = FindOwnLine();
        // Lines that were judged while it was unknown are judged otherwise now.
        if ((own_ != nullptr) != judged_.own_known)
            judged_ = {.own_known = own_ != nullptr, .follows_report = at != kNowhere};
    }

    Response Next() {
        ModemLine line = Read(text_ + judged_.line);
        for (; line.complete; line = Read(line.end)) {
            const Response response = Judge(line);
            if (response.cut != Cut::nothing) return response;
            if (!waits_) judged_.line = Offset(line.end);
        }
        // Only an unfinished line is left: the prompt for the text of a message has no line break behind it.
        const char* const end = judged_.begun_by_name ? nullptr : PromptEnd(line);
        return end != nullptr ? Framed(end) : Response{};
    }

  private:
    size_t Offset(const char* at) const { return static_cast<size_t>(at - text_); }
    Response Framed(const char* end) const { return {Cut::framed, text_, end, false, {}}; }

    LineScan& ScanOf(const char* begin) {
        SortingMemory::ReadLines& lines = memory_.lines_;
        const size_t at = Offset(begin);
        for (size_t i = 0; i < 2; ++i)
            if (lines.line[i] == at) return lines.scan[i];
        const unsigned replaced = lines.oldest;
        lines.oldest ^= 1U;
        lines.line[replaced] = at;
        return lines.scan[replaced] = {};
    }
    ModemLine Read(const char* begin) { return ReadLine(begin, ScanOf(begin)); }
    bool IsHex(const ModemLine& line) { return IsHexLine(line, ScanOf(line.begin)); }

    // The first line of the pending command's own name, up to the first final result. Null when there is
    // none.
    const char* FindOwnLine() {
        if (pending_.name == nullptr || pending_.literal) return nullptr;
        SortingMemory::OwnLine& own = memory_.own_;
        if (own.state == SortingMemory::Own::searched) {
            ModemLine line = Read(text_ + own.at);
            for (; line.complete; line = Read(line.end)) {
                if (HasName(line, pending_.name)) {
                    own.state = SortingMemory::Own::found;
                    break;
                }
                if (line.final_result && !IsReportLine(line, pending_)) {
                    own.state = SortingMemory::Own::none;
                    break;
                }
            }
            own.at = Offset(line.begin);
        }
        return own.state == SortingMemory::Own::found ? text_ + own.at : nullptr;
    }

    // Takes `line` as a response that starts at `begin`. Nothing, when the PDU that belongs to it is still on
    // its way: then it is judged again.
    Response TakeLine(Cut cut, const char* begin, const ModemLine& line, bool in_answer) {
        Response response{cut, begin, line.end, in_answer, {}};
        if (BringsPdu(line)) {
            const ModemLine next = Read(line.end);
            const bool hex = IsHex(next);
            if (hex && next.complete) {
                response.end = next.end;
            } else if (!next.complete && (next.Empty() || hex)) {
                response.cut = Cut::nothing;
                waits_ = true;
            }
        } else if (cut == Cut::report) {
            response.continuation = {line.end, IsUnknownReport(line), HasAnyName(line, kSendableReportNames)};
        }
        return response;
    }

    // The response that `line` ends or is. Nothing, when it is part of something that goes on.
    Response Judge(const ModemLine& line) {
        if (line.Empty()) return {};

        if (judged_.follows_report && line.begin >= continuation_.at) {
            judged_.follows_report = false;
            if (continuation_.hex_line && line.begin == continuation_.at && IsHex(line))
                return {Cut::leftover, line.begin, line.end, false, {}};
            if (continuation_.late_ok && pending_.id == 0 && line.Length() == 2 && BeginsWith(line, "OK"))
                return {Cut::leftover, line.begin, line.end, false, {}};
        }

        const bool behind_other = judged_.other != kNowhere;
        if (line.begin == own_) {
            if (behind_other) return Framed(line.begin);
            judged_.begun_by_name = true;
            return line.final_result ? Framed(line.end) : Response{};
        }
        const bool begun = judged_.begun_by_name || judged_.begun_by_text;
        if (IsReportLine(line, pending_)) {
            // What stands before the answer is complete where the next named line begins.
            if (behind_other) return Framed(line.begin);
            return TakeLine(Cut::report, line.begin, line, begun);
        }
        if (line.final_result) return Framed(line.end);

        if (begun) {
            const bool own_name = pending_.name != nullptr && HasName(line, pending_.name);
            if (line.BeginsWithMarker() && !BeginsWith(line, "> ") && !own_name)
                return TakeLine(Cut::inside, line.begin, line, true);
            if (judged_.begun_by_name || own_ == nullptr) return {};
        }

        if (line.marker != nullptr) {
            if (behind_other) return Framed(line.begin);
            return TakeLine(Cut::framed, text_, line, false);
        }
        if (line.colon != nullptr) {
            if (behind_other) return Framed(line.begin);
            judged_.named_seen = true;
            if (own_ != nullptr) judged_.other = Offset(line.begin);
        } else if (pending_.id != 0 && !pending_.literal && !judged_.named_seen) {
            judged_.begun_by_text = true;
        }
        return {};
    }

    const char* const text_;
    const PendingCommand& pending_;
    const Continuation& continuation_;
    SortingMemory& memory_;
    SortingMemory::Judged& judged_;
    const char* own_ = nullptr;
    bool waits_ = false;  // a line has been reached whose PDU is still on its way
};

void SortingMemory::DropFront(size_t count) {
    judged_ = {};
    continues_at_ = kNowhere;
    if (own_.at < count)
        own_ = {};
    else
        own_.at -= count;
    for (size_t& line : lines_.line)
        if (line != kNowhere) line = line < count ? kNowhere : line - count;
}

void SortingMemory::RemoveLines(size_t begin, size_t end, const Continuation& follows) {
    const size_t count = end - begin;
    const bool stands_there = judged_.line == begin;
    continues_at_ = follows.at != nullptr ? begin : kNowhere;
    hex_line_ = follows.hex_line;
    late_ok_ = follows.late_ok;
    if (!stands_there) judged_ = {};
    judged_.follows_report = follows.at != nullptr;
    if (own_.at >= end)
        own_.at -= count;
    else if (own_.at >= begin)
        own_ = {};
    for (size_t& line : lines_.line)
        if (line != kNowhere && line >= begin) line = line < end ? kNowhere : line - count;
}

Response NextResponse(const char* text, const PendingCommand& pending, const Continuation& continuation) {
    SortingMemory memory;
    return NextResponse(text, pending, continuation, memory);
}

Response NextResponse(const char* text, const PendingCommand& pending, const Continuation& continuation,
                      SortingMemory& memory) {
    return Sorter(text, pending, continuation, memory).Next();
}
