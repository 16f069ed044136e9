#include <gtest/gtest.h>

#include <numeric>
#include <random>
#include <sstream>

#include "tools/atctl/chart.h"
#include "tools/shared/suggest.h"
#include "tools/shared/table.h"
#include "tools/shared/text.h"

// Tables, drawings and suggestions.

namespace {

std::string Printed(const Table& table, size_t width, bool colours = false) {
    std::ostringstream out;
    table.Print(out, {colours, width, true});
    return out.str();
}

std::vector<Point> Values(const std::vector<double>& numbers) {
    std::vector<Point> points;
    for (const double number : numbers)
        points.push_back({Point::Kind::value, number});
    return points;
}

using Strings = std::vector<std::string>;

}  // namespace

TEST(Wrap, BreaksAtBlanksAndOnlyElseInsideAWord) {
    EXPECT_EQ(Wrap("", 5), Strings{""});
    EXPECT_EQ(Wrap("abc de", 6), Strings{"abc de"});
    EXPECT_EQ(Wrap("abc de", 5), (Strings{"abc", "de"}));
    EXPECT_EQ(Wrap("abcdefg hi", 3), (Strings{"abc", "def", "g", "hi"}));
    EXPECT_EQ(Wrap("a   b", 2), (Strings{"a", "b"}));
    EXPECT_EQ(Wrap("ü ö ä", 3), (Strings{"ü ö", "ä"}));
}

TEST(Table, IsAsWideAsItsCellsInAFile) {
    Table table(2);
    table.Row({"1", "long cell", "a sentence that is longer than any terminal is wide, or so"});
    table.Head({"n", "name", "words"});
    EXPECT_EQ(Printed(table, 0),
              "  n  name       words\n"
              "  1  long cell  a sentence that is longer than any terminal is wide, or so\n");
}

TEST(Table, ContinuesTheLastCellUnderItsColumnOrUnderTheRow) {
    Table table(2);
    table.Row({"1", "long cell", "a sentence that is longer than this"});
    EXPECT_EQ(Printed(table, 36),
              "  1  long cell  a sentence that is\n"
              "                longer than this\n");
    EXPECT_EQ(Printed(table, 35),
              "  1  long cell\n"
              "      a sentence that is longer\n"
              "      than this\n");
    for (size_t width = 30; width < 60; ++width) {
        std::istringstream lines(Printed(table, width));
        for (std::string line; std::getline(lines, line);)
            EXPECT_LE(line.size(), width);
    }
}

TEST(Table, PaintsItsHeadAlone) {
    Table table;
    table.Row({"a"});
    table.Head({"b"});
    EXPECT_EQ(Printed(table, 80, true), "\033[1mb\033[0m\na\n");
}

TEST(DidYouMean, NamesTheNearestFirst) {
    const Strings names = {"send", "show", "monitor", "list"};
    EXPECT_EQ(DidYouMean("sned", names), "; did you mean send?");
    EXPECT_EQ(DidYouMean("mon", names), "; did you mean monitor?");
    EXPECT_EQ(DidYouMean("SHOW", names), "; did you mean show?");
    EXPECT_EQ(DidYouMean("xyzzy", names), "");
    EXPECT_EQ(DidYouMean("", names), "");
    EXPECT_EQ(DidYouMean("aa", Strings{"ab", "ac", "ad", "ae"}), "; did you mean ab or ac or ad?");
}

TEST(Graph, IsAsHighAsTheValueBetweenTheLowestAndTheHighest) {
    const Look look;
    EXPECT_EQ(Graph(Values({0, 1, 2, 3, 4, 5, 6, 7}), 8, look), "▁▂▃▄▅▆▇█");
    EXPECT_EQ(Graph(Values({0, 1, 2, 3, 4, 5, 6, 7}), 8, {false, 0, false}), "_.:-=+*#");
    EXPECT_EQ(Graph(Values({-5, 5}), 8, look), "▁█");
    EXPECT_EQ(Graph(Values({3, 3}), 8, look), "▅▅");
    EXPECT_EQ(Graph({}, 8, look), "");
}

TEST(Graph, ShowsTheLastOnesAndWhatIsMissing) {
    std::vector<Point> points = Values({100, 0, 7});
    points.push_back({Point::Kind::missed, 0});
    points.push_back({Point::Kind::unknown, 0});
    // The first one is not shown, and the height goes by what is.
    EXPECT_EQ(Graph(points, 4, Look()), "▁█x?");
    EXPECT_EQ(Graph(points, 2, Look{true}), "\033[31mx\033[0m?");
}

TEST(Percentile, IsTheSmallestThatSoManyDoNotExceed) {
    std::vector<double> numbers(100);
    std::iota(numbers.begin(), numbers.end(), 1.0);
    EXPECT_EQ(Percentile(numbers, 50), 50);
    EXPECT_EQ(Percentile(numbers, 95), 95);
    EXPECT_EQ(Percentile(numbers, 100), 100);
    EXPECT_EQ(Percentile({7}, 1), 7);
    EXPECT_EQ(Percentile({1, 2, 3}, 50), 2);
}

TEST(Histogram, CountsEveryNumberOnceInBinsThatHoldIt) {
    std::mt19937 random(1);
    for (const double scale : {1e-5, 1e-3, 0.1, 1.0, 37.0})
        for (const size_t count : {size_t{1}, size_t{2}, size_t{50}, size_t{1000}}) {
            std::exponential_distribution<double> draw(1 / scale);
            std::vector<double> numbers(count);
            for (double& number : numbers)
                number = 3 * scale + draw(random);
            std::sort(numbers.begin(), numbers.end());
            const Histogram histogram = MakeHistogram(numbers);
            size_t counted = histogram.beyond;
            for (const Histogram::Bin& bin : histogram.bins) {
                const auto in = std::count_if(numbers.begin(), numbers.end(), [&](double number) {
                    return number >= bin.from && number < bin.to;
                });
                EXPECT_EQ(bin.count, static_cast<size_t>(in));
                counted += bin.count;
            }
            EXPECT_EQ(counted, count);
            EXPECT_LE(histogram.beyond, count / 100);
            EXPECT_LE(histogram.bins.size(), 12U);
            EXPECT_LE(histogram.bins.front().from, numbers.front());
        }
}

TEST(Histogram, HasABarForEachBin) {
    std::ostringstream out;
    PrintHistogram(out, Look(), {{{0.010, 0.015, 2}, {0.015, 0.020, 0}, {0.020, 0.025, 50}}, 1}, 2);
    std::string bar;
    for (int i = 0; i < 50; ++i)
        bar += "█";
    EXPECT_EQ(out.str(),
              "     10 to 15 ms   2  ██\n"
              "     15 to 20 ms   0\n"
              "     20 to 25 ms  50  " +
                  bar +
                  "\n"
                  "  25 and more ms   1  █\n");
}

TEST(Duration, HasThreeDigitsThatCount) {
    EXPECT_EQ(Duration(0.000850), "850 us");
    EXPECT_EQ(Duration(0.001234), "1.23 ms");
    EXPECT_EQ(Duration(0.01234), "12.3 ms");
    EXPECT_EQ(Duration(0.1234), "123 ms");
    EXPECT_EQ(Duration(1.5), "1.50 s");
    EXPECT_EQ(Duration(180), "180 s");
}
