#ifndef AT_TOOLS_ATCTL_TEXT_H
#define AT_TOOLS_ATCTL_TEXT_H

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

// Insertions, deletions and exchanges of characters that lead from one text to the other, whatever their
// case.
size_t EditDistance(std::string_view a, std::string_view b);

// As a shell needs it to be one word.
std::string ShellWord(std::string_view text);

// Columns as wide as their widest cell, two blanks apart; the last one is not padded.
class Table {
  public:
    explicit Table(size_t indent = 0) : indent_(indent) {}
    void Row(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }
    void Print(std::ostream& out) const;

  private:
    size_t indent_;
    std::vector<std::vector<std::string>> rows_;
};

// Colours, on a terminal only. What is painted goes around text whose width is settled already.
struct Paint {
    bool on = false;
    std::string Bold(std::string_view text) const { return Wrap("1", text); }
    std::string Good(std::string_view text) const { return Wrap("32", text); }
    std::string Bad(std::string_view text) const { return Wrap("31", text); }

  private:
    std::string Wrap(std::string_view code, std::string_view text) const;
};

// Whether to paint on this descriptor: a terminal, and NO_COLOR is unset or empty.
Paint PaintFor(int descriptor);

#endif
