#include "tools/shared/table.h"

#include <algorithm>
#include <utility>

#include "tools/shared/text.h"

namespace {

constexpr size_t kUnderRow = 4;

// Bytes of the first `columns` characters.
size_t BytesOf(std::string_view text, size_t columns) {
    size_t at = 0;
    for (; at < text.size(); ++at)
        if ((static_cast<unsigned char>(text[at]) & 0xC0) != 0x80 && columns-- == 0) break;
    return at;
}

}  // namespace

std::vector<std::string> Wrap(std::string_view text, size_t width) {
    width = std::max<size_t>(width, 1);
    std::vector<std::string> lines;
    while (Width(text) > width) {
        const size_t most = BytesOf(text, width);
        size_t end = text.rfind(' ', most);
        if (end == std::string_view::npos || end == 0) end = most;
        const std::string_view line = text.substr(0, end);
        lines.emplace_back(line.substr(0, line.find_last_not_of(' ') + 1));
        text.remove_prefix(end);
        text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    }
    lines.emplace_back(text);
    return lines;
}

void Table::Head(std::vector<std::string> cells) {
    head_ = true;
    rows_.insert(rows_.begin(), std::move(cells));
}

std::vector<size_t> Table::Widths() const {
    std::vector<size_t> widths;
    for (const auto& row : rows_)
        for (size_t i = 0; i < row.size(); ++i) {
            if (i == widths.size()) widths.push_back(0);
            widths[i] = std::max(widths[i], ::Width(row[i]));
        }
    return widths;
}

size_t Table::Width() const {
    const std::vector<size_t> widths = Widths();
    if (widths.empty()) return 0;
    size_t width = indent_ + 2 * (widths.size() - 1);
    for (const size_t column : widths)
        width += column;
    return width;
}

size_t Table::WidthBeforeLast() const {
    const std::vector<size_t> widths = Widths();
    return widths.empty() ? 0 : Width() - widths.back();
}

void Table::Print(std::ostream& out, const Look& look) const {
    const std::vector<size_t> widths = Widths();
    for (size_t r = 0; r < rows_.size(); ++r) {
        const auto& row = rows_[r];
        std::string line(indent_, ' ');
        for (size_t i = 0; i + 1 < row.size(); ++i) {
            line += row[i];
            line.append(widths[i] - ::Width(row[i]) + 2, ' ');
        }
        std::vector<std::string> rest;
        if (!row.empty()) {
            const size_t before = ::Width(line);
            const std::string& last = row.back();
            if (look.width == 0 || before + ::Width(last) <= look.width) {
                line += last;
            } else if (before + kLeastRoom <= look.width) {
                rest = Wrap(last, look.width - before);
                line += rest.front();
                rest.erase(rest.begin());
                for (std::string& more : rest)
                    more.insert(0, before, ' ');
            } else {
                const size_t under = indent_ + kUnderRow;
                rest = Wrap(last, std::max(look.width, under + kLeastRoom) - under);
                for (std::string& more : rest)
                    more.insert(0, under, ' ');
            }
        }
        rest.insert(rest.begin(), std::move(line));
        for (std::string& text : rest) {
            text.erase(text.find_last_not_of(' ') + 1);
            out << (head_ && r == 0 ? look.Bold(text) : text) << '\n';
        }
    }
}
