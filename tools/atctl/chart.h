#ifndef AT_TOOLS_ATCTL_CHART_H
#define AT_TOOLS_ATCTL_CHART_H

#include <cstddef>
#include <ostream>
#include <string>
#include <vector>

#include "tools/shared/terminal.h"

// Numbers as drawings of characters.

// One measurement of a history.
struct Point {
    enum class Kind {
        value,
        unknown,  // an answer that does not tell the value
        missed    // no answer, or another result than OK
    };
    Kind kind = Kind::missed;
    double value = 0;
};

// One character for each of the last `width` points: its height between the lowest and the highest of them,
// "?" for an unknown value, "x" for a missed one.
std::string Graph(const std::vector<Point>& points, size_t width, const Look& look);

// How many of a set of numbers lie where.
struct Histogram {
    struct Bin {
        double from = 0;  // included
        double to = 0;    // not included
        size_t count = 0;
    };
    std::vector<Bin> bins;  // of equal width and round borders
    size_t beyond = 0;      // the slowest hundredth, where it lies behind the last bin
};

// For numbers in ascending order, not empty: about ten bins.
Histogram MakeHistogram(const std::vector<double>& sorted);

// A line for each bin with a bar, in the unit that fits seconds. `indent` blanks stand before each line.
void PrintHistogram(std::ostream& out, const Look& look, const Histogram& histogram, size_t indent);

// The smallest number that `percent` of all do not exceed; of numbers in ascending order, not empty.
double Percentile(const std::vector<double>& sorted, double percent);

// "850 us", "12.3 ms", "1.25 s": three digits that count.
std::string Duration(double seconds);

// As few digits as tell the number apart: "18", "18.25".
std::string Plain(double number);

#endif
