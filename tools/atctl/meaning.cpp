#include "tools/atctl/meaning.h"

#include <charconv>
#include <variant>

std::vector<Listed> ListedValues(std::string_view meaning) {
    std::vector<Listed> listed;
    size_t begin = 0;
    if (const size_t colon = meaning.find(": "); colon != std::string_view::npos) begin = colon + 2;
    while (begin < meaning.size()) {
        size_t end = begin;
        // An item runs to the next comma with a number behind it.
        do {
            end = meaning.find(", ", end == begin ? begin : end + 1);
            if (end == std::string_view::npos) end = meaning.size();
        } while (end < meaning.size() && (meaning[end + 2] < '0' || meaning[end + 2] > '9'));
        const std::string_view item = meaning.substr(begin, end - begin);
        int32_t number = 0;
        const auto [stop, fault] = std::from_chars(item.data(), item.data() + item.size(), number);
        const std::string_view words = item.substr(static_cast<size_t>(stop - item.data()));
        // "2 to 5 ..." is a range.
        if (fault == std::errc() && words.starts_with(' ') && !words.starts_with(" to "))
            listed.push_back({number, words.substr(1)});
        begin = end + 2;
    }
    return listed;
}

std::string_view WordsOf(const Value& value) {
    const auto* number = std::get_if<int32_t>(&value.value);
    if (number == nullptr) return {};
    for (const Listed& listed : ListedValues(value.field->meaning))
        if (listed.number == *number) return listed.words;
    return {};
}

std::string MeaningOf(const Value& value) {
    const std::string_view words = WordsOf(value);
    return std::string(words.empty() ? std::string_view(value.field->meaning) : words);
}
