#include "tools/atctl/bench.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <nlohmann/json.hpp>
#include <numeric>
#include <optional>
#include <vector>

#include "client/at_client.h"
#include "tools/atctl/asking.h"
#include "tools/atctl/chart.h"
#include "tools/shared/table.h"
#include "tools/shared/text.h"

using std::chrono::steady_clock;
using Json = nlohmann::ordered_json;
using Status = QueueClient::Status;

namespace {

// A server that does not answer takes its time each time.
constexpr unsigned kMostMissedInARow = 3;

constexpr double kPercents[] = {50, 95, 99, 100};
constexpr const char* kPercentNames[] = {"median", "95 %", "99 %", "max"};
constexpr const char* kPercentKeys[] = {"median", "p95", "p99", "max"};

class Benching {
  public:
    Benching(const BenchOptions& options, const BenchSetup& setup, const Streams& streams)
        : options_(options),
          setup_(setup),
          streams_(streams),
          question_(MakeQuestion(options.command, {}, options.timeout)),
          asking_(setup.queue, options.module) {}

    int Run() {
        asking_.Open();
        const auto begun = steady_clock::now();
        std::optional<Failure> failure;
        try {
            AskAll();
        } catch (const Failure& fault) {
            if (times_.empty() && missed_ == 0) throw;
            failure = fault;
        }
        const double seconds = std::chrono::duration<double>(steady_clock::now() - begun).count();
        asking_.Close();
        if (setup_.progress) streams_.err << "\r\033[K" << std::flush;
        std::sort(times_.begin(), times_.end());
        if (options_.json)
            streams_.out << ResultJson(seconds).dump(2) << '\n';
        else if (asked_ != 0)
            PrintResult(seconds);
        streams_.out.flush();
        if (failure.has_value()) throw Failure(*failure);
        if (Stopped())
            streams_.err << "atctl: interrupted after " << asked_ << " of "
                         << Number(options_.count, "request", "requests") << '\n';
        else if (asked_ < options_.count)
            streams_.err << "atctl: " << asking_why_ << "; gave up after " << kMostMissedInARow
                         << " requests in a row without an answer\n";
        if (missed_ != 0) return kExitNothingCame;
        return Good() == asked_ ? kExitGood : kExitNo;
    }

  private:
    bool Stopped() const { return setup_.queue.stop != nullptr && setup_.queue.stop(); }

    void AskAll() {
        unsigned missed_in_a_row = 0;
        while (asked_ < options_.count && missed_in_a_row < kMostMissedInARow && !Stopped()) {
            if (setup_.progress)
                streams_.err << '\r' << question_.name << ": " << asked_ << " of " << options_.count
                             << std::flush;
            if (!asking_.Put(question_)) return;
            const Reply reply = asking_.Wait(question_);
            if (reply.status == Status::stopped) return;
            ++asked_;
            if (reply.status == Status::timed_out) {
                ++missed_;
                ++missed_in_a_row;
                asking_why_ = asking_.WhyNoAnswer(question_);
                continue;
            }
            missed_in_a_row = 0;
            ++results_[reply.res.ucResult];
            times_.push_back(reply.taken.count());
        }
    }

    size_t Good() const {
        const auto good = results_.find(AT_RESULT_OK);
        return good == results_.end() ? 0 : good->second;
    }
    double Mean() const {
        return std::accumulate(times_.begin(), times_.end(), 0.0) / static_cast<double>(times_.size());
    }

    void PrintResult(double seconds) const {
        const Look& look = streams_.look;
        std::ostream& out = streams_.out;
        out << look.Bold(question_.name);
        if (*question_.call.row->title != '\0') out << "  " << question_.call.row->title;
        out << ": " << Number(asked_, "request", "requests") << " in " << Duration(seconds) << ", "
            << Plain(std::round(static_cast<double>(asked_) / seconds * 10) / 10) << " per second\n";
        Table outcome(2);
        for (const auto& [result, count] : results_)
            outcome.Row({at_client_result_text(result), std::to_string(count)});
        if (missed_ != 0) outcome.Row({"no answer", std::to_string(missed_)});
        outcome.Print(out, look);
        if (times_.empty()) return;
        out << "\nTime from the request to its answer\n";
        PrintHistogram(out, look, MakeHistogram(times_), 2);
        out << '\n';
        Table table(2);
        table.Row({"min", Duration(times_.front())});
        for (size_t i = 0; i < std::size(kPercents); ++i)
            table.Row({kPercentNames[i], Duration(Percentile(times_, kPercents[i]))});
        table.Row({"mean", Duration(Mean())});
        table.Print(out, look);
    }

    Json ResultJson(double seconds) const {
        Json json;
        json["command"] = question_.call.row->name;
        json["type"] = TypeName(question_.call.type);
        json["id"] = question_.call.row->id;
        json["requests"] = asked_;
        json["seconds"] = seconds;
        json["per_second"] = static_cast<double>(asked_) / seconds;
        json["ok"] = Good();
        json["other_results"] = Json::object();
        for (const auto& [result, count] : results_)
            if (result != AT_RESULT_OK) json["other_results"][at_client_result_text(result)] = count;
        json["no_answer"] = missed_;
        if (times_.empty()) return json;
        constexpr double kMs = 1000;
        json["latency_ms"]["min"] = times_.front() * kMs;
        for (size_t i = 0; i < std::size(kPercents); ++i)
            json["latency_ms"][kPercentKeys[i]] = Percentile(times_, kPercents[i]) * kMs;
        json["latency_ms"]["mean"] = Mean() * kMs;
        const Histogram histogram = MakeHistogram(times_);
        json["histogram"] = Json::array();
        for (const Histogram::Bin& bin : histogram.bins)
            json["histogram"].push_back(
                {{"from_ms", bin.from * kMs}, {"to_ms", bin.to * kMs}, {"count", bin.count}});
        if (histogram.beyond != 0)
            json["histogram"].push_back({{"from_ms", histogram.bins.back().to * kMs},
                                         {"to_ms", nullptr},
                                         {"count", histogram.beyond}});
        return json;
    }

    const BenchOptions& options_;
    const BenchSetup& setup_;
    const Streams& streams_;
    const Question question_;
    Asking asking_;
    unsigned asked_ = 0;
    unsigned missed_ = 0;
    std::string asking_why_;
    std::map<uint8_t, size_t> results_;
    std::vector<double> times_;
};

}  // namespace

int Bench(const BenchOptions& options, const BenchSetup& setup, const Streams& streams) {
    return Benching(options, setup, streams).Run();
}
