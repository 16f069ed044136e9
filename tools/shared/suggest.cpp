#include "tools/shared/suggest.h"

#include <algorithm>
#include <utility>

#include "tools/shared/edit_distance.h"
#include "tools/shared/text.h"

size_t EditDistance(std::string_view a, std::string_view b) {
    return EditDistance(a.data(), a.size(), b.data(), b.size());
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
