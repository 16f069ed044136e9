#ifndef AT_TOOLS_SHARED_EDIT_DISTANCE_H
#define AT_TOOLS_SHARED_EDIT_DISTANCE_H

#include <stddef.h>

// Insertions, deletions and exchanges of characters, and swaps of neighbours, that lead from one text to the
// other, whatever the case of their letters. Of each the first kEditDistanceMost characters are looked at.
// Needs nothing but the C language, as some tools do not have more.
inline constexpr size_t kEditDistanceMost = 255;
size_t EditDistance(const char* a, size_t a_length, const char* b, size_t b_length);

#endif
