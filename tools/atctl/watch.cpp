#include "tools/atctl/watch.h"

#include <poll.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <ctime>
#include <limits>
#include <nlohmann/json.hpp>
#include <optional>

#include "tools/atctl/asking.h"
#include "tools/atctl/chart.h"
#include "tools/atctl/meaning.h"
#include "tools/atctl/print_answer.h"
#include "tools/atctl/report_line.h"
#include "tools/shared/suggest.h"
#include "tools/shared/table.h"
#include "tools/shared/text.h"

using std::chrono::milliseconds;
using std::chrono::steady_clock;
using Json = nlohmann::ordered_json;
using Status = QueueClient::Status;

namespace {

// More than any terminal shows.
constexpr size_t kHistory = 1000;
constexpr size_t kLongestGraph = 60;
constexpr size_t kShortestGraph = 5;

// The number that a value is, or says; nothing when it is another text.
std::optional<double> NumberOf(const Value& value) {
    if (const auto* text = std::get_if<std::string>(&value.value)) {
        char* end = nullptr;
        const double number = strtod(text->c_str(), &end);
        const bool whole = !text->empty() && *end == '\0' && std::isfinite(number);
        return whole ? std::optional(number) : std::nullopt;
    }
    return std::visit(
        [](const auto& plain) -> std::optional<double> {
            if constexpr (std::is_arithmetic_v<std::decay_t<decltype(plain)>>)
                return static_cast<double>(plain);
            else
                return std::nullopt;
        },
        value.value);
}

// The field that is watched must be one of the answer's.
void CheckField(const Question& question, const std::string& field) {
    if (field.empty()) return;
    const Answer* answer = AnswerOf(*question.call.row, question.call.type);
    if (answer == nullptr || answer->record == nullptr)
        throw Misuse("the answer to " + question.name + " has no fields");
    std::vector<std::string> names;
    for (size_t i = 0; i < answer->record->count; ++i)
        names.emplace_back(answer->record->fields[i].name);
    if (std::find(names.begin(), names.end(), field) == names.end())
        throw Misuse("the answer to " + question.name + " has no field \"" + Printable(field) + "\", only " +
                     Join(names, ", ") + DidYouMean(field, names));
}

struct Tally {
    size_t good = 0;
    size_t other = 0;   // results
    size_t missed = 0;  // answers
    size_t Asked() const { return good + other + missed; }
};

class Watching {
  public:
    Watching(const WatchOptions& options, const WatchSetup& setup, const Streams& streams)
        : options_(options),
          setup_(setup),
          streams_(streams),
          question_(MakeQuestion(options.command, options.values, options.timeout)),
          asking_(setup.queue, options.module),
          field_(options.field),
          live_(streams.look.width != 0 && !options.json) {
        CheckField(question_, field_);
    }

    int Run() {
        const auto begun = steady_clock::now();
        auto next = begun;
        asking_.Open();
        open_ = true;
        while (!Stopped()) {
            if (!Ask()) break;
            if (options_.count != 0 && tally_.Asked() == options_.count) break;
            next += std::chrono::duration_cast<steady_clock::duration>(
                std::chrono::duration<double>(options_.interval));
            // What took longer than the interval is not made up for.
            next = std::max(next, steady_clock::now());
            if (!SleepUntil(next)) break;
        }
        asking_.Close();
        if (live_ && tally_.Asked() != 0) streams_.out << std::endl;
        Summary(std::chrono::duration<double>(steady_clock::now() - begun).count());
        return tally_.missed != 0 ? kExitNothingCame : tally_.other != 0 ? kExitNo : kExitGood;
    }

  private:
    bool Stopped() const { return setup_.queue.stop != nullptr && setup_.queue.stop(); }

