#include "checks/simulation/play.h"

#include <errno.h>
#include <stdarg.h>
#include <stdio.h>
#include <string.h>
#include <sys/ipc.h>
#include <sys/msg.h>

#include <algorithm>
#include <new>

#include "codec/framing.h"
#include "port/com.h"
#include "records/payload.h"
#include "records/state.h"
#include "reports/response.h"
#include "server/request.h"
#include "server/transaction.h"

World* g_world;

namespace {

constexpr size_t kStackSize = 512 * 1024;
constexpr int64_t kStuck = 900'000'000;  // longer than two of the longest time-outs and any stall
constexpr uint16_t kModules[] = {AT_MODULE_CALL, AT_MODULE_SIM,     AT_MODULE_SMS, AT_MODULE_TIME,
                                 AT_MODULE_DATA, AT_MODULE_TOOLKIT, 0x1011};

ucontext_t g_main;
Thread g_request_thread;
Thread g_response_thread;
bool g_threads_exist;
alignas(World) unsigned char g_world_space[sizeof(World)];

void RunRequestThread() {
    RequestLoop(AT_MODULE_SERVER);
}
void RunResponseThread() {
    resolve_at_response_thread(nullptr);
}

void MakeThread(Thread& thread, void (*run)()) {
    getcontext(&thread.context);
    thread.context.uc_stack.ss_sp = new char[kStackSize];
    thread.context.uc_stack.ss_size = kStackSize;
    thread.context.uc_link = nullptr;
    makecontext(&thread.context, run, 0);
}

std::string Printable(const std::string& text) {
    std::string out;
    for (const char c : text.substr(0, 160)) {
        char escaped[8];
        if (c == '\r')
            out += "\\r";
        else if (c == '\n')
            out += "\\n";
        else if (c < ' ' || c > '~')
            out += (snprintf(escaped, sizeof escaped, "\\x%02x", static_cast<unsigned char>(c)), escaped);
        else
            out += c;
    }
    return out;
}

}  // namespace

