// What must hold after each transaction.

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "checks/simulation/play.h"
#include "codec/framing.h"
#include "records/payload.h"
#include "records/state.h"
#include "server/transaction.h"

void Totals::Add(const Totals& more) {
    uint64_t* to = &requests;
    const uint64_t* from = &more.requests;
    for (size_t i = 0; i < sizeof *this / sizeof requests; ++i)
        to[i] += from[i];
}

void World::RequestPut(const MSG_BUF& request, bool has_line) {
    put_ = serving_;
    if (put_ == 0) {
        Fault("something was handed over that is no request");
        return;
    }
    if (!has_line) requests_[put_].no_line = true;
    if (has_line && request.lMsgType == -1) requests_[put_].dial = true;
}

// The request in the slot becomes the one in flight.
void World::RequestTaken() {
    Request* before = Flight();
    if (before != nullptr) {
        if (!before->no_line && !before->port_failed && !before->unreachable)
            Fault("request " + std::to_string(put_) + " overwrote request " + std::to_string(flight_) +
                  ", which was being served");
        before->overwritten = true;
        Note("request " + std::to_string(flight_) + " is overwritten by " + std::to_string(put_));
    }
    Request& request = requests_[put_];
    request.taken = true;
    request.inherited = count_ != 0;
    if (residue_) request.disturbed = true;
    if (request.dial && !request.no_line) {
        last_dial_ = put_;
        dial_answers_ = 0;
        flight_ = 0;
    } else {
        flight_ = put_;
    }
    put_ = 0;
    idle_rounds_ = 0;
}

// After a look at the slot: what has just been read is judged for the request that it now belongs to, and a
// round of waiting is over when the look was the second one.
void World::TakeDone() {
    if (reading_) {
        reading_ = false;
        Judge();
    }
    if (!read_done_) return;
    read_done_ = false;
    Request* flight = Flight();
    timeout_due_ = false;
    if (g_at_msg.lMsgType == -1) {
        count_ = 0;
        ++idle_rounds_;
        return;
    }
    idle_rounds_ = 0;
    ++count_;
    if (flight != nullptr) ++flight->rounds;
    if (count_ % TimeoutRounds(PendingRequest()->usCmdID) == 0) {
        timeout_due_ = true;
        count_ = 0;
    }
}

void World::Judge() {
    Request* flight = Flight();
    bool foreign = false;
    for (const Bytes& bytes : just_read_) {
        const Item& item = items_[bytes.item];
        if (item.owner == Item::noise || item.cut) foreign = residue_ = true;
        const size_t answer_size = item.answer_size != 0 ? item.answer_size : item.text.size();
        const bool whole = bytes.begin + bytes.text.size() >= answer_size;
        if (item.owner == Item::answer && item.serial != flight_ && bytes.begin < answer_size)
            foreign = residue_ = true;
        if (item.owner == Item::answer && item.serial == flight_ && whole && item.answer_size != 0 &&
            !item.cut)
            flight->answer_read = true;
        std::vector<int> serials = item.reports_inside;
        if (item.owner == Item::report) serials.push_back(item.serial);
        for (const int serial : serials) {
            if (flight == nullptr || kReportKinds[reports_[serial].kind].id != flight->command) continue;
            // By the wire nobody can tell this report from a line of the answer.
            flight->disturbed = residue_ = true;
            reports_[serial].loose = true;
        }
    }
    if (flight != nullptr && foreign) flight->disturbed = true;
    last_read_.clear();
    const bool prompted = flight != nullptr && flight->command == 0x0108;
    for (const Bytes& bytes : just_read_) {
        const Item& item = items_[bytes.item];
        std::vector<int> serials = item.reports_inside;
        if (item.owner == Item::report) serials.push_back(item.serial);
        for (const int serial : serials) {
            if (foreign || residue_ || prompted) reports_[serial].loose = true;
            if (bytes.last) reports_[serial].read = true;
            last_read_.push_back(serial);
        }
    }
    just_read_.clear();
}