    // False when the user stopped it.
    bool Ask() {
        timespec now = {};
        clock_gettime(CLOCK_REALTIME, &now);
        Reply reply;
        try {
            if (!open_) asking_.Open();
            open_ = true;
            if (!asking_.Put(question_)) return false;
            reply = asking_.Wait(question_);
        } catch (const Failure& failure) {
            // What is wrong from the start is for the user to mend. Later the server may come back.
            if (tally_.Asked() == 0) throw;
            asking_.Close();
            open_ = false;
            Missed(now, failure.what());
            return true;
        }
        if (reply.status == Status::stopped) return false;
        if (reply.status == Status::timed_out) {
            Missed(now, asking_.WhyNoAnswer(question_));
            return true;
        }
        Answered(now, reply);
        return true;
    }

    void Missed(const timespec& time, const std::string& why) {
        ++tally_.missed;
        Remember({Point::Kind::missed, 0});
        if (options_.json) {
            Json json = HeadJson(time);
            json["result"] = nullptr;
            json["result_text"] = why;
            Print(json.dump());
        } else if (live_) {
            Live(streams_.look.Bad(why), Width(why), why);
        } else {
            Print(ClockTime(time) + "  " + why);
        }
    }

    void Answered(const timespec& time, const Reply& reply) {
        const Decoded decoded = asking_.Read(question_, reply);
        const bool good = decoded.result == AT_RESULT_OK;
        ++(good ? tally_.good : tally_.other);
        times_.push_back(reply.taken.count());
        const Value* value = good ? Watched(decoded) : nullptr;
        const std::optional<double> number = value != nullptr ? NumberOf(*value) : std::nullopt;
        if (!good)
            Remember({Point::Kind::missed, 0});
        else if (number.has_value() && WordsOf(*value) != "unknown")
            Remember({Point::Kind::value, *number});
        else
            Remember({Point::Kind::unknown, 0});

        if (options_.json) {
            Json json = HeadJson(time);
            json["seconds"] = reply.taken.count();
            json.update(AnswerJson(*question_.call.row, decoded));
            Print(json.dump());
        } else if (!live_) {
            Print(ClockTime(time) + "  " + AnswerLine(*question_.call.row, decoded, streams_.look));
        } else if (value != nullptr) {
            const std::string text = field_ + " " + ValueText(*value);
            Live(streams_.look.Bold(text), Width(text), text);
        } else {
            // Without its name, which stands in front.
            const std::string text =
                AnswerLine(*question_.call.row, decoded, Look()).substr(question_.name.size() + 2);
            Live(good ? text : streams_.look.Bad(text), Width(text), text);
        }
    }

    Json HeadJson(const timespec& time) const {
        Json json;
        json["time"] = UtcTime(time);
        json["command"] = question_.call.row->name;
        json["type"] = TypeName(question_.call.type);
        json["id"] = question_.call.row->id;
        return json;
    }

    // The value that is drawn: of the field that was named, else of the first that is, or says, a number.
    const Value* Watched(const Decoded& decoded) {
        for (const bool texts : {false, true})
            for (const Value& value : decoded.fields) {
                const bool is_text = std::holds_alternative<std::string>(value.value);
                if (field_.empty() && is_text == texts && NumberOf(value).has_value())
                    field_ = value.field->name;
                if (field_ == value.field->name) return &value;
            }
        return nullptr;
    }

    void Remember(const Point& point) {
        if (history_.size() == kHistory) history_.erase(history_.begin());
        history_.push_back(point);
        if (point.kind != Point::Kind::value) return;
        low_ = std::min(low_, point.value);
        high_ = std::max(high_, point.value);
        sum_ += point.value;
        ++values_;
    }

    void Print(const std::string& line) const {
        streams_.out << line << std::endl;
        if (!streams_.out) throw Failure(kExitBroken, "the output cannot be written");
    }