Episode MakeEpisode(uint64_t seed, unsigned events) {
    Episode episode{seed, {}};
    Random random(seed);
    int64_t at = 1'000;
    const unsigned hurry = 1 + random.Below(4);
    for (unsigned i = 0; i < events; ++i) {
        static constexpr Event::Kind kRare[] = {Event::hostile, Event::noise,        Event::unplug,
                                                Event::stall,   Event::remove_queue, Event::hostile};
        Event::Kind kind = Event::request;
        if (random.OneIn(6)) kind = Event::report;
        if (random.OneIn(24)) kind = kRare[random.Below(6)];
        // Most things happen just when the response thread wakes up: that is where threads meet.
        if (!random.OneIn(4)) at -= at % 10'000;
        episode.events.push_back({kind, random.Next(), at});
        if (!random.OneIn(3)) at += random.Below(120'000) / hurry;
    }
    return episode;
}

World::World(const Episode& episode, bool trace, bool obvious)
    : episode_(episode),
      tracing_(trace),
      obvious_(obvious),
      random_(episode.seed ^ 0x5EED),
      switch_rate_(1U << (1 + random_.Below(7))),
      echo_(random_.OneIn(3)),
      events_left_(episode.events.size()) {
    for (size_t i = 0; i < episode.events.size(); ++i)
        At(episode.events[i].at, Due::event, i);
}

void World::Note(const std::string& line) {
    if (!tracing_) return;
    char stamp[32];
    snprintf(stamp, sizeof stamp, "%10.3f ms  ", static_cast<double>(now_) / 1000);
    outcome_.trace.push_back(stamp + line);
}

void World::Fault(const std::string& what) {
    Note("FAULT: " + what);
    if (!outcome_.failed) outcome_.fault = what;
    outcome_.failed = true;
}

void World::At(int64_t at, Due::What what, size_t index, size_t piece) {
    due_.push({at, ++order_, what, index, piece});
}

// ---- the threads ----------------------------------------------------------------------------------------

void World::Block() {
    Thread* self = current_;
    swapcontext(&self->context, &g_main);
}

void World::MaySwitch() {
    if (current_ == nullptr || !random_.OneIn(switch_rate_)) return;
    ++outcome_.totals.switches;
    Block();
}

void World::Sleep(int64_t microseconds) {
    if (current_ == nullptr) return;
    current_->state = Thread::sleeping;
    current_->until = now_ + microseconds;
    Block();
}

void World::Resume(Thread& thread) {
    current_ = &thread;
    swapcontext(&g_main, &thread.context);
    current_ = nullptr;
}

bool World::AtRest() const {
    return events_left_ == 0 && due_.empty() && ready_.empty() && !emitting_ && port_.empty() && put_ == 0 &&
           server_sizes_.empty() && g_request_thread.state == Thread::waits_for_message &&
           g_response_thread.state == Thread::sleeping && idle_rounds_ >= 2;
}

Outcome World::Run() {
    Thread* const threads[] = {&g_request_thread, &g_response_thread};
    while (!outcome_.failed && !AtRest()) {
        while (!due_.empty() && due_.top().at <= now_) {
            const Due due = due_.top();
            due_.pop();
            Happen(due);
        }
        bool runnable[2];
        for (int i = 0; i < 2; ++i) {
            if (threads[i]->state == Thread::sleeping && threads[i]->until <= now_)
                threads[i]->state = Thread::runnable;
            runnable[i] = threads[i]->state == Thread::runnable;
        }
        if (runnable[0] || runnable[1]) {
            const bool second = runnable[0] && runnable[1] ? random_.OneIn(2) : runnable[1];
            Resume(*threads[second ? 1 : 0]);
            continue;
        }
        int64_t next = INT64_MAX;
        for (const Thread* thread : threads)
            if (thread->state == Thread::sleeping) next = std::min(next, thread->until);
        if (!due_.empty()) next = std::min(next, due_.top().at);
        if (next == INT64_MAX || next - progress_ > kStuck) {
            Fault("the server is stuck: nothing has moved for " + std::to_string((now_ - progress_) / 1000) +
                  " ms of its time");
            break;
        }
        now_ = next;
        // A requester without a queue can never be answered; its request would stay until the next one comes.
        const Request* flight = Flight();
        if (events_left_ == 0 && due_.empty() && flight != nullptr && flight->unreachable && put_ == 0 &&
            server_sizes_.empty() && port_.empty() && missing_.count(flight->module) != 0) {
            flight_ = 0;
            g_at_msg = MSG_BUF{};
            g_at_msg.lMsgType = -1;
        }
    }
    if (!outcome_.failed) CheckEnd();
    // What noise left in the buffer is no business of the next episode.
    ForgetReceived();
    g_last_atcmd = 0;
    g_response_thread.until = 0;
    return std::move(outcome_);
}

Outcome Play(const Episode& episode, bool trace, bool obvious) {
    g_world = new (g_world_space) World(episode, trace, obvious);
    if (!g_threads_exist) {
        g_threads_exist = true;
        g_iFdCom = kPort;
        ClearPendingRequest();
        MakeThread(g_request_thread, RunRequestThread);
        MakeThread(g_response_thread, RunResponseThread);
        // Once round, so that every episode meets the same server: one at rest.
        Play(Episode{}, false, obvious);
        g_world = new (g_world_space) World(episode, trace, obvious);
    }
    Outcome outcome = g_world->Run();
    g_world->~World();
    return outcome;
}

// ---- the queues -----------------------------------------------------------------------------------------

int World::QueueOf(int key) {
    MaySwitch();
    const bool exists = key == AT_MODULE_SERVER ||
                        std::find(std::begin(kModules), std::end(kModules), key) != std::end(kModules);
    if (exists && missing_.count(key) == 0) return key;
    Request* flight = Flight();
    if (flight != nullptr && flight->module == key) flight->unreachable = true;
    errno = ENOENT;
    return -1;
}

int World::SendMessage(int key, const QueueMessage& message, size_t size) {
    MaySwitch();
    if (size != AT_WIRE_SIZE) Fault("a message of " + std::to_string(size) + " bytes");
    while (missing_.count(key) == 0 && queues_[key].size() >= kQueueCapacity) {
        current_->state = Thread::waits_for_room;
        current_->key = key;
        Block();
    }
    if (missing_.count(key) != 0) {
        Request* flight = Flight();
        if (flight != nullptr && flight->module == key) flight->unreachable = true;
        errno = EIDRM;
        return -1;
    }
    CheckSent(key, message);
    queues_[key].push_back(message);
    if (draining_.insert(key).second) At(now_ + random_.Below(20'000), Due::drain, static_cast<size_t>(key));
    progress_ = now_;
    MaySwitch();
    return 0;
}

ssize_t World::ReceiveMessage(QueueMessage* message, size_t size, int flags) {
    MaySwitch();
    while (queues_[AT_MODULE_SERVER].empty()) {
        if ((flags & IPC_NOWAIT) != 0) return errno = ENOMSG, -1;
        current_->state = Thread::waits_for_message;
        Block();
    }
    std::deque<QueueMessage>& queue = queues_[AT_MODULE_SERVER];
    const size_t length = server_sizes_.front();
    if (length > size && (flags & MSG_NOERROR) == 0) return errno = E2BIG, -1;
    const size_t taken = std::min(length, size);
    message->mtype = queue.front().mtype;
    memcpy(message->body, queue.front().body, taken);
    queue.pop_front();
    server_sizes_.pop_front();
    progress_ = now_;
    serving_ = 0;
    if (taken == AT_WIRE_SIZE && length == size) {
        const auto known = requests_.find(static_cast<int>(message->mtype));
        if (known != requests_.end()) {
            known->second.received = true;
            serving_ = known->first;
            Note("server receives request " + std::to_string(serving_));
        }
    }
    MaySwitch();
    return static_cast<ssize_t>(taken);
}

// ---- the port -------------------------------------------------------------------------------------------

ssize_t World::ReadPort(char* buffer, size_t size) {
    MaySwitch();
    if (!plugged_) return 0;
    size_t length = 0;
    just_read_.clear();
    while (!port_.empty() && length + port_.front().text.size() <= size) {
        Bytes& bytes = port_.front();
        memcpy(buffer + length, bytes.text.data(), bytes.text.size());
        length += bytes.text.size();
        just_read_.push_back(std::move(bytes));
        port_.pop_front();
    }
    reading_ = true;
    Note("server reads '" + Printable(std::string(buffer, length)) + "'");
    MaySwitch();
    return static_cast<ssize_t>(length);
}

ssize_t World::WritePort(const char* text, size_t size) {
    MaySwitch();
    const bool by_request_thread = current_ == &g_request_thread;
    const int serial = by_request_thread ? serving_ : flight_;
    Request* request = requests_.count(serial) != 0 ? &requests_[serial] : nullptr;
    const bool fails = !plugged_ || random_.OneIn(400);
    Note("server writes '" + Printable(std::string(text, size)) + "' for " + std::to_string(serial) +
         (fails ? ", which fails" : ""));
    if (fails) {
        if (by_request_thread && request != nullptr) request->port_failed = true;
        MaySwitch();
        return errno = EIO, -1;
    }
    if (request != nullptr) Answer(*request, !by_request_thread);
    MaySwitch();
    return static_cast<ssize_t>(size);
}

// ---- the modem ------------------------------------------------------------------------------------------

size_t World::Say(Item::Owner owner, int serial, const std::string& text, size_t answer_size, int64_t ready,
                  uint64_t seed) {
    items_.push_back({owner, serial, text, answer_size, ready, seed});
    pieces_.emplace_back();
    const size_t index = items_.size() - 1;
    At(ready, Due::item_ready, index);
    return index;
}

std::string World::NewReport(Random& random, int& serial) {
    serial = next_report_++;
    const int kind = static_cast<int>(random.Below(static_cast<unsigned>(kReportKindCount)));
    reports_[serial] = {serial, kind};
    return kReportKinds[kind].head + std::to_string(serial) + kReportKinds[kind].tail;
}

// The modem's answer to a line of `request`: when it comes, and what comes inside it.
void World::Answer(Request& request, bool pdu_written) {
    if (pdu_written && request.pdu_taken) return;
    request.pdu_taken = pdu_written;
    Random random(static_cast<uint64_t>(request.serial + (pdu_written ? 7 : 0)) + episode_.seed * 31);
    const uint32_t limit = LimitOf(request.command);
    const bool patient = limit <= 1000 || random.OneIn(20);
    const unsigned luck = random.Below(1000);
    int64_t after = 1'000 + random.Below(30'000);
    if (luck >= 700) after = random.Below(500'000);
    if (luck >= 950) after = random.Below(9'000'000);
    if (luck >= 975 && patient) after = limit * 10'000 + random.Below(2'000'000);  // late
    if (luck >= 990 && patient) return;                                            // silent
    const std::string echo = echo_ ? "AT+ECHO\r" : "";
    if (request.say == ::Say::message && !pdu_written) {
        Say(Item::answer, request.serial, echo + "\r\n> ", 0, now_ + after, random.Next());
        return;
    }
    const std::string text = AnswerText(request);
    // Reports may stand between the lines of an answer, and after it without a pause.
    std::string whole = pdu_written ? "" : echo;
    std::vector<int> inside;
    size_t answer_size = 0;
    size_t at = 0;
    while (at < text.size()) {
        size_t end = text.find("\r\n", at + 2);
        end = end == std::string::npos ? text.size() : end + 2;
        whole += text.substr(at, end - at);
        at = end;
        if (at == text.size()) answer_size = whole.size();
        if (!random.OneIn(15)) continue;
        int serial = 0;
        const std::string report = NewReport(random, serial);
        // A line of the command's own name is part of its answer, wherever it comes from.
        const ReportKind& kind = kReportKinds[reports_[serial].kind];
        if (request.command == kind.id)
            reports_.erase(serial);
        else
            whole += report, inside.push_back(serial);
    }
    const size_t item = Say(Item::answer, request.serial, whole, answer_size, now_ + after, random.Next());
    items_[item].reports_inside = inside;
}

// The next text begins when the one before it has gone out whole.
void World::NextItem() {
    if (emitting_ || ready_.empty()) return;
    const size_t index = ready_.front();
    ready_.erase(ready_.begin());
    emitting_ = true;
    Random random(items_[index].seed);
    const std::string& text = items_[index].text;
    int64_t at = now_;
    size_t from = 0;
    const unsigned longest = random.OneIn(3) ? 1 + random.Below(12) : 100'000;
    while (from < text.size()) {
        const size_t length = std::min<size_t>(1 + random.Below(longest), text.size() - from);
        const size_t whole = longest == 100'000 ? text.size() - from : length;
        pieces_[index].push_back(text.substr(from, whole));
        from += whole;
        At(at, Due::bytes, index, pieces_[index].size() - 1);
        at += random.Below(15'000);
    }
}

void World::Emit(size_t item, size_t piece) {
    const bool last = piece + 1 == pieces_[item].size();
    if (plugged_) {
        size_t begin = 0;
        for (size_t before = 0; before < piece; ++before)
            begin += pieces_[item][before].size();
        port_.push_back({pieces_[item][piece], item, begin, last});
    } else {
        // What was cut off leaves half a line behind.
        items_[item].cut = true;
        Note("modem is unplugged and loses '" + Printable(pieces_[item][piece]) + "'");
        for (const int serial : items_[item].reports_inside)
            reports_[serial].loose = true;
        if (items_[item].owner == Item::report) reports_[items_[item].serial].loose = true;
        items_.push_back({Item::noise, 0, "", 0, now_, 0});
        pieces_.emplace_back();
        port_.push_back({"", items_.size() - 1, 0, true});
    }
    if (last) {
        emitting_ = false;
        NextItem();
    }
}

// ---- what happens ---------------------------------------------------------------------------------------

void World::Happen(const Due& due) {
    switch (due.what) {
        case Due::event:
            --events_left_;
            progress_ = now_;
            Start(episode_.events[due.index]);
            break;
        case Due::item_ready:
            ready_.push_back(due.index);
            NextItem();
            break;
        case Due::bytes:
            Emit(due.index, due.piece);
            break;
        case Due::drain: {
            const int key = static_cast<int>(due.index);
            if (stalled_until_[key] > now_) {
                At(stalled_until_[key], Due::drain, due.index);
                break;
            }
            draining_.erase(key);
            queues_[key].clear();
            for (Thread* thread : {&g_request_thread, &g_response_thread})
                if (thread->state == Thread::waits_for_room && thread->key == key)
                    thread->state = Thread::runnable;
            break;
        }
        case Due::plug:
            plugged_ = true;
            Note("modem is plugged in again");
            break;
        case Due::create:
            missing_.erase(static_cast<int>(due.index));
            Note("module creates its queue again");
            break;
    }
}

void World::Start(const Event& event) {
    Random random(event.seed);
    switch (event.kind) {
        case Event::request:
            StartRequest(event);
            break;
        case Event::hostile:
            StartHostile(event);
            break;
        case Event::report:
            StartReports(event);
            break;
        case Event::noise: {
            std::string text;
            for (unsigned i = 1 + random.Below(6); i > 0; --i) {
                static constexpr const char* kNoise[] = {
                    "\"",   "\r\n", "OK\r\n", "ERROR\r\n", "> ",       "+CREG: ", "\xff\x80,",
                    "BUSY", "AT",   ": ",     "+CMGS: 1",  "RING\r\n", "x",       "CONNECT\r\n"};
                text += kNoise[random.Below(sizeof kNoise / sizeof kNoise[0])];
            }
            Note("line noise '" + Printable(text) + "'");
            Say(Item::noise, 0, text, 0, now_, random.Next());
            break;
        }
        case Event::unplug:
            if (!plugged_) break;
            plugged_ = false;
            Note("modem is unplugged");
            for (const Bytes& bytes : port_) {
                items_[bytes.item].cut = true;
                for (const int serial : items_[bytes.item].reports_inside)
                    reports_[serial].loose = true;
                if (items_[bytes.item].owner == Item::report)
                    reports_[items_[bytes.item].serial].loose = true;
            }
            port_.clear();
            items_.push_back({Item::noise, 0, "", 0, now_, 0});
            pieces_.emplace_back();
            port_.push_back({"", items_.size() - 1, 0, true});
            At(now_ + random.Below(3'000'000), Due::plug, 0);
            break;
        case Event::stall: {
            const uint16_t module = kModules[random.Below(7)];
            stalled_until_[module] = now_ + random.Below(30'000'000);
            Note("module " + std::to_string(module) + " stops reading its queue for a while");
            break;
        }
        case Event::remove_queue: {
            const uint16_t module = kModules[random.Below(7)];
            if (!missing_.insert(module).second) break;
            once_missing_.insert(module);
            queues_[module].clear();
            for (Thread* thread : {&g_request_thread, &g_response_thread})
                if (thread->state == Thread::waits_for_room && thread->key == module)
                    thread->state = Thread::runnable;
            Note("module " + std::to_string(module) + " removes its queue");
            At(now_ + random.Below(15'000'000), Due::create, module);
            break;
        }
    }
}

void World::StartRequest(const Event& event) {
    Random random(event.seed);
    Request request;
    request.serial = next_request_++;
    request.module = kModules[random.Below(7)];
    MSG_BUF message{};
    message.lMsgType = request.serial;
    message.usTargetModuleID = AT_MODULE_SERVER;
    message.usSourceModuleID = request.module;
    message.ulMagic = AT_MESSAGE_MAGIC;
    RandomRequest(random, request, message);
    char line[96];
    snprintf(line, sizeof line, "module %04x sends request %d, command %04x type %d", request.module,
             request.serial, request.command, request.type);
    Note(line);
    requests_[request.serial] = request;
    QueueMessage wire{};
    ToWire(message, wire);
    queues_[AT_MODULE_SERVER].push_back(wire);
    server_sizes_.push_back(AT_WIRE_SIZE);
    if (g_request_thread.state == Thread::waits_for_message) g_request_thread.state = Thread::runnable;
}

// Messages that must be dropped without an answer, and requesters that nobody can answer.
void World::StartHostile(const Event& event) {
    Random random(event.seed);
    QueueMessage wire{};
    wire.mtype = 1 + random.Below(50);
    for (unsigned char& byte : wire.body)
        byte = static_cast<unsigned char>(random.Next());
    size_t size = AT_WIRE_SIZE;
    static const uint32_t kMagic = AT_MESSAGE_MAGIC;
    switch (random.Below(5)) {
        case 0:  // a wrong guard word
            memset(wire.body + AT_WIRE_SIZE - 4, 0x11, 4);
            break;
        case 1:  // short
            size = random.Below(AT_WIRE_SIZE);
            break;
        case 2:  // long: only its length counts
            size = AT_WIRE_SIZE + 1 + random.Below(1000);
            break;
        case 3:  // a type that is no 32-bit number
            memcpy(wire.body + AT_WIRE_SIZE - 4, &kMagic, 4);
            wire.mtype = 0x1'0000'0000;
            break;
        default: {  // a request from nowhere
            MSG_BUF message{};
            Request request;
            request.serial = next_request_++;
            request.module = random.OneIn(2) ? 0 : 0x7001;
            missing_.insert(request.module);
            message.lMsgType = request.serial;
            message.usSourceModuleID = request.module;
            message.ulMagic = AT_MESSAGE_MAGIC;
            RandomRequest(random, request, message);
            request.unreachable = true;
            requests_[request.serial] = request;
            ToWire(message, wire);
        }
    }
    Note("a hostile message of " + std::to_string(size) + " bytes, type " + std::to_string(wire.mtype));
    ++outcome_.totals.refused;
    queues_[AT_MODULE_SERVER].push_back(wire);
    server_sizes_.push_back(size);
    if (g_request_thread.state == Thread::waits_for_message) g_request_thread.state = Thread::runnable;
}

void World::StartReports(const Event& event) {
    Random random(event.seed);
    const unsigned count = random.OneIn(40) ? 20 + random.Below(40) : 1 + random.Below(2);
    for (unsigned i = 0; i < count; ++i) {
        int serial = 0;
        const std::string text = NewReport(random, serial);
        Note("modem reports '" + Printable(text) + "'");
        Say(Item::report, serial, text, 0, now_, random.Next());
    }
}
