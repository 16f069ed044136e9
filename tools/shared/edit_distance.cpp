#include "tools/shared/edit_distance.h"

namespace {

char LowerCase(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

size_t Least(size_t a, size_t b) {
    return a < b ? a : b;
}

}  // namespace

size_t EditDistance(const char* a, size_t a_length, const char* b, size_t b_length) {
    a_length = Least(a_length, kEditDistanceMost);
    b_length = Least(b_length, kEditDistanceMost);
    // What it costs to make the first j characters of b of the first i of a, for the last three i.
    size_t rows[3][kEditDistanceMost + 1];
    for (size_t j = 0; j <= b_length; ++j)
        rows[0][j] = j;
    for (size_t i = 1; i <= a_length; ++i) {
        size_t* const costs = rows[i % 3];
        const size_t* const last = rows[(i - 1) % 3];
        const size_t* const before = rows[(i + 1) % 3];
        costs[0] = i;
        const char from = LowerCase(a[i - 1]);
        for (size_t j = 1; j <= b_length; ++j) {
            const char to = LowerCase(b[j - 1]);
            costs[j] = Least(last[j - 1] + (from == to ? 0 : 1), Least(costs[j - 1], last[j]) + 1);
            if (i > 1 && j > 1 && from == LowerCase(b[j - 2]) && LowerCase(a[i - 2]) == to)
                costs[j] = Least(costs[j], before[j - 2] + 1);
        }
    }
    return rows[a_length % 3][b_length];
}
