#include "checks/support/plain_delivery.h"

#include "checks/support/plain_sorting.h"
#include "codec/framing.h"
#include "reports/broadcast.h"
#include "reports/handling.h"

namespace {

// A work area of the size that each has, cleared, with `text` at its start.
std::string Area(const std::string& text) {
    std::string area(kModemTextSize, '\0');
    area.replace(0, text.size(), text);
    return area;
}

}  // namespace

void PlainDelivery::Receive(const std::string& received) {
    const std::string read = Area(received);
    const std::string chunk = read.c_str();
    if (waiting_.empty()) OpenLine(chunk);
    const std::string joined = Area(waiting_);
    waiting_ = joined.c_str();
    if (PlainPreProcess(waiting_, chunk) != 0) continues_at_ = kNone;
    CarryOver(HandleResponses());
}

// A read that begins a line gets the line break that would otherwise be looked for in it; an echo does not.
void PlainDelivery::OpenLine(const std::string& chunk) {
    const bool echo = chunk == "A" || chunk.rfind("AT", 0) == 0;
    if (!at_line_start_ || chunk.empty() || chunk[0] == '\r' || echo) return;
    waiting_ = "\r\n";
    if (continues_at_ != kNone) continues_at_ = 2;
}

// Where the text goes on behind the echo of a line.
size_t PlainDelivery::SkipEcho(size_t from) {
    if (echo_ == EchoPlace::none) return from;
    const size_t follows = from + (echo_ == EchoPlace::behind_break ? 2 : 0);
    const std::string rest = waiting_.substr(follows);
    if (rest.empty() || rest == "A") return from;
    echo_ = EchoPlace::none;
    if (rest.rfind("AT", 0) != 0) return from;
    continues_at_ = kNone;
    const size_t line_break = PlainFind(waiting_, "\r\n", follows);
    return line_break != kNone ? line_break : follows;
}

// Returns where the unfinished rest begins.
size_t PlainDelivery::HandleResponses() {
    for (size_t from = 0;;) {
        from = SkipEcho(from);
        const char* const all = waiting_.c_str();
        continuation_.at = continues_at_ != kNone ? all + continues_at_ : nullptr;
        const Response response = PlainNextResponse(all + from, PendingCommand::Current(), continuation_);
        if (response.cut == Cut::nothing) return from;

        const auto begin = static_cast<size_t>(response.begin - all);
        const auto end = static_cast<size_t>(response.end - all);
        continuation_ = response.continuation;
        continues_at_ = continuation_.at != nullptr ? end : kNone;
        at_line_start_ = waiting_[end - 1] == '\n';
        if (response.cut != Cut::leftover) Handle(from, begin, end, response);
        if (response.cut == Cut::framed) {
            echo_ = EchoPlace::start;
            from = end;
        } else {
            from = TakeOut(from, begin, end);
        }
    }
}

void PlainDelivery::Handle(size_t from, size_t begin, size_t end, const Response& response) {
    if (waiting_.compare(end - 2, 2, "> ") == 0) g_sms_prompt = 1;
    const size_t broadcast = PlainFind(waiting_, "+CBM:", from);
    if (broadcast != kNone) cbm_resolve(waiting_.c_str() + broadcast);
    const size_t status_report = PlainFind(waiting_, "+CDS: ", from);
    if (status_report != kNone) cds_resolve(waiting_.c_str() + status_report);
    const std::string copy = Area(waiting_.substr(begin, end - begin));
    HandleResponse(copy.c_str(), response.cut, response.in_answer);
}

// Takes lines out of the text; of nothing but line breaks before them one is kept. Returns where the text
// begins.
size_t PlainDelivery::TakeOut(size_t from, size_t begin, size_t end) {
    waiting_.erase(begin, end - begin);
    if (continues_at_ != kNone) continues_at_ = begin;
    const std::string before = waiting_.substr(from, begin - from);
    const bool only_breaks = before.size() >= 2 && before.find_first_not_of("\r\n") == kNone;
    echo_ = only_breaks ? EchoPlace::behind_break : EchoPlace::none;
    return only_breaks ? begin - 2 : from;
}

void PlainDelivery::CarryOver(size_t from) {
    std::string rest = waiting_.substr(from);
    if (continues_at_ != kNone) continues_at_ -= from;
    const bool bare = !rest.empty() && rest[0] != '\r' && rest.rfind("AT", 0) != 0;
    if (bare && rest.size() + 2 <= kMaxBuffered) {
        rest.insert(0, "\r\n");
        if (continues_at_ != kNone) continues_at_ += 2;
        if (echo_ == EchoPlace::start) echo_ = EchoPlace::behind_break;
    }
    if (rest.empty()) echo_ = EchoPlace::start;
    if (rest.size() >= kMaxBuffered)
        *this = {};
    else {
        const std::string carried = Area(rest);
        waiting_ = carried.c_str();
    }
}