    // Name, value, history, range, on one line that is written over the one before: `state` is painted,
    // `width` columns wide, and `plain` is what is shown of it where there is no room.
    void Live(const std::string& state, size_t width, const std::string& plain) {
        const size_t now_wide =
            setup_.out_descriptor >= 0 ? TerminalWidth(setup_.out_descriptor) : streams_.look.width;
        const size_t room = std::max<size_t>(now_wide != 0 ? now_wide : streams_.look.width, 20) - 1;
        state_width_ = std::max(state_width_, width);
        std::string range;
        if (values_ != 0) range = "  " + Range();
        const std::string counted = "  " + Number(tally_.Asked(), "request", "requests") + Failed();

        std::string line = streams_.look.Bold(question_.name) + "  ";
        size_t used = question_.name.size() + 2;
        if (used + width > room) {
            const std::vector<std::string> cut = Wrap(question_.name + "  " + plain, room);
            return Show(cut.front());
        }
        line += state;
        used += width;
        // The graph keeps its place while the texts before it change.
        if (used - width + state_width_ + 2 + kShortestGraph <= room) {
            line.append(state_width_ - width, ' ');
            used += state_width_ - width;
        }
        size_t behind = 0;
        for (const std::string& part : {range, counted})
            if (used + 2 + kShortestGraph + behind + part.size() <= room) behind += part.size();
        if (values_ != 0 && used + 2 + kShortestGraph + behind <= room) {
            const size_t graph = std::min({room - used - 2 - behind, kLongestGraph, history_.size()});
            line += "  " + Graph(history_, graph, streams_.look);
            used += 2 + graph;
        }
        for (const std::string& part : {range, counted}) {
            if (used + part.size() > room) continue;
            line += part;
            used += part.size();
        }
        Show(line);
    }

    void Show(const std::string& line) const {
        constexpr char kToStart[] = "\r";
        constexpr char kClearRest[] = "\033[K";
        streams_.out << kToStart << line << kClearRest << std::flush;
        if (!streams_.out) throw Failure(kExitBroken, "the output cannot be written");
    }

    std::string Range() const {
        return low_ < high_ ? Plain(low_) + " to " + Plain(high_) : "always " + Plain(low_);
    }

    // ", 1 not answered, 2 with another result"
    std::string Failed() const {
        std::string text;
        if (tally_.missed != 0) text += ", " + std::to_string(tally_.missed) + " not answered";
        if (tally_.other != 0) text += ", " + std::to_string(tally_.other) + " with another result";
        return text;
    }

    void Summary(double seconds) {
        if (tally_.Asked() == 0) {
            streams_.err << "atctl: interrupted before the first answer\n";
            return;
        }
        streams_.err << "atctl: " << (Stopped() ? "interrupted after " : "")
                     << Number(tally_.Asked(), "request", "requests") << " of " << question_.name << " in "
                     << Duration(seconds) << Failed();
        if (values_ != 0) streams_.err << "; " << field_ << " " << Range();
        if (low_ < high_) streams_.err << ", mean " << Plain(sum_ / static_cast<double>(values_));
        if (!times_.empty()) {
            std::sort(times_.begin(), times_.end());
            streams_.err << "; answered in " << Duration(Percentile(times_, 50)) << ", at most "
                         << Duration(times_.back());
        }
        streams_.err << '\n';
    }

    // False when the user stopped it, or the reader of the output has gone.
    bool SleepUntil(steady_clock::time_point end) const {
        // A signal may come between the question and the sleep.
        constexpr milliseconds kLongest(100);
        while (!Stopped()) {
            const auto left = std::chrono::ceil<milliseconds>(end - steady_clock::now());
            if (left <= milliseconds(0)) return true;
            pollfd out = {setup_.out_descriptor, 0, 0};
            if (poll(&out, 1, static_cast<int>(std::min(left, kLongest).count())) > 0) return false;
        }
        return false;
    }

    const WatchOptions& options_;
    const WatchSetup& setup_;
    const Streams& streams_;
    const Question question_;
    Asking asking_;
    bool open_ = false;
    std::string field_;
    const bool live_;
    Tally tally_;
    std::vector<Point> history_;
    std::vector<double> times_;
    size_t values_ = 0;
    double low_ = std::numeric_limits<double>::infinity();
    double high_ = -std::numeric_limits<double>::infinity();
    double sum_ = 0;
    size_t state_width_ = 0;
};

}  // namespace

int Watch(const WatchOptions& options, const WatchSetup& setup, const Streams& streams) {
    return Watching(options, setup, streams).Run();
}
