#include "tools/shared/text.h"

#include <algorithm>
#include <cstdio>

namespace {

// Bytes of the UTF-8 character at the start of `text`; 0 when there is none.
size_t CharacterSize(std::string_view text) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    if (first < 0x80) return 1;
    const size_t size = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4 || text.size() < size) return 0;
    for (size_t i = 1; i < size; ++i)
        if ((byte(i) & 0xC0) != 0x80) return 0;
    // Forms longer than needed, surrogates, and what lies behind the last character.
    if ((first == 0xE0 && byte(1) < 0xA0) || (first == 0xED && byte(1) > 0x9F) ||
        (first == 0xF0 && byte(1) < 0x90) || (first == 0xF4 && byte(1) > 0x8F))
        return 0;
    return size;
}

}  // namespace

std::string Printable(std::string_view bytes, Controls controls) {
    std::string text;
    const auto escape = [&](char c) {
        char escaped[8];
        snprintf(escaped, sizeof escaped, "\\x%02x", static_cast<unsigned>(static_cast<unsigned char>(c)));
        text += escaped;
    };
    while (!bytes.empty()) {
        const auto first = static_cast<unsigned char>(bytes[0]);
        const size_t size = CharacterSize(bytes);
        const bool control = first < 0x20 || first == 0x7F ||
                             (size == 2 && first == 0xC2 && static_cast<unsigned char>(bytes[1]) < 0xA0);
        if (size == 0 || (control && controls == Controls::escape)) {
            for (size_t i = 0; i < std::max<size_t>(size, 1); ++i)
                escape(bytes[i]);
        } else {
            text += bytes.substr(0, size);
        }
        bytes.remove_prefix(std::max<size_t>(size, 1));
    }
    return text;
}

std::string HexNumber(unsigned value) {
    char text[16];
    snprintf(text, sizeof text, "0x%04X", value);
    return text;
}

void PrintHex(std::ostream& out, std::span<const uint8_t> bytes) {
    for (size_t at = 0; at < bytes.size(); at += 16) {
        char number[32];
        snprintf(number, sizeof number, "  %04zx ", at);
        out << number;
        for (size_t i = at; i < std::min(at + 16, bytes.size()); ++i) {
            snprintf(number, sizeof number, " %02x", unsigned{bytes[i]});
            out << number;
        }
        out << '\n';
    }
}

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

std::string Join(const std::vector<std::string>& parts, std::string_view between) {
    std::string text;
    for (const std::string& part : parts) {
        if (&part != parts.data()) text += between;
        text += part;
    }
    return text;
}

std::string Number(size_t count, std::string_view one, std::string_view many) {
    return std::to_string(count).append(" ").append(count == 1 ? one : many);
}

std::string ShellWord(std::string_view text) {
    const bool plain = !text.empty() && std::all_of(text.begin(), text.end(), [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_' ||
               c == '.' || c == '-' || c == '/' || c == ':';
    });
    if (plain) return std::string(text);
    std::string word = "'";
    for (const char c : text)
        word += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return word + "'";
}

size_t Width(std::string_view text) {
    return static_cast<size_t>(std::count_if(
        text.begin(), text.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; }));
}
