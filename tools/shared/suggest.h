#ifndef AT_TOOLS_SHARED_SUGGEST_H
#define AT_TOOLS_SHARED_SUGGEST_H

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// What was meant, where something was typed that does not exist.

// See tools/shared/edit_distance.h.
size_t EditDistance(std::string_view a, std::string_view b);

// The names nearest to what was typed, the nearest first, three at most; empty when none is near. A name that
// begins with what was typed (three characters or more) is near, too.
std::vector<std::string> Nearest(std::string_view typed, std::span<const std::string> names);

// "; did you mean a or b?", or "" when no name is near.
std::string DidYouMean(std::string_view typed, std::span<const std::string> names);

// The same with names that are found already.
std::string DidYouMean(const std::vector<std::string>& nearest);

#endif
