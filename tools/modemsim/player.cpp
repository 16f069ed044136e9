#include "tools/modemsim/player.h"

#include <algorithm>
#include <utility>

#include "tools/modemsim/pattern.h"
#include "tools/modemsim/trace.h"

namespace modemsim {

namespace {

constexpr char kSubmit = '\x1A';  // ends the text of a message
constexpr char kCancel = '\x1B';

bool EndsLine(char c) {
    return c == '\r' || c == kSubmit || c == kCancel;
}

// A line for a message: long ones cut.
std::string Shown(const std::string& line) {
    constexpr std::size_t longest = 100;
    const std::string text = Visible(line);
    return "'" + (text.size() > longest ? text.substr(0, longest) + "..." : text) + "'";
}

// "AT+CMGR=3\r" and "AT+CMGR=4\r": the same command, or two texts of messages.
bool Alike(const std::string& a, const std::string& b) {
    if (a.back() == kSubmit || b.back() == kSubmit) return a.back() == b.back();
    const auto name = [](const std::string& line) {
        const std::string upper = UpperCase(line);
        if (upper.starts_with("ATD")) return std::string("ATD");
        return upper.substr(0, upper.find_first_of("=?\r") + 1);
    };
    return name(a) == name(b);
}

}  // namespace

std::vector<LineReader::Line> LineReader::FromDaemon(std::string_view bytes) {
    std::vector<Line> lines;
    for (const char c : bytes) {
        text_ += c;
        shape_.Feed(Redactor::Way::ToModem, std::string_view(&c, 1));
        if (EndsLine(c)) lines.push_back({std::exchange(text_, {}), shape_.Take(Redactor::Way::ToModem)});
    }
    return lines;
}

void LineReader::FromModem(std::string_view bytes) {
    shape_.Feed(Redactor::Way::FromModem, bytes);
    shape_.Take(Redactor::Way::FromModem);
}

void LineReader::Drop() {
    shape_.Finish(Redactor::Way::ToModem);
    shape_.Take(Redactor::Way::ToModem);
    text_.clear();
}

Player::Player(const Recording& recording, const PlayerOptions& options, Report report)
    : name_(recording.name), options_(options), report_(std::move(report)), redacted_(recording.redacted) {
    LineReader reader;
    Time last{0};
    std::size_t played = 0;  // steps up to the last one that is more than the port's opening or closing
    std::size_t begun = 0;   // where the daemon's unfinished line begins
    const auto add = [&](Step::Kind kind, const Entry& entry, Line line = {}) {
        steps_.push_back(
            {kind, std::move(line.text), std::move(line.shape), entry.at - last, entry.line, false});
        last = entry.at;
        if (kind != Step::Kind::Open && kind != Step::Kind::Close) played = steps_.size();
    };
    for (const Entry& entry : recording.entries) {
        switch (entry.kind) {
            case Entry::Kind::ToModem: {
                if (begun == 0) begun = entry.line;
                for (Line& line : reader.FromDaemon(entry.text)) {
                    add(Step::Kind::Expect, entry, std::move(line));
                    steps_.back().line = std::exchange(begun, entry.line);
                    ++lines_;
                }
                if (EndsLine(entry.text.back())) begun = 0;
                break;
            }
            case Entry::Kind::FromModem:
                reader.FromModem(entry.text);
                add(Step::Kind::Send, entry, {entry.text, {}});
                break;
            case Entry::Kind::Open:
                add(Step::Kind::Open, entry);
                break;
            case Entry::Kind::Close:
                reader.Drop();
                begun = 0;
                add(Step::Kind::Close, entry);
                break;
            case Entry::Kind::Gone:
                reader.Drop();
                begun = 0;
                add(Step::Kind::Unplug, entry);
                break;
            case Entry::Kind::Back:
                add(Step::Kind::Plug, entry);
                break;
            default:
                break;
        }
    }
    // The daemon that is served now need not end when the one of the recording did.
    steps_.resize(played);
}

void Player::Start(Time now) {
    reached_ = now;
}

void Player::Deviate(std::size_t line, const std::string& text) {
    ++deviations_;
    report_(name_ + ":" + std::to_string(line) + ": " + text);
    if (options_.strict) stopped_ = true;
}

bool Player::Same(const Step& step, const Line& line) const {
    if (step.kind != Step::Kind::Expect) return false;
    // Where the recording has a stand-in the daemon may send anything of that length.
    return redacted_ ? step.shape == line.shape : step.text == line.text;
}

// The nearest step that expects the line: ahead, or else behind.
std::optional<std::size_t> Player::Find(const Line& line) const {
    for (std::size_t i = next_; i < steps_.size(); ++i)
        if (Same(steps_[i], line)) return i;
    for (std::size_t i = std::min(next_, steps_.size()); i-- > 0;)
        if (Same(steps_[i], line)) return i;
    return std::nullopt;
}

void Player::GoTo(std::size_t step, Time now) {
    next_ = step;
    reached_ = now;
}

// Compares the first line that came with the recording, which stands at what the daemon is to do next, or
// does not know the line at all.
void Player::Judge(Time now) {
    const Line line = std::move(heard_.front());
    heard_.pop_front();
    const auto take = [&](std::size_t at) {
        if (!std::exchange(steps_[at].came, true)) ++came_;
        GoTo(at + 1, now);
    };
    const auto found = Find(line);
    if (found == next_) return take(next_);

    const auto ahead = std::find_if(steps_.begin() + static_cast<std::ptrdiff_t>(next_), steps_.end(),
                                    [](const Step& s) { return s.kind != Step::Kind::Send; });
    std::string text = "no line is expected any more";
    std::size_t place = steps_.empty() ? 1 : steps_.back().line;
    if (ahead != steps_.end()) {
        place = ahead->line;
        text = ahead->kind == Step::Kind::Expect  ? "expected " + Shown(ahead->text)
               : ahead->kind == Step::Kind::Close ? "expected the daemon to close its port"
                                                  : "the modem is away here";
    }
    text += ", the daemon sent " + Shown(line.text);
    if (!found) {
        const bool here = next_ < steps_.size() && steps_[next_].kind == Step::Kind::Expect;
        if (here && Alike(steps_[next_].text, line.text)) {
            Deviate(place, text + ", which is taken for it");
            return take(next_);
        }
        out_.emplace_back("\r\nERROR\r\n");
        return Deviate(place, text + ", which the recording does not have: answered ERROR");
    }
    if (*found < next_) {
        text += ", goes back to line " + std::to_string(steps_[*found].line);
    } else {
        const auto left_out = std::count_if(steps_.begin() + static_cast<std::ptrdiff_t>(next_),
                                            steps_.begin() + static_cast<std::ptrdiff_t>(*found),
                                            [](const Step& s) { return s.kind == Step::Kind::Expect; });
        text += ", goes on at line " + std::to_string(steps_[*found].line);
        if (left_out != 0) text += " (lines left out: " + std::to_string(left_out) + ")";
    }
    Deviate(place, text);
    take(*found);
}

// Passes what needs no time.
void Player::Advance(Time now) {
    while (!stopped_ && next_ < steps_.size()) {
        const Step& step = steps_[next_];
        const bool timed =
            step.kind == Step::Kind::Send || step.kind == Step::Kind::Unplug || step.kind == Step::Kind::Plug;
        if (timed) {
            // A line that nobody knows needs no waiting for what comes before the next one.
            if (heard_.empty() || step.kind != Step::Kind::Send || Find(heard_.front())) return;
            Judge(now);
        } else if (step.kind == Step::Kind::Open && open_) {
            GoTo(next_ + 1, now);
        } else if (step.kind == Step::Kind::Close && closed_ > 0) {
            --closed_;
            GoTo(next_ + 1, now);
        } else if (step.kind != Step::Kind::Open && !heard_.empty()) {
            Judge(now);
        } else if (options_.patience != Time(0) && now >= reached_ + options_.patience) {
            const auto waited = std::to_string(
                std::chrono::duration_cast<std::chrono::milliseconds>(options_.patience).count());
            Deviate(step.line, (step.kind == Step::Kind::Expect ? "expected " + Shown(step.text)
                                : step.kind == Step::Kind::Open ? "expected the daemon to open its port"
                                                                : "expected the daemon to close its port") +
                                   ", nothing came within " + waited + " ms: goes on without it");
            GoTo(next_ + 1, now);
        } else {
            return;
        }
    }
}

void Player::Receive(std::string_view bytes, Time now) {
    for (Line& line : reader_.FromDaemon(bytes))
        heard_.push_back(std::move(line));
    Advance(now);
}

void Player::Opened(Time now) {
    open_ = true;
    Advance(now);
}

void Player::Closed(Time now) {
    open_ = false;
    ++closed_;
    reader_.Drop();
    Advance(now);
}

// When the timed step is to be played. What the daemon asks earlier than it did is not kept waiting: what was
// said before comes at once.
Time Player::Due() const {
    if (!heard_.empty() || options_.speed <= 0) return reached_;
    return reached_ +
           Time(static_cast<Time::rep>(static_cast<double>(steps_[next_].gap.count()) / options_.speed));
}

std::optional<Player::Action> Player::Take(Time now) {
    Advance(now);
    if (stopped_) return std::nullopt;
    if (!out_.empty()) {
        std::string bytes = std::move(out_.front());
        out_.pop_front();
        reader_.FromModem(bytes);
        return Action{Action::Kind::Send, std::move(bytes)};
    }
    if (next_ == steps_.size()) return std::nullopt;
    const Step& step = steps_[next_];
    const bool timed =
        step.kind == Step::Kind::Send || step.kind == Step::Kind::Unplug || step.kind == Step::Kind::Plug;
    if (!timed || Due() > now) return std::nullopt;
    GoTo(next_ + 1, now);
    if (step.kind == Step::Kind::Send) {
        reader_.FromModem(step.text);
        return Action{Action::Kind::Send, step.text};
    }
    if (step.kind == Step::Kind::Plug) return Action{Action::Kind::Plug, {}};
    open_ = false;
    closed_ = 0;
    heard_.clear();
    reader_.Drop();
    return Action{Action::Kind::Unplug, {}};
}

std::optional<Time> Player::NextTime() const {
    if (stopped_) return std::nullopt;
    if (!out_.empty()) return reached_;
    if (next_ == steps_.size()) return std::nullopt;
    const Step::Kind kind = steps_[next_].kind;
    if (kind == Step::Kind::Send || kind == Step::Kind::Unplug || kind == Step::Kind::Plug) return Due();
    if (options_.patience != Time(0)) return reached_ + options_.patience;
    return std::nullopt;
}

void Player::Break() {
    std::size_t missing = 0;
    std::size_t first = 0;
    for (std::size_t i = next_; i < steps_.size(); ++i) {
        if (steps_[i].kind != Step::Kind::Expect) continue;
        if (missing++ == 0) first = i;
    }
    if (missing == 0 || stopped_) return;
    Deviate(steps_[first].line,
            "expected " + Shown(steps_[first].text) +
                ", the replay was ended before it came (lines missing: " + std::to_string(missing) + ")");
}

}  // namespace modemsim
