#ifndef AT_TOOLS_SHARED_TABLE_H
#define AT_TOOLS_SHARED_TABLE_H

#include <cstddef>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include "tools/shared/terminal.h"

// Columns that a sentence needs at least.
inline constexpr size_t kLeastRoom = 20;

// Columns as wide as their widest cell, two blanks apart; the last one is not padded. Where the terminal is
// too narrow for a line, the last cell goes on in further lines under its column, or, where there is no room
// for that, under the row. Nothing is cut.
class Table {
  public:
    explicit Table(size_t indent = 0) : indent_(indent) {}
    void Row(std::vector<std::string> cells) { rows_.push_back(std::move(cells)); }
    // The first row names the columns and is painted.
    void Head(std::vector<std::string> cells);

    // Columns of the longest line, and of what stands before its last cell; 0 for an empty table.
    size_t Width() const;
    size_t WidthBeforeLast() const;
    void Print(std::ostream& out, const Look& look) const;

  private:
    std::vector<size_t> Widths() const;

    size_t indent_;
    bool head_ = false;
    std::vector<std::vector<std::string>> rows_;
};

// The text in lines of at most `width` columns, broken at blanks; a longer word is broken anywhere.
std::vector<std::string> Wrap(std::string_view text, size_t width);

#endif