// A read has been handled.
void World::RoundRead() {
    read_done_ = true;
    const Request* flight = Flight();
    if (flight != nullptr && flight->answer_read && !flight->disturbed)
        Fault("the answer to request " + std::to_string(flight_) + " was read and not delivered");
    if (strnlen(gStrResAtBuffer, kMaxBuffered + 1) > kMaxBuffered) Fault("the receive buffer has no end");
    if (strnlen(g_cmd_str, kLineSize) == kLineSize) Fault("the last command line has no end");
    if (gStrResAtBuffer[0] == '\0') residue_ = false;
}

void World::Redeemed() {
    const Request* flight = Flight();
    if (timeout_due_ && flight != nullptr && !flight->unreachable)
        Fault("request " + std::to_string(flight_) + " was not answered at its time-out");
    timeout_due_ = false;
}

void World::Cleared() {
    Request* flight = Flight();
    if (flight != nullptr && flight->answers == 0 && !flight->unreachable) {
        bool allowed = false;
        if (routed != nullptr) {
            for (const char* event : {"CONNECT", "ANSWER", "^CONN", "^CEND", "+ZCPI"})
                allowed = allowed || strstr(routed, event) != nullptr;
            const bool stray_ok = strstr(routed, "OK") != nullptr;
            allowed = allowed || (stray_ok && (flight->no_line || flight->disturbed));
        }
        if (!allowed) Fault("request " + std::to_string(flight_) + " was dropped without an answer");
        flight->cleared = true;
        // What still comes of its answer is nobody's, and may be taken together with what stands inside.
        // So may a report that was read with it.
        residue_ = true;
        for (const int serial : last_read_)
            reports_[serial].loose = true;
        for (const Item& item : items_)
            if (item.owner == Item::answer && item.serial == flight_)
                for (const int serial : item.reports_inside)
                    reports_[serial].loose = true;
        Note("request " + std::to_string(flight_) + " is ended without an answer");
    }
    flight_ = 0;
}

void World::CheckSent(int key, const QueueMessage& message) {
    MSG_BUF record{};
    if (!FromWire(message, record)) {
        Fault("a message of type " + std::to_string(message.mtype));
        return;
    }
    const _BK_AT_RES_T& res = ResponseOf(record);
    char line[128];
    snprintf(line, sizeof line, "module %04x gets type %d, command %04x type %d result %d '%.30s'",
             static_cast<unsigned>(key), record.lMsgType, res.usCmdID, res.ucCmdType, res.ucResult,
             reinterpret_cast<const char*>(res.aucParas));
    if (tracing_) Note(line);
    if (record.usTargetModuleID != key) Fault("a message for another module than its queue's");
    if (res.ucResult == 0) Fault("a message left with result 0");
    if (record.ulMagic != AT_MESSAGE_MAGIC || record.usMsgCmd != AT_MESSAGE_COMMAND)
        Fault("a message with a wrong header");
    if (record.lMsgType == 1) {
        CheckReport(record, res);
        return;
    }
    const auto known = requests_.find(record.lMsgType);
    if (known == requests_.end()) {
        Fault("an answer to nobody's request");
        return;
    }
    Request& request = known->second;
    const std::string name = "request " + std::to_string(request.serial);
    if (request.module != key) Fault("the answer to " + name + " went to another module");
    if (record.usSourceModuleID != AT_MODULE_SERVER && record.usSourceModuleID != 0 && request.reachable)
        Fault("the answer to " + name + " has another sender than the request's receiver");
    if (request.serial != flight_) Fault(name + " was answered while it was not in flight");
    if (++request.answers > 1) Fault(name + " was answered twice");
    if (res.usCmdID != request.command || res.ucCmdType != request.type)
        Fault("the answer to " + name + " carries another command");
    CheckOwnAnswer(request, res, record.usDataLen);
}

