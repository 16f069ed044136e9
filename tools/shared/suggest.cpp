#include "tools/shared/suggest.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "tools/shared/text.h"

size_t EditDistance(std::string_view a, std::string_view b) {
    const std::string from = Lower(a);
    const std::string to = Lower(b);
    std::vector<size_t> before(to.size() + 1);
    std::vector<size_t> last(to.size() + 1);
    std::vector<size_t> costs(to.size() + 1);
    std::iota(costs.begin(), costs.end(), size_t{0});
    for (size_t i = 0; i < from.size(); ++i) {
        before.swap(last);
        last.swap(costs);
        costs[0] = i + 1;
        for (size_t j = 0; j < to.size(); ++j) {
            const size_t other = from[i] == to[j] ? 0 : 1;
            costs[j + 1] = std::min({last[j] + other, costs[j] + 1, last[j + 1] + 1});
            if (i > 0 && j > 0 && from[i] == to[j - 1] && from[i - 1] == to[j])
                costs[j + 1] = std::min(costs[j + 1], before[j - 1] + 1);
        }
    }
    return costs.back();
}

std::vector<std::string> Nearest(std::string_view typed, std::span<const std::string> names) {
    constexpr size_t kMost = 3;
    constexpr size_t kPrefix = 3;
    std::vector<std::pair<size_t, std::string>> near;
    const std::string lower = Lower(typed);
    for (const std::string& name : names) {
        const size_t distance = EditDistance(typed, name);
        // A name that has not a character of what was typed is no guess at it.
        if (distance <= 1 + typed.size() / 4 && distance < std::max(typed.size(), name.size()))
            near.emplace_back(distance, name);
        else if (typed.size() >= kPrefix && Lower(name).starts_with(lower))
            near.emplace_back(distance, name);
    }
    std::stable_sort(near.begin(), near.end(), [](auto& a, auto& b) { return a.first < b.first; });
    std::vector<std::string> found;
    for (auto& [distance, name] : near)
        if (found.size() < kMost && !name.empty() &&
            std::find(found.begin(), found.end(), name) == found.end())
            found.push_back(std::move(name));
    return found;
}

std::string DidYouMean(std::string_view typed, std::span<const std::string> names) {
    return DidYouMean(Nearest(typed, names));
}

std::string DidYouMean(const std::vector<std::string>& nearest) {
    return nearest.empty() ? "" : "; did you mean " + Join(nearest, " or ") + "?";
}
