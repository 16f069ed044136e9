#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "checks/bench/end_to_end/pair.h"
#include "checks/bench/samples.h"

// What the real daemon costs, over a pty and real queues, beside a program that makes the same calls on them
// and nothing else. CPU time only; every figure is the median of several batches that took turns.

namespace {

using Json = nlohmann::json;

constexpr char kUsage[] =
    "usage: end_to_end DAEMON BARE LOG_SWITCH [--quick] [--into FILE]\n"
    "Runs inside scripts/sandbox, for five minutes or, with --quick, one. FILE is JSON that the "
    "figures are\n"
    "added to.\n";

std::vector<Shape> Shapes() {
    const uint16_t csq = 0x0604;
    const std::string storm = Storm(50) + kShortAnswer + Storm(50);
    return {{"short answer", csq, AT_CMD_TYPE_EXEC, "", kShortAnswer, 80, 10},
            {"answer among 100 reports", csq, AT_CMD_TYPE_EXEC, "", storm, 80, 10},
            {"list of 28 kB", 0x0106, AT_CMD_TYPE_SET, I32({4}), MessageList(), 200, 5}};
}

// The median, and between what half of the batches lie.
struct Middle {
    double median, low, high;
    Json AsJson() const { return {{"median", median}, {"lower_quartile", low}, {"upper_quartile", high}}; }
};

Middle MiddleOf(std::vector<double> values) {
    std::sort(values.begin(), values.end());
    return {values[values.size() / 2], values[values.size() / 4], values[values.size() * 3 / 4]};
}

template <typename Of>
Middle MiddleOf(const std::vector<Cost>& costs, Of of) {
    std::vector<double> values;
    for (const Cost& cost : costs)
        values.push_back(of(cost));
    return MiddleOf(values);
}

double OfDaemon(const Cost& cost) {
    return cost.daemon;
}
double OfBare(const Cost& cost) {
    return cost.bare;
}
double Over(const Cost& cost) {
    return cost.daemon - cost.bare;
}
double Ratio(const Cost& cost) {
    return cost.daemon / cost.bare;
}

// Idle, and every shape without the log calls.
Json MeasureRequests(Pair& pair, int repetitions) {
    std::vector<Pair::Prepared> requests;
    for (const Shape& shape : Shapes())
        requests.push_back(pair.Prepare(shape));
    std::vector<Cost> idle;
    std::vector<std::vector<Cost>> costs(requests.size());
    pair.LogTo(LogSwitch::drop, false);
    for (int i = 0; i < repetitions; ++i) {
        for (size_t shape = 0; shape < requests.size(); ++shape)
            costs[shape].push_back(pair.Batch(requests[shape]));
        idle.push_back(pair.Idle(2));
    }

    const auto print = [](const char* name, const std::vector<Cost>& of, double unit) {
        const Middle over = MiddleOf(of, Over);
        const Middle ratio = MiddleOf(of, Ratio);
        printf("%-52s %10.1f %10.1f %10.1f %9.1f..%-8.1f %5.2f %6.2f..%-5.2f\n", name,
               MiddleOf(of, OfDaemon).median / unit, MiddleOf(of, OfBare).median / unit, over.median / unit,
               over.low / unit, over.high / unit, ratio.median, ratio.low, ratio.high);
        return Json{{"daemon_ns", MiddleOf(of, OfDaemon).AsJson()},
                    {"bare_ns", MiddleOf(of, OfBare).AsJson()},
                    {"over_ns", over.AsJson()},
                    {"ratio", ratio.AsJson()}};
    };
    Json json;
    printf("\n%-52s %10s %10s %10s %19s %5s %13s\n", "end to end, without the log calls; us of CPU time",
           "daemon", "bare calls", "over them", "half of them", "ratio", "half of them");
    for (size_t shape = 0; shape < requests.size(); ++shape) {
        const char* name = requests[shape].shape.name;
        const std::string title =
            std::string(name) + " (messages: " + std::to_string(requests[shape].messages) + ")";
        json["requests"][name] = print(title.c_str(), costs[shape], 1e3);
        json["requests"][name]["messages"] = requests[shape].messages;
    }
    json["idle"] = print("idle, a round (bare: sleep and select alone)", idle, 1e5);
    return json;
}

// What each way of logging adds to a short request.
Json MeasureLog(Pair& pair, int repetitions) {
    struct Way {
        const char* name;
        LogSwitch::Way way;
        bool collector;
        std::vector<double> added;
    };
    Way ways[] = {{"a collector that listens", LogSwitch::pass, true, {}},
                  {"no collector", LogSwitch::pass, false, {}},
                  {"the mask lets errors through", LogSwitch::mask, false, {}}};
    double lines = 0;
    const Pair::Prepared request = pair.Prepare(Shapes()[0]);
    for (int i = 0; i < repetitions; ++i) {
        pair.LogTo(LogSwitch::drop, false);
        const Cost without = pair.Batch(request);
        for (Way& way : ways) {
            pair.LogTo(way.way, way.collector);
            const Cost with = pair.Batch(request);
            way.added.push_back(Over(with) - Over(without));
            if (way.collector) lines = static_cast<double>(pair.LoggedLines()) / (request.shape.requests + 1);
        }
    }
    pair.LogTo(LogSwitch::drop, false);

    Json json;
    json["lines"] = lines;
    printf("\n%-52s %10s %19s\n", "log calls of a short request; us of CPU time", "added", "half of them");
    for (const Way& way : ways) {
        const Middle added = MiddleOf(way.added);
        printf("%-52s %10.1f %9.1f..%-8.1f\n", way.name, added.median / 1e3, added.low / 1e3,
               added.high / 1e3);
        json["added_ns"][way.name] = added.AsJson();
    }
    printf("%.1f lines to a request\n", lines);
    return json;
}

void AddTo(const char* path, const Json& figures) {
    Json all = Json::object();
    if (std::ifstream file(path); file) all = Json::parse(file);
    all["end_to_end"] = figures;
    std::ofstream file(path);
    file << all.dump(2) << '\n';
    if (!file) throw std::runtime_error(std::string("cannot write ") + path);
}

}  // namespace

int main(int count, char** arguments) {
    int repetitions = 19;
    const char* into = nullptr;
    bool good = count >= 4;
    for (int i = 4; i < count; ++i) {
        if (strcmp(arguments[i], "--quick") == 0)
            repetitions = 3;
        else if (strcmp(arguments[i], "--into") == 0 && i + 1 < count)
            into = arguments[++i];
        else
            good = false;
    }
    if (!good) {
        fputs(kUsage, stderr);
        return 2;
    }
    try {
        if (access("/dev/log", F_OK) == 0)
            throw std::runtime_error("/dev/log exists: what no collector costs cannot be seen here");
        setenv("AT_SERVER", arguments[1], 1);  // messages are made for the machine of this program
        Pair pair(arguments[1], arguments[2], arguments[3]);
        Json figures = MeasureRequests(pair, repetitions);
        figures["log"] = MeasureLog(pair, repetitions);
        if (into != nullptr) AddTo(into, figures);
    } catch (const std::exception& error) {
        fprintf(stderr, "end_to_end: %s\n", error.what());
        return 1;
    }
    return 0;
}