void World::CheckOwnAnswer(Request& request, const _BK_AT_RES_T& res, uint16_t length_word) {
    const std::string name = "request " + std::to_string(request.serial);
    Totals& totals = outcome_.totals;
    if (res.ucResult == AT_RESULT_TIMEOUT) {
        if (!timeout_due_) Fault(name + " was timed out too early");
        if (length_word != 0x0208) Fault("the time-out of " + name + " has a wrong length word");
        if (request.answer_read && !request.disturbed) Fault(name + " timed out with its answer at hand");
        if (!request.inherited && request.rounds % LimitOf(request.command) != 0)
            Fault(name + " timed out after " + std::to_string(request.rounds) + " rounds");
        ++(request.inherited ? totals.inherited : totals.timeouts);
        timeout_due_ = false;
        return;
    }
    if (length_word != static_cast<uint16_t>(res.usParaLen + 6))
        Fault("the answer to " + name + " has a wrong length word");
    // Answers carry no identity on the wire: once a line's answer is late, or the line is noisy, nobody can
    // say whose text it is. Then the requester still gets one answer, but not always its own.
    if (request.disturbed) {
        ++totals.disturbed;
        return;
    }
    if (!request.answer_read) Fault(name + " was answered before the modem did");
    const std::string wrong = CheckAnswer(request, res);
    if (!wrong.empty()) Fault("the answer to " + name + " " + wrong);
    ++(res.ucResult == AT_RESULT_OK ? totals.exact : totals.own_errors);
}

void World::CheckReport(const MSG_BUF& record, const _BK_AT_RES_T& res) {
    if (res.usCmdID == 0x0401) {  // the outcome of a dial is delivered like an answer, when it comes in peace
        const Request& dial = requests_[last_dial_];
        if (last_dial_ == 0 || dial.module != record.usTargetModuleID || ++dial_answers_ > 1)
            Fault("the outcome of a dial went to another module, or twice");
        return;
    }
    if (record.usSourceModuleID != AT_MODULE_SERVER) return;  // an error that was nobody's answer
    if (res.ucResult != AT_RESULT_OK) Fault("a report with result " + std::to_string(res.ucResult));
    for (int kind = 0; kind < kReportKindCount; ++kind) {
        const ReportKind& known = kReportKinds[kind];
        if (known.id != res.usCmdID || known.module != record.usTargetModuleID) continue;
        int32_t serial = 0;
        if (known.number_at >= 0)
            memcpy(&serial, res.aucParas + known.number_at, sizeof serial);
        else
            serial = atoi(reinterpret_cast<const char*>(res.aucParas) + known.text_at);
        const auto report = reports_.find(serial);
        if (report == reports_.end() || report->second.kind != kind) return;
        if (++report->second.arrived > 1 && !known.at_least && !report->second.loose)
            Fault("report " + std::to_string(serial) + " arrived twice");
        return;
    }
}

void World::CheckEnd() {
    Totals& totals = outcome_.totals;
    for (const auto& [serial, request] : requests_) {
        const std::string name = "request " + std::to_string(serial);
        if (!request.received) Fault(name + " was never received");
        ++totals.requests;
        if (request.answers == 1) continue;
        if (request.dial && !request.no_line)
            ++totals.dials;
        else if (request.overwritten)
            ++totals.overwritten;
        else if (request.cleared)
            ++totals.cleared;
        else if (request.unreachable)
            ++totals.unreachable;
        else
            Fault(name + " was never answered");
    }
    for (const auto& [serial, report] : reports_) {
        const ReportKind& kind = kReportKinds[report.kind];
        if (kind.module == 0) continue;
        const bool loose = report.loose || !report.read || once_missing_.count(kind.module) != 0;
        ++(loose ? totals.loose_reports : totals.reports);
        if (!loose && report.arrived == 0)
            Fault("report " + std::to_string(serial) + " of command " + std::to_string(kind.id) +
                  " never arrived");
    }
}
