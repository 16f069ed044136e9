#include "tools/modemsim/engine.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <utility>

namespace modemsim {

namespace {

constexpr char kSubmit = '\x1A';  // ends the text after a prompt
constexpr char kCancel = '\x1B';
constexpr std::size_t kPacedPiece = 64;  // bytes, where a pace is given but no sizes
constexpr std::size_t kNoGroup = static_cast<std::size_t>(-1);

std::vector<Step> TextOnly(std::string text) {
    Step step;
    step.text = std::move(text);
    return {step};
}

const std::vector<Step>& ErrorAnswer() {
    static const std::vector<Step> steps = TextOnly("\r\nERROR\r\n");
    return steps;
}

const std::vector<Step>& CancelAnswer() {
    static const std::vector<Step> steps = TextOnly("\r\nOK\r\n");
    return steps;
}

}  // namespace

Engine::Engine(Scenario scenario, Note note)
    : scenario_(std::move(scenario)),
      note_(std::move(note)),
      faults_(scenario_.seed),
      modem_(scenario_.use_modem ? std::make_unique<Modem>(scenario_.seed) : nullptr),
      echo_(scenario_.echo),
      used_(scenario_.groups.size()) {}

void Engine::Say(const std::string& text) const {
    if (note_) note_(text);
}

void Engine::Start(Time now) {
    for (const Order& order : scenario_.orders)
        Perform(order, now);
    if (!scenario_.clock_at_first_line) {
        clock_runs_ = true;
        StartReports(now, nullptr);
    }
}

void Engine::Receive(std::string_view bytes, Time now) {
    Run(now);
    for (const char c : bytes)
        Character(c, now);
    Run(now);
}

void Engine::Character(char c, Time now) {
    if (unplugged_ || !plugged_) return;
    const bool body = BodyTaker() != nullptr;
    if (c == kSubmit || c == kCancel) {
        if (body) {
            EndBody(c == kSubmit, now);
        } else if (!input_.empty()) {
            Say("a message text without a prompt is dropped");
        }
        input_.clear();
        return;
    }
    if (!body && c == '\r') {
        Line(now);
        return;
    }
    // A host that ends its lines with both leaves a line feed in front of the next one.
    if (!body && c == '\n' && input_.empty()) return;
    if (input_.size() <= kMaxInput) input_ += c;
}

void Engine::Line(Time now) {
    std::string line = std::exchange(input_, {});
    if (line.empty()) return;
    if (line.size() > kMaxInput)
        Say("a command line longer than " + std::to_string(kMaxInput) + " characters");
    if (!clock_runs_) {
        clock_runs_ = true;
        StartReports(now, nullptr);
    }
    for (Job& job : jobs_) {
        if (!job.report) continue;
        const auto& until = scenario_.reports[*job.report].until;
        if (std::any_of(until.begin(), until.end(), [&](const Pattern& p) { return p.Matches(line); }))
            job.done = true;
    }
    std::erase_if(jobs_, [](const Job& job) { return job.done; });
    if (!answering_) {
        Answer(line, now);
    } else if (lines_.size() < kMaxWaitingLines) {
        lines_.push_back(std::move(line));
    } else {
        Say("too many lines during an answer, dropped: " + line);
    }
}

std::size_t Engine::FindGroup(const std::string& line) const {
    std::size_t best = kNoGroup;
    for (std::size_t i = 0; i < scenario_.groups.size(); ++i) {
        const Pattern& pattern = scenario_.groups[i].pattern;
        if (pattern.Matches(line) && (best == kNoGroup || pattern.CloserThan(scenario_.groups[best].pattern)))
            best = i;
    }
    return best;
}

void Engine::Answer(const std::string& line, Time now) {
    Job job;
    job.line = line;
    job.due = now;
    job.pieces = scenario_.pieces;
    if (echo_) {
        job.lead = line + "\r";
    } else {
        job.due += scenario_.latency;
    }
    job.due += faults_.Delay();
    const Time late = faults_.TakeLateness();
    job.due += late;
    job.alone = late.count() != 0;
    if (job.alone) Say("this answer comes late");
    const std::size_t group = line.size() <= kMaxInput ? FindGroup(line) : kNoGroup;
    if (group == kNoGroup) {
        AskModem(job, now);
    } else {
        const auto& rules = scenario_.groups[group].rules;
        const Rule& rule = rules[used_[group]];
        if (used_[group] + 1 < rules.size()) ++used_[group];
        Say("rule " + scenario_.Describe(rule.place));
        job.steps = &rule.steps;
    }
    if (!job.alone) answering_ = true;
    jobs_.push_back(std::move(job));
    TakeReports(now);
}

// ---- the modem with a memory

void Engine::GiveSteps(Job& job, std::vector<Step> steps) const {
    job.own = std::make_shared<const std::vector<Step>>(std::move(steps));
    job.steps = job.own.get();
    job.next = 0;
}

void Engine::AskModem(Job& job, Time at) {
    std::optional<Reply> reply;
    if (modem_ != nullptr && job.line.size() <= kMaxInput) reply = modem_->Answer(job.line, at);
    if (reply) {
        Say("modem");
        Perform(job, *reply);
    } else {
        Say(modem_ == nullptr ? "no rule" : "no rule, and the modem does not know it");
        job.steps = &ErrorAnswer();
        job.next = 0;
    }
}

void Engine::Perform(Job& job, const Reply& reply) const {
    std::vector<Step> steps;
    Step step;
    if (reply.wait.count() != 0) {
        step.kind = Step::Kind::Wait;
        step.wait = reply.wait;
        steps.push_back(step);
    }
    if (reply.echo) {
        step.kind = Step::Kind::Echo;
        step.on = *reply.echo;
        steps.push_back(step);
    }
    step.kind = reply.prompt ? Step::Kind::Prompt : Step::Kind::Text;
    for (const std::string& line : reply.lines)
        step.text += (step.text.empty() ? "\r\n" : "") + line + "\r\n";
    step.text += "\r\n" + reply.end + "\r\n";
    steps.push_back(step);
    GiveSteps(job, std::move(steps));
    job.after = reply.after;
    job.prompt = reply.prompt;
}

// Something that nobody asked for.
void Engine::Send(std::vector<Step> steps, Time at) {
    Job job;
    GiveSteps(job, std::move(steps));
    job.due = at;
    job.pieces = scenario_.pieces;
    job.alone = true;
    jobs_.push_back(std::move(job));
}

void Engine::TakeReports(Time at) {
    if (modem_ == nullptr) return;
    for (const Modem::Report& report : modem_->TakeReports()) {
        Step step;
        for (const std::string& line : report)
            step.text += (step.text.empty() || HasOwnBreak(line, true) ? "\r\n" : "") + line + "\r\n";
        Send({step}, at);
    }
}

Engine::Job* Engine::BodyTaker() {
    const auto job = std::find_if(jobs_.begin(), jobs_.end(), [](const Job& j) { return j.awaits_body; });
    return job == jobs_.end() ? nullptr : &*job;
}

void Engine::EndBody(bool send, Time now) {
    Job& job = *BodyTaker();
    job.awaits_body = false;
    if (input_.size() > kMaxInput)
        Say("a message text longer than " + std::to_string(kMaxInput) + " characters");
    if (echo_) job.lead = input_;
    job.due = now + (job.lead.empty() ? scenario_.latency : Time(0)) + faults_.Delay();
    if (send && job.prompt) {
        modem_->Advance(now);
        const auto prompt = job.prompt;
        Perform(job, prompt(input_));
        TakeReports(now);
    }
    if (!send) {
        Say("the message text is cancelled");
        job.steps = &CancelAnswer();
        job.next = 0;
        job.line.clear();
        job.after = nullptr;
    }
}

void Engine::StartReports(Time now, const std::string* line) {
    const auto& reports = scenario_.reports;
    // As with rules the closest line decides; all reports after it begin.
    std::size_t best = reports.size();
    for (std::size_t i = 0; line != nullptr && i < reports.size(); ++i) {
        if (reports[i].after && reports[i].after->Matches(*line) &&
            (best == reports.size() || reports[i].after->CloserThan(*reports[best].after)))
            best = i;
    }
    if (line != nullptr && best == reports.size()) return;
    for (std::size_t i = 0; i < reports.size(); ++i) {
        if (line == nullptr ? !reports[i].after
                            : reports[i].after && reports[i].after->Same(*reports[best].after))
            StartReport(i, now);
    }
}

void Engine::StartReport(std::size_t index, Time now) {
    const Report& report = scenario_.reports[index];
    // A repeated one begins anew: the line that starts it twice must not double it.
    if (report.every.count() != 0) std::erase_if(jobs_, [&](const Job& job) { return job.report == index; });
    Job job;
    job.steps = &report.steps;
    job.due = now + report.delay;
    job.begun = job.due;
    job.pieces = scenario_.pieces;
    job.report = index;
    job.times = 1;
    jobs_.push_back(std::move(job));
}

std::optional<Time> Engine::NextTime() const {
    if (!wire_.empty()) return wire_.front().due;
    if (unplugged_) return std::nullopt;
    std::optional<Time> next;
    for (const Job& job : jobs_) {
        const Time due = std::max(job.due, wire_free_);
        if (!job.awaits_body && (!next || due < *next)) next = due;
    }
    const auto change = NextChange();
    if (change && (!next || *change < *next)) next = change;
    return next;
}

// When something happens that is no step of an answer or report.
std::optional<Time> Engine::NextChange() const {
    std::optional<Time> next = replug_at_;
    const auto consider = [&](Time time) {
        if (!next || time < *next) next = time;
    };
    if (!glued_.empty()) consider(glued_until_);
    if (modem_ != nullptr && modem_->NextTime()) consider(*modem_->NextTime());
    return next;
}

void Engine::Change(Time at) {
    if (replug_at_ && *replug_at_ <= at) Replug(at);
    if (modem_ != nullptr) {
        modem_->Advance(at);
        TakeReports(at);
    }
    if (!glued_.empty() && glued_until_ <= at) Cut(std::exchange(glued_, {}), scenario_.pieces, at);
}

std::optional<Piece> Engine::Take(Time now) {
    Run(now);
    if (wire_.empty() || wire_.front().due > now) return std::nullopt;
    Piece piece = std::move(wire_.front());
    wire_.pop_front();
    const Time late = now - piece.due;
    for (Piece& waiting : wire_)
        waiting.due += late;
    if (!wire_.empty()) wire_free_ += late;
    return piece;
}

void Engine::Run(Time now) {
    // A text goes out whole before anything else may: what is under way is taken first.
    while (wire_.empty() && !unplugged_) {
        Job* first = nullptr;
        Time at{0};
        for (Job& job : jobs_) {
            const Time due = std::max(job.due, wire_free_);
            if (!job.awaits_body && (first == nullptr || due < at || (due == at && job.due < first->due))) {
                first = &job;
                at = due;
            }
        }
        const auto change = NextChange();
        if (change && *change <= now && (first == nullptr || *change <= at)) {
            Change(*change);
            continue;
        }
        if (first == nullptr || at > now) return;
        RunStep(*first, at);
    }
}

void Engine::RunStep(Job& job, Time at) {
    if (!job.lead.empty()) {
        Put(std::exchange(job.lead, {}), job.pieces, at);
        job.due = wire_free_ + scenario_.latency;
        return;
    }
    if (job.next == job.steps->size()) {
        Finish(job, at);
        return;
    }
    const Step& step = (*job.steps)[job.next++];
    job.due = at;
    switch (step.kind) {
        case Step::Kind::Text:
            Put(step.text, job.pieces, at);
            job.due = wire_free_;
            break;
        case Step::Kind::Wait:
            job.due = at + step.wait;
            break;
        case Step::Kind::Pieces:
            job.pieces = step.pieces;
            break;
        case Step::Kind::Echo:
            echo_ = step.on;
            break;
        case Step::Kind::Prompt:
            Put("\r\n> ", job.pieces, at);
            job.awaits_body = true;
            break;
        case Step::Kind::Unplug:
            unplugged_ = true;
            break;
        case Step::Kind::Order:
            if (step.order.kind == Order::Kind::Late && !job.report && !job.alone) {
                // This answer is the one that is late: lines behind it need not wait.
                job.alone = true;
                job.due = at + step.order.time;
                answering_ = false;
                NextLine(at);
                break;
            }
            // The job may be gone afterwards, with the modem that was unplugged.
            Perform(Order(step.order), at);
            break;
        case Step::Kind::Modem:
            AskModem(job, at);
            TakeReports(at);
            break;
    }
}

void Engine::Finish(Job& job, Time at) {
    if (job.report) {
        const Report& report = scenario_.reports[*job.report];
        if (report.every.count() == 0 || (report.times != 0 && job.times == report.times)) {
            job.done = true;
        } else {
            ++job.times;
            job.next = 0;
            job.pieces = scenario_.pieces;
            job.begun = std::max(job.begun + report.every, at);
            job.due = job.begun;
        }
        std::erase_if(jobs_, [](const Job& j) { return j.done; });
        return;
    }
    const std::string line = std::move(job.line);
    const auto after = std::move(job.after);
    const bool alone = job.alone;
    job.done = true;
    std::erase_if(jobs_, [](const Job& j) { return j.done; });
    if (!alone) answering_ = false;
    if (after) {
        modem_->Advance(at);
        after();
        TakeReports(at);
    }
    if (!line.empty()) StartReports(at, &line);
    if (!alone) NextLine(at);
}

void Engine::NextLine(Time at) {
    if (lines_.empty()) return;
    const std::string next = std::move(lines_.front());
    lines_.pop_front();
    Answer(next, at);
}

void Engine::Put(std::string text, const Pieces& pieces, Time at) {
    wire_free_ = at;
    if (!plugged_) return;
    if (faults_.Muted(at)) {
        Say("mute: " + std::to_string(text.size()) + " bytes are not sent");
        return;
    }
    text.insert(0, faults_.Noise());
    if (faults_.Glue().count() == 0) {
        Cut(std::exchange(glued_, {}) + text, pieces, at);
        return;
    }
    if (glued_.empty()) glued_until_ = at + faults_.Glue();
    glued_ += text;
}

// Puts the text on the wire, whole or in pieces.
void Engine::Cut(const std::string& text, const Pieces& own_pieces, Time at) {
    const Pieces& pieces = faults_.Split() ? *faults_.Split() : own_pieces;
    const auto on_line = [this](std::size_t bytes) {
        if (scenario_.pace == 0) return Time(0);
        return Time(static_cast<Time::rep>(bytes * std::uint64_t{1'000'000} / scenario_.pace));
    };
    std::size_t from = 0;
    for (std::size_t n = 0; from < text.size(); ++n) {
        std::size_t size = text.size() - from;
        if (!pieces.sizes.empty())
            size = std::min(size, pieces.sizes[std::min(n, pieces.sizes.size() - 1)]);
        else if (scenario_.pace != 0)
            size = std::min(size, kPacedPiece);
        if (n > 0 && !pieces.sizes.empty()) at += pieces.gap;
        at += on_line(size);
        wire_.push_back({at, text.substr(from, size)});
        from += size;
    }
    wire_free_ = at;
}

}  // namespace modemsim
