#include <string.h>

#include "codec/atcode.h"
#include "platform/config.h"
#include "platform/log.h"
#include "port/com.h"
#include "records/handover.h"
#include "records/payload.h"
#include "records/queue.h"
#include "records/state.h"
#include "reports/broadcast.h"
#include "reports/handling.h"
#include "reports/response.h"
#include "reports/sorting.h"
#include "test/attest.h"
#include "text/atpublic.h"

static constexpr char kLogSource[] = "response";

namespace {

constexpr unsigned kReadSize = 102'400;

// What the test responder made of a read. Not touched while test mode is off.
char g_responder_text[kTestOutputSize];

// Where the last report line was taken out of gStrResAtBuffer.
Continuation g_continuation;

// What is known of gStrResAtBuffer, so that a read costs what it brought. The offsets of the last three count
// from where the text begins that has not been handled.
struct Known {
    BufferedText buffered;
    SortingMemory sorting;
    GrowingSearch broadcast;
    GrowingSearch status_report;

    void DropFront(size_t count) {
        sorting.DropFront(count);
        broadcast.Remove(0, count);
        status_report.Remove(0, count);
    }
    void RemoveLines(size_t begin, size_t end, const Continuation& follows) {
        sorting.RemoveLines(begin, end, follows);
        broadcast.Remove(begin, end);
        status_report.Remove(begin, end);
    }
};
Known g_known;

// Where the echo of the next line may stand: at the start of the buffered text, when nothing precedes it or
// what did has been handled, or behind the line break that was left there in front of a report.
enum class EchoPlace { none, start, behind_break };
EchoPlace g_echo_place = EchoPlace::start;

// Whether the last response took the line break behind it along, so that what follows begins a line.
bool g_at_line_start;

// Where the text goes on behind an echo. Pre-processing drops an echo at the start of the buffer, but not one
// that arrives in the same read as the response before it, or behind a line break that a report left. An echo
// whose own line break has not come is left to pre-processing.
char* SkipEcho(char* text) {
    if (g_echo_place == EchoPlace::none) return text;
    char* const follows = text + (g_echo_place == EchoPlace::behind_break ? 2 : 0);
    if (follows[0] == '\0' || (follows[0] == 'A' && follows[1] == '\0')) return text;
    g_echo_place = EchoPlace::none;
    if (follows[0] != 'A' || follows[1] != 'T') return text;
    g_continuation = {};
    char* const line_break = Find_Sub_Str(follows, "\r\n");
    return line_break != nullptr ? line_break : follows;
}

// Takes the lines from `begin` to `end` out of the text; returns where it begins then. Whichever is shorter
// moves: what stood before them or what stands behind.
char* TakeOut(char* text, char* begin, char* end) {
    auto before = static_cast<size_t>(begin - text);
    // Of nothing but line breaks one is enough.
    const bool only_breaks = before >= 2 && strspn(text, "\r\n") >= before;
    g_echo_place = only_breaks ? EchoPlace::behind_break : EchoPlace::none;
    if (only_breaks) {
        g_known.DropFront(before - 2);
        before = 2;
    }
    g_known.RemoveLines(before, before + static_cast<size_t>(end - begin), g_continuation);

    const size_t behind = g_known.buffered.length - static_cast<size_t>(end - gStrResAtBuffer);
    if (only_breaks || before <= behind) {
        memmove(end - before, begin - before, before);
        return end - before;
    }
    memmove(begin, end, behind + 1);
    g_known.buffered.length -= static_cast<size_t>(end - begin);
    if (g_continuation.at != nullptr) g_continuation.at = begin;
    return text;
}

// Handles the responses in the buffered text one after the other; returns where the unfinished rest begins.
char* HandleResponses(char* text) {
    for (;;) {
        char* const behind_echo = SkipEcho(text);
        if (behind_echo != text) g_known.DropFront(static_cast<size_t>(behind_echo - text));
        text = behind_echo;
        const Response response =
            NextResponse(text, PendingCommand::Current(), g_continuation, g_known.sorting);
        if (response.cut == Cut::nothing) return text;
        g_continuation = response.continuation;
        char* const begin = text + (response.begin - text);
        char* const end = text + (response.end - text);
        g_at_line_start = end[-1] == '\n';

        if (response.cut != Cut::leftover) {
            // Both look past the response: a broadcast is reported with each response framed up to it.
            const char* const broadcast = g_known.broadcast.Find(text, "+CBM:", 5);
            if (broadcast != nullptr) cbm_resolve(broadcast);
            const char* const status_report = g_known.status_report.Find(text, "+CDS: ", 6);
            if (status_report != nullptr) cds_resolve(status_report);
            const char kept = *end;
            *end = '\0';
            HandleResponse(begin, response.cut, response.in_answer);
            *end = kept;
        }
        if (response.cut == Cut::framed) {
            g_echo_place = EchoPlace::start;
            g_known.DropFront(static_cast<size_t>(end - text));
            text = end;
        } else {
            text = TakeOut(text, begin, end);
        }
    }
}

// A line that begins a read, where the last one ended with the line break of a handled response, would be
// dropped by pre-processing with everything else in front of the first line break. It gets one; an echo is
// to be dropped. For an empty buffer.
void OpenLine(const char* text) {
    if (!g_at_line_start) return;
    if (text[0] == '\0' || text[0] == '\r' || strncmp(text, "AT", 2) == 0 || strcmp(text, "A") == 0) return;
    memcpy(gStrResAtBuffer, "\r\n", 3);
    g_known.buffered.length = 2;
    if (g_continuation.at != nullptr) g_continuation.at = gStrResAtBuffer + 2;
}

// The unfinished rest becomes the buffer's content.
void CarryOver(char* rest) {
    size_t length = g_known.buffered.length - static_cast<size_t>(rest - gStrResAtBuffer);
    // A rest that begins in the middle of a line gets the line break that pre-processing looks for; an echo
    // is to be dropped by it.
    const bool bare = length != 0 && rest[0] != '\r' && strncmp(rest, "AT", 2) != 0;
    const size_t shift = bare && length + 2 <= kMaxBuffered ? 2 : 0;
    char* const moved = gStrResAtBuffer + shift;
    if (moved != rest) {
        if (g_continuation.at != nullptr) g_continuation.at = moved + (g_continuation.at - rest);
        memmove(moved, rest, length + 1);
        g_known.buffered.line_break = {};
    }
    if (shift != 0) {
        memcpy(gStrResAtBuffer, "\r\n", 2);
        if (g_echo_place == EchoPlace::start) g_echo_place = EchoPlace::behind_break;
        g_known = {};
    }
    length += shift;
    g_known.buffered.length = length;
    if (length == 0) g_echo_place = EchoPlace::start;

    if (length >= kMaxBuffered) {
        AT_LOG(LOG_ERR, "receive buffer is full, %d characters without a complete response dropped",
               static_cast<int>(length));
        ForgetReceived();
    }
}

}  // namespace

