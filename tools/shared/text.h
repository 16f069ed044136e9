#ifndef AT_TOOLS_SHARED_TEXT_H
#define AT_TOOLS_SHARED_TEXT_H

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Text for terminals, shells and JSON.

// Bytes that are not UTF-8, and control characters unless they are kept, become "\xNN".
enum class Controls { escape, keep };
std::string Printable(std::string_view bytes, Controls controls = Controls::escape);

// "0x0604"
std::string HexNumber(unsigned value);

// Sixteen bytes in a line behind their offset.
void PrintHex(std::ostream& out, std::span<const uint8_t> bytes);

std::string Lower(std::string_view text);
std::string Join(const std::vector<std::string>& parts, std::string_view between);
std::string Number(size_t count, std::string_view one, std::string_view many);  // "1 field", "2 fields"

// As a shell needs it to be one word.
std::string ShellWord(std::string_view text);

// Columns that a terminal needs for the text, one for each character.
size_t Width(std::string_view text);

#endif
