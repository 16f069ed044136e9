#include "tools/atctl/chart.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>

#include "tools/shared/text.h"

namespace {

constexpr const char* kBlocks[] = {"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
constexpr const char* kAscii[] = {"_", ".", ":", "-", "=", "+", "*", "#"};
constexpr size_t kHeights = std::size(kBlocks);
static_assert(std::size(kAscii) == kHeights);

// 1, 2 or 5 times a power of ten, not less than `least`.
double RoundStep(double least) {
    const double power = std::pow(10, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * power >= least * (1 - 1e-9)) return factor * power;
    return 10 * power;
}

struct Unit {
    double scale;
    const char* name;
};
constexpr Unit kUnits[] = {{1, "s"}, {1e3, "ms"}, {1e6, "us"}};

Unit UnitFor(double seconds) {
    for (const Unit& unit : kUnits)
        if (seconds * unit.scale >= 1) return unit;
    return kUnits[2];
}

std::string Digits(double number, int decimals) {
    char text[64];
    snprintf(text, sizeof text, "%.*f", decimals, number);
    return text;
}

}  // namespace

std::string Graph(const std::vector<Point>& points, size_t width, const Look& look) {
    const size_t count = std::min(points.size(), width);
    const auto first = points.end() - static_cast<ptrdiff_t>(count);
    double low = INFINITY;
    double high = -INFINITY;
    for (auto point = first; point != points.end(); ++point) {
        if (point->kind != Point::Kind::value) continue;
        low = std::min(low, point->value);
        high = std::max(high, point->value);
    }
    std::string graph;
    for (auto point = first; point != points.end(); ++point) {
        if (point->kind == Point::Kind::missed) {
            graph += look.Bad("x");
        } else if (point->kind == Point::Kind::unknown) {
            graph += "?";
        } else {
            // A value that never changed stands in the middle.
            const double part = high > low ? (point->value - low) / (high - low) : 0.5;
            const auto height =
                std::min(static_cast<size_t>(part * static_cast<double>(kHeights)), kHeights - 1);
            graph += look.utf8 ? kBlocks[height] : kAscii[height];
        }
    }
    return graph;
}

double Percentile(const std::vector<double>& sorted, double percent) {
    const double rank = std::ceil(percent / 100 * static_cast<double>(sorted.size()));
    return sorted[static_cast<size_t>(std::clamp(rank, 1.0, static_cast<double>(sorted.size()))) - 1];
}

Histogram MakeHistogram(const std::vector<double>& sorted) {
    constexpr double kBins = 10;
    constexpr double kLeastStep = 1e-6;
    const double most = Percentile(sorted, 99);
    const double step = RoundStep(std::max((most - sorted.front()) / kBins, kLeastStep));
    Histogram histogram;
    const double start = std::floor(sorted.front() / step * (1 + 1e-12)) * step;
    for (size_t i = 0; histogram.bins.empty() || histogram.bins.back().to <= most; ++i)
        histogram.bins.push_back(
            {start + static_cast<double>(i) * step, start + static_cast<double>(i + 1) * step, 0});
    size_t bin = 0;
    for (const double number : sorted) {
        while (bin < histogram.bins.size() && number >= histogram.bins[bin].to)
            ++bin;
        if (bin == histogram.bins.size())
            ++histogram.beyond;
        else
            ++histogram.bins[bin].count;
    }
    return histogram;
}

void PrintHistogram(std::ostream& out, const Look& look, const Histogram& histogram, size_t indent) {
    constexpr size_t kLongestBar = 50;
    constexpr size_t kShortestBar = 10;
    const Unit unit = UnitFor(histogram.bins.back().to);
    const double step = (histogram.bins.front().to - histogram.bins.front().from) * unit.scale;
    const int decimals = std::clamp(static_cast<int>(-std::floor(std::log10(step * (1 + 1e-9)))), 0, 6);
    struct Line {
        std::string head;
        size_t count;
    };
    std::vector<Line> lines;
    for (const Histogram::Bin& bin : histogram.bins)
        lines.push_back({Digits(bin.from * unit.scale, decimals) + " to " +
                             Digits(bin.to * unit.scale, decimals) + " " + unit.name,
                         bin.count});
    if (histogram.beyond != 0)
        lines.push_back({Digits(histogram.bins.back().to * unit.scale, decimals) + " and more " + unit.name,
                         histogram.beyond});
    size_t head_width = 0;
    size_t most = 1;
    for (const Line& line : lines) {
        head_width = std::max(head_width, line.head.size());
        most = std::max(most, line.count);
    }
    const size_t count_width = std::to_string(most).size();
    const size_t before = indent + head_width + 2 + count_width + 2;
    size_t longest = kLongestBar;
    if (look.width != 0)
        longest = std::clamp(look.width - std::min(look.width, before), kShortestBar, longest);
    for (const Line& line : lines) {
        const std::string count = std::to_string(line.count);
        std::string text(indent + head_width - line.head.size(), ' ');
        text += line.head + "  " + std::string(count_width - count.size(), ' ') + count + "  ";
        // Whatever is there is seen.
        const size_t length = (line.count * longest + most - 1) / most;
        for (size_t i = 0; i < length; ++i)
            text += look.utf8 ? kBlocks[kHeights - 1] : kAscii[kHeights - 1];
        text.erase(text.find_last_not_of(' ') + 1);
        out << text << '\n';
    }
}

std::string Duration(double seconds) {
    const Unit unit = UnitFor(seconds);
    const double number = seconds * unit.scale;
    const int decimals = number < 10 ? 2 : number < 100 ? 1 : 0;
    return Digits(number, unit.scale < 1e6 ? decimals : 0) + " " + unit.name;
}

std::string Plain(double number) {
    char text[64];
    snprintf(text, sizeof text, "%.6g", number);
    return text;
}
