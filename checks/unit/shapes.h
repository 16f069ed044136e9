#ifndef AT_CHECKS_UNIT_SHAPES_H
#define AT_CHECKS_UNIT_SHAPES_H

#include <vector>

#include "checks/unit/vectors.h"

// Vectors of commands that are alike: the same cases on the numbers, types and widths that a test gives. Each
// of them tries both data card modes, whole records, both ends of an integer, missing last fields, and every
// type that must not be served.

using TypeList = std::vector<uint8_t>;
using IdList = std::vector<uint16_t>;

std::string I32(int32_t value);
std::string Integers(const std::vector<int32_t>& values);

// The encoder prints `count` integers, separated by commas.
void ExpectPrintsIntegers(uint16_t id, size_t count);

// The encoder prints nothing for anything but a SET with `record`, which makes `text`.
void ExpectPrints(uint16_t id, const std::string& record, const std::string& text);

// Commands without parameters.
void ExpectPrintsNothing(uint16_t id);

enum class Reading { raw, normalised };

// The decoder reads `count` integers, separated by commas, into a record of nothing else.
void ExpectReadsIntegers(uint16_t id, const TypeList& types, size_t count, Reading reading);

// The decoder reads quoted texts, one for each width, into arrays that are 4 bytes larger.
void ExpectReadsTexts(uint16_t id, const TypeList& types, const std::vector<size_t>& widths);

// The decoder copies the whole text, quotes and all, into `size` bytes with a NUL, and announces `length`.
void ExpectCopiesTheText(uint16_t id, const TypeList& types, size_t size, int length);

// The decoder announces no parameters for `type`.
void ExpectNoParameters(uint16_t id, uint8_t type);

// The decoder leaves the response alone under every other type.
void ExpectServesOnly(uint16_t id, const TypeList& types);

inline const TypeList kEvery = {0, 1, 2, 3, 4};
inline const TypeList kExecAndRead = {EXEC, READ};

#endif