void ProcessReceived(char* received) {
    AT_LOG(LOG_DEBUG, "acComReceive=%s", received);
    char* text = AtResponseText(received, g_responder_text) == received ? received : g_responder_text;
    AT_LOG(LOG_DEBUG, "pAtRes=%s", text);

    if (gStrResAtBuffer[0] == '\0') {
        g_known = {};
        OpenLine(text);
    }
    if (AppendReceived(gStrResAtBuffer, text, g_known.buffered) != 0) {
        g_continuation = {};
        g_known = {.buffered = g_known.buffered, .sorting = {}, .broadcast = {}, .status_report = {}};
    }
    CarryOver(HandleResponses(gStrResAtBuffer));
}

uint32_t on_recieve_at() {
    const bool watched = ConfigIs("WatchDog_Setting_Option", "on");
    const int length = PortRecv(g_iFdCom, g_acSioBuf, kReadSize, g_sPortInfo.ulSpeed);
    if (length <= 0) return 1;
    g_acSioBuf[length] = '\0';
    if (watched) AtStatistics.read.fetch_add(1, std::memory_order_relaxed);

    // A line is written only after its request was handed over, so what answers it finds it in place.
    HandoverTake();

    AT_LOG(LOG_INFO, "Receive AT response ok,RecvLen(chars) =  %d.", length);
    AT_LOG(LOG_INFO, "\n------------------------------------\n%s-------------------RecvLen:%d-----",
           g_acSioBuf, length);
    ProcessReceived(g_acSioBuf);
    return 0;
}

void ForgetReceived() {
    gStrResAtBuffer[0] = '\0';
    g_known = {};
    g_continuation = {};
    g_echo_place = EchoPlace::start;
    g_at_line_start = false;
}

bool DropUnfinishedQuote() {
    bool quoted = false;
    for (const char* at = gStrResAtBuffer; *at != '\0'; ++at)
        if (*at == '"') quoted = !quoted;
    if (!quoted) return false;
    AT_LOG(LOG_WARNING, "unfinished text with an open quote dropped: %.80s", gStrResAtBuffer);
    ForgetReceived();
    return true;
}
